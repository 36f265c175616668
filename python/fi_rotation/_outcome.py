"""What came of a rotation: enumerations with the values of host/host.h, records, and exceptions that carry them."""

import enum
from dataclasses import dataclass


class OutcomeKind(enum.IntEnum):
    """What came of a run.

    >>> OutcomeKind.REFUSED
    <OutcomeKind.REFUSED: 3>
    """

    # Every configuration has a free target: rotate() returns.
    SELECTED = 0
    # These raise NoFreeTarget, TooFewBackups and Refused.
    NO_FREE_TARGET = 1
    TOO_FEW_BACKUPS = 2
    REFUSED = 3
    # MemoryError.
    OUT_OF_MEMORY = 4
    # Never from rotate(), which raises what the trace function raised.
    TRACE_FAILED = 5
    # RuntimeError: the trace function called rotate() again.
    MISUSED = 6
    # RuntimeError: the process was forked while another thread was in rotate(), or the library cannot be set up.
    FAILED = 7


class ProblemKind(enum.IntFlag):
    """What can be wrong with an input. Unless it is permitted, it raises Refused.

    >>> permitted = ProblemKind.NO_NODE | ProblemKind.SEVERAL_ROOTS
    >>> ProblemKind.NO_NODE in permitted
    True
    """

    # Some configuration is malformed, or there is none. Permitted: those before the malformed one are used.
    CONFIGURATION_REJECTED = 1
    # The document cannot be opened. Permitted: it and all documents after it are ignored.
    CANNOT_OPEN = 2
    # It is a folder, a pipe or a device. Permitted: a folder counts as empty, a pipe is waited for.
    NOT_A_FILE = 4
    # It cannot be read to its end. Permitted: what was read counts.
    READ_ERROR = 8
    # It has more bytes than limit_document allows. Permitted: it is read.
    TOO_LARGE = 16
    # It holds a NUL byte, as text in UTF-16 does. Permitted: the rest of that line is ignored.
    NUL_BYTE = 32
    # It is listed a second time, under this name or another. Permitted: the last exclusion counts for both.
    LISTED_TWICE = 64
    # It is not well-formed XML, or asks too much of a reader. Permitted: what stands before that place counts.
    NOT_WELL_FORMED = 128
    # It has no Node. Permitted: it is ignored.
    NO_NODE = 256
    # It has several Nodes that stand in no other. Permitted: only the last one counts.
    SEVERAL_ROOTS = 512
    # It changed, or was replaced, while the call ran. Permitted: what was read counts.
    CHANGED = 1024
    # A device or target in it has a malformed identifier. It cannot be permitted.
    MALFORMED_IDENTIFIER = 2048


class State(enum.IntEnum):
    """What became of an earlier backup.

    >>> State.ROTATED.name.lower()
    'rotated'
    """

    # It has none, because there is no selection or its document was ignored.
    NO_STATE = -1
    # It agrees with the configuration and keeps its targets.
    KEPT = 0
    # It does not agree with the configuration, or one of its targets is held already: by a newer backup, by one of
    # the same time stamp, or by another pair of its own.
    INVALID = 1
    # Its targets were released for the new backup.
    ROTATED = 2


@dataclass(frozen=True)
class Backup:
    """An earlier backup, in the order given.

    >>> Backup(file="monday.xml").state
    <State.NO_STATE: -1>
    """

    # As os.fsdecode gives it; os.fsencode gives the bytes again.
    file: str
    state: State = State.NO_STATE
    # Those of its document, permitted ones.
    problems: ProblemKind = ProblemKind(0)
    # The text of its document's timeStamp; None when it does not agree with the configuration.
    time_stamp: str | None = None
    # What it held before any was released, each ENCLOSURE##DEVICE; nothing when it is invalid.
    targets: tuple[str, ...] = ()
    # Why it came to its state. None when there is no state, and nothing to say why. A word for programs:
    # "newest_holder", "holds_nothing", "excluded", "rotation_stopped", "needed", "in_vain",
    # "unknown_target", "unknown_configuration", "held_already"; and a sentence without a full stop for people.
    reason: str | None = None
    reason_text: str | None = None


