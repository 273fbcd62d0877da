"""Symbols and databases as they show themselves, on a terminal and in a notebook."""

from __future__ import annotations

import html
from typing import Any, Callable, NamedTuple, Optional, Sequence

from . import _native
from .special import CODE_ORDINARY, special_code

#: Rows that are shown, and characters of a cell.
MOST_ROWS = 10
_WIDEST = 40

#: How the special values are written, at the places of their codes; as the ztb command writes them.
_WORDS = ("undef", "na", "inf", "-inf", "eps")

Row = Sequence[str]


def cell(value: Any) -> str:
    """A label, text or number as a table shows it: short, and with nothing that steers a terminal."""
    if isinstance(value, str):
        text = _native.display_text(value)
        return text if len(text) <= _WIDEST else text[: _WIDEST - 3] + "..."
    code = special_code(value)
    return f"{value:.15g}" if code == CODE_ORDINARY else _WORDS[code]


def counted(count: int, noun: str) -> str:
    """``1 record``, ``2 records``."""
    return f"{count} {noun}" if count == 1 else f"{count} {noun}s"


class Listing(NamedTuple):
    """What there is to show: a text about it, and the first of ``total`` rows."""

    text: str
    columns: Sequence[str]
    rows: Sequence[Row]
    total: int
    noun: str


class Shows:
    """Shows itself on a terminal and in a notebook, whatever happens: closed, unreadable, huge."""

    def _title(self) -> str:
        """One line, fit for a terminal."""
        raise NotImplementedError

    def _listing(self) -> Optional[Listing]:
        """What is shown below the title."""
        return None

    def __repr__(self) -> str:
        """What it is, and the first of what it holds; never fails."""
        return safely(lambda: _as_text(self._title(), self._listing()), self._short)

    def _repr_html_(self) -> str:
        """The same as a table, for notebooks; every text is escaped."""
        return safely(lambda: _as_html(self._title(), self._listing()), self._short_html)

    def _short(self, reason: str) -> str:
        return f"<{safely(self._title, lambda _: f'ztb.{type(self).__name__}')}: {reason}>"

    def _short_html(self, reason: str) -> str:
        return f"<p>{html.escape(self._short(reason))}</p>"


def safely(show: Callable[[], str], otherwise: Callable[[str], str]) -> str:
    """What ``show`` gives; where that fails, what ``otherwise`` makes of the reason."""
    try:
        return show()
    except Exception as failure:
        return otherwise(" ".join(str(failure).split()) or type(failure).__name__)


def _as_text(title: str, listing: Optional[Listing]) -> str:
    if listing is None:
        return f"<{title}>"
    lines = [f"<{title}, {counted(listing.total, listing.noun)}>"]
    widths = [max(map(len, column)) for column in zip(*listing.rows)]
    for row in listing.rows:
        cells = (text.ljust(width) for text, width in zip(row, widths))
        lines.append(("  " + "  ".join(cells)).rstrip())
    if listing.total > len(listing.rows):
        lines.append(f"  ... {listing.total - len(listing.rows)} more")
    return "\n".join(lines)


def _as_html(title: str, listing: Optional[Listing]) -> str:
    if listing is None:
        return f"<p>{html.escape(title)}</p>"

    def line(tag: str, texts: Sequence[str]) -> str:
        cells = "".join(f"<{tag}>{html.escape(cell(text))}</{tag}>" for text in texts)
        return f"<tr>{cells}</tr>"

    caption = f"{title}, {counted(listing.total, listing.noun)}"
    if listing.text:
        caption += f": {cell(listing.text)}"
    parts = [
        "<table>",
        f"<caption>{html.escape(caption)}</caption>",
        f"<thead>{line('th', listing.columns)}</thead>",
        "<tbody>",
        *(line("td", row) for row in listing.rows),
        "</tbody>",
        "</table>",
    ]
    if listing.total > len(listing.rows):
        parts.append(f"<p>... {listing.total - len(listing.rows)} more</p>")
    return "\n".join(parts)
