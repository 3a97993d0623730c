# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Pages a second of each engine with a worker per core: measure.py FOLDER small|a4 [ENGINE...]

From the start of the engine's command to its end; the daemons of Slurm and Dask and the store's server are up before.
Of the processor time, the part that is not scanpage's nor of the store's server is the engine's. The pages are drawn to FOLDER, and kept there.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

import processes
import shards
from slurm_host import SlurmHost
from store import Store

KINDS = {"small": (60, 1000), "a4": (300, 30)}    # dots per inch, pages of each shard
RECIPES = pathlib.Path(__file__).resolve().parents[3] / "examples" / "scale"
os.environ["PATH"] = f"{os.environ['TOOLS']}:{os.environ['PATH']}"
os.environ["PYTHONPATH"] = str(RECIPES)
os.environ["OMP_NUM_THREADS"] = os.environ["OPENBLAS_NUM_THREADS"] = "1"


WRAPPER = """#!/bin/bash
TIMEFORMAT='%U %S'
{{ time {} "$@" 2>&3; }} 3>&2 2>>{}
"""


def run(*command, **options):
    command = [str(word) for word in command]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)


def scanpage(root, stock, workers):
    """Without engine."""

    def work():
        for shard in sorted((stock / "scans").glob("*.tar")):
            run("scanpage", "--tar", "--jobs", workers, shard, "-o", root / "straight" / shard.name)

    yield work


def parallel(root, stock, workers):
    yield lambda: run(RECIPES / "parallel.sh", stock / "list", root / "straight", workers)


def slurm(root, stock, workers):
    (root / "slurm").mkdir()
    host = SlurmHost(root / "slurm")

    def work():
        array = f"--array=0-{workers - 1}"
        host.run("sbatch", array, f"--output={root}/%a.log", RECIPES / "slurm.sh", stock / "list", root / "straight")
        processes.wait_until(lambda: len(shards.whole_manifests(root / "straight")) == workers, 80, "the end of the array")

    yield work


def dask(root, stock, workers):
    cluster = root / "cluster.json"
    python = [sys.executable, "-m"]
    options = {"cwd": root, "start_new_session": True}
    processes.start([*python, "distributed.cli.dask_scheduler", "--host", "127.0.0.1", "--port", "0", "--no-dashboard",
                     "--scheduler-file", cluster], root / "log", **options)    # fmt: skip
    for _ in range(workers):
        processes.start([*python, "distributed.cli.dask_worker", "--scheduler-file", cluster, "--host", "127.0.0.1",
                         "--nthreads", "1", "--no-dashboard"], root / "log", **options)    # fmt: skip
    ready = f"from distributed import Client; Client(scheduler_file={str(cluster)!r}).wait_for_workers({workers})"
    run(sys.executable, "-c", ready)
    client = [sys.executable, RECIPES / "dask_shards.py", stock / "list", root / "straight", "--scheduler-file", cluster]
    yield lambda: run(*client)


def store(root, stock, workers):
    shards.link_all(stock / "scans", root / "scans")
    environment = Store(root).environment
    names = [shard.name for shard in (root / "scans").glob("*.tar")]
    yield lambda: run("parallel", "--will-cite", "--jobs", workers, RECIPES / "object_store.sh", "store:scans/{}",
                      "store:straight/{}", ":::", *names, env=environment)    # fmt: skip


ENGINES = {engine.__name__: engine for engine in (scanpage, parallel, slurm, dask, store)}


def main(folder, kind, *names):
    dpi, pages = KINDS[kind]
    stock = pathlib.Path(folder, kind).resolve()
    drawn = shards.draw_all(stock, os.cpu_count(), pages, "--dpi", dpi)
    (stock / "list").write_text("".join(f"{shard}\n" for shard in drawn))
    place = pathlib.Path(tempfile.mkdtemp(dir=folder)).resolve()
    times, wrapper = place / "times", place / "scanpage"
    wrapper.write_text(WRAPPER.format(shutil.which("scanpage"), times))
    wrapper.chmod(0o755)
    os.environ["PATH"] = f"{place}:{os.environ['PATH']}"
    for name in names or ENGINES:
        root = pathlib.Path(tempfile.mkdtemp(dir=folder)).resolve()
        (root / "straight").mkdir()
        times.write_text("")
        for work in ENGINES[name](root, stock, len(drawn)):
            used, start = processes.processor_seconds(but="rclone serve"), time.monotonic()
            work()
            seconds = time.monotonic() - start
            used = processes.processor_seconds(but="rclone serve") - used
        processes.kill_all()
        wrong = shards.faults(stock, root / "straight")
        rate = len(drawn) * pages / seconds
        bare = sum(float(part) for part in times.read_text().split())
        share = 100 * (used - bare) / bare
        print(f"{kind}\t{name}\t{rate:.1f} pages/s\t{bare:.2f} s of processors, engine {share:.1f} %", *wrong, flush=True)
        shutil.rmtree(root)
    shutil.rmtree(place)


if __name__ == "__main__":
    try:
        main(*sys.argv[1:])
    finally:
        processes.kill_all()
