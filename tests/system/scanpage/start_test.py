# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""A self-contained scanpage maps the C library only, also while it makes results, and starts at once."""

import pathlib
import re
import subprocess
import time
import unittest

from support import SCANPAGE, PageTest

LONGEST_START = 0.020    # seconds
LIBC = re.compile(r"(libc|libm|ld-linux-[\w-]+)\.so\.\d")


def libraries(process):
    """The shared libraries that a running program maps."""
    maps = pathlib.Path(f"/proc/{process.pid}/maps").read_text()
    return {name for name in re.findall(r"/([^/\n]+\.so[^/\n]*)$", maps, re.M)}


def seconds_of_help():
    start = time.perf_counter()
    subprocess.run([SCANPAGE, "--help"], check=True, stdout=subprocess.DEVNULL)
    return time.perf_counter() - start


class Start(PageTest):
    def test_it_maps_the_c_library_only(self):
        command = [SCANPAGE, "--from", "-", "-o", self.out, "--format", "jpeg,g4", "--pdf", self.root / "book.pdf"]
        with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as process:
            print(self.pages[0], file=process.stdin, flush=True)
            self.assertIn("\tdone\t", process.stdout.readline())
            mapped = libraries(process)    # it waits for the next name
            process.stdin.close()
            self.assertEqual(0, process.wait(20))
        self.assertTrue(any(name.startswith("libc.so") for name in mapped), mapped)
        self.assertEqual([], [name for name in mapped if not LIBC.match(name)])

    def test_it_starts_at_once(self):
        self.assertLess(min(seconds_of_help() for _ in range(20)), LONGEST_START)


if __name__ == "__main__":
    unittest.main()
