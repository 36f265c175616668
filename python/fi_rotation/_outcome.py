"""The outcome of a rotation: enumerations with the values of host/host.h, records, and exceptions that contain them."""

import enum
from dataclasses import dataclass


class OutcomeKind(enum.IntEnum):
    """The kind of outcome that a call of rotate() has.

    SELECTED: Every configuration has a free target: rotate() returns the selection.
    NO_FREE_TARGET: rotate() raises NoFreeTarget.
    TOO_FEW_BACKUPS: rotate() raises TooFewBackups.
    REFUSED: rotate() raises Refused.
    OUT_OF_MEMORY: rotate() raises MemoryError: call it again later.
    TRACE_FAILED: Not seen in Python: rotate() raises what the trace function raised.
    MISUSED: rotate() raises RuntimeError: the trace function called rotate() again.
    FAILED: rotate() raises RuntimeError: the XML library could not be set up, or the process was forked while
        another thread was in rotate().

    >>> OutcomeKind.REFUSED
    <OutcomeKind.REFUSED: 3>
    """

    SELECTED = 0
    NO_FREE_TARGET = 1
    TOO_FEW_BACKUPS = 2
    REFUSED = 3
    OUT_OF_MEMORY = 4
    TRACE_FAILED = 5
    MISUSED = 6
    FAILED = 7


class ProblemKind(enum.IntFlag):
    """What can be wrong with an input. rotate() raises Refused for a problem that is not permitted.

    CONFIGURATION_REJECTED: A configuration is malformed, or there is none, or an enclosure in it has more than 256
        bytes. Permitted: those before the malformed one are used, and an enclosure of any length. If there is none,
        the selection is an empty text.
    CANNOT_OPEN: The document cannot be opened. Permitted: it and all documents after it are ignored, and each of these
        has this problem, too.
    NOT_A_FILE: The document is a folder, a pipe or a device. Permitted: a folder is read as an empty text, which is
        NOT_WELL_FORMED and NO_NODE, too; a pipe or a device is read until it ends, and its NUL bytes are not noticed.
    READ_ERROR: The document cannot be read to its end. Permitted: the part that was read is used.
    TOO_LARGE: The document has more bytes than limit_document allows. Permitted: it is read. Beyond 128 MiB it is
        NOT_WELL_FORMED, too, and has no Node.
    NUL_BYTE: The document contains a NUL byte, as text in UTF-16 does. Permitted: the rest of that line is not
        used.
    LISTED_TWICE: The document is listed a second time, under this name or another. Permitted: entries with the same
        name are one backup, with one state, excluded if the last of them is; under another name, each entry counts
        for itself, and one of the two becomes invalid if it holds a target.
    NOT_WELL_FORMED: The document is not well-formed XML, or exceeds a limit of reading. Permitted: what was read
        before that place is used. If that is nothing, as before some of the limits, it has no Node either.
    NO_NODE: The document has no Node. Permitted: it is ignored, and its targets look free.
    SEVERAL_ROOTS: The document has several Nodes that are not inside another one. Permitted: only the last one
        counts.
    CHANGED: The document changed, or was replaced, during the call. Permitted: what was read is used.
    MALFORMED_IDENTIFIER: An identifier in the document is malformed. This cannot be permitted.

    >>> permitted = ProblemKind.NO_NODE | ProblemKind.SEVERAL_ROOTS
    >>> ProblemKind.NO_NODE in permitted
    True
    """

    CONFIGURATION_REJECTED = 1
    CANNOT_OPEN = 2
    NOT_A_FILE = 4
    READ_ERROR = 8
    TOO_LARGE = 16
    NUL_BYTE = 32
    LISTED_TWICE = 64
    NOT_WELL_FORMED = 128
    NO_NODE = 256
    SEVERAL_ROOTS = 512
    CHANGED = 1024
    MALFORMED_IDENTIFIER = 2048


class State(enum.IntEnum):
    """The state of an earlier backup after the call.

    NO_STATE: The backup has no state, because there is no selection or its document was ignored.
    KEPT: The backup agrees with the configuration and keeps its targets.
    INVALID: The backup does not agree with the configuration, and claims nothing: all its targets may be chosen,
        even if it is excluded. Or one of its targets is held already: by a newer backup, by one with the same time
        stamp, or by another pair of this backup. Then its other targets stay used until its document is removed. It
        is never released: a person must correct the configuration, or delete the backup and its document.
    ROTATED: The targets of the backup were released for the new backup.

    >>> State.ROTATED.name.lower()
    'rotated'
    """

    NO_STATE = -1
    KEPT = 0
    INVALID = 1
    ROTATED = 2


