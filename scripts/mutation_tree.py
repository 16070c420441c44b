"""Builds mutants in copies of the sources and runs the tests' programs on them, for mutate.py.

Each processor has a copy with a build folder of its own, build/mutate/tree<N>. So neither the working
tree nor another build changes, and a mutant compiles only what includes its file. Programs that load
the plug-ins are built once, before the first mutant: only the plug-ins change under them.

A mutant that compiles to the same code as the original, when optimised, is shown to change nothing:
survivors are compared so, and mutants without `noexcept` before anything else.

An outcome is a line of build/mutate/results.tsv, at once: an interrupted run goes on where it was. It
holds as long as the mutant's file stays the same; of a survivor, as long as the tests do, too.
"""

import concurrent.futures
import dataclasses
import hashlib
import json
import operator
import os
import pathlib
import queue
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from compile_commands import entries_of, name_of
from includes import IncludeGraph

FOLDER = pathlib.Path("build/mutate")
CODE = ("value", "plugin", "codec", "ndjson", "recorder") # what the plug-ins are made from
PLUGINS = ("OstroviaNotifications2Codec", "OstroviaNotificationsRecorder")
NOT_COMPILED = "not compiled"
SAME_CODE = "same code"
SURVIVED = "survived"
# A mutant may allocate without end, or leave a core each time. $0 is the processor time in seconds.
LIMITED = ["sh", "-c", 'ulimit -c 0; ulimit -v 8388608; ulimit -t "$0"; exec "$@"']
PATIENCE = 5 # times as long as without a mutant, and at least
SHORTEST_LIMIT = 20 # seconds of the processor; a busy machine makes no test fail
WAITING = 10 # times as long by the clock: a mutant may wait for ever


@dataclasses.dataclass(frozen=True)
class Program:
    """A program of tests, and how to run it: {bin} is the folder of the programs, {samples} has the
    recorded notifications. One that loads the plug-ins is not linked with the code under test."""
    target: str
    arguments: str = ""
    loads_plugins: bool = True


