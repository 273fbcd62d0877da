"""What a failed operation raises."""

from __future__ import annotations

import errno
import os


class Error(Exception):
    """A failed operation; ``str()`` is the library's text, made fit for a terminal.

    ``operation`` is the name of the operation that failed, such as ``"ztbFindSymbol"``, and
    ``text`` the library's text as it is, control characters and broken UTF-8 included.
    """

    def __init__(self, text: str, operation: str = "", exact: str | None = None) -> None:
        super().__init__(text or f"{operation} failed without a reason")
        self.operation = operation
        self.text = self.args[0] if exact is None else exact

    def __str__(self) -> str:
        return str(self.args[0])


class NotFoundError(Error, KeyError):
    """There is no such symbol, label or record."""


class MissingFileError(Error, FileNotFoundError):
    """There is no such file, or no folder to write it into; a ``FileNotFoundError`` too."""

    def __init__(self, text: str, operation: str = "", exact: str | None = None) -> None:
        super().__init__(text, operation, exact)
        self.errno = errno.ENOENT
        self.strerror = os.strerror(errno.ENOENT)


class DamagedFileError(Error):
    """What stands in a file is not what it should be: damaged, cut short, or something else.

    Raised when the file is opened, or when records are first touched; nothing of what is damaged
    is delivered.
    """
