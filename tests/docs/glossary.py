"""Usage: glossary.py PROJECT PROGRAM

What users read keeps to the glossary of CONTRIBUTING.md: the help of PROGRAM (fi-rotate), its texts about hazards,
the manual pages, the guides and the Python documentation use every term, and no phrase of the column "not".

A phrase is found with other endings of its words, and with another article where it has one: "reserve a target"
stands for "reserves the targets", too.
"""

import ast
import pathlib
import re
import subprocess
import sys

HEADING = "| term | what it means | not |"
ARTICLE = "(?:an?|the|its|their)"
GUIDES = ("README.md", "examples/README.md", "docs/administrators-guide.md", "docs/host-guide.md",
          "docs/simulate.md")


def rows_of(contributing):
    """The terms of the glossary, each with the phrases that are not used for it."""
    _, found, below = contributing.partition(HEADING)
    rows = {}
    for line in below.splitlines()[2:] if found else []:
        if not line.startswith("|"):
            break
        term, _, phrases = (cell.strip() for cell in line.strip("|").split("|"))
        rows[term] = [phrase.strip() for phrase in phrases.split(",") if phrase.strip()]
    return rows


def pattern_of(phrase):
    words = (ARTICLE if word == "a" else re.escape(word.removesuffix("e")) + "(?:e|es|ed|ing|s|d)?"
             for word in phrase.split())
    return re.compile(r"\b" + r"\s+".join(words) + r"\b", re.IGNORECASE)


def prose_of(page):
    """A page without its literal blocks and words, which show files, commands and the library's fixed texts."""
    page = re.sub(r"^```.*?^```", "", page, flags=re.MULTILINE | re.DOTALL)
    return re.sub(r"[*_]", "", re.sub(r"`[^`\n]*`", "", page))


def docstrings_of(code):
    kinds = (ast.Module, ast.ClassDef, ast.FunctionDef)
    nodes = [node for node in ast.walk(ast.parse(code)) if isinstance(node, kinds)]
    return "\n".join(ast.get_docstring(node) or "" for node in nodes)


def differences(rows, texts):
    """`texts` has a name for each text, which the faults in it are told with."""
    if not rows:
        yield f'CONTRIBUTING.md has no table "{HEADING}"'
    for term, phrases in rows.items():
        if not any(pattern_of(term).search(text) for text in texts.values()):
            yield f'nothing that users read has the term "{term}" of the glossary'
        for phrase in phrases:
            for name, text in texts.items():
                found = pattern_of(phrase).search(text)
                if found:
                    yield f'{name} has "{" ".join(found.group().split())}"; the glossary calls it "{term}"'


def printed_by(program, *arguments):
    """Both outputs: a program that refuses its arguments prints to standard error."""
    return subprocess.run([program, *arguments], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          timeout=60, check=False).stdout


def names_in(pattern, listing):
    names = re.findall(pattern, listing, re.MULTILINE)
    if not names:
        raise ValueError(f"fi-rotate lists no subcommands or hazards here:\n{listing}")
    return names


def texts_of_program(program):
    texts = {"fi-rotate --help": printed_by(program, "--help")}
    for subcommand in names_in(r"^  (\w+) ", texts["fi-rotate --help"].partition("Subcommands:")[2]):
        texts[f"fi-rotate {subcommand} --help"] = printed_by(program, subcommand, "--help")
    # With an unknown name it lists the known ones.
    for hazard in names_in(r"^  ([\w-]+)$", printed_by(program, "check", "--explain", "unknown")):
        texts[f"fi-rotate check --explain {hazard}"] = printed_by(program, "check", "--explain", hazard)
    return texts


def texts_of_pages(project):
    pages = [project / guide for guide in GUIDES] + sorted((project / "docs/man").glob("*.scd"))
    texts = {str(page.relative_to(project)): prose_of(page.read_text()) for page in pages}
    for module in sorted((project / "python/fi_rotation").glob("*.py")):
        texts[str(module.relative_to(project))] = docstrings_of(module.read_text())
    return texts


def main():
    project, program = pathlib.Path(sys.argv[1]), sys.argv[2]
    texts = {**texts_of_program(program), **texts_of_pages(project)}
    faults = list(differences(rows_of((project / "CONTRIBUTING.md").read_text()), texts))
    print("\n".join(faults) or f"{len(texts)} texts keep to the glossary")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
