"""rotate(): checks its arguments, calls the library, and returns records or raises an exception."""

import os
from collections.abc import Callable, Iterable, Iterator
from contextlib import contextmanager
from typing import Any, NoReturn

from ._library import TraceFunction, library
from ._outcome import (Backup, Configuration, NoFreeTarget, Outcome, OutcomeKind, Problem, ProblemKind, Refused,
                       RotationError, Selected, State, Target, TooFewBackups)

FileName = str | bytes | os.PathLike[str] | os.PathLike[bytes]

_EXCEPTIONS: dict[OutcomeKind, type[RotationError]] = {
    OutcomeKind.NO_FREE_TARGET: NoFreeTarget,
    OutcomeKind.TOO_FEW_BACKUPS: TooFewBackups,
    OutcomeKind.REFUSED: Refused,
}
_PROGRESS_LEVEL = 4


# ---- arguments: ctypes would cut a text at a NUL and a number to its lowest bits, so they are checked before ----

def _without_nul(text: bytes, what: str) -> bytes:
    if b"\0" in text:
        raise ValueError(f"{what} contains a NUL character: {text!r}")
    return text


def _configuration_argument(configuration: str | bytes) -> bytes:
    if not isinstance(configuration, (str, bytes)):
        raise TypeError(f"configuration must be a str or bytes, not {type(configuration).__name__}")
    encoded = configuration.encode("utf-8", "surrogateescape") if isinstance(configuration, str) else configuration
    return _without_nul(encoded, "configuration")


def _names_argument(files: Iterable[FileName], what: str) -> list[bytes]:
    if isinstance(files, (str, bytes)):
        raise TypeError(f"{what} must be a list of file names, not one name; give [{files!r}]")
    return [_without_nul(os.fsencode(file), "a file name") for file in files]


def _number_argument(number: int, bits: int, what: str) -> int:
    if not isinstance(number, int):
        raise TypeError(f"{what} must be an int, not {type(number).__name__}")
    if not 0 <= number < 1 << bits:
        raise ValueError(f"{what} must be from 0 to {(1 << bits) - 1}, not {number}")
    return number


# ---- results ----

def _text(text: Any) -> str:
    """Decodes a name or a text such that encoding it with surrogateescape gives the same bytes again."""
    decoded: str = text.decode("utf-8", "surrogateescape")
    return decoded


def _optional_text(text: Any) -> str | None:
    return None if text is None else _text(text)


def _words(words: Any) -> str:
    """Decodes a text for people, which can be printed whatever bytes it quotes."""
    decoded: str = words.decode("utf-8", "backslashreplace")
    return decoded


def _optional_words(words: Any) -> str | None:
    return None if words is None else _words(words)


def _backup(call: Any, i: int) -> Backup:
    return Backup(
        file=os.fsdecode(library.fi_rotation_call_backup_file(call, i)),
        state=State(library.fi_rotation_call_backup_state(call, i)),
        problems=ProblemKind(library.fi_rotation_call_backup_problems(call, i)),
        time_stamp=_optional_text(library.fi_rotation_call_backup_time_stamp(call, i)),
        targets=tuple(_text(library.fi_rotation_call_backup_target(call, i, j))
                      for j in range(library.fi_rotation_call_backup_target_count(call, i))),
        reason=_optional_text(library.fi_rotation_call_backup_reason(call, i)),
        reason_text=_optional_words(library.fi_rotation_call_backup_reason_text(call, i)))


def _backup_at(backups: tuple[Backup, ...], index: int) -> Backup | None:
    return None if index < 0 else backups[index]


def _problem(call: Any, i: int, backups: tuple[Backup, ...]) -> Problem:
    return Problem(
        kind=ProblemKind(library.fi_rotation_call_problem_kind(call, i)),
        backup=_backup_at(backups, library.fi_rotation_call_problem_backup(call, i)),
        text=_words(library.fi_rotation_call_problem_text(call, i)))


