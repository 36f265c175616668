"""Usage: mutate.py ROOT COUNT SEED [PATH...]

Tries COUNT faults in copies of the project at ROOT, see scripts/mutate.
"""

import hashlib
import json
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import threading
import time
from typing import Any, Dict, List, NamedTuple, Sequence, Tuple

import faults


class Part(NamedTuple):
    """The targets to build, as arguments of cmake --build, and the tests that need them, as arguments of ctest."""
    targets: Tuple[Tuple[str, ...], ...]
    tests: Tuple[str, ...]
    is_program: bool


LIBRARIES = Part((("--preset", "unit"), ("--preset", "contract")), ("-L", "unit|contract"), False)
READERS_OF_LOGS = Part((("--preset", "release", "--target", "fi_rotate_tests"),),
                       ("-R", "FiRotateLog", "-LE", "slow"), True)

# The names of tests that are left out; scripts/mutate says why.
LEFT_OUT = re.compile(r"Walls\.|Labels\.|Mutation\.|Symbols\.|PublicHeaders\.AnotherSignature"
                      r"|CHostLibraryShortage\.OfOneBlock|CCeiling\.|CExtremes\.")
# Found in the commands of tests that know host/, and not in those of tests of the library alone.
HOST = re.compile(r"/fi_host_|/fi_fuzz_host|/fi_rotate_|/host/host\.h|/tests/python/")
# A fault may make an endless loop that takes memory or writes to a file.
LIMITS = ("prlimit", f"--as={4 << 30}", f"--fsize={1 << 28}", "--core=0")
COPIES = 2


class Check(NamedTuple):
    """One process that runs tests."""
    command: Tuple[str, ...]
    folder: str
    environment: Tuple[str, ...]
    is_slow: bool
    knows_host: bool

    def name(self) -> str:
        return " ".join(pathlib.Path(word).name for word in self.command[:3] if not word.startswith("-"))


def passes(check: Check, temporary: pathlib.Path, seconds: float) -> bool:
    """Whether the check passes within so many seconds. A process that takes longer is killed with its children."""
    temporary.mkdir(parents=True, exist_ok=True)
    environment = {**os.environ, "TMPDIR": str(temporary), **dict(pair.split("=", 1) for pair in check.environment)}
    process = subprocess.Popen((*LIMITS, *check.command), cwd=check.folder, env=environment,
                               stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               start_new_session=True)
    try:
        return process.wait(seconds) == 0
    except subprocess.TimeoutExpired:
        return False
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()
        shutil.rmtree(temporary, ignore_errors=True)


def checks_of(tests: Sequence[Dict[str, Any]]) -> List[Check]:
    """A check for the quick tests of each program, and one for its slow tests; it ends with the first that fails."""
    filters: Dict[Check, List[str]] = {}
    for test in tests:
        properties = {one["name"]: one["value"] for one in test["properties"]}
        program, *arguments = test["command"]
        names = [word.split("=", 1)[1] for word in arguments if word.startswith("--gtest_filter=")]
        command = (program, "--gtest_fail_fast") if names else (program, *arguments)
        check = Check(command, properties["WORKING_DIRECTORY"], tuple(properties.get("ENVIRONMENT", ())),
                      "slow" in properties["LABELS"], HOST.search(" ".join(test["command"])) is not None)
        filters.setdefault(check, []).extend(names)
    return [check._replace(command=(*check.command, "--gtest_filter=" + ":".join(names))) if names else check
            for check, names in filters.items()]


class Stage:
    """A part as built in a copy."""

    def __init__(self, copy: "Copy", part: Part) -> None:
        self.copy = copy
        self.part = part
        if not self.is_built():
            raise SystemExit("the copy cannot be built without a fault, see " + str(copy.log))
        self.objects = {path: digest(path) for path in copy.build.rglob("*.o")
                        if ("cli" in path.relative_to(copy.build).parts) == part.is_program}
        self.checks = self.checks_in_order()

    def is_built(self) -> bool:
        return all(self.copy.run("cmake", "--build", *target, "--parallel", "1") for target in self.part.targets)

    def is_changed(self) -> bool:
        return any(digest(path) != before for path, before in self.objects.items())

    def checks_in_order(self) -> List[Tuple[float, Check]]:
        """The checks with the seconds that they take, shortest first. Those that fail without a fault are left out."""
        listed = subprocess.run(
            ["ctest", "--preset", "release", "--show-only=json-v1", *self.part.tests], cwd=self.copy.folder,
            stdout=subprocess.PIPE, check=True)
        built = [test for test in json.loads(listed.stdout)["tests"]
                 if "command" in test and not LEFT_OUT.match(test["name"])]
        ordered = []
        for check in checks_of(built):
            start = time.monotonic()
            if passes(check, self.copy.temporary, 600):
                ordered.append((time.monotonic() - start, check))
                report(f"{ordered[-1][0]:8.2f} {check.name()}")
            else:
                report(f"left out, since it fails without a fault: {check.name()}")
        return sorted(ordered)

    def finder(self, of_host: bool) -> str:
        """The first check that fails; empty when none does. For a fault in host/ only checks that know it are run."""
        for seconds, check in self.checks:
            if (check.knows_host or not of_host) and not passes(check, self.copy.temporary, 20 + 10 * seconds):
                return check.name()
        return ""


