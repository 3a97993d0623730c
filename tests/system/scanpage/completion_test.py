# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The shells complete the options of `scanpage --help`, all of them and no others, and their values."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

from support import SCANPAGE

FOLDER = pathlib.Path(os.environ["MANUAL"]).parent / "completion"


def options_and_values():
    """The options of the help by name, each with its values if it has a list of them."""
    text = subprocess.run([SCANPAGE, "--help"], check=True, capture_output=True, text=True).stdout
    options = {}
    for names, rest in re.findall(r"^ {2}(-\S+)(.*)$", text, re.M):
        listed = re.search(r"\{([^}]*)\}", rest)
        values = {value.split("->")[0] for value in listed[1].split(",")} if listed else set()
        options.update((name, values) for name in names.split(","))
    return options


def in_bash(*words):
    """What bash offers for the last of the words after "scanpage"."""
    script = f'. "{FOLDER}/scanpage.bash"; COMP_WORDS=(scanpage "$@"); COMP_CWORD=$#; _scanpage; printf "%s\\n" "${{COMPREPLY[@]}}"'
    done = subprocess.run(["bash", "-c", script, "bash", *words], check=True, capture_output=True, text=True)
    return set(done.stdout.split())


class Completion(unittest.TestCase):
    def setUp(self):
        self.options = options_and_values()
        self.assertIn("--resume", self.options)
        self.assertEqual({"jpeg", "pbm", "g4"}, self.options["--format"])

    def test_bash_offers_the_options(self):
        self.assertEqual(set(self.options), in_bash("-"))

    def test_bash_offers_the_values(self):
        for option, values in self.options.items():
            if values:
                self.assertEqual(values, in_bash(option, ""), option)

    def test_bash_offers_pages_and_folders(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name in ("a.jpg", "b.JPEG", "c.txt", "d.tif", "e.PNG", "f.pnm"):
                (root / name).touch()
            (root / "scans").mkdir()
            offered = {os.path.basename(name) for name in in_bash(f"{root}/")}
            self.assertEqual({"a.jpg", "b.JPEG", "d.tif", "e.PNG", "f.pnm", "scans"}, offered)
            self.assertEqual({f"{root}/scans"}, in_bash("-o", f"{root}/"))

    def test_fish_offers_the_same(self):
        offered = {}
        for line in (FOLDER / "scanpage.fish").read_text().splitlines():
            listed = re.search(r"-a '([^'(]*)'", line)
            values = set(listed[1].split()) if listed else set()
            offered.update(("-" + name, values) for name in re.findall(r" -s (\S+)", line))
            offered.update(("--" + name, values) for name in re.findall(r" -l (\S+)", line))
        self.assertEqual(self.options, offered)

    def test_zsh_offers_the_same(self):
        offered = {}
        for line in (FOLDER / "_scanpage").read_text().splitlines():
            names = re.match(r" +'(?:\(.*?\))?(?:'\{(.*?)\}'|(--?[\w-]+))\[", line)
            if names:
                listed = re.search(r":\(([^)]*)\)'|:_values -s , \w+ ([^']*)'", line)
                values = set((listed[1] or listed[2]).split()) if listed else set()
                offered.update((name, values) for name in (names[1] or names[2]).split(","))
        self.assertEqual(self.options, offered)


if __name__ == "__main__":
    unittest.main()
