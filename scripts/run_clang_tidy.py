"""Runs clang-tidy over the project's own sources in a build folder's compile_commands.json, all
processors busy, and skips what passed before unchanged: a full run takes minutes, a file seconds.

A source costs mostly the headers that it includes. So the sources of one program or library are
read together, a batch of them included by one file. The path analysis (clang-analyzer) sees nothing
of included sources: what is loaded into a host's process gets it source by source, and all else runs
under the sanitizers instead.

For each batch: (1) the key: a hash over everything of ours that can change the outcome  (2) the
mark of the last success, <build>/clang-tidy/<batch>.passed, holds that key: skip  (3) run  (4) a
batch with findings is run again source by source, since sources that stand alone may disagree when
read together  (5) the path analysis  (6) print the findings, or write the mark if there were none.

usage: run_clang_tidy.py BUILD_FOLDER     in the project's root; exit status 1 on any finding
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import shlex
import shutil
import subprocess
import sys

from includes import IncludeGraph

CLANG_TIDY = "clang-tidy-14"
ROOT = pathlib.Path.cwd().resolve()
ANALYSED_LAYERS = ("codec", "plugin", "standin", "value")
BATCH_SIZE = 8
# What only a batch would draw: it includes sources, and names of one hide those of another.
WITHOUT_ANALYSIS = "-clang-analyzer-*"
NOT_IN_BATCHES = WITHOUT_ANALYSIS + ",-bugprone-suspicious-include"
ANALYSIS = "-*,clang-analyzer-*"
SOURCES_OF_BATCHES = "/(codec|fuzz|plugin|standin|tests|tools|value)/([^/]+/)*[^/]+\\.[ch]pp$"


class Batch:
    """Sources that are read together: `names` are their paths in the project."""

    def __init__(self, label, layer, entries):
        self.label = label
        self.layer = layer
        self.entries = entries
        self.names = [entry["name"] for entry in entries]

    def key(self, graph, version):
        """Headers from outside the project are taken to change only together with the tool."""
        commands = [entry["command"] for entry in self.entries]
        digest = hashlib.sha256("\0".join([version, *commands]).encode())
        files = {ROOT / ".clang-tidy", ROOT / self.layer / ".clang-tidy"}
        for name in self.names:
            files.update(ROOT / file for file in graph.closure(name))
        for path in sorted(file for file in files if file.is_file()):
            content = path.read_bytes()
            digest.update(f"\0{path.relative_to(ROOT)}\0{len(content)}\0".encode())
            digest.update(content)
        return digest.hexdigest()


def entries_of(build):
    """One compile command for each source: if several targets share it, the first does for all."""
    entries = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        path = pathlib.Path(entry["directory"], entry["file"]).resolve()
        if ROOT in path.parents and build.resolve() not in path.parents:
            entry["name"] = path.relative_to(ROOT).as_posix()
            entries.setdefault(entry["name"], entry)
    return list(entries.values())


def target_of(entry):
    """The program or library that a source belongs to, from its object's path."""
    words = shlex.split(entry["command"])
    return words[words.index("-o") + 1].split("CMakeFiles/")[-1].split(".dir/")[0]


def batches_of(entries):
    groups = {}
    for entry in entries:
        layer = entry["name"].split("/", 1)[0]
        is_cpp = entry["name"].endswith(".cpp")
        label = f"{layer}/{target_of(entry)}" if is_cpp else entry["name"]
        groups.setdefault((layer, label), []).append(entry)
    for (layer, label), group in sorted(groups.items()):
        for start in range(0, len(group), BATCH_SIZE):
            yield Batch(f"{label}.{start // BATCH_SIZE}", layer, group[start:start + BATCH_SIZE])


def run(arguments):
    """What clang-tidy has to say; empty when it is content."""
    result = subprocess.run([CLANG_TIDY, "--quiet", *arguments], text=True, check=False,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if result.returncode == 0:
        return ""
    # On stderr there is only a count of suppressed warnings, unless the tool itself gave up.
    return result.stdout or result.stderr or f"{CLANG_TIDY} ended with {result.returncode}\n"


def run_together(work, batch):
    """The batch as one source, in a folder that has the settings of its layer."""
    folder = work / "batches" / batch.label
    folder.mkdir(parents=True, exist_ok=True)
    source = folder / "batch.cpp"
    source.write_text("".join(f'#include "{ROOT / name}"\n' for name in batch.names),
                      encoding="utf-8")
    entry = dict(batch.entries[0], file=str(source))
    first = str(ROOT / batch.names[0])
    entry["command"] = entry["command"].replace(first, str(source)) + " -Wno-shadow"
    (folder / "compile_commands.json").write_text(json.dumps([entry]), encoding="utf-8")
    settings = ROOT / batch.layer / ".clang-tidy"
    if settings.is_file():
        shutil.copy(settings, folder)
    return run(["-p", str(folder), f"--checks={NOT_IN_BATCHES}",
                f"--header-filter={SOURCES_OF_BATCHES}", str(source)])


def findings_in(work, batch):
    findings = ""
    if len(batch.names) == 1 or run_together(work, batch):
        findings = run_alone(work, batch, WITHOUT_ANALYSIS)
    if batch.layer in ANALYSED_LAYERS:
        findings += run_alone(work, batch, ANALYSIS)
    return findings


def run_alone(work, batch, checks):
    return "".join(run(["-p", str(work), f"--checks={checks}", name]) for name in batch.names)


def main():
    build = pathlib.Path(sys.argv[1])
    work = build / "clang-tidy"
    work.mkdir(exist_ok=True)
    graph = IncludeGraph(ROOT)
    version = subprocess.run([CLANG_TIDY, "--version"], text=True, capture_output=True,
                             check=True).stdout
    entries = entries_of(build)
    if not entries:
        sys.exit(f"run_clang_tidy.py: no source of the project is built in {build}")
    (work / "compile_commands.json").write_text(json.dumps(entries), encoding="utf-8")

    marks = {}
    for batch in batches_of(entries):
        key = batch.key(graph, version)
        mark = work / (batch.label + ".passed")
        if not mark.is_file() or mark.read_text(encoding="utf-8") != key:
            marks[batch] = (mark, key)
    if not marks:
        return
    stale = sum(len(batch.names) for batch in marks)
    print(f"clang-tidy: {stale} of {len(entries)} sources", flush=True)

    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        results = workers.map(lambda batch: (batch, findings_in(work, batch)), marks)
        for batch, findings in results:
            mark, key = marks[batch]
            if findings:
                failed += 1
                print(findings, end="", flush=True)
            else:
                mark.parent.mkdir(parents=True, exist_ok=True)
                mark.write_text(key, encoding="utf-8")
    if failed:
        sys.exit(f"clang-tidy: findings in {failed} places")


if __name__ == "__main__":
    main()