def digest(path: pathlib.Path) -> bytes:
    return hashlib.sha256(path.read_bytes()).digest()


class Copy:
    """A copy of the project with a build of its own."""

    def __init__(self, root: pathlib.Path, folder: pathlib.Path) -> None:
        self.folder = folder
        self.build = folder / "build/release"
        self.temporary = folder / "build/tmp"
        self.log = folder.with_suffix(".log")
        self.log.parent.mkdir(parents=True, exist_ok=True)
        self.stages: List[Stage] = []
        shutil.copytree(root, folder, symlinks=True, dirs_exist_ok=True, copy_function=copy_if_changed,
                        ignore=lambda parent, names: {".git", "build"} if parent == str(root) else {"__pycache__"})
        # Programs with a fault are not run during the build, and not linked again when only a shared library changes.
        if not self.run("cmake", "--preset", "release", "-D", "CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST",
                        "-D", "CMAKE_LINK_DEPENDS_NO_SHARED=ON"):
            raise SystemExit("the copy cannot be configured, see " + str(self.log))

    def run(self, *command: str) -> bool:
        with self.log.open("w") as log:
            return subprocess.run(command, cwd=self.folder, stdout=log, stderr=log).returncode == 0

    def prepare(self) -> None:
        self.stages = [Stage(self, part) for part in (LIBRARIES, READERS_OF_LOGS)]

    def verdict(self, fault: faults.Fault) -> str:
        source = self.folder / fault.path
        text = source.read_text()
        source.write_text(fault.applied(text))
        try:
            return self.verdict_of_build(fault.path.startswith("host/"))
        finally:
            source.write_text(text)

    def verdict_of_build(self, of_host: bool) -> str:
        is_changed = False
        for stage in self.stages if of_host else self.stages[:1]:
            if not stage.is_built():
                return "not compiled"
            is_changed = is_changed or stage.is_changed()
            finder = stage.finder(of_host) if is_changed else ""
            if finder:
                return "found by " + finder
        return "survived" if is_changed else "changes nothing"


def copy_if_changed(source: str, target: str) -> None:
    new, old = pathlib.Path(source), pathlib.Path(target)
    if not old.exists() or new.read_bytes() != old.read_bytes():
        shutil.copy(source, target)


def report(line: str) -> None:
    print(line, file=sys.stderr, flush=True)


class Trial:
    """Draws faults at random until COUNT of them compiled. Each copy of the project takes the next one."""

    def __init__(self, root: pathlib.Path, count: int, seed: int, paths: Sequence[str]) -> None:
        self.count = count
        self.drawn = [fault for fault in faults.all_faults(root) if fault.path.startswith(tuple(paths))]
        random.Random(seed).shuffle(self.drawn)
        self.lock = threading.Condition()
        self.running = 0
        self.verdicts: List[str] = []

    def work(self, copy: Copy) -> None:
        copy.prepare()
        while True:
            with self.lock:
                # A fault that is being tried may turn out not to compile; then another one is needed.
                self.lock.wait_for(lambda: len(self.verdicts) + self.running < self.count or self.running == 0)
                if len(self.verdicts) >= self.count or not self.drawn:
                    return
                fault = self.drawn.pop(0)
                self.running += 1
            line = fault.told((copy.folder / fault.path).read_text())
            verdict = copy.verdict(fault)
            with self.lock:
                self.running -= 1
                if verdict != "not compiled":
                    self.verdicts.append(verdict)
                    self.tell(line, verdict)
                self.lock.notify_all()

    def tell(self, line: str, verdict: str) -> None:
        report(f"{len(self.verdicts):4} {verdict}: {line}")
        if verdict == "survived":
            print(line, flush=True)

    def summary(self) -> str:
        counts = [sum(verdict.startswith(word) for verdict in self.verdicts)
                  for word in ("found", "survived", "changes nothing")]
        return "{} faults: {} found, {} survived, {} changed nothing".format(len(self.verdicts), *counts)


def main() -> int:
    root = pathlib.Path(sys.argv[1]).resolve()
    trial = Trial(root, int(sys.argv[2]), int(sys.argv[3]), sys.argv[4:] or [""])
    workers = [threading.Thread(target=trial.work, args=(Copy(root, root / f"build/mutate/{number}"),))
               for number in range(COPIES)]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    print(trial.summary())
    return 0 if len(trial.verdicts) == trial.count else 1


if __name__ == "__main__":
    sys.exit(main())
