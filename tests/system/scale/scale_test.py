# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Two thousand pages by each recipe that docs/scale.md describes, with workers lost on the way.

Afterwards each page is there once, all sums are those of an undisturbed run, and no shard was processed again after its
manifest was complete.
"""

import atexit
import copy
import os
import pathlib
import shutil
import subprocess
import sys
import tarfile
import tempfile
import time
import unittest

import jsonschema
import processes
import shards
import yaml
from slurm_host import SlurmHost
from store import Store

SHARDS = 20
PAGES = 100    # each
DPI = 30
TESTS = pathlib.Path(__file__).resolve().parent
RECIPES = TESTS.parents[2] / "examples" / "scale"
os.environ["PATH"] = f"{os.environ['TOOLS']}:{os.environ['PATH']}"    # the folder of scanpage and pagegen
os.environ["OMP_NUM_THREADS"] = os.environ["OPENBLAS_NUM_THREADS"] = "1"
atexit.register(processes.kill_all)


class Recipe(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if hasattr(Recipe, "stock"):
            return
        Recipe.stock = pathlib.Path(tempfile.mkdtemp(prefix="scale-pages-"))
        unittest.addModuleCleanup(shutil.rmtree, Recipe.stock)
        Recipe.shards = shards.draw_all(Recipe.stock, SHARDS, PAGES, "--dpi", DPI)
        Recipe.list = Recipe.stock / "list"
        Recipe.list.write_text("".join(f"{shard}\n" for shard in Recipe.shards))

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="scale-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.addCleanup(processes.kill_all)
        self.results = self.folder / "straight"
        self.results.mkdir()
        self.complete = {}    # manifests, as they were found before a worker was lost

    def wait_for_shards(self, count):
        whole = lambda: shards.whole_manifests(self.results)
        processes.wait_until(lambda: len(whole()) >= count, 60, f"{count} shards")
        self.complete.update(whole())
        self.assertLess(len(self.complete), SHARDS, "the recipe has ended before anything was lost")

    def check(self):
        self.assertEqual([], shards.faults(self.stock, self.results))
        manifests = shards.whole_manifests(self.results)
        self.assertEqual(self.complete, {name: manifests[name] for name in self.complete})
        verify = ["scanpage", "manifest", "--verify", *sorted(self.results.glob("*.jsonl"))]
        verified = subprocess.run(verify, capture_output=True, text=True)
        self.assertEqual(0, verified.returncode, verified.stdout + verified.stderr)
        self.complete = manifests


class Parallel(Recipe):
    def start(self):
        command = [RECIPES / "parallel.sh", self.list, self.results, "2"]
        return processes.start(command, self.folder / "parallel.log", start_new_session=True)

    def test_a_worker_and_then_everything_is_killed(self):
        run = self.start()
        self.wait_for_shards(4)
        processes.kill(processes.wait_until(lambda: processes.named("scanpage", run.pid), 10, "a worker")[:1])
        self.wait_for_shards(9)
        processes.kill_tree(run.pid)
        run.wait()
        self.assertEqual(0, self.start().wait(timeout=60))
        self.check()
        self.assertEqual(0, self.start().wait(timeout=20))    # nothing is left to do
        self.check()


class Slurm(Recipe):
    def test_a_worker_and_then_a_machine_is_killed(self):
        root = self.folder / "slurm"
        root.mkdir()
        host = SlurmHost(root)
        job = host.run("sbatch", "--parsable", f"--array=0-{SHARDS - 1}", f"--output={self.folder}/%a.log",
                       RECIPES / "slurm.sh", self.list, self.results)    # fmt: skip
        self.assertTrue(job)
        self.wait_for_shards(3)
        worker = processes.wait_until(lambda: processes.named("scanpage", os.getpid()), 10, "a worker")
        processes.kill(worker[:1])
        self.wait_for_shards(9)
        script = f"{root}/spool-machine1/"
        busy = lambda: [p for p in processes.descendants(os.getpid()) if script in processes.command_of(p)]
        processes.wait_until(busy, 20, "a task of the machine")
        self.assertTrue(host.lose("machine1"))
        processes.wait_until(lambda: host.run("squeue", "-h", "-j", job, "-o", "%t") == "", 60, "the end of the array")
        self.check()


class Dask(Recipe):
    def setUp(self):
        super().setUp()
        self.environment = dict(os.environ, PYTHONPATH=str(RECIPES))
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
        return self.start(RECIPES / "dask_shards.py", self.list, self.results, "--scheduler-file", self.cluster)

    def test_a_worker_and_then_the_client_is_killed(self):
        workers = [self.start_worker(), self.start_worker()]
        client = self.start_client()
        self.wait_for_shards(4)
        processes.kill_tree(workers[0].pid)
        self.start_worker()
        self.wait_for_shards(9)
        processes.kill_tree(client.pid)
        client.wait()
        self.assertEqual(0, self.start_client().wait(timeout=60))
        self.check()


class StoreRecipe(Recipe):
    def setUp(self):
        super().setUp()
        shards.link_all(self.stock / "scans", self.folder / "scans")
        self.names = [shard.name for shard in self.shards]
        (self.folder / "scans" / "shards").write_text("".join(f"{name}\n" for name in self.names))
        self.store = Store(self.folder)

    def start(self, *command, **variables):
        parallel = ["parallel", "--will-cite", "--jobs", "2", "--retries", "3", *command]
        environment = dict(self.store.environment, **variables)
        return processes.start(parallel, self.folder / "parallel.log", env=environment, start_new_session=True)

    def lose_worker(self, run):
        """A script with its programs, which leave at most a temporary file in the store."""
        processes.kill_tree(processes.wait_until(lambda: processes.children(run.pid), 10, "a worker")[0])

    def check_store(self, lost):
        parts = list(self.results.glob("*.part"))
        self.assertLessEqual(len(parts), lost)
        for part in parts:
            part.unlink()
        self.check()


class ObjectStore(StoreRecipe):
    def start_all(self):
        return self.start(RECIPES / "object_store.sh", "store:scans/{}", "store:straight/{}", ":::", *self.names)

    def test_workers_are_killed_and_the_store_is_restarted(self):
        run = self.start_all()
        for count in (4, 10):
            self.wait_for_shards(count)
            self.store.stop()
            self.store.start()
            self.wait_for_shards(count + 3)
            self.lose_worker(run)
        self.assertEqual(0, run.wait(timeout=120))
        self.check_store(lost=4)
        self.assertEqual(0, self.start_all().wait(timeout=20))    # nothing is left to do
        self.check_store(lost=0)


    def straighten(self, name, **variables):
        environment = dict(self.store.environment, RCLONE_LOW_LEVEL_RETRIES="1", **{"PAUSES": "0 0", **variables})
        command = [RECIPES / "object_store.sh", f"store:scans/{name}", f"store:straight/{name}"]
        return processes.start(command, self.folder / "one.log", env=environment)

    def test_a_cut_shard_gets_no_name(self):
        whole = self.shards[0].read_bytes()
        (self.folder / "scans" / "cut.tar").write_bytes(whole[: len(whole) // 2])
        self.assertEqual(4, self.straighten("cut.tar").wait(timeout=30))
        self.assertEqual([], list(self.results.iterdir()))

    def test_a_lost_script_leaves_no_cut_shard(self):
        run = self.straighten(self.names[0])
        at_work = lambda: [pid for pid in processes.named("scanpage", run.pid) if " --tar " in processes.command_of(pid)]
        processes.kill([run.pid, *processes.wait_until(at_work, 20, "scanpage")])
        processes.wait_until(lambda: list(self.results.iterdir()), 20, "the end of the upload")
        self.assertEqual([".part"], [file.suffix for file in self.results.iterdir()])

    def test_a_bad_page_does_not_stop_its_shard(self):
        with tarfile.open(self.folder / "scans" / "bad.tar", "w") as shard:
            shard.add(__file__, "bad.jpg")
        self.assertEqual(0, self.straighten("bad.tar").wait(timeout=30))
        self.assertEqual(["bad.jpg.error.txt"], [name for name, _ in shards.sums_of(self.results / "bad.tar")])

    def test_a_complete_shard_is_not_processed_again_when_the_store_was_away(self):
        name = self.names[0]
        self.assertEqual(0, self.straighten(name).wait(timeout=30))
        made = shards.whole_manifests(self.results)
        self.store.stop()
        self.assertEqual(4, self.straighten(name).wait(timeout=30))
        again = self.straighten(name, PAUSES="1 1 1 1 1 1")
        time.sleep(0.5)
        self.store.start()
        self.assertEqual(0, again.wait(timeout=30))
        self.assertEqual(made, shards.whole_manifests(self.results))


class IndexedJob(StoreRecipe):
    job = yaml.safe_load((RECIPES / "indexed_job.yaml").read_text())
    pod = job["spec"]["template"]["spec"]
    script = RECIPES / pathlib.Path(pod["containers"][0]["command"][0]).name
    variables = {variable["name"]: variable["value"] for variable in pod["containers"][0]["env"]}

    def setUp(self):
        super().setUp()
        self.variables = dict(self.variables, RCLONE_CONFIG=self.store.environment["RCLONE_CONFIG"])

    def test_workers_are_killed(self):
        command = f"JOB_COMPLETION_INDEX={{}} {self.script}"
        run = self.start(command, ":::", *range(SHARDS), **self.variables)
        for count in (4, 10):
            self.wait_for_shards(count)
            self.lose_worker(run)
        self.assertEqual(0, run.wait(timeout=120))
        self.check_store(lost=2)

    def test_a_number_behind_the_list_fails(self):
        environment = dict(self.store.environment, **self.variables, JOB_COMPLETION_INDEX=str(SHARDS))
        run = subprocess.run([self.script], env=environment, capture_output=True, text=True)
        self.assertEqual((1, f"store:scans/shards has no shard {SHARDS}\n"), (run.returncode, run.stderr))


class JobFile(unittest.TestCase):
    valid = jsonschema.Draft202012Validator(yaml.safe_load((TESTS / "job_schema.yaml").read_text())).is_valid

    def test_the_job_has_the_fields_of_kubernetes(self):
        self.assertTrue(self.valid(IndexedJob.job))

    def test_each_mount_has_its_volume(self):
        mounts = [mount["name"] for mount in IndexedJob.pod["containers"][0]["volumeMounts"]]
        self.assertEqual(sorted(mounts), sorted(volume["name"] for volume in IndexedJob.pod["volumes"]))

    def test_the_schema_rejects_other_fields_and_types(self):
        def spoilt(change):
            job = copy.deepcopy(IndexedJob.job)
            change(job["spec"], job["spec"]["template"]["spec"])
            return job

        for change in (
            lambda work, _: work.update(completion=3),
            lambda work, _: work.update(completions="400"),
            lambda work, _: work.pop("completionMode"),
            lambda _, pod: pod.update(restartPolicy="Always"),
            lambda _, pod: pod["containers"][0].update(comand=["x"]),
            lambda _, pod: pod["containers"][0].pop("image"),
            lambda _, pod: pod["containers"][0]["env"].append({"name": "X", "value": 1}),
            lambda _, pod: pod["containers"][0]["resources"]["limits"].update(memory="1 GB"),
        ):
            self.assertFalse(self.valid(spoilt(change)))


if __name__ == "__main__":
    unittest.main()
