"""Runs the examples of a page, word for word, in a folder of its own, from top to bottom.

    run_examples.py PAGE PROJECT INSTALLED C_COMPILER CXX_COMPILER

Programs are compiled against an installed tree, as pkg-config tells, and have to end with 0. The
commands of a `console` block stand behind `$ `, what they print below, where a line `...` stands
for any lines; `sh` blocks are commands alone. Times are not compared. A block that is none of these
and has no comment fails the page; blocks.py tells the comments.
"""

import contextlib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

from blocks import PageError, read_blocks

PKG_PACKAGES = ["ztb", "ztb-model", "ztb-rxf", "ztb-formats", "ztb-sweep"]
FRAMES = pathlib.Path(__file__).resolve().parent / "frames"
SETUPS = FRAMES.with_name("setups")
WARNINGS = ["-Wall", "-Wextra", "-Werror", "-Wno-unused-variable", "-Wno-unused-but-set-variable"]


def without_times(text):
    text = re.sub(r"\b\d+\.\d+ s\b", "# s", text)
    return re.sub(r"\(\d+ a second\)", "(# a second)", text)


def agrees(expected, printed):
    """Whether a text is the expected one, in which a line `...` stands for any lines."""
    pattern = ""
    for line in without_times(expected).rstrip("\n").split("\n"):
        pattern += r"(?:.*\n)*?" if line.strip() == "..." else re.escape(line.rstrip()) + r"[ ]*\n"
    return re.fullmatch(pattern, without_times(printed).rstrip("\n") + "\n") is not None


def commands(text):
    """The commands of a console block, each with what it prints."""
    found = []
    for line in text.splitlines(keepends=True):
        if line.startswith("$ "):
            found.append([line[2:], ""])
        elif found and found[-1][0].endswith("\\\n"):
            found[-1][0] += line
        elif found:
            found[-1][1] += line
        else:
            raise PageError("a console block begins with '$ '")
    return found


