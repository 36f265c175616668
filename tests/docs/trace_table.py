"""Usage: trace_table.py PROJECT

The guide for hosts lists every message that the library's sources write, at its level, and every operation
that an entry or exit line names; and none that they do not write. The table of host/trace_text.cpp, by which
traces are read, lists none that they do not write either, and every failure: without its level, which a log does
not tell, only the text says that something failed.
"""

import pathlib
import re
import sys

FOLDERS = ("common", "resource", "fiid", "driver")
LITERALS = r'((?:"(?:[^"\\]|\\.)*"\s*)+)'
MESSAGE = re.compile(r"(?<!void )\bmofi_tracelog\(\s*(\w+),\s*" + LITERALS)
CALL = re.compile(r"(?<!void )\bmofi_tracelog\(")
OUTPUT = re.compile(r"\bstd::printf\(\s*" + LITERALS)
OPERATION = re.compile(r'\btrace(?:Entering|Exiting)\((?:"([^"]*)"|kNoName)\)')
LEVELS = {"kTraceFailure": "3", "kTraceProgress": "4"}

MESSAGE_ROW = re.compile(r"^\| (3|4|output) \| `(.*)` \| .+ \|$", re.MULTILINE)
TABLE_ROW = re.compile(r"\{ETraceText::k\w+,\s*ELevel::k(\w+),\s*" + LITERALS)
TABLE_LEVELS = {"Failure": "3", "Progress": "4"}
OPERATION_ROW = re.compile(r"^\| `(CFi\w+::[^`]+| )` \| .+ \|$", re.MULTILINE)


def text_of(literals):
    """The literals joined; a line end stays written as one."""
    return "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', literals)).replace('\\"', '"')


def sources(project):
    return "\n".join(file.read_text() for folder in FOLDERS
                     for file in sorted((project / folder).glob("*.[ch]*")))


def written(code):
    messages = {(LEVELS[level], text_of(literals)) for level, literals in MESSAGE.findall(code)}
    messages |= {("output", text_of(literals)) for literals in OUTPUT.findall(code)}
    return messages, set(OPERATION.findall(code))


def listed(guide):
    return set(MESSAGE_ROW.findall(guide)), {name.strip() for name in OPERATION_ROW.findall(guide)}


def read_back(table):
    return {(TABLE_LEVELS[level], text_of(literals)) for level, literals in TABLE_ROW.findall(table)}


def differences_of_table(code, table):
    messages = written(code)[0]
    for missing in sorted(message for message in messages - read_back(table) if message[0] == "3"):
        yield f"host/trace_text.cpp does not list the failure {missing}"
    for surplus in sorted(read_back(table) - messages):
        yield f"the sources do not write what host/trace_text.cpp lists: {surplus}"


def differences(code, guide):
    if len(MESSAGE.findall(code)) != len(CALL.findall(code)):
        yield "a call of mofi_tracelog has a format that is not written out"
    for what, in_code, in_guide in zip(("message", "operation"), written(code), listed(guide)):
        if not in_code:
            yield f"no {what} found in the sources"
        for missing in sorted(in_code - in_guide):
            yield f"docs/host-guide.md does not list the {what} {missing}"
        for surplus in sorted(in_guide - in_code):
            yield f"the sources do not write what docs/host-guide.md lists, the {what} {surplus}"


def main():
    project = pathlib.Path(sys.argv[1])
    code = sources(project)
    faults = list(differences(code, (project / "docs/host-guide.md").read_text()))
    faults += differences_of_table(code, (project / "host/trace_text.cpp").read_text())
    print("\n".join(faults) or "the guide and the table list every message")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
