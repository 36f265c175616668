"""A small header and page, as host_page.py compares them."""

import unittest

import host_page

HEADER = '''
typedef enum fi_rotation_state {
    /* Comment. */
    FI_ROTATION_NONE = -1,
    FI_ROTATION_KEPT = 0
} fi_rotation_state;

FI_ROTATION_API const char* fi_rotation_version(void);
FI_ROTATION_API fi_rotation_state fi_rotation_call_state(const fi_rotation_call* call,
                                                         int32_t backup);
'''
PAGE = '''
typedef void (*fi_rotation_trace_fn)(void *user);
const char *fi_rotation_version(void);
fi_rotation_state fi_rotation_call_state(const fi_rotation_call *call,
                                         int32_t backup);

*fi_rotation_version*() is the version.

*fi_rotation_call_state*() is one of these:

*FI_ROTATION_NONE* (-1)
	Nothing.

*FI_ROTATION_KEPT* (0)
	Kept.
'''


class HostPage(unittest.TestCase):
    def faults(self, header=HEADER, page=PAGE):
        return list(host_page.differences(header, page))

    def test_a_page_that_has_all_is_accepted(self):
        self.assertEqual(self.faults(), [])

    def test_every_declaration_description_and_value_is_needed(self):
        needed = [line for line in PAGE.splitlines()
                  if "fi_rotation_" in line.lower() and not line.startswith("typedef")]
        self.assertEqual(len(needed), 6)
        for line in needed:
            with self.subTest(line):
                self.assertEqual(len(self.faults(page=PAGE.replace(line, ""))), 1)

    def test_what_the_header_does_not_have_is_noticed(self):
        for line in "void fi_rotation_gone(void);", "*fi_rotation_gone*() is", "*FI_ROTATION_GONE* (7)":
            with self.subTest(line):
                self.assertEqual(len(self.faults(page=PAGE + line + "\n")), 1)

    def test_another_value_is_noticed(self):
        self.assertEqual(len(self.faults(page=PAGE.replace("(0)", "(1)"))), 2)

    def test_a_header_in_which_nothing_is_found_is_noticed(self):
        self.assertEqual(len(self.faults(header="", page="")), 3)


if __name__ == "__main__":
    unittest.main()