@dataclass(frozen=True)
class Problem:
    """Something that is wrong with an input, permitted or not.

    >>> problem = Problem(ProblemKind.CANNOT_OPEN, Backup("monday.xml"), "monday.xml: cannot be opened")
    >>> problem.backup.file
    'monday.xml'
    """

    kind: ProblemKind
    # None for the configuration.
    backup: Backup | None
    # In words, with the file and the place.
    text: str


@dataclass(frozen=True)
class Target:
    """A target for the snapshots of a configuration, and who holds it after the rotation.

    >>> Target("encA##snap1", holder=Backup("monday.xml")).holder.file
    'monday.xml'
    """

    # ENCLOSURE##DEVICE.
    name: str
    # None when it is free.
    holder: Backup | None


@dataclass(frozen=True)
class Configuration:
    """A configuration: the device that is backed up and the targets for its snapshots.

    >>> Configuration("encA##lun1", chosen="encA##snap1", kept=0, targets=(Target("encA##snap1", None),)).chosen
    'encA##snap1'
    """

    # The device that is backed up, ENCLOSURE##DEVICE.
    first: str
    # The target to use; None without a selection.
    chosen: str | None
    # How many kept backups hold one of its targets after the rotation.
    kept: int
    targets: tuple[Target, ...]


@dataclass(frozen=True)
class Outcome:
    """What came of a rotation, with or without a selection.

    >>> import fi_rotation
    >>> try:
    ...     fi_rotation.rotate("encA##lun1;encA##snap1", ["no-such-file.xml"])
    ... except fi_rotation.RotationError as error:
    ...     error.outcome.kind
    <OutcomeKind.REFUSED: 3>
    """

    kind: OutcomeKind
    # A sentence, or several a line each.
    message: str
    # All that were found, permitted ones included.
    problems: tuple[Problem, ...]
    # Unknown, and so none, when the kind is REFUSED.
    configurations: tuple[Configuration, ...]
    backups: tuple[Backup, ...]


@dataclass(frozen=True)
class Selected(Outcome):
    """The outcome of a rotation that found a free target for every configuration.

    >>> import fi_rotation
    >>> outcome = fi_rotation.rotate("encA##lun1;encA##snap1;snap2", [], allow_no_backups=True)
    >>> outcome.selection
    '[encA##lun1;encA##snap1]'
    >>> [configuration.chosen for configuration in outcome.configurations]
    ['encA##snap1']
    """

    # "[FIRST;CHOSEN]" for each configuration in order, with nothing in between.
    selection: str


class RotationError(Exception):
    """There is no selection. Says why in words, and carries the outcome.

    >>> import fi_rotation
    >>> try:
    ...     fi_rotation.rotate("encA##lun1", [], allow_no_backups=True)
    ... except fi_rotation.RotationError as error:
    ...     print(error)
    encA##lun1 has no targets for its snapshots
    """

    def __init__(self, outcome: Outcome) -> None:
        # Its only argument, so that it can be pickled.
        super().__init__(outcome)
        self.outcome = outcome

    def __str__(self) -> str:
        return self.outcome.message


class NoFreeTarget(RotationError):
    """The inputs are whole, but some configuration has no free target even when all that may be released is.

    >>> import fi_rotation
    >>> fi_rotation.rotate("encA##lun1", [], allow_no_backups=True)
    Traceback (most recent call last):
    fi_rotation.NoFreeTarget: encA##lun1 has no targets for its snapshots
    """


class TooFewBackups(RotationError):
    """A configuration would keep fewer backups than keep_at_least asks for.

    >>> import fi_rotation, glob
    >>> with open("resource.conf") as file:
    ...     configuration = file.read()
    >>> try:
    ...     fi_rotation.rotate(configuration, sorted(glob.glob("backup-*.xml")), keep_at_least=100)
    ... except fi_rotation.TooFewBackups as error:
    ...     error.outcome.kind
    <OutcomeKind.TOO_FEW_BACKUPS: 2>
    """


class Refused(RotationError):
    """An input is not whole, so nothing was decided. The problems of the outcome name each.

    >>> import fi_rotation
    >>> try:
    ...     fi_rotation.rotate("encA##lun1;encA##snap1", ["no-such-file.xml"])
    ... except fi_rotation.Refused as error:
    ...     [(problem.kind.name, problem.backup.file) for problem in error.outcome.problems]
    [('CANNOT_OPEN', 'no-such-file.xml')]
    """
