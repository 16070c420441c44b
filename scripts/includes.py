"""Reads which project file includes which, for the checks that follow includes.

An include names a project file when it is found beside the includer or, from there, at the
project's root, as the compilers look it up; all others are foreign. Paths are relative to the root
and use '/'.
"""

import functools
import pathlib
import re

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"]+)[>"]', re.MULTILINE)


class Include:
    """One include line: `target` is a project path, or None for a foreign header."""

    def __init__(self, line, quoted, name, target):
        self.line = line
        self.quoted = quoted
        self.name = name
        self.target = target


class IncludeGraph:
    def __init__(self, root):
        self.root = pathlib.Path(root).resolve()

    @functools.lru_cache(maxsize=None)
    def includes(self, path):
        """The include lines of the project file `path`, in their order."""
        text = (self.root / path).read_text(encoding="utf-8")
        found = []
        for match in INCLUDE.finditer(text):
            quoted = match.group(1) == '"'
            name = match.group(2)
            target = self._resolve(path, name, quoted)
            found.append(Include(text.count("\n", 0, match.start()) + 1, quoted, name, target))
        return found

    def closure(self, path):
        """`path` and every project file that it includes, directly or not, sorted."""
        seen = {path}
        pending = [path]
        while pending:
            for include in self.includes(pending.pop()):
                if include.target and include.target not in seen:
                    seen.add(include.target)
                    pending.append(include.target)
        return sorted(seen)

    def _resolve(self, path, name, quoted):
        beside = (self.root / path).parent / name
        for candidate in ([beside] if quoted else []) + [self.root / name]:
            candidate = candidate.resolve()
            if candidate.is_file() and self.root in candidate.parents:
                return candidate.relative_to(self.root).as_posix()
        return None
