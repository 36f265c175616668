"""The single faults that the code of a C++ source could have.

Comments, literals and code that no test can judge are replaced by blanks first, so that every fault is in code.
"""

import pathlib
import re
from typing import Iterator, List, NamedTuple, Tuple

FOLDERS = ("common", "resource", "fiid", "driver", "host")

EXCHANGED = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&",
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "+=": "-=", "-=": "+=", "&": "|", "|": "&", "^": "&",
    "|=": "&=", "&=": "|=", "<<": ">>", ">>": "<<", "++": "--", "--": "++",
    "true": "false", "false": "true",
}

# Line breaks are kept, because a fault is reported with its line.
NOT_CODE = re.compile(
    r"""//[^\n]*
    | /\*.*?\*/
    | "(?:\\.|[^"\\\n])*"
    | (?<!\w)'(?:\\.|[^'\\\n])*'
    | ^[ \t]*\#(?:[^\n]*\\\n)*[^\n]*
    | ^[^\n]*=\ (?:delete|default);
    """, re.VERBOSE | re.DOTALL | re.MULTILINE)
# Left out with their parentheses: the first two have a meaning for the compiler only, and the last only saves time.
PASSED_OVER = re.compile(r"\b(?:static_assert|__attribute__)\(|\b[\w.]+\.reserve\(")

# Binary operators stand between blanks, unlike the brackets and signs of types.
OPERATOR = re.compile(r"(?<=\s)(?:[<>=!]=|&&|\|\||<<|>>|[-+|&]=|[-+*/%&|^<>])(?=\s)|\+\+|--|\b(?:true|false)\b")
NUMBER = re.compile(r"(?<![\w.])\d+(?=[uU]?(?![\w.]))")
NEGATION = re.compile(r"!(?=[\w(:*])")
CONDITION = re.compile(r"\b(?:if|while)(?: constexpr)? \(")
# Unlike a declaration, which has a name behind its type, a statement has an operator or a bracket behind its first
# name.
STATEMENT = re.compile(
    r"(?:(?:return|throw|delete)\b.*"
    r"|(?:\+\+|--|\*|operator )?[\w:]+(?:<[^;]*>)?(?:\(|\.|->|\[|\+\+|--| [-+*/|&^%<>]*= ).*);$")


class Fault(NamedTuple):
    path: str
    begin: int
    end: int
    replacement: str

    def applied(self, text: str) -> str:
        return text[:self.begin] + self.replacement + text[self.end:]

    def told(self, text: str) -> str:
        line = text.count("\n", 0, self.begin) + 1
        was, becomes = (" ".join(part.split()) for part in (text[self.begin:self.end], self.replacement))
        return f"{self.path}:{line}: {was} -> {becomes or 'nothing'}   in: {text.splitlines()[line - 1].strip()}"


def blanked(text: str, begin: int, end: int) -> str:
    return text[:begin] + re.sub(r"[^\n]", " ", text[begin:end]) + text[end:]


def closing(code: str, opening: int) -> int:
    """The place of the bracket that closes the one at `opening`."""
    depth = 0
    for place in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[place], 0)
        if depth == 0:
            return place
    raise ValueError(f"no bracket closes that of {code[opening:opening + 40]!r}")


def code_of(text: str) -> str:
    """`text` with blanks in the place of everything that is not code."""
    code = NOT_CODE.sub(lambda found: re.sub(r"[^\n]", " ", found.group()), text)
    for found in PASSED_OVER.finditer(code):
        code = blanked(code, found.start(), closing(code, found.end() - 1) + 1)
    return code


def exchanges(code: str) -> Iterator[Tuple[int, int, str]]:
    for found in OPERATOR.finditer(code):
        yield found.start(), found.end(), EXCHANGED[found.group()]
    for found in NUMBER.finditer(code):
        yield found.start(), found.end(), str(int(found.group()) + 1)
        yield found.start(), found.end(), str(int(found.group()) - 1)
    for found in NEGATION.finditer(code):
        yield found.start(), found.end(), ""


def negated_conditions(code: str) -> Iterator[Tuple[int, int, str]]:
    for found in CONDITION.finditer(code):
        end = closing(code, found.end() - 1)
        condition = code[found.end():end]
        # In a condition with a comparison or a negation, another fault has nearly the same effect.
        if not re.search(r";|!|==", condition):
            yield found.end(), end, "!({})"


def deleted_statements(code: str) -> Iterator[Tuple[int, int, str]]:
    begin = 0
    end_before = "{"
    for line in code.splitlines(keepends=True):
        statement = line.strip()
        begin_here = begin + line.find(statement)
        if end_before in ";{}:":
            if statement in ("break;", "continue;"):
                yield begin_here, begin_here + len(statement), "continue;" if statement == "break;" else "break;"
                yield begin_here, begin_here + len(statement), ";"
            elif STATEMENT.match(statement) and statement.count("(") == statement.count(")"):
                yield begin_here, begin_here + len(statement), ";"
        begin += len(line)
        end_before = statement[-1:] or end_before


def faults_in(path: str, text: str) -> List[Fault]:
    code = code_of(text)
    found = [*exchanges(code), *negated_conditions(code), *deleted_statements(code)]
    return [Fault(path, begin, end, replacement.format(text[begin:end])) for begin, end, replacement in sorted(found)]


def all_faults(root: pathlib.Path) -> List[Fault]:
    sources = sorted(path for folder in FOLDERS for path in (root / folder).iterdir()
                     if path.suffix in (".h", ".hpp", ".cpp"))
    return [fault for path in sources for fault in faults_in(str(path.relative_to(root)), path.read_text())]
