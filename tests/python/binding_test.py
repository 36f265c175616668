"""Usage: binding_test.py HEADER VERSION

The package binds the library's functions as the header declares them, and notices a wrong library.
"""

import ctypes
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import types
import unittest
import unittest.mock

import fi_rotation
from fi_rotation import _library

HEADER = ""
VERSION = ""

ENUMERATIONS = {"outcome": fi_rotation.OutcomeKind, "problem": fi_rotation.ProblemKind, "state": fi_rotation.State}
TYPES = {"void": None, "int32_t": ctypes.c_int32, "uint32_t": ctypes.c_uint32, "uint64_t": ctypes.c_uint64,
         "const char*": ctypes.c_char_p, "fi_rotation_call*": ctypes.c_void_p,
         "const fi_rotation_call*": ctypes.c_void_p, "void*": ctypes.c_void_p, "fi_rotation_outcome": ctypes.c_int,
         "fi_rotation_state": ctypes.c_int, "fi_rotation_trace_fn": _library.TraceFunction}


def without_comments(text):
    return re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)


def enumerations(code):
    """The enumerators of each enumeration, without the prefix that C needs, and their values."""
    return {name: {word: int(value) for word, value in re.findall(r"FI_ROTATION_(\w+) = (-?\d+)", body)}
            for body, name in re.findall(r"typedef enum \w+ \{(.*?)\} fi_rotation_(\w+);", code, re.DOTALL)}


def functions(code):
    """What each function returns and takes, as ctypes sees it."""
    found = {}
    for result, name, arguments in re.findall(r"^FI_ROTATION_API ([\w ]+\*?) (\w+)\(([^)]*)\);", code, re.MULTILINE):
        # Without the names of the arguments.
        passed = [re.sub(r"\s*\w+$", "", argument.strip()) for argument in arguments.split(",")]
        found[name] = (TYPES[result], () if arguments == "void" else tuple(TYPES[one] for one in passed))
    return found


class Header(unittest.TestCase):
    def test_enumerations_have_the_names_and_values_of_the_header(self):
        self.assertEqual(enumerations(HEADER), {
            name: {member.name: member.value for member in enumeration} for name, enumeration in ENUMERATIONS.items()})

    def test_every_function_is_bound_with_its_types(self):
        found = functions(HEADER)
        self.assertEqual(found, _library.FUNCTIONS)
        self.assertEqual(len(found), HEADER.count("FI_ROTATION_API ") - len(["#define"]))

    def test_the_bound_functions_have_these_types(self):
        for name, (result, arguments) in functions(HEADER).items():
            with self.subTest(name):
                function = getattr(_library.library, name)
                self.assertEqual((function.restype, tuple(function.argtypes)), (result, arguments))

    def test_the_trace_function_is_the_headers(self):
        self.assertIn("typedef void (*fi_rotation_trace_fn)(void* user, int32_t level, const char* text);", HEADER)
        self.assertEqual((_library.TraceFunction._restype_, _library.TraceFunction._argtypes_),
                         (None, (ctypes.c_void_p, ctypes.c_int32, ctypes.c_char_p)))


class Version(unittest.TestCase):
    def test_package_and_library_have_the_projects(self):
        self.assertEqual((fi_rotation.__version__, fi_rotation.library_version()), (VERSION, VERSION))

    @unittest.mock.patch.object(_library, "__version__", "2.3.4")
    def test_the_same_library_or_a_later_one_of_its_major_version_is_accepted(self):
        for version in "2.3.4", "2.3.5", "2.4.0", "2.10.0":
            _library.check_version(version)

    @unittest.mock.patch.object(_library, "__version__", "2.3.4")
    def test_an_older_library_or_one_of_another_major_version_is_not(self):
        for version in "2.3.3", "2.2.9", "1.9.9", "3.0.0":
            with self.subTest(version), self.assertRaisesRegex(ImportError, f"has version {version}"):
                _library.check_version(version)


class OtherLibraries(unittest.TestCase):
    def test_one_that_cannot_be_loaded_is_an_import_error_that_names_the_package(self):
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, _library.SONAME).write_text("no library")
            run = subprocess.run([sys.executable, "-B", "-c", "import fi_rotation"], stderr=subprocess.PIPE, text=True,
                                 env={**os.environ, "LD_LIBRARY_PATH": folder}, check=False)
        self.assertEqual(run.returncode, 1)
        self.assertRegex(run.stderr.splitlines()[-1],
                         r"^ImportError: libfi_rotation_host\.so\.1 .*install the package libfi-rotation-host1$")

    def test_one_that_lacks_a_function_is_an_import_error_that_names_it(self):
        lacking = types.SimpleNamespace(**{name: types.SimpleNamespace() for name in _library.FUNCTIONS
                                           if name != "fi_rotation_call_run"})
        with self.assertRaisesRegex(ImportError, "fi_rotation_call_run.*libfi-rotation-host1"):
            _library.bind(lacking)


if __name__ == "__main__":
    VERSION = sys.argv.pop()
    HEADER = without_comments(pathlib.Path(sys.argv.pop()).read_text(encoding="utf-8"))
    unittest.main()
