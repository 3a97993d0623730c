# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Processes that the tests start, all of them: what daemons leave behind is adopted here, so that it can be ended."""

import ctypes
import os
import pathlib
import resource
import signal
import subprocess
import sys
import time

PR_SET_CHILD_SUBREAPER = 36
started = []
signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))    # what is to be done at the end is done then too
ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def children(pid):
    found = []
    for tasks in pathlib.Path(f"/proc/{pid}/task").glob("*/children"):
        try:
            found += [int(child) for child in tasks.read_text().split()]
        except OSError:
            pass    # it has just ended
    return found


def descendants(pid):
    found = children(pid)
    for child in found:    # grows as it is walked
        found += children(child)
    return found


def command_of(pid):
    try:
        return pathlib.Path(f"/proc/{pid}/cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace")
    except OSError:
        return ""


def named(name, pid):
    """Descendants of a process that run a program."""
    return [child for child in descendants(pid) if os.path.basename(command_of(child).split(" ")[0]) == name]


def processor_seconds(but=None):
    """The time of all descendants, those that have ended included, but not of running ones with this in their command."""
    ended = resource.getrusage(resource.RUSAGE_CHILDREN)
    ticks = 0
    for pid in descendants(os.getpid()):
        if but and but in command_of(pid):
            continue
        try:
            fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
        except OSError:
            continue    # it has just ended
        ticks += sum(int(field) for field in fields[11:15])    # its own and of the children that it waited for
    return ended.ru_utime + ended.ru_stime + ticks / os.sysconf("SC_CLK_TCK")


def kill(pids):
    for pid in pids:
        try:
            os.kill(pid, signal.SIGKILL)
        except ProcessLookupError:
            pass


def kill_tree(pid):
    kill([pid, *descendants(pid)])


def kill_all():
    """Everything that was started and is still there."""
    deadline = time.monotonic() + 5
    while (left := descendants(os.getpid())) and time.monotonic() < deadline:
        kill(left)
        for process in started:
            process.poll()
        for pid in set(children(os.getpid())) - {process.pid for process in started}:    # adopted
            os.waitpid(pid, os.WNOHANG)
        time.sleep(0.02)


def start(command, log, **options):
    with open(log, "ab") as out:
        command = [str(word) for word in command]
        started.append(subprocess.Popen(command, stdout=out, stderr=out, stdin=subprocess.DEVNULL, **options))
    return started[-1]


def wait_until(condition, seconds, what):
    deadline = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > deadline:
            raise TimeoutError(f"{what}: not within {seconds} s")
        time.sleep(0.02)
    return value
