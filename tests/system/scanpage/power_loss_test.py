# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""What is on disk after a power failure at any moment: pages as they were, and each result whole or not there.

The writes, syncs and names of a run are recorded. For every moment of it, every state of the disk is made that the
system allows then: what was written to a file since its last fsync may be there, in part or not at all; and of the names
that were given or taken since the last fsync of their folder, any may have reached the disk and any may be lost.
"""

import itertools
import os
import subprocess
import unittest

from images import Image, jpeg_of
from support import SCANPAGE, PageTest

ENDINGS = {"jpeg": ".jpg", "pbm": ".pbm", "g4": ".tif"}


class Disk:
    """Names and contents, of which some are safe and others are still on their way.

    A file is a number and a count, since the system gives the number of a file that is gone to a new one.
    """

    def __init__(self, files):
        self.counts = {}
        self.names = {name: self.file(number) for name, number in files.items()}    # that are safe
        self.safe = {}    # contents by file
        self.written = {}
        self.pending = []    # changes of names

    def file(self, number):
        return number, self.counts.get(number, 0)

    def apply(self, words, data):
        kind = words[0]
        if kind == "create":
            self.counts[words[2]] = self.counts.get(words[2], 0) + 1
            if len(words) > 3:
                self.pending.append(("link", self.file(words[2]), words[3]))
        elif kind == "write":
            file = self.file(words[2])
            self.written[file] = self.written.get(file, b"") + data
        elif kind == "fsync" and words[1] == "file":
            file = self.file(words[2])
            self.safe[file] = self.written.get(file, b"")
        elif kind == "fsync":
            self.names = self.after(self.pending)
            self.pending = []
        elif kind == "link":
            self.pending.append(("link", self.file(words[1]), words[2]))
        else:
            self.pending.append(tuple(words))

    def after(self, changes):
        names = dict(self.names)
        for kind, *words in changes:
            if kind == "link":
                names[words[1]] = words[0]
            elif kind == "rename" and words[0] in names:
                names[words[1]] = names.pop(words[0])
            elif kind == "unlink":
                names.pop(words[0], None)
        return names

    def contents(self, file):
        """What a file may hold."""
        safe, written = self.safe.get(file, b""), self.written.get(file, b"")
        return {safe, written, written[: (len(safe) + len(written)) // 2]}

    def states(self):
        """All states of names, each name with the contents that it may have."""
        for count in range(len(self.pending) + 1):
            for changes in itertools.combinations(self.pending, count):
                yield {name: self.contents(file) for name, file in self.after(changes).items()}


def read_journal(file):
    data = file.read_bytes()
    while data:
        head, data = data.split(b"\n", 1)
        *words, size = head.decode().split(" ")
        yield words, data[: int(size)]
        data = data[int(size) :]


class PowerLoss(PageTest):
    def setUp(self):
        super().setUp()
        rows = [[255 if (x // 5 + y // 3) % 4 else 30 for x in range(80)] for y in range(60)]
        self.pages = [jpeg_of(self.folder / f"page-{i}.jpg", rows[i:]) for i in range(2)]
        for drawn in self.folder.glob("*.pnm"):
            drawn.unlink()
        self.sheet = self.root / "sheet.png"

    def record(self, fault, *options):
        journal = self.root / "journal"
        journal.unlink(missing_ok=True)
        command = [SCANPAGE, "--overwrite", *map(str, options), "--format", "jpeg,pbm,g4", "-o", str(self.out), "--contact-sheet",
                   str(self.sheet), *map(str, self.pages)]    # fmt: skip
        environment = {"LD_PRELOAD": os.environ["FAULTS"], "FAULT": fault, "FOLDER": str(self.root), "JOURNAL": str(journal)}
        subprocess.run(command, check=True, capture_output=True, env={**os.environ, **environment})
        return list(read_journal(journal))

    def snapshot(self):
        """Name to file number, and file number to contents."""
        paths = [*self.folder.iterdir(), *self.out.iterdir(), *([self.sheet] if self.sheet.exists() else [])]
        return {str(p): str(p.stat().st_ino) for p in paths}, {str(p.stat().st_ino): p.read_bytes() for p in paths}

    def replay(self, fault, *options):
        names, contents = self.snapshot()
        journal = self.record(fault, *options)
        after_names, after_contents = self.snapshot()
        finals = {str(self.out / (page.stem + ending)) for page in self.pages for ending in ENDINGS.values()}
        finals.add(str(self.sheet))
        self.assertLessEqual(finals, set(after_names))
        allowed = {name: {after_contents[after_names[name]]} for name in finals}
        for name in finals & set(names):
            allowed[name].add(contents[names[name]])

        disk = Disk(names)
        disk.safe = {disk.file(number): stream for number, stream in contents.items()}
        disk.written = dict(disk.safe)
        states = 0
        for words, data in [(None, None), *journal]:
            if words:
                disk.apply(words, data)
            for state in disk.states():
                states += 1
                for page in self.pages:
                    self.assertEqual({contents[names[str(page)]]}, state[str(page)])
                for name, may_hold in state.items():
                    if name in finals:
                        self.assertLessEqual(may_hold, allowed[name], (words, name))
                self.assertLessEqual(set(names) & finals, set(state))    # a result that was there does not vanish
        for name in finals:    # what the report says is there has reached the disk
            self.assertEqual({after_contents[after_names[name]]}, disk.contents(disk.names[name]))
        return states

    def test_new_results_and_replaced_ones(self):
        for fault in ("none", "unnameable 1 lasting", "short 1"):
            for path in self.out.iterdir():
                path.unlink()
            self.sheet.unlink(missing_ok=True)
            self.assertLess(30, self.replay(fault))
            self.assertLess(30, self.replay(fault, "--angle", "1", "--threshold", "100"))
            Image(self.sheet)


if __name__ == "__main__":
    unittest.main()
