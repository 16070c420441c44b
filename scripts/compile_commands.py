"""Reads the compile_commands.json of a build folder, for the checks that read sources as a compiler
does."""

import json
import pathlib


def entries_of(root, build):
    """One compile command for each source: if several targets share it, the first does for all."""
    entries = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        path = pathlib.Path(entry["directory"], entry["file"]).resolve()
        if root in path.parents and build.resolve() not in path.parents:
            entries.setdefault(path, entry)
    return list(entries.values())


def name_of(root, entry):
    """The source's path in the project."""
    path = pathlib.Path(entry["directory"], entry["file"]).resolve()
    return path.relative_to(root).as_posix()
