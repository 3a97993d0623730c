# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Shards of drawn pages, and what must be true of the results."""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import shutil
import subprocess
import tarfile
import tempfile


def quiet(*command, **options):
    command = [str(word) for word in command]
    return subprocess.run(command, check=True, capture_output=True, text=True, **options).stdout


def sums_of(shard):
    """Name and SHA-256 of each member, in order."""
    with tarfile.open(shard, "r|*") as members:
        return [[member.name, hashlib.sha256(members.extractfile(member).read()).hexdigest()] for member in members]


def draw(folder, number, pages, *options):
    """Draws scans/shard-NUMBER.tar, and writes to sums/ what scanpage makes of the same pages as files, undisturbed."""
    name = f"shard-{number:05}"
    shard, sums = folder / "scans" / f"{name}.tar", folder / "sums" / f"{name}.json"
    if sums.exists():
        return
    shard.parent.mkdir(parents=True, exist_ok=True)
    sums.parent.mkdir(exist_ok=True)
    with tempfile.TemporaryDirectory(dir=folder) as place:
        drawn, straight = pathlib.Path(place, "drawn"), pathlib.Path(place, "straight")
        drawn.mkdir()
        straight.mkdir()
        quiet("pagegen", "--grey", "--seed", number + 1, "--count", pages, *options, drawn)
        files = [page.rename(drawn / f"{number:05}-{page.name[5:]}") for page in sorted(drawn.iterdir())]
        quiet("scanpage", "--from", "-", "-o", straight, input="".join(f"{file}\n" for file in files))
        with tarfile.open(f"{place}/shard", "w") as packed:
            for file in files:
                packed.add(file, file.name)
        results = [straight / file.name for file in files]
        made = [[file.name, hashlib.sha256(file.read_bytes()).hexdigest()] for file in results]
        pathlib.Path(place, "sums").write_text(json.dumps(made))
        os.rename(f"{place}/shard", shard)
        os.rename(f"{place}/sums", sums)


def draw_all(folder, count, pages, *options):
    """Returns the shards."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        list(pool.map(lambda number: draw(folder, number, pages, *options), range(count)))
    return sorted((folder / "scans").glob("*.tar"))


def link_all(scans, folder):
    """The same shards in another folder."""
    shutil.copytree(scans, folder, copy_function=os.link)


def whole_manifests(folder):
    """The text of each manifest that has its last line, by the name of its file."""
    texts = {file.name: file.read_text() for file in folder.glob("*.manifest.jsonl")}
    return {name: text for name, text in texts.items() if text and json.loads(text.splitlines()[-1]).get("end")}


def faults(stock, results):
    """Lists each fault: shards that are missing or too many, and pages that differ from the undisturbed run."""
    found = []
    undisturbed = {file.stem: json.loads(file.read_text()) for file in (stock / "sums").iterdir()}
    manifests = whole_manifests(results)
    made = {file.name for file in results.glob("shard-*")}
    expected = {name + end for name in undisturbed for end in (".tar", ".tar.manifest.jsonl")}
    found += [f"{name}: missing" for name in sorted(expected - made)]
    found += [f"{name}: too much" for name in sorted(made - expected)]
    for name, sums in undisturbed.items():
        shard = results / f"{name}.tar"
        if shard.exists() and sums_of(shard) != sums:
            found.append(f"{name}: not the pages of the undisturbed run")
        lines = [json.loads(line) for line in manifests.get(f"{name}.tar.manifest.jsonl", "").splitlines()]
        if [[line["result"], line["sha256"]] for line in lines[1:-1]] != sums:
            found.append(f"{name}: the manifest does not name the pages of the undisturbed run")
        elif {line["status"] for line in lines[1:-1]} != {"done"}:
            found.append(f"{name}: pages that are not done")
    return found
