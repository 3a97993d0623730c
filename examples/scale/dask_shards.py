# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Straightens the shards of a list on the workers of a Dask scheduler.

LIST has one tar file per line. Results and manifests are written to FOLDER. After any interruption, start it again: it
skips shards that are complete. Workers need this folder in their PYTHONPATH and scanpage in their PATH.
"""

import argparse
import itertools
import os
import subprocess
import sys

from distributed import Client, as_completed


def straighten(shard, folder):
    """Returns the shard and the exit status of scanpage: 0 done or kept, 1 with pages that failed."""
    result = os.path.join(folder, os.path.basename(shard))
    environment = dict(os.environ)
    environment.pop("MALLOC_TRIM_THRESHOLD_", None)    # Dask sets it for its own memory; it costs scanpage a quarter more
    run = subprocess.run(["scanpage", "--tar", shard, "-o", result], env=environment)
    if run.returncode < 0:    # killed, so another try may succeed
        raise RuntimeError(f"{shard}: scanpage was ended by signal {-run.returncode}")
    return shard, run.returncode


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("list")
    parser.add_argument("folder")
    parser.add_argument("--scheduler-file", help="file with the scheduler's address; default: workers on this machine")
    parser.add_argument("--workers", type=int, help="number of workers on this machine")
    options = parser.parse_args()
    folder = os.path.abspath(options.folder)
    os.makedirs(folder, exist_ok=True)
    if options.scheduler_file:
        cluster = {"scheduler_file": options.scheduler_file}
    else:
        cluster = {"n_workers": options.workers, "threads_per_worker": 1, "dashboard_address": None}

    failed = 0
    with Client(**cluster) as client, open(options.list) as names:
        client.wait_for_workers(1)
        shards = (os.path.abspath(name.rstrip("\n")) for name in names)
        submit = lambda shard: client.submit(straighten, shard, folder, pure=False, retries=3)
        # Each worker has a few tasks in progress, so that the scheduler never holds the whole list.
        ahead = 4 * max(1, sum(client.nthreads().values()))
        running = as_completed([submit(shard) for shard in itertools.islice(shards, ahead)])
        for future in running:
            try:
                shard, status = future.result()
            except Exception as fault:    # the other shards go on
                shard, status = fault, 3
            if status:
                failed += 1
                print(f"{shard}: status {status}", file=sys.stderr)
            for shard in itertools.islice(shards, 1):
                running.add(submit(shard))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
