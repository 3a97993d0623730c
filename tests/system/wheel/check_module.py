# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The installed wheel: its licences, the libraries that it maps, the time of its import, and a second OpenCV beside it."""

import importlib.metadata
import os
import pathlib
import subprocess
import sys

MOST_LIBRARIES = 6
LONGEST_IMPORT = 0.020    # seconds
LIBC = ("libc.so", "libm.so", "ld-linux", "libpthread.so", "libdl.so", "librt.so")


def run(program, **environment):
    done = subprocess.run(
        [sys.executable, "-c", program], capture_output=True, text=True, timeout=120, env={**os.environ, **environment}
    )
    assert done.returncode == 0, done.stderr
    return done.stdout.split()


def check_licences():
    files = importlib.metadata.files("opcv_dlib")
    texts = {f.name: f.read_text() for f in files if f.parent.name == "licenses"}
    for name in ("LICENSE", "opencv.LICENSE", "libjpeg-turbo.LICENSE.md", "libjpeg-turbo.README.ijg", "highway.LICENSE"):
        assert len(texts[name]) > 500, name
    assert "Redistribution and use" in texts["pybind11.copyright"]
    print("  licences:", *sorted(texts))


# Everything that the process maps once the modules are loaded, without what the interpreter has mapped.
MAPPED = """
import os
def libraries():
    return {line.split()[-1] for line in open("/proc/self/maps") if ".so" in line}
import importlib.util
folder = importlib.util.find_spec("opcv_dlib").submodule_search_locations[0]
modules = [os.path.join(folder, n) for n in os.listdir(folder) if n.endswith(".so")]
import ctypes
before = libraries()
for module in modules:
    ctypes.CDLL(module)
print(*sorted(libraries() - before))
"""


def check_libraries():
    libraries = [path for path in run(MAPPED) if not pathlib.Path(path).name.startswith(LIBC)]
    print("  libraries:", *(pathlib.Path(path).name for path in libraries))
    assert all(any(f"/{name}." in path for path in libraries) for name in ("_native", "_skew"))
    assert len(libraries) <= MOST_LIBRARIES
    assert not [path for path in libraries if "opencv" in path or "jpeg" in path or "hwy" in path]


TIME = """
import time, numpy
start = time.process_time()    # on a busy machine, the processor's time
import opcv_dlib
print(time.process_time() - start)
"""


def check_time():
    seconds = min(float(run(TIME)[0]) for _ in range(10))
    print(f"  import: {1000 * seconds:.1f} ms without NumPy's own")
    assert seconds < LONGEST_IMPORT


# Both engines at once, in both orders of import: the results, exceptions and settings of each stay its own.
BESIDE = """
import threading
import numpy as np
{imports}
page = np.random.default_rng(1).integers(0, 256, (800, 600), np.uint8)
expected = cv2.medianBlur(page, 9)[4:-4, 4:-4].copy()
stream = opcv_dlib.compress_gray(page, 90)
decoded = cv2.imdecode(np.frombuffer(stream, np.uint8), cv2.IMREAD_GRAYSCALE)
faults = []

def ours():
    for _ in range(20):
        if not np.array_equal(opcv_dlib.filter_median(page, 9), expected): faults.append("filter_median")
        if not np.array_equal(opcv_dlib.read_jpeg(stream).pixels, decoded): faults.append("read_jpeg")
        try:
            opcv_dlib.filter_median(page, 2)
            faults.append("no error")
        except opcv_dlib.Error: pass

def theirs():
    for _ in range(20):
        if not np.array_equal(cv2.medianBlur(page, 9)[4:-4, 4:-4], expected): faults.append("medianBlur")
        cv2.imencode(".jpg", page)
        try:
            cv2.medianBlur(page, 2)
            faults.append("no error of cv2")
        except cv2.error: pass

threads = [threading.Thread(target=work) for work in (ours, theirs, ours, theirs)]
for thread in threads: thread.start()
for thread in threads: thread.join()
cv2.setNumThreads(1)
ours()
assert not faults, faults
"""


def check_beside_cv2():
    run(BESIDE.format(imports="import cv2, opcv_dlib"))
    run(BESIDE.format(imports="import opcv_dlib, cv2"))
    print("  beside cv2: the same results")


# A child that was forked after the threads of the parent's pool had started.
FORKED = """
import os
import numpy as np
import opcv_dlib
page = np.random.default_rng(1).integers(0, 256, (3508, 2480), np.uint8)
work = lambda: (opcv_dlib.filter_bilateral(page, 9, 400, 400), opcv_dlib.rotate_center(page, 5))
expected = work()
child = os.fork()
if child == 0:
    os._exit(0 if all(np.array_equal(a, b) for a, b in zip(work(), expected)) else 3)
assert os.waitpid(child, 0)[1] == 0
"""


def check_after_fork():
    run(FORKED)
    print("  after fork: the same results")


THREADS = """
import os
import numpy as np
import opcv_dlib
page = np.zeros((3508, 2480), np.uint8)
opcv_dlib.filter_bilateral(page, 9, 400, 400)
print(len(os.listdir("/proc/self/task")))
"""


def check_thread_setting():
    usual, single = (int(run(THREADS, OPENCV_FOR_THREADS_NUM=str(n))[0]) for n in (2, 1))
    assert (usual, single) == (2, 1), (usual, single)
    print("  OPENCV_FOR_THREADS_NUM=1: one thread")


check_licences()
check_libraries()
check_time()
check_beside_cv2()
check_after_fork()
check_thread_setting()
