# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Straightens the pages of a list on the workers of a Dask scheduler, with the Python module of the library.

Results are written to FOLDER/pages, one line per page to FOLDER/log.tsv: file, status, skew, milliseconds, bytes. After
any interruption, start it again: it processes the missing pages. Workers need this folder in their PYTHONPATH.
"""

import argparse
import itertools
import os
import sys
import tempfile
import time

import opcv_dlib
from distributed import Client, as_completed

MODE = 450    # JPEG quality


def write_whole(path, data):
    """The file gets its name when it is complete and on disk. Of two writers at once the second fails."""
    folder = os.path.dirname(path)
    with tempfile.NamedTemporaryFile(dir=folder, prefix=".page-") as part:    # removed with the name that it has here
        part.write(data)
        part.flush()
        os.fchmod(part.fileno(), 0o644)
        os.fsync(part.fileno())
        os.link(part.name, path)
    directory = os.open(folder, os.O_RDONLY)
    try:
        os.fsync(directory)
    finally:
        os.close(directory)


def straighten(file, folder):
    """Straightens one page; returns its line of the report."""
    result = os.path.join(folder, os.path.splitext(os.path.basename(file))[0] + ".jpg")
    start = time.monotonic()
    status, skew, size = "kept", "-", 0
    try:
        if not os.path.exists(result):
            with open(file, "rb") as stream:
                page = opcv_dlib.read_jpeg(stream.read())
            angle = opcv_dlib.find_skew(page).angle or 0.0    # none: the page stays as it is
            write_whole(result, opcv_dlib.compress_jpeg_ex(opcv_dlib.deskew(page, angle, white_fill=True), MODE))
            status, skew = "done", f"{angle:.2f}"
        size = os.path.getsize(result)
    except Exception as fault:    # a bad page does not stop the others
        print(f"{file}: {fault}", file=sys.stderr)
        status = "failed"
    name = file.replace("\\", "\\\\").replace("\t", "\\t")
    return f"{name}\t{status}\t{skew}\t{1000 * (time.monotonic() - start):.1f}\t{size}\n"


def straighten_slice(files, folder):
    return [straighten(file, folder) for file in files]


def slices(list_file, length):
    with open(list_file) as lines:
        while part := [line.rstrip("\n") for line in itertools.islice(lines, length)]:
            yield part


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("list")
    parser.add_argument("folder")
    parser.add_argument("--scheduler-file", help="file with the scheduler's address; default: workers on this machine")
    parser.add_argument("--workers", type=int, help="number of workers on this machine")
    parser.add_argument("--slice", type=int, default=20, help="pages per task")
    options = parser.parse_args()
    results = os.path.join(os.path.abspath(options.folder), "pages")
    os.makedirs(results, exist_ok=True)

    if options.scheduler_file:
        cluster = {"scheduler_file": options.scheduler_file}
    else:
        cluster = {"n_workers": options.workers, "threads_per_worker": 1, "dashboard_address": None}
    failed = 0
    with Client(**cluster) as client:
        client.wait_for_workers(1)
        rest = slices(options.list, options.slice)
        submit = lambda part: client.submit(straighten_slice, part, results, pure=False)
        # Each worker has a few tasks in progress, so that the scheduler never holds the whole list.
        ahead = 4 * max(1, sum(client.nthreads().values()))
        running = as_completed([submit(part) for part in itertools.islice(rest, ahead)], with_results=True)
        with open(os.path.join(options.folder, "log.tsv"), "a", buffering=1) as log:
            for future, lines in running:
                log.writelines(lines)
                failed += sum("\tfailed\t" in line for line in lines)
                for part in itertools.islice(rest, 1):
                    running.add(submit(part))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
