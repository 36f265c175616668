"""Usage: host_page.py PROJECT

The manual page of the host library declares and describes every function of its header, lists every name that the
header gives to a value, with that value, and has none that the header does not.
"""

import pathlib
import re
import sys

FUNCTION = re.compile(r"^FI_ROTATION_API [^(]*?\b(fi_rotation_\w+)\(", re.MULTILINE)
VALUE = re.compile(r"^ +(FI_ROTATION_\w+) = (-?\d+)", re.MULTILINE)

DECLARED = re.compile(r"^(?!typedef)\w[^(\n]*?\b(fi_rotation_\w+)\(", re.MULTILINE)
DESCRIBED = re.compile(r"\*(fi_rotation_\w+)\*\(\)")
LISTED = re.compile(r"^\*(FI_ROTATION_\w+)\* \((-?\d+)\)$", re.MULTILINE)


def differences(header, page):
    for what, in_header, on_page in (
            ("declaration of", FUNCTION.findall(header), DECLARED.findall(page)),
            ("description of", FUNCTION.findall(header), DESCRIBED.findall(page)),
            ("value", VALUE.findall(header), LISTED.findall(page))):
        if not in_header:
            yield f"no {what} anything found in the header"
        for missing in sorted(set(in_header) - set(on_page)):
            yield f"the page lacks the {what} {missing}"
        for surplus in sorted(set(on_page) - set(in_header)):
            yield f"the header lacks what the page has, the {what} {surplus}"


def main():
    project = pathlib.Path(sys.argv[1])
    faults = list(differences((project / "host/host.h").read_text(),
                              (project / "docs/man/fi_rotation_host.3.scd").read_text()))
    print("\n".join(faults) or "the page has all that the header has")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
