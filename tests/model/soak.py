#!/usr/bin/python3
"""Compares the library with the model on random calls.

Every outcome is compared whole: status, selection, flags, exception, every line of the trace, standard
output. A call with a difference is made smaller as long as there is one, and shown. In the end the branches that the
calls took are listed with their numbers; with --least, one that was taken less often is a failure too.
"""

import argparse
import collections
import os
import random
import struct
import subprocess
import sys
import tempfile

import calls
import model

BATCH = 500
BRANCHES = [
    "status 0",
    "status 3",
    "exception 1",
    "exception 2",
    "exception 3",
    "exception 4",
    "first backup with a selection",
    "first backup without a target",
    "negative size",
    "configuration string without a configuration",
    "configuration that has no targets specified",
    "configuration that has no device data specified",
    "configuration that has no enclosure data specified",
    "file that cannot be opened",
    "document without a Node",
    "ill-formed document",
    "root replaced by a later one",
    "name listed twice",
    "backup invalid in the check",
    "backup invalid in the claim",
    "backup excluded from rotation",
    "backup rotated",
    "rotation stopped before the last backup",
]


class Library:
    """The library, called by a host program in a folder of its own."""

    def __init__(self, host, library, folder):
        self.command = [host, library, os.path.join(folder, "calls"), os.path.join(folder, "outcomes")]

    def outcomes(self, batch):
        """Makes the calls; each has its documents written before it, so they must not share names."""
        with open(self.command[2], "wb") as file:
            for call in batch:
                write_call(file, call)
        subprocess.run(self.command, check=True)
        with open(self.command[3], "rb") as file:
            outcomes = [read_outcome(file, len(call.backups)) for call in batch]
            if file.read():
                raise ValueError("more outcomes than calls")
        return outcomes


def number(value):
    return struct.pack("<i", value)


def text(value):
    encoded = value.encode()
    return number(len(encoded)) + encoded


def write_call(file, call):
    file.write(text(call.configuration) + number(call.count()) + number(len(call.backups)))
    file.write(b"".join(text(backup.name) for backup in call.backups))
    file.write(b"".join(number(backup.flag) for backup in call.backups))


def read_outcome(file, flag_count):
    def read_number():
        return struct.unpack("<i", file.read(4))[0]

    def read_text():
        return file.read(read_number()).decode()

    has_thrown, status, code, identifier = read_number(), read_number(), read_number(), read_text()
    has_selection, selection = read_number(), read_text()
    flags = [read_number() for _ in range(flag_count)]
    trace = [(read_number(), read_text()) for _ in range(read_number())]
    return model.Outcome(
        None if has_thrown else status,
        selection if has_selection else None,
        flags,
        (identifier, code) if has_thrown else None,
        trace,
        read_text(),
    )


def write_documents(call):
    for backup in call.backups:
        if backup.document is not None:
            with open(backup.name, "w", encoding="utf-8", newline="") as file:
                file.write(backup.document.write()[0])


def remove_documents(call):
    for name in {backup.name for backup in call.backups if backup.document is not None}:
        os.remove(name)


def expected(call):
    """The model's outcome, and the branches that it took."""
    deciding = model.Model()
    documents = {
        backup.name: None if backup.document is None else backup.document.write()[1]
        for backup in call.backups
    }
    outcome = deciding.call(
        call.configuration,
        [backup.name for backup in call.backups],
        [backup.flag for backup in call.backups],
        call.count(),
        documents,
    )
    return outcome, deciding.seen


def differs(library, call, alter):
    write_documents(call)
    outcome = alter(library.outcomes([call])[0])
    remove_documents(call)
    return outcome != expected(call)[0]


def smallest(library, call, alter):
    """The call, as small as it can be made with a difference left."""
    while True:
        for smaller in calls.smaller_calls(call):
            if differs(library, smaller, alter):
                call = smaller
                break
        else:
            return call


def show(library, call, alter, seed):
    write_documents(call)
    outcome = alter(library.outcomes([call])[0])
    remove_documents(call)
    print(f"Difference (seed {seed}):")
    print(f"  configuration {call.configuration!r}, size {call.count()}")
    for backup in call.backups:
        content = "not there" if backup.document is None else repr(backup.document.write()[0])
        print(f"  {backup.name} flag {backup.flag}: {content}")
    wanted = expected(call)[0]
    for field, library_value, model_value in zip(model.Outcome._fields, outcome, wanted):
        if library_value == model_value:
            continue
        if field == "trace":
            pairs = zip(library_value + [None], model_value + [None])
            line, (library_value, model_value) = next(
                (i, pair) for i, pair in enumerate(pairs) if pair[0] != pair[1]
            )
            field = f"trace line {line + 1}"
        print(f"  {field}: library {library_value!r}, model {model_value!r}")


def unaltered(outcome):
    return outcome


def run(library, folder, count, seed, alter=unaltered):
    """The number of calls that differ, and how often each branch was taken. Stops at the first difference."""
    seen = collections.Counter()
    for start in range(0, count, BATCH):
        batch = []
        for index in range(start, min(start + BATCH, count)):
            source = random.Random(f"{seed} {index}")
            batch.append(calls.Generator(source, os.path.join(folder, str(index - start))).call())
        for index, call in enumerate(batch):
            os.makedirs(os.path.join(folder, str(index)), exist_ok=True)
            write_documents(call)
        outcomes = [alter(outcome) for outcome in library.outcomes(batch)]
        for index, (call, outcome) in enumerate(zip(batch, outcomes)):
            remove_documents(call)
            wanted, branches = expected(call)
            seen.update(branches)
            if outcome != wanted:
                show(library, smallest(library, call, alter), alter, f"{seed} {start + index}")
                return 1, seen
    return 0, seen


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("host")
    arguments.add_argument("library")
    arguments.add_argument("--calls", type=int, default=20000)
    arguments.add_argument("--seed", type=int, default=1)
    arguments.add_argument("--least", type=int, default=0, help="of calls in each branch")
    options = arguments.parse_args()

    shared_memory = "/dev/shm" if os.path.isdir("/dev/shm") else None
    with tempfile.TemporaryDirectory(dir=shared_memory) as folder:
        library = Library(options.host, options.library, folder)
        differences, seen = run(library, folder, options.calls, options.seed)
    for branch in BRANCHES:
        print(f"{seen[branch]:12} {branch}")
    unknown = set(seen) - set(BRANCHES)
    rare = [branch for branch in BRANCHES if seen[branch] < options.least]
    for branch in rare:
        print(f"too rare: {branch}")
    for branch in unknown:
        print(f"not known: {branch}")
    print(f"{options.calls} calls, {differences} differences")
    return 1 if differences or rare or unknown else 0


if __name__ == "__main__":
    sys.exit(main())
