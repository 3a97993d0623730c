# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""A thousand pages by each engine that docs/scale.md describes, with workers lost on the way.

Exactly once means here: in the end each page has one complete result; a page whose result was complete is not worked
on again; and of each page at most one report says that it was done. The reports of pages in hand when a worker was lost
may be missing.
"""

import atexit
import collections
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import processes
from slurm_host import SlurmHost

PAGES = 1000
DPI = 60
ROOT = pathlib.Path(__file__).resolve().parents[3]
RECIPES = ROOT / "examples" / "scale"
TOOLS = pathlib.Path(os.environ["TOOLS"])    # folder of scanpage and pagegen
os.environ["PATH"] = f"{TOOLS}:{os.environ['PATH']}"
os.environ["OMP_NUM_THREADS"] = os.environ["OPENBLAS_NUM_THREADS"] = "1"
atexit.register(processes.kill_all)


class Engine(unittest.TestCase):
    report_fields = 8    # of scanpage

    @classmethod
    def setUpClass(cls):
        if hasattr(Engine, "pages"):
            return
        Engine.stock = pathlib.Path(tempfile.mkdtemp(prefix="scale-pages-"))
        unittest.addModuleCleanup(shutil.rmtree, Engine.stock)
        command = ["pagegen", "--grey", "--dpi", str(DPI), "--count", str(PAGES), Engine.stock]
        drawn = subprocess.run(command, check=True, capture_output=True, text=True)
        Engine.skews = {line.split(": ")[0]: float(line.split()[-2]) for line in drawn.stdout.splitlines()}
        Engine.pages = sorted(Engine.skews)
        Engine.list = Engine.stock / "list"
        Engine.list.write_text("".join(page + "\n" for page in Engine.pages))
        Engine.reference = Engine.stock / "reference"
        Engine.reference.mkdir()
        subprocess.run(
            ["scanpage", "-j", str(os.cpu_count()), "--from", Engine.list, "-o", Engine.reference],
            check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )    # fmt: skip

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="scale-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.addCleanup(processes.kill_all)
        self.results = self.folder / "pages"

    def count(self):
        return len(list(self.results.glob("*.jpg")))

    def wait_for_results(self, count):
        processes.wait_until(lambda: self.count() >= count, 30, f"{count} results")

    def reports(self):
        """Fields of all reports; a line that a killed worker did not finish does not count."""
        logs = [log.read_text() for log in self.folder.glob("log/*.tsv")] + [
            log.read_text() for log in self.folder.glob("log.tsv")
        ]
        return [line.split("\t") for log in logs for line in log.split("\n")[:-1]]

    def check_once(self, unreported):
        """Each page has its result and was done once. `unreported` pages may have been in hand with a lost worker."""
        names = [os.path.basename(page) for page in self.pages]
        self.assertEqual(names, sorted(result.name for result in self.results.glob("*.jpg")))
        reports = self.reports()
        self.assertEqual({self.report_fields}, {len(fields) for fields in reports})
        self.assertLessEqual({fields[1] for fields in reports}, {"done", "kept"})
        done = collections.Counter(fields[0] for fields in reports if fields[1] == "done")
        self.assertLessEqual(set(done), set(self.pages))
        self.assertEqual([], [page for page, times in done.items() if times > 1])
        self.assertLessEqual(PAGES - len(done), unreported)
        for fields in reports:
            if fields[1] == "done":
                self.assertAlmostEqual(self.skews[fields[0]], float(fields[2]), delta=0.5)

    def check_same_as_reference(self, reference=None):
        for undisturbed in (reference or self.reference).iterdir():
            result = self.results / undisturbed.name
            self.assertEqual(undisturbed.read_bytes(), result.read_bytes(), result.name)


class Parallel(Engine):
    def start(self):
        command = [RECIPES / "parallel.sh", self.list, self.folder, "2"]
        return processes.start(command, self.folder / "parallel.log", start_new_session=True)

    def test_a_worker_and_then_everything_is_killed(self):
        run = self.start()
        self.wait_for_results(150)
        processes.kill(processes.wait_until(lambda: processes.named("scanpage", run.pid), 10, "a worker")[:1])
        self.wait_for_results(450)
        processes.kill_tree(run.pid)
        run.wait()
        self.assertLess(self.count(), PAGES)
        self.assertEqual(0, self.start().wait(timeout=60))
        self.check_once(unreported=3)
        self.check_same_as_reference()
        self.assertEqual(0, self.start().wait(timeout=20))    # nothing is left to do
        self.check_once(unreported=3)


class Slurm(Engine):
    def test_a_worker_and_then_a_machine_is_killed(self):
        root = self.folder / "slurm"
        root.mkdir()
        host = SlurmHost(root)
        (self.folder / "log").mkdir()
        length = 50
        job = host.run("sbatch", "--parsable", f"--array=0-{PAGES // length - 1}", f"--output={self.folder}/log/%a.err",
                       RECIPES / "slurm.sh", self.list, self.folder, length)    # fmt: skip
        self.assertTrue(job)
        self.wait_for_results(100)
        worker = processes.wait_until(lambda: processes.named("scanpage", os.getpid()), 10, "a worker")
        processes.kill(worker[:1])
        self.wait_for_results(400)
        script = f"{root}/spool-machine1/"
        busy = lambda: [p for p in processes.descendants(os.getpid()) if script in processes.command_of(p)]
        processes.wait_until(busy, 20, "a task of the machine")
        self.assertTrue(host.lose("machine1"))
        processes.wait_until(lambda: host.run("squeue", "-h", "-j", job, "-o", "%t") == "", 60, "the end of the array")
        self.check_once(unreported=2)
        self.check_same_as_reference()


class Dask(Engine):
    report_fields = 5    # of the recipe

    def setUp(self):
        super().setUp()
        self.environment = dict(os.environ, PYTHONPATH=f"{os.environ['MODULE']}:{RECIPES}")
        self.cluster = self.folder / "scheduler.json"
        self.start("-m", "distributed.cli.dask_scheduler", "--host", "127.0.0.1", "--port", "0", "--no-dashboard",
                   "--scheduler-file", self.cluster)    # fmt: skip

    def start(self, *command):
        return processes.start([sys.executable, *command], self.folder / "dask.log", env=self.environment,
                               cwd=self.folder, start_new_session=True)    # fmt: skip

    def start_worker(self):
        return self.start("-m", "distributed.cli.dask_worker", "--scheduler-file", self.cluster, "--host", "127.0.0.1",
                          "--nthreads", "1", "--no-dashboard", "--local-directory", self.folder)    # fmt: skip

    def start_client(self):
        return self.start(RECIPES / "dask_pages.py", self.list, self.folder, "--scheduler-file", self.cluster)

    def test_a_worker_and_then_the_client_is_killed(self):
        length = 20    # pages a task
        workers = [self.start_worker(), self.start_worker()]
        client = self.start_client()
        self.wait_for_results(150)
        processes.kill_tree(workers[0].pid)
        self.start_worker()
        self.wait_for_results(450)
        processes.kill_tree(client.pid)
        client.wait()
        self.assertLess(self.count(), PAGES)
        self.assertEqual(0, self.start_client().wait(timeout=60))
        # Reports reach the log by the slice: one of the lost worker, and the eight that the lost client had under way.
        self.check_once(unreported=length * (1 + 8))
        self.check_whole()
        self.check_same_as_reference(self.straightened_alone(self.pages[::10]))
        kept = {fields[0] for fields in self.reports() if fields[1] == "kept"}
        done = {fields[0] for fields in self.reports() if fields[1] == "done"}
        self.assertEqual(set(self.pages), kept | done)

    def straightened_alone(self, pages):
        """The folder of results of one process without a scheduler."""
        alone = self.folder / "alone"
        (alone / "pages").mkdir(parents=True)
        code = "import sys, dask_pages; dask_pages.straighten_slice(sys.argv[2:], sys.argv[1])"
        subprocess.run([sys.executable, "-c", code, alone / "pages", *pages], check=True, env=self.environment)
        return alone / "pages"

    def check_whole(self):
        """Every result can be read, by the library."""
        again = self.folder / "again"
        again.mkdir()
        names = "".join(f"{result}\n" for result in self.results.glob("*.jpg"))
        read = subprocess.run(["scanpage", "-j", str(os.cpu_count()), "--angle", "0", "--from", "-", "-o", again],
                              input=names, text=True, capture_output=True)    # fmt: skip
        self.assertEqual(0, read.returncode, read.stderr)
        self.assertEqual(PAGES, len(list(again.iterdir())))


if __name__ == "__main__":
    unittest.main()
