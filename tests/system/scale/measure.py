# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Pages a second of each engine with one and two workers: measure.py small|a4 [ENGINE...]

From the start of the engine's command to its end; the daemons of Slurm and Dask are up before.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

import processes
from slurm_host import SlurmHost

KINDS = {"small": (60, 1000, 1000, 250), "a4": (300, 10, 50, 13)}    # dots per inch, drawn, pages, slice of Slurm
RECIPES = pathlib.Path(__file__).resolve().parents[3] / "examples" / "scale"
os.environ["PATH"] = f"{os.environ['TOOLS']}:{os.environ['PATH']}"
os.environ["PYTHONPATH"] = f"{os.environ['MODULE']}:{RECIPES}"
os.environ["OMP_NUM_THREADS"] = os.environ["OPENBLAS_NUM_THREADS"] = "1"


def run(*command, **options):
    command = [str(word) for word in command]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)


def scanpage(root, pages, workers, _):
    (root / "pages").mkdir()
    yield lambda: run("scanpage", "--jobs", workers, "--from", pages, "-o", root / "pages")


def parallel(root, pages, workers, length):
    smaller = ["--max-args", length] if length < 100 else []    # than the recipe's slices, so that each worker has some
    yield lambda: run(RECIPES / "parallel.sh", pages, root, workers, *smaller)


def slurm(root, pages, workers, length):
    (root / "slurm").mkdir()
    host = SlurmHost(root / "slurm")
    count = len(pages.read_text().splitlines())
    array = f"--array=0-{(count - 1) // length}%{workers}"

    def work():
        host.run("sbatch", array, f"--output={root}/%a.err", RECIPES / "slurm.sh", pages, root, length)
        processes.wait_until(lambda: host.run("squeue", "-h") == "", 80, "the end of the array")

    yield work


def dask(root, pages, workers, _):
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
    client = [sys.executable, RECIPES / "dask_pages.py", pages, root, "--scheduler-file", cluster, "--slice", "5"]
    yield lambda: run(*client)


ENGINES = {engine.__name__: engine for engine in (scanpage, parallel, slurm, dask)}


def main(kind, names):
    dpi, drawn, count, length = KINDS[kind]
    with tempfile.TemporaryDirectory() as folder:
        stock = pathlib.Path(folder)
        run("pagegen", "--dpi", dpi, "--count", drawn, stock)
        files = [stock / f"page-{i % drawn + 1:06}.jpg" for i in range(count)]
        for i in range(drawn, count):
            os.link(files[i], stock / f"copy-{i:06}.jpg")
        pages = stock / "list"
        pages.write_text("".join(f"{page}\n" for page in sorted(stock.glob("*.jpg"))))
        for name in names:
            for workers in (1, 2):
                root = pathlib.Path(tempfile.mkdtemp(dir=folder))
                for work in ENGINES[name](root, pages, workers, length):
                    start = time.monotonic()
                    work()
                    seconds = time.monotonic() - start
                assert len(list((root / "pages").iterdir())) == count
                print(f"{kind}\t{name}\t{workers} workers\t{count / seconds:.1f} pages/s", flush=True)
                processes.kill_all()
                shutil.rmtree(root)


if __name__ == "__main__":
    try:
        main(sys.argv[1], sys.argv[2:] or ENGINES)
    finally:
        processes.kill_all()
