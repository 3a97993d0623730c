# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""A hundred thousand pages through an object store, with two workers. One of them is killed every minute, and the store's
server is restarted twice. Then each page must be there once, all sums must be those of an undisturbed run, and no shard
may have been processed again after its manifest was complete.

    proof.py FOLDER [--shards N] [--pages N] [--drawn N] [--every SECONDS]

FOLDER takes 33 GB; drawn shards are kept there for the next run.
"""

import argparse
import os
import pathlib
import shutil
import sys
import time

import processes
import shards
from store import Store

DPI = 60    # 496 x 702 pixels
RECIPES = pathlib.Path(__file__).resolve().parents[3] / "examples" / "scale"
os.environ["PATH"] = f"{os.environ['TOOLS']}:{os.environ['PATH']}"
os.environ["OMP_NUM_THREADS"] = os.environ["OPENBLAS_NUM_THREADS"] = "1"


def repeat_shards(stock, drawn, count):
    """More shards of the same pages, without more disk space."""
    for number in range(drawn, count):
        for form in ("scans/shard-{:05}.tar", "sums/shard-{:05}.json"):
            if not (stock / form.format(number)).exists():
                os.link(stock / form.format(number % drawn), stock / form.format(number))


class Run:
    def __init__(self, root):
        self.root = root
        self.straight = root / "straight"
        self.straight.mkdir()
        self.store = Store(root)
        self.complete = {}    # manifests, as they were found before something was lost
        self.peaks = {}    # bytes of memory of each program
        self.kills = self.restarts = 0

    def start(self):
        names = sorted(shard.name for shard in (self.root / "scans").glob("*.tar"))
        command = ["parallel", "--will-cite", "--jobs", "2", "--retries", "10",
                   RECIPES / "object_store.sh", "store:scans/{}", "store:straight/{}", ":::", *names]    # fmt: skip
        self.parallel = processes.start(command, self.root / "log", env=self.store.environment, start_new_session=True)

    def note_memory(self):
        for pid in processes.descendants(self.parallel.pid):
            try:
                status = dict(line.split(":", 1) for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines())
            except OSError:
                continue    # it has just ended
            name, peak = status["Name"].strip(), int(status.get("VmHWM", "0 kB").split()[0]) * 1024
            self.peaks[name] = max(peak, self.peaks.get(name, 0))

    def lose_worker(self):
        """A whole worker and only its scanpage, in turn."""
        workers = processes.children(self.parallel.pid)
        if not workers:
            return
        self.complete.update(shards.whole_manifests(self.straight))
        worker = workers[self.kills % len(workers)]
        if self.kills % 2:
            processes.kill(processes.named("scanpage", worker))
        else:
            processes.kill_tree(worker)
        self.kills += 1

    def restart_store(self):
        self.complete.update(shards.whole_manifests(self.straight))
        self.store.stop()
        time.sleep(3)
        self.store.start()
        self.restarts += 1

    def disturb(self, count, every):
        """Returns when the workers have ended."""
        start = time.monotonic()
        while self.parallel.poll() is None:
            self.note_memory()
            if time.monotonic() > start + every * (self.kills + 1):
                self.lose_worker()
            done = len(list(self.straight.glob("*.jsonl")))
            if done > count * (self.restarts + 1) // 3 and self.restarts < 2:
                self.restart_store()
            time.sleep(1)
        return time.monotonic() - start

    def faults(self, stock):
        leftover = list(self.straight.glob("*.part"))
        for part in leftover:
            part.unlink()
        found = shards.faults(stock, self.straight)
        manifests = shards.whole_manifests(self.straight)
        found += [f"{name}: made again" for name, text in self.complete.items() if manifests.get(name) != text]
        if self.parallel.returncode:
            found.append(f"parallel: status {self.parallel.returncode}")
        if len(leftover) > self.kills + 2 * self.restarts:
            found.append(f"{len(leftover)} temporary files")
        return found


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--shards", type=int, default=100)
    parser.add_argument("--pages", type=int, default=1000, help="in each shard")
    parser.add_argument("--drawn", type=int, help="shards of different pages; the others repeat them (default: all)")
    parser.add_argument("--every", type=float, default=60, help="seconds from one lost worker to the next")
    options = parser.parse_args()
    folder = options.folder.resolve()
    stock = folder / f"stock-{options.shards}x{options.pages}"
    drawn = options.drawn or options.shards
    shards.draw_all(stock, drawn, options.pages, "--dpi", DPI)
    repeat_shards(stock, drawn, options.shards)

    root = folder / "run"
    shutil.rmtree(root, ignore_errors=True)
    root.mkdir()
    shards.link_all(stock / "scans", root / "scans")
    run = Run(root)
    used = processes.processor_seconds()
    run.start()
    seconds = run.disturb(options.shards, options.every)
    used = processes.processor_seconds() - used
    pages = options.shards * options.pages
    print(f"{pages} pages in {options.shards} shards, {drawn * options.pages} of them different: {seconds:.0f} s")
    print(f"{run.kills} workers killed, {run.restarts} restarts of the store")
    print(f"{used:.0f} s of processors, {pages / used:.1f} pages per second of a processor")
    for name in ("scanpage", "rclone"):
        print(f"{run.peaks.get(name, 0) / 1e6:.0f} MB at most in {name}")
    found = run.faults(stock)
    print("\n".join(found) or "each page is there once, as in the undisturbed run; no complete shard was processed again")
    return 1 if found else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    finally:
        processes.kill_all()
