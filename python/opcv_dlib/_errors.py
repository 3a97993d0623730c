"""The exceptions of opcv_dlib."""

from __future__ import annotations


class Error(Exception):
    """The library refused a call or failed in it.

    function: name of the library's function.
    status: what it returned, or None if it threw an exception or has no status.
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
    """Memory ran out in the library."""

    __module__ = "opcv_dlib"
