"""Keeps the project in layers that one can hold in the head: reads the include lines of the files
named as arguments, relative to the current directory, and reports each broken rule as file:line.

  (1) a folder is a layer and includes only itself and what LAYERS has below it
  (2) quoted includes name project files; foreign headers stand in angle brackets
  (3) no file includes itself, directly or through others
  (4) a file longer than 400 lines draws a warning, longer than 500 it is an error: two subjects

Exit status 1 when a rule is broken; warnings leave it at 0.
"""

import pathlib
import sys

from includes import IncludeGraph

# Layer: the layers below it, which it may include with all that is below them. A layer is a folder;
# a folder in it can be a layer of its own. The tools find the plug-in at run time, never by include.
# Fuzz targets check against the models that the tests have; those stay with the tests. Simulated lives
# send the messages of a fuzz target. The plain build is a second reading of the documents, so it must
# see nothing of the first.
LAYERS = {
    "identity": [],
    "runtime": [],
    "host": [],
    "value": ["host"],
    "ndjson": ["value"],
    "plugin": ["value"],
    "codec": ["plugin"],
    "recorder": ["plugin", "ndjson"],
    "standin": ["host"],
    "tools/options": ["host", "identity"],
    "tools/host": ["value", "standin", "identity"],
    "tools/record": ["ndjson", "tools/host", "tools/options"],
    "tools/explain": ["tools/record"],
    "tools/replay/input": ["tools/record"],
    "tools/replay/running": ["tools/replay/input"],
    "tools/replay/writing": ["tools/record"],
    "tools/replay/redacting": ["tools/replay/running"],
    "tools/replay/comparing": ["tools/replay/running", "tools/replay/writing"],
    "tools/replay/summary": ["tools/replay/comparing"],
    "tools/report": ["tools/explain", "tools/replay/comparing"],
    "tools/replay": ["tools/report", "tools/replay/redacting", "tools/replay/summary"],
    "tools/check": ["ndjson", "tools/host", "tools/options"],
    "bench": ["codec", "ndjson", "tools/host"],
    "tests": ["codec", "recorder", "tools/replay", "tools/check"],
    "tests/plain_build": ["host"],
    "fuzz": ["tests"],
    "tests/simulation": ["fuzz"],
}

LONG = 400
TOO_LONG = 500


def layer_of(path):
    """The innermost folder of `path` that is a layer; its whole folder when none is."""
    folders = [str(folder) for folder in pathlib.PurePosixPath(path).parents]
    return next((folder for folder in folders if folder in LAYERS), folders[0])


def granted(layer):
    """What files of `layer` may include: the layer and all below it."""
    return {layer}.union(*(granted(below) for below in LAYERS[layer]))


def broken_layers(graph, path):
    layer = layer_of(path)
    if layer not in LAYERS:
        yield f"{path}:1: the folder '{layer}' is no layer; LAYERS in check_layers.py names them"
        return
    layers = granted(layer)
    for include in graph.includes(path):
        where = f"{path}:{include.line}"
        if include.target is None:
            if include.quoted:
                yield f'{where}: "{include.name}" is no file of the project; foreign: use <>'
        elif layer_of(include.target) not in layers:
            yield f"{where}: {layer}/ must not include {include.target}"


def cycles(graph, paths):
    """One line per include that closes a cycle; depth first, without recursion."""
    done = set()
    for start in paths:
        if start in done:
            continue
        trail = [start]
        pending = [iter(graph.includes(start))]
        while trail:
            include = next(pending[-1], None)
            if include is None:
                done.add(trail.pop())
                pending.pop()
            elif include.target in trail:
                loop = trail[trail.index(include.target):] + [include.target]
                yield f"{trail[-1]}:{include.line}: include cycle: " + " -> ".join(loop)
            elif include.target and include.target not in done:
                trail.append(include.target)
                pending.append(iter(graph.includes(include.target)))


def check(root, paths):
    """Returns (errors, warnings), each a list of lines."""
    graph = IncludeGraph(root)
    errors = []
    warnings = []
    for path in paths:
        errors += broken_layers(graph, path)
        lines = len((graph.root / path).read_text(encoding="utf-8").splitlines())
        if lines > TOO_LONG:
            errors.append(f"{path}:{TOO_LONG + 1}: {lines} lines, at most {TOO_LONG}")
        elif lines > LONG:
            warnings.append(f"{path}:{LONG + 1}: warning: {lines} lines, better at most {LONG}")
    errors += cycles(graph, paths)
    return errors, warnings


def main():
    if len(sys.argv) < 2:
        sys.exit("check_layers.py: no files named, nothing would be checked")
    errors, warnings = check(pathlib.Path.cwd(), sys.argv[1:])
    for line in warnings + errors:
        print(line)
    sys.exit(1 if errors else 0)


if __name__ == "__main__":
    main()
