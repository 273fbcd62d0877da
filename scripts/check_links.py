#!/usr/bin/python3
"""Checks links and anchors: of a built site, and of Markdown files beside it.

    check_links.py SITE MARKDOWN...

Prints each link that leads nowhere; the exit code is 1 if there is one. Links to other machines are
not followed.
"""

import html.parser
import pathlib
import re
import sys
import urllib.parse

FENCE = re.compile(r"^(```|~~~).*?^\1[ \t]*$", re.DOTALL | re.MULTILINE)


class Page(html.parser.HTMLParser):
    """The links and the anchors of a page."""

    def __init__(self, path):
        super().__init__()
        self.links, self.anchors = [], {""}
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name in ("href", "src") and value is not None:
                self.links.append(value)
            elif name == "id" or (name == "name" and tag == "a"):
                self.anchors.add(value)


class Markdown:
    """The same of a Markdown file, with the anchors that hosts of repositories give to headings."""

    def __init__(self, path):
        text = FENCE.sub("", path.read_text(encoding="utf-8"))
        self.links = re.findall(r"\]\(([^)\s]+)\)", text) + re.findall(r'(?:src|href)="([^"]*)"', text)
        headings = re.findall(r"^#+ +(.*?) *$", text, re.MULTILINE)
        self.anchors = {""} | {self.anchor(heading) for heading in headings}

    @staticmethod
    def anchor(heading):
        return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def is_remote(link):
    return bool(urllib.parse.urlsplit(link).scheme) or link.startswith("//")


class Checker:
    def __init__(self):
        self.pages, self.checked, self.wrong = {}, 0, 0

    def page(self, path):
        if path not in self.pages:
            kinds = {".html": Page, ".md": Markdown}
            self.pages[path] = kinds[path.suffix](path) if path.suffix in kinds else None
        return self.pages[path]

    def check(self, path):
        for link in self.page(path).links:
            if is_remote(link):
                continue
            self.checked += 1
            problem = self.problem(path, link)
            if problem:
                print(f"{path}: {link}: {problem}")
                self.wrong += 1

    def problem(self, path, link):
        parts = urllib.parse.urlsplit(link)
        target = path
        if parts.path:
            target = (path.parent / urllib.parse.unquote(parts.path)).resolve()
            if target.is_dir() and (target / "index.html").exists():
                target = target / "index.html"
            if not target.exists():
                return "no such file"
        page = self.page(target) if parts.fragment else None
        if page is not None and urllib.parse.unquote(parts.fragment) not in page.anchors:
            return "no such anchor"
        return None


def main():
    site, files = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2:]
    checker = Checker()
    for path in sorted(site.rglob("*.html")):
        # A page for addresses that there are none of is shown at any depth; the links within the
        # pages of the headers are doxygen's own.
        if path.name != "404.html" and "headers" not in path.parts:
            checker.check(path)
    for file in files:
        checker.check(pathlib.Path(file).resolve())
    print(f"{checker.checked} links, {checker.wrong} lead nowhere")
    sys.exit(checker.wrong > 0)


if __name__ == "__main__":
    main()
