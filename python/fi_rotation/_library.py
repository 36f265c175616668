"""Loads the shared library and tells ctypes the types of its C functions, which host/host.h declares."""

import ctypes
from typing import Any

__version__ = "1.0.0"

SONAME = "libfi_rotation_host.so.1"
PACKAGE = "libfi-rotation-host1"

Call = ctypes.c_void_p
Text = ctypes.c_char_p
Index = ctypes.c_int32
Problems = ctypes.c_uint32
TraceFunction = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_int32, Text)

# The result type and the argument types of each function. A text must contain no NUL: the library would read it only
# up to there.
FUNCTIONS: dict[str, tuple[Any, tuple[Any, ...]]] = {
    "fi_rotation_version": (Text, ()),
    "fi_rotation_call_new": (Call, (Text,)),
    "fi_rotation_call_free": (None, (Call,)),
    "fi_rotation_call_add": (Index, (Call, Text, ctypes.c_int32)),
    "fi_rotation_call_permit": (None, (Call, Problems)),
    "fi_rotation_call_limit_document": (None, (Call, ctypes.c_uint64)),
    "fi_rotation_call_keep_at_least": (None, (Call, ctypes.c_int32)),
    "fi_rotation_call_ask_reasons": (None, (Call, ctypes.c_int32)),
    "fi_rotation_call_set_trace": (None, (Call, ctypes.c_int32, TraceFunction, ctypes.c_void_p)),
    "fi_rotation_call_run": (ctypes.c_int, (Call,)),
    "fi_rotation_call_message": (Text, (Call,)),
    "fi_rotation_call_problem_count": (ctypes.c_int32, (Call,)),
    "fi_rotation_call_problem_kind": (Problems, (Call, Index)),
    "fi_rotation_call_problem_backup": (Index, (Call, Index)),
    "fi_rotation_call_problem_text": (Text, (Call, Index)),
    "fi_rotation_call_selection": (Text, (Call,)),
    "fi_rotation_call_configuration_count": (ctypes.c_int32, (Call,)),
    "fi_rotation_call_configuration_first": (Text, (Call, Index)),
    "fi_rotation_call_configuration_chosen": (Text, (Call, Index)),
    "fi_rotation_call_configuration_kept": (ctypes.c_int32, (Call, Index)),
    "fi_rotation_call_target_count": (ctypes.c_int32, (Call, Index)),
    "fi_rotation_call_target": (Text, (Call, Index, Index)),
    "fi_rotation_call_target_holder": (Index, (Call, Index, Index)),
    "fi_rotation_call_backup_count": (ctypes.c_int32, (Call,)),
    "fi_rotation_call_backup_file": (Text, (Call, Index)),
    "fi_rotation_call_backup_problems": (Problems, (Call, Index)),
    "fi_rotation_call_backup_state": (ctypes.c_int, (Call, Index)),
    "fi_rotation_call_backup_time_stamp": (Text, (Call, Index)),
    "fi_rotation_call_backup_target_count": (ctypes.c_int32, (Call, Index)),
    "fi_rotation_call_backup_target": (Text, (Call, Index, Index)),
    "fi_rotation_call_backup_reason": (Text, (Call, Index)),
    "fi_rotation_call_backup_reason_text": (Text, (Call, Index)),
}


def load() -> Any:
    try:
        return ctypes.CDLL(SONAME)
    except OSError as reason:
        raise ImportError(f"{SONAME} cannot be loaded ({reason}); install the package {PACKAGE}") from reason


def bind(library: Any) -> Any:
    """Tells ctypes the types of all functions. Raises ImportError when one is missing."""
    for name, (result, arguments) in FUNCTIONS.items():
        try:
            function = getattr(library, name)
        except AttributeError as reason:
            raise ImportError(f"{SONAME} has no function {name}; update the package {PACKAGE}") from reason
        function.restype = result
        function.argtypes = arguments
    return library


def numbers_of(version: str) -> tuple[int, ...]:
    return tuple(int(number) for number in version.split("."))


def check_version(version: str) -> None:
    """Raises ImportError unless the library has the major version of this package and is not older than it."""
    wanted, found = numbers_of(__version__), numbers_of(version)
    if found[0] != wanted[0] or found < wanted:
        raise ImportError(f"{SONAME} has version {version}, and fi_rotation needs {__version__} or a later "
                          f"{wanted[0]}.x; update the packages {PACKAGE} and python3-fi-rotation")


def library_version() -> str:
    """Returns the version of the loaded library.

    >>> import fi_rotation
    >>> fi_rotation.library_version().split(".")[0]
    '1'
    """
    version: bytes = library.fi_rotation_version()
    return version.decode()


library = bind(load())
check_version(library_version())
