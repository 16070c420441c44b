"""Runs clang-tidy over the project's own sources in a build folder's compile_commands.json, all
processors busy, and skips sources that passed before unchanged: a full run takes minutes, a file
seconds.

A source costs mostly the headers that it includes, since every check walks them. So up to BATCH_SIZE
sources of a group are read together, included by one file.

For each batch: (1) the compiler reads it; sources that disagree with earlier ones, mostly over a
name, go into a batch of their own  (2) clang-tidy reads it  (3) sources with findings are read alone,
for a header in place of each its first includer. A finding that then vanishes is none, but a line
names it.

A source that passes is remembered by its key, a hash over everything of ours that can change the
outcome, in <build>/clang-tidy/passed.json.

With names of LAYERS it reads their sources alone. With --paths it makes the path analysis (clang-analyzer) instead, which takes minutes: for the code
that is loaded into a host's process, each source alone. All else runs under the sanitizers.

usage: run_clang_tidy.py BUILD_FOLDER [--paths | LAYER…]    in the project's root; exit status 1 on any
                                                            finding
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys

from compile_commands import entries_of, name_of
from includes import IncludeGraph

CLANG_TIDY = "clang-tidy-14"
ROOT = pathlib.Path.cwd().resolve()
LAYERS_OF_PATHS = ("codec", "plugin", "recorder", "value")
# Layers whose .clang-tidy chooses checks; other settings hold for a file wherever it is read.
OWN_GROUPS = ("fuzz", "standin", "tests")
BATCH_SIZE = 110
# Only a batch would draw it: it includes sources.
NOT_IN_BATCHES = "-bugprone-suspicious-include"
PATHS_ALONE = "-*,clang-analyzer-*"
WITHOUT_NAMES = "-readability-identifier-naming" # whose rules are those of C++
# Two names that every program has, and every fuzz target.
LINES_OF_SOURCE = """#define main main{number} // NOLINT
#define LLVMFuzzerTestOneInput LLVMFuzzerTestOneInput{number} // NOLINT
#include "{path}"
#undef LLVMFuzzerTestOneInput
#undef main
"""
PLACE = re.compile(r"^(/[^:\n]+):\d+:\d+: (?:fatal )?(?:error|warning): .*$", re.MULTILINE)
INCLUDED_BY_BATCH = re.compile(r"In file included from [^:]*/batch\.cpp:(\d+):")


class Source:
    def __init__(self, entry, graph, version):
        self.name = name_of(ROOT, entry)
        self.layer = self.name.split("/", 1)[0]
        words = shlex.split(entry["command"])
        self.flags = words[1:words.index("-o")]
        self.files = [ROOT / file for file in graph.closure(self.name)]
        self.key = self._key(entry["command"], version)

    def _key(self, command, version):
        """Headers from outside the project are taken to change only together with the tool."""
        digest = hashlib.sha256(f"{version}\0{command}".encode())
        settings = {folder / ".clang-tidy" for file in self.files for folder in file.parents}
        for path in self.files + sorted(path for path in settings if path.is_file()):
            content = path.read_bytes()
            digest.update(f"\0{path}\0{len(content)}\0".encode())
            digest.update(content)
        return digest.hexdigest()

    def group(self):
        if self.name.endswith(".c"):
            return self.name
        return self.layer if self.layer in OWN_GROUPS else "others"


def batches_of(sources, size):
    groups = {}
    for source in sorted(sources, key=lambda source: source.name):
        groups.setdefault(source.group(), []).append(source)
    for group in groups.values():
        count = -(-len(group) // size)
        for number in range(count):
            yield group[len(group) * number // count:len(group) * (number + 1) // count]


def flags_of(batch):
    """Everything that the commands of the sources define and search."""
    flags = {}
    for source in batch:
        words = iter(source.flags)
        for word in words:
            flag = (word, next(words)) if word in ("-I", "-isystem", "-include") else (word,)
            flags[flag] = None
    return [word for flag in flags for word in flag]


def together(work, batch):
    """The batch as one source, in a folder that has the settings of its layer."""
    folder = work.resolve() / "batches" / batch[0].name
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    source = folder / "batch.cpp"
    source.write_text("".join(LINES_OF_SOURCE.format(path=ROOT / one.name, number=number)
                              for number, one in enumerate(batch)), encoding="utf-8")
    entry = {"directory": str(folder), "file": str(source),
             "arguments": ["clang++-14", *flags_of(batch), "-Wno-shadow", "-c", str(source)]}
    (folder / "compile_commands.json").write_text(json.dumps([entry]), encoding="utf-8")
    settings = ROOT / batch[0].layer / ".clang-tidy"
    if batch[0].group() in OWN_GROUPS and settings.is_file():
        shutil.copy(settings, folder)
    return folder, entry["arguments"]


def disagreeing(arguments, batch):
    """The sources at which the compiler finds errors when it reads all of them; for an error in a
    header, all that include it."""
    result = subprocess.run([*arguments, "-fsyntax-only", "-w", "-ferror-limit=0"], text=True,
                            check=False, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    found, number = set(), 0
    for line in result.stderr.splitlines():
        if match := INCLUDED_BY_BATCH.match(line):
            number = (int(match[1]) - 1) // LINES_OF_SOURCE.count("\n")
        elif match := PLACE.match(line):
            found.update(source for source in batch[number:] if ROOT / match[1] in source.files)
            found.add(batch[number])
    return [source for source in batch if source in found]


def run(arguments):
    """The findings of clang-tidy; empty when it is content."""
    result = subprocess.run([CLANG_TIDY, "--quiet", *arguments], text=True, check=False,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if result.returncode == 0:
        return ""
    # On stderr there is only a count of suppressed warnings, unless the tool itself gave up.
    return result.stdout or result.stderr or f"{CLANG_TIDY} ended with {result.returncode}\n"


def run_alone(work, source):
    checks = WITHOUT_NAMES if source.name.endswith(".c") else ""
    return run(["-p", str(work), f"--checks={checks}", source.name])


def analyse_paths(work, source):
    return run(["-p", str(work), f"--checks={PATHS_ALONE}", source.name])


def run_together(folder, batch, layers):
    filter_of_sources = f"/({'|'.join(layers)})/([^/]+/)*[^/]+\\.[ch]pp$"
    return run(["-p", str(folder), f"--checks={NOT_IN_BATCHES}",
                f"--header-filter={filter_of_sources}", str(folder / "batch.cpp")])


def findings_in(work, batch, layers):
    """The findings by source, all sources named; and notes on findings that vanish."""
    if len(batch) == 1:
        return {batch[0]: run_alone(work, batch[0])}, ""
    folder, arguments = together(work, batch)
    others = disagreeing(arguments, batch)
    if others:
        rest = [source for source in batch if source not in others]
        findings, notes = findings_in(work, rest, layers) if rest else ({}, "")
        for part in [others] if rest else [[source] for source in others]:
            more_findings, more_notes = findings_in(work, part, layers)
            findings.update(more_findings)
            notes += more_notes
        return findings, notes
    return confirmed(work, batch, run_together(folder, batch, layers))


def confirmed(work, batch, output):
    findings, notes = dict.fromkeys(batch, ""), ""
    disputed = {} # source: the lines about it and its headers
    for match in PLACE.finditer(output):
        file = pathlib.Path(match[1])
        source = next((one for one in batch if ROOT / one.name == file), None)
        source = source or next((one for one in batch if file in one.files), batch[0])
        disputed.setdefault(source, []).append(match[0])
    if output and not disputed:
        return {**findings, batch[0]: output}, notes
    for source, lines in disputed.items():
        findings[source] = run_alone(work, source)
        if not findings[source]:
            notes += f"clang-tidy: only when read with others: {lines[0]}\n"
    return findings, notes


def main():
    build, chosen = pathlib.Path(sys.argv[1]), sys.argv[2:]
    paths = chosen == ["--paths"]
    work = build / "clang-tidy"
    work.mkdir(exist_ok=True)
    graph = IncludeGraph(ROOT)
    version = subprocess.run([CLANG_TIDY, "--version"], text=True, capture_output=True,
                             check=True).stdout
    entries = entries_of(ROOT, build)
    if not entries:
        sys.exit(f"run_clang_tidy.py: no source of the project is built in {build}")
    (work / "compile_commands.json").write_text(json.dumps(entries), encoding="utf-8")

    sources = [Source(entry, graph, version) for entry in entries]
    layers = sorted({source.layer for source in sources})
    if chosen:
        chosen = LAYERS_OF_PATHS if paths else chosen
        sources = [source for source in sources if source.layer in chosen]
    marks = work / ("passed_paths.json" if paths else "passed.json")
    passed = json.loads(marks.read_text(encoding="utf-8")) if marks.is_file() else {}
    stale = [source for source in sources if passed.get(source.name) != source.key]
    if not stale:
        return
    print(f"clang-tidy: {len(stale)} of {len(sources)} sources", flush=True)

    def read(batch):
        if paths:
            return {source: analyse_paths(work, source) for source in batch}, ""
        return findings_in(work, batch, layers)

    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        for findings, notes in workers.map(read, batches_of(stale, 1 if paths else BATCH_SIZE)):
            print(notes, *findings.values(), sep="", end="", flush=True)
            failed += sum(1 for output in findings.values() if output)
            passed.update({source.name: source.key for source, output in findings.items()
                           if not output})
            marks.write_text(json.dumps(passed), encoding="utf-8")
    if failed:
        sys.exit(f"clang-tidy: findings in {failed} sources")


if __name__ == "__main__":
    main()