@dataclass(frozen=True)
class Backup:
    """An earlier backup and what the call made of it.

    file: The name of its document, decoded by os.fsdecode; os.fsencode gives the same bytes again.
    problems: The problems of its document, including permitted ones.
    time_stamp: The text of its document's timeStamp; None when the document has none or was not read, when the backup
        does not agree with the configuration, and after Refused.
    targets: The targets that it held before backups were released, each ENCLOSURE##DEVICE. Empty when it is
        invalid, although some may stay used.
    reason: Why it is in its state, as a word for programs: "newest_holder", "holds_nothing", "excluded",
        "rotation_stopped", "needed", "in_vain", "unknown_target", "unknown_configuration", "held_already". None
        when there is no state and no reason is known.
    reason_text: The same for people, as a sentence without a full stop.

    >>> Backup(file="monday.xml").state
    <State.NO_STATE: -1>
    """

    file: str
    state: State = State.NO_STATE
    problems: ProblemKind = ProblemKind(0)
    time_stamp: str | None = None
    targets: tuple[str, ...] = ()
    reason: str | None = None
    reason_text: str | None = None


@dataclass(frozen=True)
class Problem:
    """A mistake in an input, permitted or not.

    backup: The backup whose document it is in; None when it is in the configuration.
    text: A text for people with the file and, where it is known, the line and column.

    >>> problem = Problem(ProblemKind.CANNOT_OPEN, Backup("monday.xml"), "monday.xml: cannot be opened")
    >>> problem.backup.file
    'monday.xml'
    """

    kind: ProblemKind
    backup: Backup | None
    text: str


@dataclass(frozen=True)
class Target:
    """A target for the snapshots of a configuration, and the backup that holds it after the rotation.

    name: ENCLOSURE##DEVICE.
    holder: It may be an invalid one. None when the target is free.

    >>> Target("encA##snap1", holder=Backup("monday.xml")).holder.file
    'monday.xml'
    """

    name: str
    holder: Backup | None


@dataclass(frozen=True)
class Configuration:
    """A configuration: the device that is backed up and the targets for its snapshots.

    first: The device that is backed up, ENCLOSURE##DEVICE.
    chosen: The target to use; None without a selection.
    kept: How many kept backups hold a target of this configuration after the rotation.

    >>> Configuration("encA##lun1", chosen="encA##snap1", kept=0, targets=(Target("encA##snap1", None),)).chosen
    'encA##snap1'
    """

    first: str
    chosen: str | None
    kept: int
    targets: tuple[Target, ...]


@dataclass(frozen=True)
class Outcome:
    """The outcome of a rotation, with or without a selection.

    message: What happened, in words for people: one sentence, or several lines with a sentence each.
    problems: All problems that were found, including permitted ones.
    configurations: The configurations in the order given; empty when the kind is REFUSED, because they are not
        known then.

    >>> import fi_rotation
    >>> try:
    ...     fi_rotation.rotate("encA##lun1;encA##snap1", ["no-such-file.xml"])
    ... except fi_rotation.RotationError as error:
    ...     error.outcome.kind
    <OutcomeKind.REFUSED: 3>
    """

    kind: OutcomeKind
    message: str
    problems: tuple[Problem, ...]
    configurations: tuple[Configuration, ...]
    backups: tuple[Backup, ...]


@dataclass(frozen=True)
class Selected(Outcome):
    """The outcome of a rotation that found a free target for every configuration.

    selection: "[FIRST;CHOSEN]" for each configuration in order, with nothing in between.

    >>> import fi_rotation
    >>> outcome = fi_rotation.rotate("encA##lun1;encA##snap1;snap2", [], allow_no_backups=True)
    >>> outcome.selection
    '[encA##lun1;encA##snap1]'
    >>> [configuration.chosen for configuration in outcome.configurations]
    ['encA##snap1']
    """

    selection: str


class RotationError(Exception):
    """There is no selection. str() says why, and the attribute `outcome` contains the outcome.

    >>> import fi_rotation
    >>> try:
    ...     fi_rotation.rotate("encA##lun1", [], allow_no_backups=True)
    ... except fi_rotation.RotationError as error:
    ...     print(error)
    encA##lun1 has no targets for its snapshots
    """

    def __init__(self, outcome: Outcome) -> None:
        # pickle makes the exception again from its arguments, so the outcome is the only one.
        super().__init__(outcome)
        self.outcome = outcome

    def __str__(self) -> str:
        return self.outcome.message


class NoFreeTarget(RotationError):
    """The inputs are complete, but a configuration has no free target even if every backup is released that may be.

    >>> import fi_rotation
    >>> fi_rotation.rotate("encA##lun1", [], allow_no_backups=True)
    Traceback (most recent call last):
    fi_rotation.NoFreeTarget: encA##lun1 has no targets for its snapshots
    """


class TooFewBackups(RotationError):
    """A configuration would keep fewer backups than keep_at_least demands.

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
    """An input is missing or damaged, so nothing was decided. `outcome.problems` names each such input.

    >>> import fi_rotation
    >>> try:
    ...     fi_rotation.rotate("encA##lun1;encA##snap1", ["no-such-file.xml"])
    ... except fi_rotation.Refused as error:
    ...     [(problem.kind.name, problem.backup.file) for problem in error.outcome.problems]
    [('CANNOT_OPEN', 'no-such-file.xml')]
    """
