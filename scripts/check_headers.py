"""Checks that every header is self-contained: that it compiles when it is included first.

Most of the time goes into the headers of libraries, so the compiler reads headers in chains. In a
chain each header includes, directly or not, the header before it and all that this one includes. So
nothing of the chain is there that the header does not bring itself:

    host/types.h ← value/data_t.hpp ← value/map_t.hpp ← codec/conversions/alarm.hpp

Chains that passed are not read again until a file in them changes.

usage: check_headers.py FILE HEADER…    in the project's root; FILE has the keys of chains that
                                        passed; exit status 1 on any finding
"""

import concurrent.futures
import hashlib
import os
import pathlib
import subprocess
import sys

from includes import IncludeGraph

COMMAND = ("clang++-14", "-std=c++20", "-I.", "-Wall", "-Wextra", "-Werror", "-fsyntax-only", "-x",
           "c++", "-")


def names_included(graph, header):
    """Everything that `header` includes, directly or not, and the header."""
    return {header} | {include.target or include.name for file in graph.closure(header)
                       for include in graph.includes(file)}


def chains_of(graph, headers):
    """Puts each header at the end of a chain that it may go on, the one that brings most of it."""
    names = {header: names_included(graph, header) for header in headers}
    chains = []
    for header in sorted(headers, key=lambda header: (len(names[header]), header)):
        fitting = [chain for chain in chains if names[chain[-1]] <= names[header]]
        if fitting:
            max(fitting, key=lambda chain: len(names[chain[-1]])).append(header)
        else:
            chains.append([header])
    return chains


def errors_in(chain):
    text = "".join(f'#include "{header}"\n' for header in chain)
    result = subprocess.run(COMMAND, input=text, text=True, check=False,
                            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    return result.stderr if result.returncode else ""


def key_of(graph, chain):
    """A hash over everything of the project's own that can change the outcome."""
    files = graph.closure(chain[-1]) # the last header includes all others
    digest = hashlib.sha256(repr((COMMAND, chain, files)).encode())
    for file in files:
        digest.update(hashlib.sha256((graph.root / file).read_bytes()).digest())
    return digest.hexdigest()


def main():
    marks = pathlib.Path(sys.argv[1])
    graph = IncludeGraph(pathlib.Path.cwd())
    chains = {key_of(graph, chain): chain for chain in chains_of(graph, sys.argv[2:])}
    passed = marks.read_text(encoding="utf-8").split() if marks.is_file() else []
    stale = {key: chain for key, chain in chains.items() if key not in passed}
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        errors = dict(zip(stale, workers.map(errors_in, stale.values())))
    sys.stderr.write("".join(errors.values()))
    marks.write_text("\n".join(key for key in chains if not errors.get(key)), encoding="utf-8")
    sys.exit(1 if any(errors.values()) else 0)


if __name__ == "__main__":
    main()
