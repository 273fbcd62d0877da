#!/usr/bin/python3
"""Input filter of doxygen: the plain comments of our headers as documentation comments.

    header_comments.py HEADER

The comment at the top describes the file and keeps its layout. Lines keep their numbers.
"""

import re
import sys


def escaped(text):
    return re.sub(r"([\\@<>#%&~])", r"\\\1", text)


def c_comments(text):
    """/* ... */ at the beginning of a line, but for the rules between sections."""

    def converted(match):
        indent, body = match.groups()
        if body.lstrip().startswith("----"):
            return match.group(0)
        return f"{indent}/**{escaped(body)}*/"

    return re.sub(r"^([ \t]*)/\*(.*?)\*/", converted, text, flags=re.DOTALL | re.MULTILINE)


def cpp_comments(text):
    return re.sub(r"^([ \t]*)//(?!/) ?(.*)$", lambda m: f"{m[1]}/// {escaped(m[2])}", text, flags=re.MULTILINE)


def top(text, name):
    """The first comment as a file's description, and what is behind it."""
    if text.startswith("/*"):
        body, rest = text[2:].split("*/", 1)
        lines = [re.sub(r"^ \* ?", "", line) for line in body.splitlines()]
    else:
        lines = []
        all_lines = text.splitlines()
        while all_lines[len(lines)].startswith("//"):
            lines.append(all_lines[len(lines)])
        rest = "\n" + "\n".join(all_lines[len(lines) :]) + "\n"
        lines = [line[3:] for line in lines]
    lines = [line.replace("*/", "* /") for line in lines]
    head, last = "\n".join(lines[:-1]), lines[-1]
    return f"/** \\file {name} \\verbatim {head}\n{last} \\endverbatim */", rest


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        head, rest = top(file.read(), "/".join(sys.argv[1].split("/")[-2:]))
    # Doxygen takes an inline namespace that is opened so for one of its own.
    rest = rest.replace("namespace ztb::inline client", "namespace ztb")
    sys.stdout.write(head + cpp_comments(c_comments(rest)))


if __name__ == "__main__":
    main()
