"""Takes the examples out of a page and runs them.

A page is one session: its files are written into a folder, beside a copy of examples/, and its commands are
run there in one shell, from the top of the page to its end. What they print must be what the page shows.

A comment directly above a literal block says what the block is. Manual pages (scdoc) write `; run`, guides
(Markdown, fenced blocks) write `<!-- run -->`:

  run          lines that start with "$ " are commands, the lines below each its output, standard error too
  file NAME    the content of a file
  declaration  C that must agree with the public header
  statements   C as it could stand in a function, compiled only
  python       a session of Python, which tests/python runs; not run here
  form         a form to be filled in; not run

A block without such a comment is a mistake, so that no example goes untested by being forgotten.
"""

import argparse
import collections
import difflib
import fcntl
import os
import pathlib
import pty
import re
import shlex
import shutil
import struct
import subprocess
import sys
import tempfile
import termios

KINDS = {"run": 0, "file": 1, "declaration": 0, "statements": 0, "python": 0, "form": 0}
FENCES = {".scd": re.compile(r"```$"), ".md": re.compile(r"```\w*$")}
COMMENTS = {".scd": re.compile(r"; (.*)$"), ".md": re.compile(r"<!-- (.*) -->$")}
# With this exit status, tests/docs/CMakeLists.txt calls the test skipped.
SKIPPED = 77
# Printed between the outputs of two commands.
MARK = "--- the next command ---"

Block = collections.namedtuple("Block", "line kind name lines")
Command = collections.namedtuple("Command", "line text shown")


class Mistake(Exception):
    """The page itself is wrong."""


class NoTerminals(Exception):
    """The system has no pseudo-terminals, as in some containers, so that commands cannot be run as a reader does."""


def kind_of(comment, line):
    words = comment.group(1).split() if comment else []
    if not words or words[0] not in KINDS or len(words) != KINDS[words[0]] + 1:
        raise Mistake(f"line {line}: no comment says what this block is")
    return words[0], words[-1]


def shown_by_scdoc(line, number):
    """In scdoc a backslash makes the character behind it literal, inside a literal block too."""
    shown = re.sub(r"\\(.)", r"\1", line)
    if re.sub(r"\\.", "", line).endswith("\\"):
        raise Mistake(f"line {number}: one backslash at the end of a line is not shown; write two")
    return shown


def blocks_of(page):
    """The literal blocks of a page, with their lines as a reader sees them."""
    blocks = []
    block = None
    above = ""
    for number, line in enumerate(page.read_text().splitlines(), 1):
        if block is not None and line == "```":
            blocks.append(block)
            block = None
        elif block is not None:
            block.lines.append(shown_by_scdoc(line, number) if page.suffix == ".scd" else line)
        elif FENCES[page.suffix].match(line):
            kind, name = kind_of(COMMENTS[page.suffix].match(above), number)
            block = Block(number, kind, name, [])
        above = line
    if block is not None:
        raise Mistake(f"line {block.line}: this block does not end")
    return blocks


def commands_of(block):
    commands = []
    for number, line in enumerate(block.lines, block.line + 1):
        if line.startswith("$ "):
            commands.append(Command(number, line[2:], []))
        elif commands and commands[-1].text.endswith("\\"):
            commands[-1] = commands[-1]._replace(text=commands[-1].text[:-1] + line.strip())
        elif commands:
            commands[-1].shown.append(line)
        else:
            raise Mistake(f"line {number}: output above the first command")
    return commands


def without_blank_ends(lines):
    """Blanks at the ends of lines, and empty lines at both ends, cannot be seen on a page."""
    return "\n".join(line.rstrip() for line in lines).strip("\n").splitlines()


def session_of(commands):
    # The next command may print the status of the one before, so it is kept.
    script = [f"next() {{ local status=$?; printf '\\n{MARK}\\n'; return $status; }}"]
    for command in commands:
        script += ["next", command.text]
    return "\n".join(script) + "\n"


def seen_of(printed):
    """What can be seen in the end: behind a carriage return a line is written over from its start, so that nothing is
    left of a progress bar, which is shown when a command takes long."""
    lines = []
    for line in printed.split("\n"):
        seen = ""
        for piece in line.split("\r"):
            seen = piece + seen[len(piece):]
        lines.append(seen)
    return "\n".join(lines)


def printed_on(terminal):
    """All that is printed until the other end is closed."""
    printed = b""
    while True:
        try:
            piece = os.read(terminal, 65536)
        except OSError:
            return seen_of(printed.decode(errors="backslashreplace").replace("\r\n", "\n"))
        printed += piece


