"""Decides which targets a new snapshot backup may use.

    import glob
    import fi_rotation

    with open("resource.conf") as file:
        outcome = fi_rotation.rotate(file.read(), sorted(glob.glob("backup-*.xml")))
    print(outcome.selection)

rotate() returns a selection or raises an exception. It decides only when its inputs are complete: when a document
cannot be read, is damaged or changes during the call, or a configuration is malformed, it raises Refused, which names
every such input. The records that it returns, and those in its exceptions, cannot be changed.

Texts: names of files are decoded by os.fsdecode. Names of targets, time stamps and selections are decoded from UTF-8
with surrogateescape, so that encoding them again gives the same bytes. Messages, reasons, texts of problems and lines
of the trace are for people: a byte that is not valid UTF-8 is shown as a backslash sequence, so they can always be
printed.
"""

from ._library import __version__, library_version
from ._outcome import (Backup, Configuration, NoFreeTarget, Outcome, OutcomeKind, Problem, ProblemKind, Refused,
                       RotationError, Selected, State, Target, TooFewBackups)
from ._rotate import rotate

__all__ = ["Backup", "Configuration", "NoFreeTarget", "Outcome", "OutcomeKind", "Problem", "ProblemKind", "Refused",
           "RotationError", "Selected", "State", "Target", "TooFewBackups", "__version__", "library_version", "rotate"]

# Makes repr() and pickle use the name that scripts import, not that of the private module.
for _public in (globals()[name] for name in __all__):
    if isinstance(_public, type):
        _public.__module__ = __name__