def _target(call: Any, i: int, j: int, backups: tuple[Backup, ...]) -> Target:
    return Target(
        name=_text(library.fi_rotation_call_target(call, i, j)),
        holder=_backup_at(backups, library.fi_rotation_call_target_holder(call, i, j)))


def _configuration(call: Any, i: int, backups: tuple[Backup, ...]) -> Configuration:
    return Configuration(
        first=_text(library.fi_rotation_call_configuration_first(call, i)),
        chosen=_optional_text(library.fi_rotation_call_configuration_chosen(call, i)),
        kept=library.fi_rotation_call_configuration_kept(call, i),
        targets=tuple(_target(call, i, j, backups) for j in range(library.fi_rotation_call_target_count(call, i))))


def _facts(call: Any, kind: OutcomeKind) -> dict[str, Any]:
    """Returns the members that every outcome has."""
    backups = tuple(_backup(call, i) for i in range(library.fi_rotation_call_backup_count(call)))
    return {
        "kind": kind,
        "message": _words(library.fi_rotation_call_message(call)),
        "problems": tuple(_problem(call, i, backups) for i in range(library.fi_rotation_call_problem_count(call))),
        "configurations": tuple(_configuration(call, i, backups)
                                for i in range(library.fi_rotation_call_configuration_count(call))),
        "backups": backups,
    }


def _raise(call: Any, kind: OutcomeKind) -> NoReturn:
    if kind in _EXCEPTIONS:
        raise _EXCEPTIONS[kind](Outcome(**_facts(call, kind)))
    message = _words(library.fi_rotation_call_message(call))
    raise MemoryError(message) if kind is OutcomeKind.OUT_OF_MEMORY else RuntimeError(message)


# ---- the call ----

class _Trace:
    """Passes the lines of the trace to `function` until it raises an exception, which must not enter the library and
    is kept until the call is over."""

    def __init__(self, function: Callable[[int, str], object]) -> None:
        self._function = function
        self._failure: BaseException | None = None
        self.callback = TraceFunction(self._receive)

    def _receive(self, _user: int | None, level: int, text: bytes) -> None:
        if self._failure is not None:
            return
        try:
            self._function(level, _words(text))
        except BaseException as failure:  # KeyboardInterrupt too.
            self._failure = failure

    def raise_failure(self) -> None:
        if self._failure is not None:
            raise self._failure


@contextmanager
def _new_call(configuration: bytes) -> Iterator[Any]:
    # The handle is None when memory ran out. Every function accepts that, and fi_rotation_call_run reports it.
    call = library.fi_rotation_call_new(configuration)
    try:
        yield call
    finally:
        library.fi_rotation_call_free(call)


