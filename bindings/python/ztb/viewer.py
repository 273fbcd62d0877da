"""The page of ``ztb view``, by the functions of ``ztb/view.h``: a server of this process."""

from __future__ import annotations

import atexit
import ctypes
import html
import os
import pathlib
import sys
import tempfile
import threading
import webbrowser
import weakref
from typing import Any, Dict, List, Optional, Sequence, Tuple, Union

from . import _native
from .errors import Error

Path = Union[str, "os.PathLike[str]"]

_lock = threading.Lock()
_loaded: Dict[str, Any] = {}


def _library() -> Any:
    """The library, which stands beside the one of the database and is opened when it is needed."""
    with _lock:
        if "library" not in _loaded:
            path = os.path.join(_native.library_folder(), "libztbview.so")
            try:
                library = ctypes.CDLL(path)
            except OSError as error:
                raise Error(f"the library of the viewer cannot be opened: {error}") from None
            pointer, text = ctypes.c_void_p, ctypes.c_char_p
            for name in ("Message", "Link"):
                function = getattr(library, "ztbView" + name)
                function.restype, function.argtypes = text, [pointer]
            for name in ("Create", "Free"):
                getattr(library, "ztbView" + name).argtypes = [ctypes.POINTER(pointer)]
            for name in ("Open", "Run", "Stop"):
                getattr(library, "ztbView" + name).argtypes = [pointer]
            library.ztbViewOption.argtypes = [pointer, text, text]
            _loaded["library"] = library
        return _loaded["library"]


class View:
    """A page in the browser that shows files, as ``ztb view`` does; in a notebook a frame.

    It goes with :meth:`close`, with the process, and when its page was closed for ten minutes.
    Whoever has the link sees the files.
    """

    def __init__(self, files: Sequence[Path], height: int = 600) -> None:
        self._height = height
        #: What has to live as long: what removes a temporary file.
        self.kept: Any = None
        #: The page that has opened the browser.
        self.door: Any = None
        self._library = _library()
        self._handle = ctypes.c_void_p()
        if self._library.ztbViewCreate(ctypes.byref(self._handle)) == 0:
            raise MemoryError
        options: List[Tuple[str, str]] = [("file", os.fspath(file)) for file in files]
        options.append(("framed", "1" if _in_notebook() else "0"))
        try:
            for name, value in options:
                self._require(
                    self._library.ztbViewOption(self._handle, name.encode(), os.fsencode(value))
                )
            self._require(self._library.ztbViewOpen(self._handle))
        except BaseException:
            self._library.ztbViewFree(ctypes.byref(self._handle))
            raise
        self.link: str = self._library.ztbViewLink(self._handle).decode()
        self._thread = threading.Thread(
            target=self._library.ztbViewRun, args=(self._handle,), name="ztb view", daemon=True
        )
        self._thread.start()
        _open_views.add(self)

    @property
    def closed(self) -> bool:
        """Whether it serves no more."""
        return not self._thread.is_alive()

    def close(self) -> None:
        """Ends it; may be called again."""
        if self._handle:
            self._library.ztbViewStop(self._handle)
            self._thread.join()
            self._library.ztbViewFree(ctypes.byref(self._handle))

    def __enter__(self) -> "View":
        return self

    def __exit__(self, *error: object) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"ztb.View({self.link!r}{', closed' if self.closed else ''})"

    def _repr_html_(self) -> str:
        return (
            f'<iframe src="{html.escape(self.link)}" title="ztb view" width="100%" '
            f'height="{self._height}" style="border: 0"></iframe>'
        )

    def _require(self, done: int) -> None:
        if done == 0:
            raise Error(self._library.ztbViewMessage(self._handle).decode())


class _KeptFile:
    """A temporary file that goes with what holds it, and that other users cannot read."""

    def __init__(self, name: str) -> None:
        folder = tempfile.mkdtemp(prefix="ztb-view-")
        self.path = os.path.join(folder, name)
        self._end = weakref.finalize(self, _remove, self.path, folder)


def _remove(path: str, folder: str) -> None:
    if os.path.exists(path):
        os.remove(path)
    os.rmdir(folder)


def show(files: Sequence[Path], open_browser: Optional[bool]) -> View:
    """Starts a view of files, and opens the browser unless that shows in a notebook."""
    view = View(files)
    if open_browser if open_browser is not None else not _in_notebook():
        view.door = _opened(view.link)
    return view


def _opened(link: str) -> _KeptFile:
    """Opens the browser by a page of its own, which goes on to the link: the arguments of a process are
    seen by every user of the machine, and the link is a secret."""
    page = _KeptFile("ztb-view.html")
    address = html.escape(link)
    with open(page.path, "w", encoding="utf-8") as file:
        file.write(
            "<!doctype html><meta charset=utf-8><title>ztb view</title>"
            f'<meta http-equiv=refresh content="0; url={address}"><a href="{address}">ztb view</a>\n'
        )
    webbrowser.open(pathlib.Path(page.path).as_uri())
    return page


def show_database(database: Any, open_browser: Optional[bool]) -> View:
    """The same for what a database has now, which is written to a temporary file."""
    kept = _KeptFile("database.rxf")
    database.write(kept.path)
    view = show([kept.path], open_browser)
    view.kept = kept
    return view


def _in_notebook() -> bool:
    """Whether what is shown goes to a page: in a notebook, not in a terminal."""
    shell = sys.modules.get("IPython")
    if shell is None:
        return False
    active = shell.get_ipython()
    return active is not None and type(active).__name__ == "ZMQInteractiveShell"


_open_views: "weakref.WeakSet[View]" = weakref.WeakSet()


@atexit.register
def _close_all() -> None:
    for view in list(_open_views):
        view.close()