def outputs_of(commands, folder, environment):
    # A terminal, as a reader has: standard output and standard error then arrive in the order in which they are
    # written.
    try:
        terminal, other_end = pty.openpty()
    except OSError as error:
        raise NoTerminals(f"no pseudo-terminals here: {error}") from error
    fcntl.ioctl(other_end, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 110, 0, 0))
    with subprocess.Popen(["timeout", "60", "bash", "-c", session_of(commands)], cwd=folder, env=environment,
                          stdin=subprocess.DEVNULL, stdout=other_end, stderr=other_end):
        os.close(other_end)
        printed = printed_on(terminal)
    os.close(terminal)
    return printed.split(f"\n{MARK}\n")[1:]


def differences(page, commands, outputs):
    for command, output in zip(commands, outputs + [""] * (len(commands) - len(outputs))):
        shown = without_blank_ends(command.shown)
        printed = without_blank_ends(output.splitlines())
        if shown != printed:
            yield from difflib.unified_diff(shown, printed, f"{page}:{command.line}: {command.text}",
                                            "what it prints", lineterm="")


def write_files(blocks, folder):
    for block in blocks:
        if block.kind == "file":
            file = folder / block.name
            if file.exists():
                raise Mistake(f"line {block.line}: {block.name} is there already")
            file.write_text("\n".join(block.lines) + "\n")


def source_of(block):
    head = "#include <stdlib.h>\n#include <fi_rotation/fi_process_backups.h>\n"
    text = "\n".join(block.lines) + "\n"
    # Headers that it includes were included before, so that these lines have no effect inside a function.
    return head + (f"static void example(void) {{\n{text}}}\n" if block.kind == "statements" else text)


def refusals(blocks, folder, environment):
    """The compiler's messages about C that contradicts the header."""
    for block in blocks:
        if block.kind in ("declaration", "statements"):
            compiler = subprocess.run(["cc", "-std=c11", "-Wno-unused", "-fsyntax-only", "-x", "c", "-"],
                                      input=source_of(block), cwd=folder, env=environment,
                                      stderr=subprocess.PIPE, text=True, timeout=60, check=False)
            yield from compiler.stderr.splitlines()


def write_program(file, command):
    file.write_text(f'#!/bin/sh\nexec {command} "$@"\n')
    file.chmod(0o755)


def environment_for(tools, arguments):
    """The environment of a reader who has the programs and the library installed."""
    warnings = "-Wall -Wextra -Wpedantic -Werror"
    write_program(tools / "fi-rotate", shlex.quote(arguments.program))
    write_program(tools / "cc", f"{arguments.cc} {warnings}")
    write_program(tools / "c++", f"{arguments.cxx} {warnings}")
    folders = ":".join(os.path.dirname(library) for library in arguments.library)
    return {**os.environ, "PATH": f"{tools}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8", "NO_COLOR": "1",
            "CPATH": arguments.include, "LIBRARY_PATH": folders, "LD_LIBRARY_PATH": folders}


def faults_of(page, arguments):
    blocks = blocks_of(page)
    commands = [command for block in blocks if block.kind == "run" for command in commands_of(block)]
    with tempfile.TemporaryDirectory() as name:
        tools, folder = pathlib.Path(name, "tools"), pathlib.Path(name, "page")
        tools.mkdir()
        folder.mkdir()
        shutil.copytree(arguments.examples, folder / "examples")
        environment = environment_for(tools, arguments)
        write_files(blocks, folder)
        faults = list(refusals(blocks, folder, environment))
        faults += differences(page, commands, outputs_of(commands, folder, environment))
    return faults, len(commands)


def main():
    parser = argparse.ArgumentParser(description="Runs the examples of a page.")
    parser.add_argument("page", type=pathlib.Path)
    parser.add_argument("--program", required=True, help="fi-rotate")
    parser.add_argument("--library", required=True, action="append", help="each library that hosts link")
    parser.add_argument("--include", required=True, help="the folder of the public headers' folder")
    parser.add_argument("--examples", required=True)
    parser.add_argument("--cc", required=True, help="the C compiler with its flags")
    parser.add_argument("--cxx", required=True, help="the C++ compiler with its flags")
    arguments = parser.parse_args()
    try:
        faults, count = faults_of(arguments.page, arguments)
    except NoTerminals as reason:
        print(reason)
        return SKIPPED
    except Mistake as mistake:
        faults, count = [f"{arguments.page}: {mistake}"], 0
    if not faults and count == 0:
        faults = [f"{arguments.page}: no command in it"]
    print("\n".join(faults) or f"{arguments.page}: {count} commands print what the page shows")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
