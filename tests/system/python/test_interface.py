# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""That the module is complete: every exported function is called or told of, every name has its types and words."""

import ast
import doctest
import inspect
import os
import pathlib
import re
import runpy

import numpy as np
import opcv_dlib
import pytest

SOURCE = pathlib.Path(os.environ["OPCV_DLIB_SOURCE"])
NAMES = sorted(name for name in dir(opcv_dlib) if not name.startswith("_"))
FUNCTIONS = [name for name in NAMES if not isinstance(getattr(opcv_dlib, name), type)]


def exported():
    for names in ("cmake/exports.txt", "cmake/exports_1.1.txt", "tools/page_skew/exports.txt"):
        for line in (SOURCE / names).read_text().split():
            mangled = re.match(r"_Z(\d+)", line)
            yield line[mangled.end() :][: int(mangled[1])] if mangled else line


def documentation():
    members = [getattr(opcv_dlib.Page, name) for name in ("empty", "pixels")]
    objects = [getattr(opcv_dlib, name) for name in NAMES] + members
    return "\n".join(inspect.getdoc(o) or "" for o in objects)


@pytest.mark.parametrize("name", sorted(set(exported())))
def test_every_exported_function_has_its_place(name):
    assert re.search(rf"`{name}`", documentation())


@pytest.mark.parametrize("name", FUNCTIONS)
def test_every_function_says_what_it_calls(name):
    text = inspect.getdoc(getattr(opcv_dlib, name))
    assert text.startswith(f"{name}(")
    called = text.split("Calls ", 1)[1]
    assert set(re.findall(r"`(\w+)`", called)) & set(exported())


@pytest.mark.parametrize("name", [name for name in FUNCTIONS if name != "init"])
def test_every_function_has_an_example_of_the_size_of_a_page(name):
    text = inspect.getdoc(getattr(opcv_dlib, name))
    test = doctest.DocTestParser().get_doctest(text, {"np": np, "opcv_dlib": opcv_dlib}, name, None, None)
    assert any(f"opcv_dlib.{name}(" in example.source for example in test.examples)
    failures = []
    result = doctest.DocTestRunner(verbose=False).run(test, out=failures.append)
    assert result.failed == 0, "".join(failures)


def test_every_function_of_arrays_states_their_shapes():
    for name in FUNCTIONS:
        text = inspect.getdoc(getattr(opcv_dlib, name))
        assert "numpy.ndarray" not in text.split("\n")[0] or re.search(r"^Shapes( of arrays)?: |shape is$", text, re.M), name


def test_the_example_of_the_readme_runs():
    runpy.run_path(str(SOURCE / "examples/readme/first.py"))


def test_all_is_all():
    assert sorted(opcv_dlib.__all__) == NAMES


def test_the_types_name_the_arguments_in_their_order():
    stub = ast.parse((SOURCE / "python/opcv_dlib/__init__.pyi").read_text())
    stubs = {node.name: node for node in stub.body if isinstance(node, ast.FunctionDef)}    # the last overload
    assert sorted(stubs) == FUNCTIONS
    for name, node in stubs.items():
        said = inspect.getdoc(getattr(opcv_dlib, name)).split("\n")[0]
        arguments = re.findall(r"[(,] (?:\*, )?(\w+): ", said.replace("(", "( ", 1))
        typed = [a.arg for a in node.args.args + node.args.kwonlyargs]
        assert typed == arguments, name
        keyword_only = said.count(", *, ")
        assert bool(node.args.kwonlyargs) == bool(keyword_only), name
