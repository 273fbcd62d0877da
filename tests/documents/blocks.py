"""The code blocks of a Markdown page, each with what the comment above it says.

    <!-- example: WORD KEY=VALUE ... -->
    ```cpp

A comment stands on the line above the fence. Its words and keys:

    none: REASON   the block is not run
    output         the block is the output of the example before it, word for word
    file=NAME      the block is written to this file
    files=GLOB,... files of the project that lie in the folder when the example runs
    setup=NAME     tests/documents/setups/NAME.sh PROJECT runs before
    frame=NAME     the fragment is put into tests/documents/frames/NAME.*
    fails=CODE     the exit code that is expected, where it is not 0
    continues      the Python example goes on where the one before it ended

A block in Python, C or C++ that holds a whole program and one of shell commands need no comment.
"""

import dataclasses
import re

WORDS = {"output", "continues"}
KEYS = {"file", "files", "setup", "frame", "fails"}


class PageError(Exception):
    """What is wrong with a page, with its line."""


@dataclasses.dataclass
class Block:
    line: int
    language: str
    text: str
    words: set = dataclasses.field(default_factory=set)
    values: dict = dataclasses.field(default_factory=dict)
    reason: str = ""


def settings(comment, line):
    """Words, values and the reason of a comment."""
    words, values = set(), {}
    if comment.startswith("none:"):
        reason = comment[len("none:") :].strip()
        if not reason:
            raise PageError(f"{line}: the comment gives no reason behind 'none:'")
        return words, values, reason
    for part in comment.split():
        key, equals, value = part.partition("=")
        if equals and key in KEYS:
            values[key] = value
        elif not equals and part in WORDS:
            words.add(part)
        else:
            raise PageError(f"{line}: '{part}' is not known in a comment about an example")
    return words, values, ""


def indented(lines, number):
    """Whether the line is code by its indentation: behind an empty line, and no part of a list."""
    line = lines[number]
    if not line.startswith("    ") or number == 0 or lines[number - 1].strip():
        return False
    for before in reversed(lines[:number]):
        if before.strip() and not before.startswith(" "):
            return not re.match(r"([-*+]|\d+\.) ", before)
    return True


def read_blocks(text):
    lines = text.splitlines()
    blocks, number = [], 0
    while number < len(lines):
        fence = re.match(r"( *)(```+|~~~+) *(\S*)", lines[number])
        if not fence:
            if indented(lines, number):
                raise PageError(f"{number + 1}: code by indentation; put it between fences")
            number += 1
            continue
        indent, mark, language = fence.groups()
        begin = number
        number += 1
        while number < len(lines) and lines[number].strip() != mark:
            number += 1
        if number == len(lines):
            raise PageError(f"{begin + 1}: the block has no end")
        body = "".join(line[len(indent) :] + "\n" for line in lines[begin + 1 : number])
        block = Block(begin + 1, language, body)
        comment = re.fullmatch(r" *<!-- example: (.*) -->", lines[begin - 1] if begin else "")
        if comment:
            block.words, block.values, block.reason = settings(comment[1], begin)
        blocks.append(block)
        number += 1
    return blocks
