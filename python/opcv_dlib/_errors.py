# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""The exceptions of opcv_dlib."""

from __future__ import annotations


class Error(Exception):
    """The library rejected a call or failed.

    function: name of the library's function.
    status: the status that it returned, or None if it threw an exception or returns no status.
    """

    __module__ = "opcv_dlib"

    def __init__(self, function: str, status: int | None, message: str) -> None:
        super().__init__(function, status, message)
        self.function = function
        self.status = status
        self.message = message

    def __str__(self) -> str:
        return f"{self.function}: {self.message}"


class OutOfMemoryError(Error, MemoryError):
    """The library is out of memory."""

    __module__ = "opcv_dlib"
