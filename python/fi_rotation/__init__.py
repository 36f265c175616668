"""Rotation of snapshot targets: which targets may a new snapshot backup use?

    import glob
    import fi_rotation

    with open("resource.conf") as file:
        outcome = fi_rotation.rotate(file.read(), sorted(glob.glob("backup-*.xml")))
    print(outcome.selection)

rotate() returns a selection or raises. It decides from whole inputs only: when a document cannot be read, is damaged
or changes meanwhile, or a configuration is malformed, it raises Refused, which names every offending input.
Everything that is returned or carried by an exception is a frozen record.

Texts: names of files are what os.fsdecode gives. Names of targets, time stamps and selections are decoded from UTF-8
with surrogateescape, so that nothing is lost on the way to another program. Messages, reasons, texts of problems and
lines of the trace are for people: what is no UTF-8 in them is shown as a backslash sequence, and they can always be
printed.
"""

from ._library import __version__, library_version
from ._outcome import (Backup, Configuration, NoFreeTarget, Outcome, OutcomeKind, Problem, ProblemKind, Refused,
                       RotationError, Selected, State, Target, TooFewBackups)
from ._rotate import rotate

__all__ = ["Backup", "Configuration", "NoFreeTarget", "Outcome", "OutcomeKind", "Problem", "ProblemKind", "Refused",
           "RotationError", "Selected", "State", "Target", "TooFewBackups", "__version__", "library_version", "rotate"]

# They are shown, and pickled, under the name that scripts import.
for _public in (globals()[name] for name in __all__):
    if isinstance(_public, type):
        _public.__module__ = __name__