def rotate(configuration: str | bytes, backups: Iterable[FileName], *,
           excluded: Iterable[FileName] = (),
           permit: ProblemKind = ProblemKind(0),
           keep_at_least: int = 0,
           limit_document: int | None = None,
           allow_no_backups: bool = False,
           trace: Callable[[int, str], object] | None = None) -> Selected:
    """Decides which targets a new snapshot backup may use, and returns them. Raises an exception when there are none.

    configuration      the configurations, separated by '&' or line ends; in each the targets, separated by ';'. A
                       target is ENCLOSURE##DEVICE, or DEVICE if it has the enclosure of the target before it. The first
                       target is the device that is backed up; the further targets may hold its snapshots. A str
                       is encoded as UTF-8.
    backups            the documents of all earlier backups. The targets of a backup that is not listed count as free.
    excluded           the backups that must not be released, with the same names as in `backups`.
    permit             the problems for which Refused is not raised; ProblemKind says what happens then.
    keep_at_least      how many backups of each configuration must be kept. A configuration that has fewer must keep
                       all.
    limit_document     how many bytes a document may have; 128 MiB unless given. Give ten times the size of your largest
                       document: one that was made to be slow costs time and memory in proportion to its bytes.
    allow_no_backups   whether `backups` may be empty, as it is for the first backup of all. Otherwise an empty list is
                       an error, because it usually means a wrong folder, and every target would count as free.
    trace              a function that is called in this thread with each line of the trace, often more than a hundred
                       for each document: a level and a text. Level 3 is for failures, and for the flag word of each
                       backup, which is none ("... exclude rotation flag [0] "); level 4 is for progress. rotate() raises
                       what it raises.

    rotate() reads the documents and writes nothing. Several threads may call it at the same time; their calls run one
    after the other.

    Returns an outcome with these attributes. Reasons are always worked out.

    selection          "[FIRST;CHOSEN]" for each configuration in order, with nothing in between
    configurations     in order, each with `first` (the device that is backed up), `chosen` (the target to use), `kept`
                       (how many kept backups hold a target of it after the rotation) and `targets`, each of these with
                       `name` and `holder` (a backup, which may be invalid; None when the target is free)
    backups            in the order given, each with `file`, `state` (State.KEPT, INVALID or ROTATED, or NO_STATE for a
                       document that was ignored), `reason` (a word for programs), `reason_text`, `time_stamp`,
                       `targets` (those it held before the rotation; empty when it is invalid) and `problems`
    problems           those that were permitted, each with `kind`, `backup` (None for the configuration) and `text`
    kind, message      OutcomeKind.SELECTED and a sentence

    Take the new backup only while no state is State.INVALID: targets of an invalid backup may be among the chosen. A
    person must correct the configuration, or delete that backup and its document.

    Raises NoFreeTarget, TooFewBackups or Refused (each is a RotationError) when there is no selection; the attribute
    `outcome` of each has the attributes above, except `selection`, and `problems` of Refused tells what is wrong with
    which input. Raises ValueError or TypeError for wrong arguments, such as an excluded backup that is not listed;
    MemoryError, after which a later call works; and RuntimeError when `trace` calls rotate(), when the XML library
    could not be set up (call again later, and if it fails again, start the program anew), or in a process that was
    forked while another thread was in rotate().

    >>> import fi_rotation, glob
    >>> with open("resource.conf") as file:
    ...     configuration = file.read()
    >>> outcome = fi_rotation.rotate(configuration, sorted(glob.glob("backup-*.xml")),
    ...                              excluded=["backup-2026-10-01.xml"])
    >>> for choice in outcome.configurations:
    ...     print(choice.first, "->", choice.chosen)
    ENC-A##VOL-0011 -> ENC-A##SNP-0102
    ENC-A##VOL-0012 -> ENC-A##SNP-0112
    ENC-B##VOL-0021 -> ENC-B##SNP-0202
    >>> [backup.file for backup in outcome.backups if backup.state is fi_rotation.State.ROTATED]
    ['backup-2026-10-03.xml']
    """
    names = _names_argument(backups, "backups")
    excluded_names = set(_names_argument(excluded, "excluded"))
    unknown = sorted(os.fsdecode(name) for name in excluded_names.difference(names))
    if unknown:
        raise ValueError(f"excluded names files that are not in backups: {unknown}")
    if not names and not allow_no_backups:
        raise ValueError("backups is empty; for a first backup pass allow_no_backups=True")

    with _new_call(_configuration_argument(configuration)) as call:
        for name in names:
            library.fi_rotation_call_add(call, name, name in excluded_names)
        library.fi_rotation_call_permit(call, _number_argument(permit, 32, "permit"))
        library.fi_rotation_call_keep_at_least(call, _number_argument(keep_at_least, 31, "keep_at_least"))
        if limit_document is not None:
            library.fi_rotation_call_limit_document(call, _number_argument(limit_document, 64, "limit_document"))
        library.fi_rotation_call_ask_reasons(call, True)
        tracing = None if trace is None else _Trace(trace)
        if tracing is not None:
            library.fi_rotation_call_set_trace(call, _PROGRESS_LEVEL, tracing.callback, None)
        kind = OutcomeKind(library.fi_rotation_call_run(call))
        if tracing is not None:
            tracing.raise_failure()
        if kind is not OutcomeKind.SELECTED:
            _raise(call, kind)
        return Selected(**_facts(call, kind), selection=_text(library.fi_rotation_call_selection(call)))
