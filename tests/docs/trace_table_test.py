"""Small sources and guides, as trace_table.py compares them."""

import unittest

import trace_table

CODE = '''
void f() {
    mofi_tracelog(kTraceFailure, "one \\"%s\\" "
                  "two\\n", text);
    mofi_tracelog(
        kTraceProgress, "three");
    std::printf("four\\n");
    traceEntering("CFiX::f");
    traceExiting(kNoName);
}
void mofi_tracelog(int level, const char* format, ...);
'''
GUIDE = '''
| level | message | meaning |
|---|---|---|
| 3 | `one "%s" two\\n` | first |
| 4 | `three` | second |
| output | `four\\n` | third |

| operation | what |
|---|---|
| ` ` | nameless |
| `CFiX::f` | f |
'''
TABLE = '''
    {ETraceText::kOne, ELevel::kFailure, "one \\"%s\\" "
     "two\\n"},
    {ETraceText::kThree, ELevel::kProgress, "three", ESplit::kFirst},
'''


class TraceTable(unittest.TestCase):
    def faults(self, code=CODE, guide=GUIDE):
        return list(trace_table.differences(code, guide))

    def test_a_guide_that_lists_all_is_accepted(self):
        self.assertEqual(self.faults(), [])

    def test_every_row_is_needed(self):
        rows = [row for row in GUIDE.splitlines() if "`" in row]
        self.assertEqual(len(rows), 5)
        for row in rows:
            with self.subTest(row):
                self.assertEqual(len(self.faults(guide=GUIDE.replace(row + "\n", ""))), 1)

    def test_a_table_that_lists_all_is_accepted(self):
        self.assertEqual(list(trace_table.differences_of_table(CODE, TABLE)), [])

    def test_a_table_that_lacks_a_failure_or_lists_another_message_is_noticed(self):
        for change in ("three", "five"), ("kProgress", "kFailure"), ("ETraceText::kOne", "kOne"):
            with self.subTest(change):
                self.assertEqual(len(list(trace_table.differences_of_table(CODE, TABLE.replace(*change)))), 1)

    def test_a_row_of_nothing_is_noticed(self):
        self.assertEqual(len(self.faults(guide=GUIDE + "| 4 | `five` | nothing |\n")), 1)
        self.assertEqual(len(self.faults(guide=GUIDE + "| `CFiX::g` | nothing |\n")), 1)

    def test_another_level_is_noticed(self):
        self.assertEqual(len(self.faults(guide=GUIDE.replace("| 3 |", "| 4 |"))), 2)

    def test_a_format_that_cannot_be_read_is_noticed(self):
        self.assertEqual(len(self.faults(code=CODE + "mofi_tracelog(kTraceFailure, format);")), 1)

    def test_sources_without_messages_are_noticed(self):
        self.assertEqual(len(self.faults(code="", guide="")), 2)


if __name__ == "__main__":
    unittest.main()
