# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Runs that are stopped or killed, and runs that continue where another ended."""

import os
import pathlib
import re
import signal
import subprocess
import time
import unittest

from support import HOLD, SCANPAGE, PageTest, link_pages, names, open_files, parse, rescan, scanpage, wait_until


class Resume(PageTest):
    def test_pages_that_are_done_are_left_alone(self):
        scanpage(*self.pages[:3], "-o", self.out)
        before = {path: path.stat().st_mtime_ns for path in self.out.iterdir()}
        run = scanpage("--resume", *self.pages, "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        self.assertEqual(["kept"] * 3 + ["done"] * 3, [line.status for line in run.lines])
        for path, time_before in before.items():
            self.assertEqual(time_before, path.stat().st_mtime_ns)
        for line in run.lines[:3]:
            self.assertEqual("-", line.skew)
            self.assertEqual((self.out / os.path.basename(line.file)).stat().st_size, int(line.bytes))

    def test_a_page_is_done_when_all_its_results_are_there(self):
        scanpage(self.pages[0], "-o", self.out)
        arguments = ["--resume", "--format", "jpeg,g4", self.pages[0], "-o", self.out]
        self.assertEqual("done", scanpage(*arguments).lines[0].status)
        line = scanpage(*arguments).lines[0]
        self.assertEqual("kept", line.status)
        self.assertEqual(sum(path.stat().st_size for path in self.out.iterdir()), int(line.bytes))
        (self.out / "page-000000.tif").unlink()
        line = scanpage(*arguments).lines[0]
        self.assertEqual("done", line.status)
        self.assertEqual(sum(path.stat().st_size for path in self.out.iterdir()), int(line.bytes))

    def test_an_empty_file_is_no_result(self):
        (self.out / "page-000000.jpg").touch()
        self.assertEqual("done", scanpage("--resume", self.pages[0], "-o", self.out).lines[0].status)
        self.assert_whole([self.out / "page-000000.jpg"])

    def test_without_resume_and_overwrite_results_stay(self):
        scanpage(self.pages[0], "-o", self.out)
        before = self.contents()
        for options in ([], ["--angle", "1"]):
            run = scanpage(*options, *self.pages[:2], "-o", self.out)
            self.assertEqual((1, "failed"), (run.status, run.lines[0].status))
            self.assertIn("page-000000.jpg exists; --overwrite replaces it\n", run.stderr)
            self.assertEqual(before["page-000000.jpg"], (self.out / "page-000000.jpg").read_bytes())
        self.assertEqual("done", rescan(self.pages[0], "-o", self.out).lines[0].status)

    def test_a_result_that_was_changed_is_neither_kept_nor_replaced(self):
        scanpage("--format", "jpeg,pbm,g4", self.pages[0], "-o", self.out)
        right = self.contents()
        for name, stream in right.items():
            middle = len(stream) // 2
            for changed in (stream[:-1], stream[:1], stream + b"x",
                            stream[:middle] + bytes([stream[middle] ^ 1]) + stream[middle + 1 :]):    # fmt: skip
                (self.out / name).write_bytes(changed)
                run = scanpage("--resume", "--format", "jpeg,pbm,g4", self.pages[0], "-o", self.out)
                self.assertEqual((1, "failed"), (run.status, run.lines[0].status))
                self.assertIn(f"{name} exists, but is not a whole result of this page with these options; --overwrite replaces it",
                              run.stderr)    # fmt: skip
                self.assertEqual(changed, (self.out / name).read_bytes())
            run = scanpage("--resume", "--overwrite", "--format", "jpeg,pbm,g4", self.pages[0], "-o", self.out)
            self.assertEqual((0, "done"), (run.status, run.lines[0].status))
            self.assertEqual(right, self.contents())

    def test_a_result_of_other_options_is_no_result(self):
        plain = ["--resume", "--overwrite", "--format", "jpeg,pbm,g4", self.pages[0], "-o", self.out]
        for options in (["--dpi", "50"], ["--angle", "1"], ["--denoise", "2"], ["--median", "cross"], ["--mode", "0"],
                        ["--threshold", "99"]):    # fmt: skip
            for arguments in ([*options, *plain], plain):
                self.assertEqual("done", scanpage(*arguments).lines[0].status, options)
                self.assertEqual("kept", scanpage(*arguments).lines[0].status, options)

    def test_an_option_counts_only_for_the_results_that_it_changes(self):
        for chosen, option in (("pbm", ["--mode", "0"]), ("jpeg", ["--threshold", "99"])):
            arguments = ["--resume", "--format", chosen, self.pages[0], "-o", self.out]
            self.assertEqual("done", scanpage(*arguments).lines[0].status)
            self.assertEqual("kept", scanpage(*option, *arguments).lines[0].status)

    def test_a_result_of_another_page_is_no_result(self):
        scanpage(self.pages[0], "-o", self.out)
        self.pages[0].unlink()
        os.link(self.pages[1], self.pages[0])
        self.assertEqual("failed", scanpage("--resume", self.pages[0], "-o", self.out).lines[0].status)
        self.assertEqual("done", rescan("--resume", self.pages[0], "-o", self.out).lines[0].status)
        self.assertEqual("kept", scanpage("--resume", self.pages[0], "-o", self.out).lines[0].status)

    def test_a_copy_under_another_name_is_no_result(self):
        os.unlink(self.pages[1])
        os.link(self.pages[0], self.pages[1])
        scanpage(self.pages[0], "-o", self.out)
        copy = self.out / self.pages[1].name
        copy.write_bytes((self.out / self.pages[0].name).read_bytes())
        run = scanpage("--resume", self.pages[1], "-o", self.out)
        self.assertEqual((1, "failed"), (run.status, run.lines[0].status))


class Names(PageTest):
    def test_a_result_that_cannot_have_its_name_leaves_nothing(self):
        for number, ending in enumerate((".jpg", ".pbm", ".tif")):
            (self.out / f"page-{number:06}{ending}").mkdir()
        before = self.results()
        for number, chosen in enumerate(("jpeg", "pbm", "g4")):
            for options in ([], ["--resume"]):
                run = scanpage("--format", chosen, *options, self.pages[number], "-o", self.out)
                self.assertEqual((1, "failed"), (run.status, run.lines[0].status))
                self.assertEqual(("-", "0"), (run.lines[0].skew, run.lines[0].bytes))
                self.assertIn("cannot be written: Is a directory", run.stderr)
        self.assertEqual(before, self.results())

    def test_a_name_of_full_length(self):
        page = self.folder / f"{'n' * 251}.jpg"
        os.link(self.pages[0], page)
        self.assertEqual("done", scanpage(page, "-o", self.out).lines[0].status)
        self.assertEqual([page.name], self.results())

    def test_a_name_that_is_too_long_for_its_result(self):
        page = self.folder / f"{'n' * 252}.jp"
        os.link(self.pages[0], page)
        run = scanpage(page, "-o", self.out)
        self.assertEqual((1, "failed"), (run.status, run.lines[0].status))
        self.assertIn("cannot be written: File name too long", run.stderr)

    def test_nothing_is_written_if_one_result_has_no_name(self):
        (self.out / "page-000000.jpg").mkdir()
        run = scanpage("--format", "pbm,jpeg", self.pages[0], "-o", self.out)
        self.assertEqual(("failed", "-", "0"), (run.lines[0].status, run.lines[0].skew, run.lines[0].bytes))
        self.assertEqual(["page-000000.jpg"], self.results())

    def test_a_full_disk_leaves_nothing(self):
        for chosen in ("jpeg", "pbm", "g4"):
            command = f'ulimit -f 1; trap "" XFSZ; exec "$0" --format {chosen} "$1" -o "$2"'
            done = subprocess.run(["bash", "-c", command, SCANPAGE, self.pages[0], self.out], capture_output=True)
            self.assertEqual(1, done.returncode, done.stderr)
            self.assertIn(b"cannot be written: File too large", done.stderr)
            self.assertEqual([], self.results())

    def test_pages_that_fail_leave_no_file_open(self):
        more = self.root / "more"
        more.mkdir()
        pages = link_pages(self.drawn, more, 40)
        for page in pages[:20]:
            (self.out / page.name).mkdir()
        for page in pages[20:]:
            (self.out / page.name).write_bytes(b"theirs")
        command = 'ulimit -n 16; exec "$0" "$@"'
        done = subprocess.run(
            ["bash", "-c", command, SCANPAGE, "--angle", "0", *pages, "-o", self.out], capture_output=True
        )
        self.assertEqual(20, done.stderr.count(b": Is a directory"), done.stderr)
        self.assertEqual(20, done.stderr.count(b"exists; --overwrite replaces it"), done.stderr)


class Stop(PageTest):
    def start(self, *arguments, **streams):
        command = [SCANPAGE, *map(str, arguments), "-o", str(self.out)]
        streams = {"stdin": subprocess.PIPE, "env": HOLD, "bufsize": 0, **streams}
        scan = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, **streams)
        self.addCleanup(scan.kill)
        return scan

    def stop(self, scan, number=signal.SIGTERM):
        """Returns once the program knows of the signal."""
        scan.send_signal(number)
        wait_until(lambda: open_files(scan).get(0) == "/dev/null")

    def interrupt(self, number, pages, *arguments):
        """Sends the signal after a few pages. The report so far, and the exit status."""
        scan = self.start("--from", "-", *arguments)
        scan.stdin.write(names(pages[:40]))    # the others are held back: a slow test must not meet a finished run
        scan.stdin.flush()
        first = b"".join(scan.stdout.readline() for _ in range(3))
        scan.send_signal(number)
        rest, _ = scan.communicate(timeout=20)
        return (first + rest).decode(), scan.returncode

    def check_resume(self, pages, done_before):
        """Does the rest exactly once."""
        run = scanpage("--resume", "--jobs", "2", *pages, "-o", self.out)
        self.assertEqual(0, run.status, run.stderr)
        self.assertEqual(sorted(done_before), sorted(line.file for line in run.lines if line.status == "kept"))
        self.assertEqual(sorted(map(str, pages)), sorted(line.file for line in run.lines))
        self.assertEqual(sorted(page.name for page in pages), self.results())
        self.assert_whole([self.out / page.name for page in pages])

    def test_a_stop_finishes_the_pages_in_hand(self):
        more = self.root / "more"
        more.mkdir()
        pages = link_pages(self.drawn, more, 60)
        for number in (signal.SIGTERM, signal.SIGINT):
            report, status = self.interrupt(number, pages, "--jobs", "2")
            lines = parse(report)
            self.assertEqual(3, status)
            self.assertLess(len(lines), 60)
            self.assertEqual({"done"}, {line.status for line in lines})
            self.assertEqual(sorted(os.path.basename(line.file) for line in lines), self.results())
            self.check_resume(pages, [line.file for line in lines])
            for path in self.out.iterdir():
                path.unlink()

    def test_a_kill_leaves_whole_pages_or_none(self):
        more = self.root / "more"
        more.mkdir()
        pages = link_pages(self.drawn, more, 60)
        report, status = self.interrupt(signal.SIGKILL, pages, "--jobs", "2")
        self.assertEqual(-signal.SIGKILL, status)
        whole = self.results()
        self.assertLess(len(whole), 60)
        self.assertLessEqual({os.path.basename(line.file) for line in parse(report)}, set(whole))
        self.assertLessEqual(len(whole), len(parse(report)) + 2)
        self.assert_whole([self.out / name for name in whole])
        self.check_resume(pages, [str(more / name) for name in whole])

    def test_no_page_is_started_after_a_stop(self):
        slow = self.held_page()
        scan = self.start(self.pages[0], slow, *self.pages[1:])
        self.wait_for_held_page(scan)
        seen = time.monotonic()
        self.stop(scan)
        held = 1000 * (time.monotonic() - seen)
        self.let_go()    # now this page can go on, to its end
        report, printed = scan.communicate(timeout=20)
        self.assertEqual(3, scan.returncode)
        self.assertTrue(printed.endswith(b"\nscanpage: stopped before the last page\n"), printed)
        lines = parse(report.decode())
        self.assertEqual([(str(self.pages[0]), "done"), (str(slow), "failed")], [(l.file, l.status) for l in lines])
        self.assertGreaterEqual(float(lines[1].milliseconds) + 0.1, held)
        self.assertEqual([self.pages[0].name], self.results())

    def test_a_stop_after_the_last_page_is_none(self):
        scan = self.start(self.pages[0], self.held_page())
        self.wait_for_held_page(scan)
        self.stop(scan)
        self.let_go()
        report, printed = scan.communicate(timeout=20)
        self.assertEqual(["done", "failed"], [line.status for line in parse(report.decode())])
        self.assertEqual(1, scan.returncode)
        self.assertNotIn(b"stopped", printed)

    def test_a_slow_page_holds_up_no_other(self):
        slow = self.held_page()
        scan = self.start("--jobs", "2", "--from", "-")    # the list stays open
        scan.stdin.write(names([slow, *self.pages]))
        scan.stdin.flush()
        self.assertEqual({"done"}, {line.status for line in parse(b"".join(
            scan.stdout.readline() for _ in self.pages).decode())})    # fmt: skip
        # Besides the one that gives out the pages there is a thread for each, without signals, and no other.
        tasks = [int(task) for task in os.listdir(f"/proc/{scan.pid}/task")]
        self.assertEqual(3, len(tasks))
        for task in tasks:
            status = pathlib.Path(f"/proc/{scan.pid}/task/{task}/status").read_text()
            blocked = int(re.search(r"SigBlk:\s*(\w+)", status)[1], 16)
            stops = {number for number in (signal.SIGTERM, signal.SIGINT) if blocked >> (number - 1) & 1}
            self.assertEqual(set() if task == scan.pid else {signal.SIGTERM, signal.SIGINT}, stops)
        self.let_go()
        scan.communicate(timeout=20)
        self.assertEqual(1, scan.returncode)

    def test_a_second_signal_ends_the_program_at_once(self):
        for first, second in ((signal.SIGTERM, signal.SIGTERM), (signal.SIGTERM, signal.SIGINT),
                              (signal.SIGINT, signal.SIGTERM)):    # fmt: skip
            scan = self.start(self.held_page())
            self.wait_for_held_page(scan)
            self.stop(scan, first)
            self.assertIsNone(scan.poll())    # there is a page in hand
            scan.send_signal(second)
            self.assertEqual(-second, scan.wait(timeout=5))
            scan.communicate()
            self.assertEqual([], self.results())

    def test_ten_seconds_after_a_signal_the_program_ends(self):
        scan = self.start(self.held_page())
        self.wait_for_held_page(scan)
        start = time.monotonic()
        self.stop(scan)
        self.assertEqual(-signal.SIGTERM, scan.wait(timeout=20))
        self.assertGreater(time.monotonic() - start, 9)
        scan.communicate()

    def test_a_signal_that_is_ignored_stays_ignored(self):
        command = 'trap "" INT; exec "$0" --from - -o "$1"'
        scan = subprocess.Popen(["bash", "-c", command, SCANPAGE, self.out], stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, bufsize=0)    # fmt: skip
        self.addCleanup(scan.kill)
        scan.stdin.write(names(self.pages[:1]))
        scan.stdin.flush()
        first = scan.stdout.readline()
        scan.send_signal(signal.SIGINT)
        rest, _ = scan.communicate(names(self.pages[1:]), timeout=20)
        self.assertEqual(0, scan.returncode)
        self.assertEqual(6, len(parse((first + rest).decode())))

    def test_a_stop_does_not_wait_for_a_silent_list(self):
        scan = self.start("--from", "-")
        scan.stdin.write(names(self.pages[:1]))
        scan.stdin.flush()
        self.assertTrue(scan.stdout.readline())
        scan.terminate()
        self.assertEqual(3, scan.wait(timeout=10))
        scan.communicate()
        self.assertEqual([self.pages[0].name], self.results())


if __name__ == "__main__":
    unittest.main()
