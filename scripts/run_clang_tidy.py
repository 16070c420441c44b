"""Runs clang-tidy over the project's own sources in a build folder's compile_commands.json, all
processors busy, and skips what passed before unchanged: a full run takes minutes, a file seconds.

A source costs mostly the headers that it includes. So the sources of one program or library are
read together, a batch of them included by one file. The path analysis (clang-analyzer) is for what
is loaded into a host's process; all else runs under the sanitizers instead.

For each batch: (1) the key: a hash over everything of ours that can change the outcome  (2) the
mark of the last success, <build>/clang-tidy/<batch>.passed, holds that key: skip  (3) run  (4) a
batch with findings is halved, and its halves again, down to single sources: what stands alone may
disagree when read together, mostly over a name that two sources have for themselves. That is no
finding, but costs time, and a line says which sources and why  (5) print the findings, or write the
mark if there were none.

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

from compile_commands import entries_of, name_of
from includes import IncludeGraph

CLANG_TIDY = "clang-tidy-14"
ROOT = pathlib.Path.cwd().resolve()
ANALYSED_LAYERS = ("codec", "plugin", "standin", "value")
BATCH_SIZE = 40
# What only a batch would draw: it includes sources, and names of one hide those of another.
NOT_IN_BATCHES = "-bugprone-suspicious-include"
WITHOUT_ANALYSIS = "-clang-analyzer-*"
WITHOUT_NAMES = "-readability-identifier-naming" # whose rules are those of C++
# The analysis begins with functions of included files, too: in a batch those are all there are.
ANALYSE_INCLUDED = ["--extra-arg=-Xclang", "--extra-arg=-analyzer-opt-analyze-headers"]
SOURCES_OF_BATCHES = "/(codec|fuzz|ndjson|plugin|standin|tests|tools|value)/([^/]+/)*[^/]+\\.[ch]pp$"


class Batch:
    """Sources that are read together: `names` are their paths in the project."""

    def __init__(self, label, layer, entries):
        self.label = label
        self.layer = layer
        self.entries = entries
        self.names = [name_of(ROOT, entry) for entry in entries]

    def key(self, graph, version):
        """Headers from outside the project are taken to change only together with the tool."""
        commands = [entry["command"] for entry in self.entries]
        digest = hashlib.sha256("\0".join([version, *commands]).encode())
        files = {ROOT / file for name in self.names for file in graph.closure(name)}
        files |= {folder / ".clang-tidy" for file in files for folder in file.parents}
        for path in sorted(file for file in files if file.is_file()):
            content = path.read_bytes()
            digest.update(f"\0{path}\0{len(content)}\0".encode())
            digest.update(content)
        return digest.hexdigest()


def target_of(entry):
    """The program or library that a source belongs to, from its object's path."""
    words = shlex.split(entry["command"])
    return words[words.index("-o") + 1].split("CMakeFiles/")[-1].split(".dir/")[0]


def batches_of(entries):
    groups = {}
    for entry in entries:
        name = name_of(ROOT, entry)
        layer = name.split("/", 1)[0]
        label = f"{layer}/{target_of(entry)}" if name.endswith(".cpp") else name
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


def run_alone(work, batch):
    checks = [] if batch.layer in ANALYSED_LAYERS else [WITHOUT_ANALYSIS]
    checks += [WITHOUT_NAMES] if batch.names[0].endswith(".c") else []
    return run(["-p", str(work), f"--checks={','.join(checks)}", batch.names[0]])


def run_together(work, batch):
    """The batch as one source, in a folder that has the settings of its layer."""
    folder = work.resolve() / "batches" / batch.label
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
    analysed = batch.layer in ANALYSED_LAYERS
    checks = NOT_IN_BATCHES if analysed else f"{NOT_IN_BATCHES},{WITHOUT_ANALYSIS}"
    return run(["-p", str(folder), f"--checks={checks}", f"--header-filter={SOURCES_OF_BATCHES}",
                *(ANALYSE_INCLUDED if analysed else []), str(source)])


def findings_in(work, batch):
    """What the sources have to answer for, each read alone if need be; and why some were halved."""
    if len(batch.names) == 1:
        return run_alone(work, batch), ""
    together = run_together(work, batch)
    if not together:
        return "", ""
    reason = next((line for line in together.splitlines() if " error: " in line), together)
    findings, notes = "", ""
    for half in halves_of(batch):
        more_findings, more_notes = findings_in(work, half)
        findings += more_findings
        notes += more_notes
    if findings:
        return findings, notes
    return "", f"clang-tidy: {batch.label} costs more, read in halves: {reason}\n" + notes


def halves_of(batch):
    middle = len(batch.entries) // 2
    for number, entries in enumerate((batch.entries[:middle], batch.entries[middle:])):
        yield Batch(f"{batch.label}.{number}", batch.layer, entries)


def main():
    build = pathlib.Path(sys.argv[1])
    work = build / "clang-tidy"
    work.mkdir(exist_ok=True)
    graph = IncludeGraph(ROOT)
    version = subprocess.run([CLANG_TIDY, "--version"], text=True, capture_output=True,
                             check=True).stdout
    entries = entries_of(ROOT, build)
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
        for batch, (findings, notes) in results:
            print(notes, end="", flush=True)
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