class Tree:
    """A copy of the sources, configured and built."""

    def __init__(self, number, preset, flags=()):
        self.root = (FOLDER / f"tree{number}").resolve()
        self.preset = preset
        self.flags = flags
        self.build_folder = self.root / "build" / preset
        self.bin = self.build_folder / "bin"

    def refresh(self, files):
        """Copies the files that differ, so that a build compiles no more than it must."""
        self.build_folder.mkdir(parents=True, exist_ok=True)
        known = set(files)
        for top in self.root.iterdir():
            for path in [top, *top.rglob("*")] if top.name != "build" else []:
                if path.is_file() and path.relative_to(self.root).as_posix() not in known:
                    path.unlink()
        for name in files:
            copy, content = self.root / name, pathlib.Path(name).read_bytes()
            if not copy.is_file() or copy.read_bytes() != content:
                copy.parent.mkdir(parents=True, exist_ok=True)
                copy.write_bytes(content)
                shutil.copymode(name, copy)

    def make(self, programs, jobs):
        """Everything that is not built for each mutant anew."""
        if not (self.build_folder / "build.ninja").is_file():
            self._must(["cmake", "--preset", self.preset, "--log-level=NOTICE", *self.flags])
        targets = sorted({program.target for program in programs} | set(PLUGINS))
        self._must(["ninja", "-C", self.build_folder, f"-j{jobs}", *targets])

    def _must(self, command):
        result = subprocess.run(command, cwd=self.root, text=True, check=False,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if result.returncode != 0:
            sys.exit(f"mutate.py: {result.stdout[-4000:]}")

    def builds(self, program):
        targets = PLUGINS if program.loads_plugins else [program.target]
        return subprocess.run(["ninja", "-C", self.build_folder, "-j1", *targets], check=False,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0

    def codes_with(self, file):
        """Of each source with `file` in it: a hash of its optimised code, or nothing for an error."""
        graph = IncludeGraph(self.root)
        for entry in entries_of(self.root, self.build_folder):
            name = name_of(self.root, entry)
            if name.split("/")[0] in CODE and file in (closure := graph.closure(name)):
                yield self._code_of(entry, [self.root / part for part in closure])

    def _code_of(self, entry, files):
        words = shlex.split(entry["command"].replace(" -O0", " -O3"))
        kept = self.build_folder / "codes" / digest_of(files, entry["command"])
        if not kept.is_file():
            kept.parent.mkdir(exist_ok=True)
            code = kept.with_suffix(".o")
            words[words.index("-o") + 1] = str(code)
            subprocess.run(words, cwd=entry["directory"], check=False, stderr=subprocess.DEVNULL)
            kept.write_text(digest_of([code], "") if code.is_file() else "", encoding="utf-8")
            code.unlink(missing_ok=True)
        return kept.read_text(encoding="utf-8")

    def passes(self, program, limit):
        """Whether the program ends with 0 within `limit` seconds of the processor."""
        samples = self.root / "samples"
        values = {"bin": self.bin, "samples": " ".join(map(str, sorted(samples.glob("*.ndjson"))))}
        command = [*LIMITED, str(round(limit)), self.bin / program.target,
                   *program.arguments.format(**values).split()]
        with tempfile.TemporaryDirectory(dir=self.build_folder) as scratch:
            environment = {**os.environ, "TMPDIR": scratch, "GTEST_FAIL_FAST": "1", "GTEST_BRIEF": "1"}
            process = subprocess.Popen(command, cwd=scratch, env=environment, start_new_session=True,
                                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
            try:
                return process.wait(WAITING * limit) == 0
            except subprocess.TimeoutExpired:
                return False
            finally:
                end_group(process)


def processor_seconds():
    """Of all programs that have ended."""
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def end_group(process):
    """Ends a program and all that it has started."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


class Results:
    def __init__(self, path, tests):
        self.path = path
        self.tests = tests
        self.outcomes = {}
        path.parent.mkdir(parents=True, exist_ok=True)
        lines = path.read_text(encoding="utf-8").splitlines() if path.is_file() else []
        for line in lines:
            name, content, with_tests, outcome = line.split("\t")
            if outcome != SURVIVED or with_tests == tests:
                self.outcomes[name, content] = outcome
            else:
                self.outcomes.pop((name, content), None)

    def add(self, mutant, outcome):
        self.outcomes[mutant.name, mutant.content] = outcome
        with self.path.open("a", encoding="utf-8") as out:
            out.write("\t".join((mutant.name, mutant.content, self.tests, outcome)) + "\n")

    def of(self, mutant):
        return self.outcomes.get((mutant.name, mutant.content))


def digest_of(paths, words=""):
    digest = hashlib.sha256(words.encode())
    for path in paths:
        digest.update(b"\0" + pathlib.Path(path).read_bytes())
    return digest.hexdigest()[:16]


class Laboratory:
    """All trees. `programs` is a table by name. With `builds` it compiles each mutant."""

    def __init__(self, files, preset, programs, flags=(), builds=True):
        self.files = files
        self.programs = programs
        self.builds = builds
        self.jobs = int(os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL") or os.cpu_count())
        self.trees = [Tree(number, preset, flags) for number in range(1, self.jobs + 1)]
        self.limits = {}

    def set_up(self):
        for tree in self.trees:
            say(f"building {tree.build_folder}")
            tree.refresh(self.files)
            tree.make(self.programs.values(), self.jobs)
        self._measure()

    def _measure(self):
        """The processor's time of each program without a mutant, when it must succeed."""
        tree, key = self.trees[0], digest_of(self.files)
        times = tree.build_folder / "times.json"
        known = json.loads(times.read_text(encoding="utf-8")) if times.is_file() else {}
        if known.get("key") != key or set(known) != {"key", *self.programs}:
            known = {"key": key}
            for name, program in self.programs.items():
                begin = processor_seconds()
                if not tree.passes(program, 3600):
                    sys.exit(f"mutate.py: {name} fails without a mutant")
                known[name] = round(processor_seconds() - begin, 1)
                say(f"{name} takes {known[name]} s")
                times.write_text(json.dumps(known), encoding="utf-8")
        self.limits = {name: max(PATIENCE * known[name], SHORTEST_LIMIT) for name in self.programs}

    def run(self, mutants, results, road_of, plant, withdraw):
        """Finds the outcome of each mutant: `plant` and `withdraw` change a tree, and `road_of` names
        the programs to run, in their order. Neighbours, which are often of one file, come together."""
        free = queue.SimpleQueue()
        for tree in self.trees:
            free.put(tree)

        def examine(mutant):
            tree, begin = free.get(), time.monotonic()
            try:
                early = mutant.operator == "noexcept"
                if early and changes_no_code(tree, mutant):
                    outcome = SAME_CODE
                else:
                    plant(tree, mutant)
                    outcome = self._outcome(tree, road_of(mutant))
                    withdraw(tree, mutant)
                if outcome == SURVIVED and not early and changes_no_code(tree, mutant):
                    outcome = SAME_CODE
            finally:
                withdraw(tree, mutant)
                free.put(tree)
            return mutant, outcome, time.monotonic() - begin

        def changes_no_code(tree, mutant):
            if not self.builds:
                return False
            original = list(tree.codes_with(mutant.file))
            plant(tree, mutant)
            same = original != [] and all(map(operator.eq, original, tree.codes_with(mutant.file)))
            withdraw(tree, mutant)
            return same

        with concurrent.futures.ThreadPoolExecutor(self.jobs) as workers:
            examined = [workers.submit(examine, mutant) for mutant in mutants]
            try:
                for done in concurrent.futures.as_completed(examined):
                    mutant, outcome, seconds = done.result()
                    results.add(mutant, outcome)
                    say(f"{mutant.name} {outcome}, {seconds:.1f} s")
            finally: # an interrupted run examines no more
                workers.shutdown(wait=False, cancel_futures=True)

    def _outcome(self, tree, road):
        for name in road:
            program = self.programs[name]
            if self.builds and not tree.builds(program):
                return NOT_COMPILED
            if not tree.passes(program, self.limits[name]):
                return name
        return SURVIVED


def say(words):
    print(f"mutate: {words}", file=sys.stderr, flush=True)
