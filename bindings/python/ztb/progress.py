"""How a sweep gets on, shown while it runs: in a notebook, or at a terminal."""

from __future__ import annotations

import sys
from typing import Any, Callable, Dict, Optional, Union

#: What is told of a sweep: ``done``, ``count``, ``rate``, ``seconds_left``, ``failures``, ``lost``
#: and ``workers``.
State = Dict[str, Any]
#: ``True`` for a view of the sweep, or what is called with each state.
Progress = Union[None, bool, Callable[[State], None]]


class SweepView:
    """A view of a sweep that is drawn anew with each state that it is called with: in a notebook as
    a bar with a line below, at a terminal as a line. It shows the last state when it stays."""

    def __init__(self) -> None:
        self.state: State = {}
        self._handle: Any = None
        self._display = _notebook_display()
        self._drawn = False

    def __call__(self, state: State) -> None:
        self.state = dict(state)
        if self._display is not None:
            if self._handle is None:
                self._handle = self._display(self, display_id=True)
            else:
                self._handle.update(self)
        elif sys.stderr is not None and sys.stderr.isatty():
            # Cut where it does not fit: what went on in the next line would not be wiped.
            sys.stderr.write(f"\r\x1b[K\x1b[?7l{self}\x1b[?7h")
            sys.stderr.flush()
            self._drawn = True

    def close(self) -> None:
        """Ends the line of a terminal."""
        if self._drawn:
            sys.stderr.write("\n")
            self._drawn = False

    def __str__(self) -> str:
        if not self.state:
            return "not begun"
        state = self.state
        rate = state["rate"]
        text = f"{state['done']} of {_counted(state['count'], 'scenario')} solved"
        text += f", {rate:.{1 if rate < 10 else 0}f} a second"
        if state["seconds_left"] is not None:
            text += f", {state['seconds_left']:.0f} s left"
        if state["failures"]:
            text += f", {state['failures']} failed"
        if state["lost"]:
            text += f", {_counted(state['lost'], 'worker')} lost"
        return f"{text}, {_counted(state['workers'], 'worker')}"

    def __repr__(self) -> str:
        return f"<ztb.SweepView: {self}>"

    def _repr_html_(self) -> str:
        done, count = self.state.get("done", 0), max(1, self.state.get("count", 1))
        return (
            f'<div><progress value="{done}" max="{count}" style="width: 20em"></progress>'
            f"<br><small>{self}</small></div>"
        )


def teller(progress: Progress) -> Optional[Callable[[State], None]]:
    """What is called with each state; nothing where nobody wants to know."""
    if progress is None or progress is False:
        return None
    if progress is True:
        return SweepView()
    if not callable(progress):
        raise TypeError(f"progress is True or is called with a dict, not {type(progress).__name__}")
    return progress


def _counted(number: int, noun: str) -> str:
    return f"{number} {noun}" if number == 1 else f"{number} {noun}s"


def _notebook_display() -> Any:
    """What shows an object in the notebook that this runs in; nothing outside of one."""
    shell = sys.modules.get("IPython")
    running = shell.get_ipython() if shell is not None else None
    if running is None or not hasattr(running, "kernel"):
        return None
    from IPython.display import display  # type: ignore[import]

    return display
