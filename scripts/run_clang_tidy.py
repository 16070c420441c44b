"""Runs clang-tidy over the project's own sources in a build folder's compile_commands.json, all
processors busy, and skips what passed before unchanged: a full run takes minutes, a file seconds.

For each source: (1) the key: a hash over everything of ours that can change the outcome  (2) the
mark of the last success, <build>/clang-tidy/<source>.passed, holds that key: skip  (3) run; print
the findings  (4) write the mark if there were none.

usage: run_clang_tidy.py BUILD_FOLDER     in the project's root; exit status 1 on any finding
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import subprocess
import sys

from includes import IncludeGraph

CLANG_TIDY = "clang-tidy-14"
ROOT = pathlib.Path.cwd().resolve()


def sources_of(build):
    """Project path of each source: its compile commands (more than one if two targets share it)."""
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        path = pathlib.Path(entry["directory"], entry["file"]).resolve()
        if ROOT in path.parents and build.resolve() not in path.parents:
            name = path.relative_to(ROOT).as_posix()
            commands.setdefault(name, []).append(entry["command"])
    return commands


def key_of(graph, version, name, commands):
    """Headers from outside the project are taken to change only together with the tool itself."""
    digest = hashlib.sha256("\0".join([version, *sorted(commands)]).encode())
    settings = [folder / ".clang-tidy" for folder in (ROOT / name).parents if
                folder == ROOT or ROOT in folder.parents]
    for path in [ROOT / file for file in graph.closure(name)] + settings:
        if path.is_file():
            content = path.read_bytes()
            digest.update(f"\0{path.relative_to(ROOT)}\0{len(content)}\0".encode())
            digest.update(content)
    return digest.hexdigest()


def findings_in(build, name):
    """What clang-tidy has to say about one source; empty when it is content."""
    run = subprocess.run([CLANG_TIDY, "--quiet", "-p", str(build), name], text=True,
                         stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    if run.returncode == 0:
        return ""
    # On stderr there is only a count of suppressed warnings, unless the tool itself gave up.
    return run.stdout or run.stderr or f"{name}: {CLANG_TIDY} ended with {run.returncode}\n"


def main():
    build = pathlib.Path(sys.argv[1])
    graph = IncludeGraph(ROOT)
    version = subprocess.run([CLANG_TIDY, "--version"], text=True, capture_output=True,
                             check=True).stdout
    commands = sources_of(build)
    if not commands:
        sys.exit(f"run_clang_tidy.py: no source of the project is built in {build}")

    marks = {}
    for name in sorted(commands):
        key = key_of(graph, version, name, commands[name])
        mark = build / "clang-tidy" / (name + ".passed")
        if not mark.is_file() or mark.read_text(encoding="utf-8") != key:
            marks[name] = (mark, key)
    if not marks:
        return
    print(f"clang-tidy: {len(marks)} of {len(commands)} sources", flush=True)

    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        results = workers.map(lambda name: (name, findings_in(build, name)), marks)
        for name, findings in results:
            mark, key = marks[name]
            if findings:
                failed += 1
                print(findings, end="", flush=True)
            else:
                mark.parent.mkdir(parents=True, exist_ok=True)
                mark.write_text(key, encoding="utf-8")
    if failed:
        sys.exit(f"clang-tidy: findings in {failed} sources")


if __name__ == "__main__":
    main()