class Examples:
    def __init__(self, project, installed, c_compiler, cxx_compiler):
        self.project, self.compilers = project, {"c": c_compiler, "cpp": cxx_compiler}
        self.installed = installed
        self.environment = dict(os.environ)
        self.environment["PATH"] = f"{installed}/bin:{os.environ['PATH']}"
        self.environment["PKG_CONFIG_PATH"] = f"{installed}/lib/pkgconfig"
        packages = sorted(installed.glob("lib/python3*/dist-packages"))
        self.environment["PYTHONPATH"] = os.pathsep.join(map(str, packages))
        self.environment["PYTHONDONTWRITEBYTECODE"] = "1"
        self.environment["MPLBACKEND"] = "Agg"
        self.environment["MPLCONFIGDIR"] = tempfile.gettempdir()
        self.environment.pop("LD_LIBRARY_PATH", None)
        self.printed = ""
        self.python, self.python_printed = "", ""
        self.programs = 0
        # Fragments in one frame are one program, which is compiled when its page is through.
        self.fragments = {}

    def run(self, command, block, shell=False, expected=0):
        result = subprocess.run(
            command,
            shell=shell,
            executable="/bin/bash" if shell else None,
            env=self.environment,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            check=False,
            timeout=300,
        )
        if result.returncode != expected:
            raise PageError(
                f"{block.line}: exit code {result.returncode}, {expected} expected\n{result.stdout}"
            )
        self.printed = result.stdout
        return result.stdout

    def take(self, block):
        for glob in filter(None, block.values.get("files", "").split(",")):
            found = sorted(self.project.glob(glob))
            if not found:
                raise PageError(f"{block.line}: the project has no {glob}")
            for path in found:
                shutil.copy(path, path.name)
        if "setup" in block.values:
            script = SETUPS / f"{block.values['setup']}.sh"
            self.run(["bash", "-e", str(script), str(self.project)], block)
        expected = int(block.values.get("fails", "0"))
        if block.reason:
            return
        if "output" in block.words:
            self.compare(block, block.text, self.printed)
        elif "file" in block.values:
            path = pathlib.Path(block.values["file"])
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(block.text, encoding="utf-8")
        elif block.language == "console":
            for command, output in commands(block.text):
                last = expected if command == commands(block.text)[-1][0] else 0
                self.compare(block, output, self.run(command, block, True, last))
        elif block.language == "sh":
            self.run("set -e\n" + block.text, block, True, expected)
        elif block.language == "python":
            self.take_python(block, expected)
        elif block.language in ("c", "cpp"):
            self.take_program(block, expected)
        elif block.language == "cmake":
            self.take_cmake(block)
        else:
            raise PageError(
                f"{block.line}: a block of '{block.language}' says in no comment what it is"
            )

    @staticmethod
    def compare(block, expected, printed):
        if not agrees(expected, printed):
            raise PageError(
                f"{block.line}: the page shows\n{expected}\nand what is printed is\n{printed}"
            )

    def take_python(self, block, expected):
        self.python = self.python + "\n" + block.text if "continues" in block.words else block.text
        if block.text.startswith(">>>"):
            pathlib.Path("session.txt").write_text(block.text, encoding="utf-8")
            self.run(["/usr/bin/python3", "-m", "doctest", "session.txt"], block)
            return
        pathlib.Path("example.py").write_text(self.python, encoding="utf-8")
        before = self.python_printed if "continues" in block.words else ""
        # The examples before run again, and print again.
        self.printed = self.run(
            ["/usr/bin/python3", "example.py"], block, expected=expected
        ).removeprefix(before)
        self.python_printed = before + self.printed

    def flags(self):
        flags = []
        for package in PKG_PACKAGES:
            text = subprocess.run(
                ["pkg-config", "--cflags", "--libs", package],
                env=self.environment,
                stdout=subprocess.PIPE,
                text=True,
                check=True,
            ).stdout
            flags += text.split()
        return [*flags, f"-Wl,-rpath,{self.installed}/lib"]

    def build(self, language, text, block):
        self.programs += 1
        source, program = f"program{self.programs}.{language}", f"./program{self.programs}"
        pathlib.Path(source).write_text(text, encoding="utf-8")
        standard = {"c": "-std=c99", "cpp": "-std=c++20"}[language]
        warnings = [*WARNINGS, "-pedantic"] if language == "cpp" else WARNINGS
        compiler = self.compilers[language].split()
        self.run([*compiler, standard, "-O0", *warnings, source, *self.flags(), "-o", program], block)
        return program

    def take_program(self, block, expected):
        if re.search(r"\bmain\(", block.text):
            self.run([self.build(block.language, block.text, block)], block, expected=expected)
        elif "frame" in block.values:
            key = (block.values["frame"], block.language)
            self.fragments.setdefault(key, []).append(block)
        else:
            raise PageError(f"{block.line}: the fragment has no main() and names no frame")

    def take_cmake(self, block):
        """A project that finds what is installed, with the page's lines in it."""
        folder = pathlib.Path("by-cmake")
        folder.mkdir()
        (folder / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.25)\nproject(program CXX)\n"
            "add_executable(program program.cpp)\n" + block.text,
            encoding="utf-8",
        )
        (folder / "program.cpp").write_text(
            "#include <ztb/ztb.hpp>\nint main() { ztb::Database database; }\n", encoding="utf-8"
        )
        self.run(
            f"cmake -S by-cmake -B by-cmake/build -DCMAKE_PREFIX_PATH={self.installed}"
            f" -DCMAKE_CXX_COMPILER={self.compilers['cpp']} && cmake --build by-cmake/build"
            " && by-cmake/build/program",
            block,
            True,
        )

    def finish(self):
        for (frame, language), blocks in self.fragments.items():
            text = (FRAMES / f"{frame}.{language}").read_text(encoding="utf-8")
            head, mark, tail = text.partition("// FRAGMENTS\n")
            if not mark:
                raise PageError(f"frames/{frame}.{language} has no line '// FRAGMENTS'")
            includes, bodies = "", ""
            for block in blocks:
                lines = block.text.splitlines(keepends=True)
                includes += "".join(line for line in lines if line.startswith("#include"))
                body = "".join("\n" if line.startswith("#include") else line for line in lines)
                bodies += f'#line {block.line + 1} "page"\n{body}'
            self.run([self.build(language, includes + head + bodies + tail, blocks[0])], blocks[0])


def main():
    page, project, installed = (pathlib.Path(word).resolve() for word in sys.argv[1:4])
    try:
        blocks = read_blocks(page.read_text(encoding="utf-8"))
        examples = Examples(project, installed, *sys.argv[4:6])
        with tempfile.TemporaryDirectory() as folder, contextlib.chdir(folder):
            for block in blocks:
                examples.take(block)
            examples.finish()
    except PageError as error:
        sys.exit(f"{page}:{error}")
    ran = sum(not block.reason for block in blocks)
    print(f"{page}: {ran} of {len(blocks)} blocks ran, the others say why not")


if __name__ == "__main__":
    main()
