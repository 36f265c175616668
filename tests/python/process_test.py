"""rotate() among threads, trace functions and forks, and when memory runs out."""

import concurrent.futures
import os
import threading
import traceback
import unittest
import unittest.mock

import fi_rotation
from backups import CONFIGURATION, FolderTest
from fi_rotation import _library

FORKED = "forked while another thread"


class TraceFunction(FolderTest):
    def test_it_receives_lines_of_both_levels_on_the_calling_thread(self):
        lines, threads = [], set()

        def trace(level, text):
            lines.append((level, text))
            threads.add(threading.get_ident())

        fi_rotation.rotate(CONFIGURATION, self.two_backups(), trace=trace)
        self.assertIn((3, "fi_process_backups :  Fiid [old.xml] exclude rotation flag [0] "), lines)
        self.assertEqual({level for level, _ in lines}, {3, 4})
        self.assertEqual(threads, {threading.get_ident()})

    def test_what_it_raises_reaches_the_caller_and_it_is_not_called_again(self):
        for failure in ValueError("mine"), KeyboardInterrupt(), SystemExit(3):
            lines = []

            def trace(_level, text, lines=lines, failure=failure):
                lines.append(text)
                raise failure

            with self.subTest(failure), self.assertRaises(type(failure)) as raised:
                fi_rotation.rotate(CONFIGURATION, self.two_backups(), trace=trace)
            self.assertIs(raised.exception, failure)
            self.assertEqual(len(lines), 1)

    def test_what_it_raises_hides_no_later_call(self):
        with self.assertRaises(ZeroDivisionError):
            fi_rotation.rotate(CONFIGURATION, self.two_backups(), trace=lambda _level, _text: 1 // 0)
        self.assertEqual(fi_rotation.rotate(CONFIGURATION, self.two_backups()).selection, "[encA##lun1;encA##snap1]")

    def test_a_line_that_is_no_utf_8_can_be_printed(self):
        lines = []
        fi_rotation.rotate(b"encA##lun1;encA##sn\xe4p", [], allow_no_backups=True,
                           trace=lambda _level, text: lines.append(text))
        self.assertIn("CFiResourceParser::parse : [encA][sn\\xe4p]", lines)

    def test_a_call_within_it_is_an_error_and_the_outer_call_goes_on(self):
        failures = []

        def trace(_level, _text):
            if not failures:
                with self.assertRaisesRegex(RuntimeError, "trace function") as raised:
                    fi_rotation.rotate(CONFIGURATION, [], allow_no_backups=True)
                failures.append(raised.exception)

        outcome = fi_rotation.rotate(CONFIGURATION, self.two_backups(), trace=trace)
        self.assertEqual(len(failures), 1)
        self.assertEqual(outcome.selection, "[encA##lun1;encA##snap1]")


class Memory(FolderTest):
    def test_a_call_that_cannot_be_allocated_is_a_memory_error(self):
        with unittest.mock.patch.object(_library.library, "fi_rotation_call_new", return_value=None):
            with self.assertRaisesRegex(MemoryError, "memory ran out"):
                fi_rotation.rotate(CONFIGURATION, self.two_backups())


    def test_what_a_call_takes_is_given_back_however_it_ends(self):
        library, new, freed = _library.library, [], []

        def new_call(configuration, allocate=library.fi_rotation_call_new):
            new.append(allocate(configuration))
            return new[-1]

        def free_call(call, release=library.fi_rotation_call_free):
            freed.append(call)
            release(call)

        with unittest.mock.patch.multiple(library, fi_rotation_call_new=new_call, fi_rotation_call_free=free_call):
            fi_rotation.rotate(CONFIGURATION, self.two_backups())
            for failure, arguments in ((fi_rotation.Refused, {"backups": ["none.xml"]}),
                                       (ZeroDivisionError, {"trace": lambda _level, _text: 1 // 0}),
                                       (ValueError, {"keep_at_least": -1})):
                with self.assertRaises(failure):
                    fi_rotation.rotate(CONFIGURATION, **{"backups": self.two_backups(), **arguments})
        self.assertEqual(len(new), 4)
        self.assertEqual(freed, new)


class Threads(FolderTest):
    def test_calls_at_once_all_come_to_their_own_outcome(self):
        backups = self.two_backups()

        def call(number):
            trace = (lambda _level, _text: None) if number % 2 else None
            return fi_rotation.rotate(f"enc{number}##lun;enc{number}##snap&" + CONFIGURATION, backups,
                                      trace=trace).selection

        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            selections = list(pool.map(call, range(200)))
        self.assertEqual(selections, [f"[enc{number}##lun;enc{number}##snap][encA##lun1;encA##snap1]"
                                      for number in range(200)])

    def test_other_threads_run_while_one_is_in_a_call(self):
        entered, left = threading.Event(), threading.Event()

        def trace(_level, _text):
            entered.set()
            left.wait()

        thread = threading.Thread(target=fi_rotation.rotate, args=(CONFIGURATION, self.two_backups()),
                                  kwargs={"trace": trace})
        thread.start()
        # Waits for ever if this thread cannot run now.
        entered.wait()
        left.set()
        thread.join()


class Forks(FolderTest):
    def in_child(self, check):
        """Runs `check` in a process forked from this one, and expects that it succeeds."""
        child = os.fork()
        if child == 0:
            try:
                check()
                os._exit(0)
            except BaseException:
                traceback.print_exc()
                os._exit(1)
        self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), 0)

    def expect_selection(self):
        self.assertEqual(fi_rotation.rotate(CONFIGURATION, self.backups).selection, "[encA##lun1;encA##snap1]")

    def expect_refusal_of_this_process(self):
        with self.assertRaisesRegex(RuntimeError, FORKED):
            fi_rotation.rotate(CONFIGURATION, self.backups)

    def setUp(self):
        super().setUp()
        self.backups = self.two_backups()

    def fork_while_another_thread_is_in_a_call(self, check):
        entered, left = threading.Event(), threading.Event()

        def trace(_level, _text):
            entered.set()
            left.wait()

        with concurrent.futures.ThreadPoolExecutor(1) as pool:
            call = pool.submit(fi_rotation.rotate, CONFIGURATION, self.backups, trace=trace)
            entered.wait()
            try:
                self.in_child(check)
            finally:
                left.set()
            self.assertEqual(call.result().selection, "[encA##lun1;encA##snap1]")

    def test_a_child_runs_calls_when_none_ran_at_the_fork(self):
        self.expect_selection()
        self.in_child(self.expect_selection)

    def test_a_child_of_a_fork_during_a_call_cannot_run_any(self):
        self.fork_while_another_thread_is_in_a_call(self.expect_refusal_of_this_process)

    def test_nor_can_its_threads_and_children(self):
        def check():
            # New threads may get the ids of threads that the child did not inherit.
            with concurrent.futures.ThreadPoolExecutor(4) as pool:
                calls = [pool.submit(self.expect_refusal_of_this_process) for _ in range(4)]
                children = [pool.submit(self.in_child, self.expect_refusal_of_this_process) for _ in range(4)]
            for run in calls + children:
                run.result()

        self.fork_while_another_thread_is_in_a_call(check)

    def test_a_child_of_the_trace_function_ends_the_call_as_its_parent_does(self):
        children = []

        def trace(_level, _text):
            if not children:
                children.append(os.fork())

        outcome = fi_rotation.rotate(CONFIGURATION, self.backups, trace=trace)
        if children[0] == 0:
            os._exit(0 if outcome.selection == "[encA##lun1;encA##snap1]" else 1)
        self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(children[0], 0)[1]), 0)
        self.assertEqual(outcome.selection, "[encA##lun1;encA##snap1]")


if __name__ == "__main__":
    unittest.main()
