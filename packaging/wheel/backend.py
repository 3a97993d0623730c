# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Builds the wheel of opcv_dlib: a build backend as PEP 517 defines it, which runs CMake.

The modules in the wheel contain the library and the skew finder, OpenCV, libjpeg-turbo and Highway, of which `./dev
static` must have built the last three.
Settings (`pip wheel -C NAME=VALUE`), all for a Python other than the one that runs this file:

build: the build folder of CMake; default: build/wheel/MACHINE
python: the tag of the Python, for example cp313
machine: the machine, for example aarch64
configure: options of CMake, separated by spaces
strip: the program that removes symbols
"""

import base64
import hashlib
import os
import pathlib
import platform
import re
import subprocess
import sys
import zipfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
LICENCES = pathlib.Path(__file__).with_name("licences.txt")
EPOCH = (2026, 1, 1, 0, 0, 0)    # the time of every file in the wheel, so that equal contents make an equal wheel

METADATA = """\
Metadata-Version: 2.1
Name: opcv-dlib
Version: {version}
Summary: Image primitives for document-scanner pipelines, on NumPy arrays
License: MIT AND Apache-2.0 AND IJG AND BSD-3-Clause AND Zlib
Requires-Python: >=3.9
Requires-Dist: numpy>=1.20
{licences}
Description-Content-Type: text/markdown

{description}"""

WHEEL = """\
Wheel-Version: 1.0
Generator: opcv_dlib
Root-Is-Purelib: false
Tag: {tag}
"""


def version():
    return re.search(r"^ *VERSION ([0-9.]+)$", (ROOT / "CMakeLists.txt").read_text(), re.M)[1]


def licences():
    """Name in the wheel -> text, of this library and of everything that is linked into the module."""
    texts = {"LICENSE": ROOT / "LICENSE"}
    for line in LICENCES.read_text().splitlines():
        if line and not line.startswith("#"):
            name, path = line.split()
            texts[name] = ROOT / path
    missing = [str(path) for path in texts.values() if not path.exists()]
    if missing:
        sys.exit(f"There is no {missing[0]}. Run ./dev static.")
    return {name: path.read_bytes() for name, path in texts.items()}


def metadata():
    files = "\n".join(f"License-File: {name}" for name in licences())
    description = (pathlib.Path(__file__).with_name("README.md")).read_text()
    return METADATA.format(version=version(), licences=files, description=description)


def tag_of(settings):
    """The C library is that of this machine's release, also where the Python or the machine is another one."""
    python = settings.get("python", f"cp{sys.version_info.major}{sys.version_info.minor}")
    machine = settings.get("machine", platform.machine())
    libc = os.confstr("CS_GNU_LIBC_VERSION").split()[1].replace(".", "_")
    return f"{python}-{python}-manylinux_{libc}_{machine}"


def built_package(settings):
    """Builds the modules. Returns the folder of the package."""
    build = ROOT / settings.get("build", f"build/wheel/{settings.get('machine', platform.machine())}")
    package = build / "python/opcv_dlib"
    for module in package.glob("*.so"):    # of another Python
        module.unlink()
    options = [f"-DPython_EXECUTABLE={sys.executable}"]
    if "configure" in settings:
        options = settings["configure"].split()
    parts = [f"-DOPCV_DLIB_BUILD_{part}=OFF" for part in ("TESTS", "TOOLS", "DOCS", "BENCH")]
    configure = ["cmake", "-G", "Ninja", "-S", ROOT, "-B", build, "-DCMAKE_BUILD_TYPE=Release", *parts]
    forget = ["-U", "*Python*", "-U", "pybind11*"]    # the folder may have been used for another Python
    configure += [f"-DOPCV_DLIB_{option}=ON" for option in ("SELF_CONTAINED", "BUILD_PYTHON", "BUILD_SKEW")]
    subprocess.run([*configure, *forget, *options], check=True)
    subprocess.run(["cmake", "--build", build, "--target", "opcv_dlib_python", "opcv_dlib_python_skew"], check=True)
    return package


def package_files(folder, settings):
    """Name in the wheel -> contents."""
    files = {}
    for path in sorted(folder.iterdir()):
        if path.suffix == ".so":
            stripped = folder.parent / path.name
            subprocess.run([settings.get("strip", "strip"), "--strip-unneeded", "-o", stripped, path], check=True)
            files[f"opcv_dlib/{path.name}"] = stripped.read_bytes()
        elif path.suffix in (".py", ".pyi", ".typed"):
            files[f"opcv_dlib/{path.name}"] = path.read_bytes()
    return files


def record_of(files, name):
    def hash_of(contents):
        return base64.urlsafe_b64encode(hashlib.sha256(contents).digest()).decode().rstrip("=")

    lines = [f"{path},sha256={hash_of(contents)},{len(contents)}" for path, contents in files.items()]
    return "\n".join([*lines, f"{name},,", ""])


def write_wheel(path, files):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for name, contents in files.items():
            entry = zipfile.ZipInfo(name, EPOCH)
            entry.external_attr = 0o644 << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            archive.writestr(entry, contents)


def info_folder():
    return f"opcv_dlib-{version()}.dist-info"


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    settings = config_settings or {}
    tag = tag_of(settings)
    files = package_files(built_package(settings), settings)
    info = info_folder()
    files[f"{info}/METADATA"] = metadata().encode()
    files[f"{info}/WHEEL"] = WHEEL.format(tag=tag).encode()
    for name, text in licences().items():
        files[f"{info}/licenses/{name}"] = text
    files[f"{info}/RECORD"] = record_of(files, f"{info}/RECORD").encode()
    name = f"opcv_dlib-{version()}-{tag}.whl"
    write_wheel(pathlib.Path(wheel_directory, name), files)
    return name


def build_sdist(sdist_directory, config_settings=None):
    raise NotImplementedError("opcv_dlib is distributed as a source tree and as wheels")
