"""Keeps functions out of the library that only tests call: each is one more way of doing a thing.

  (1) compile the sources of LIBRARY and of USERS to LLVM's text form, without optimisation, so that
      every call is still there; the sources of a folder together, since headers cost most
  (2) follow the references from the roots: functions with C names (the exported ones, initialisers
      of globals) and everything that USERS mention
  (3) list the functions that the files of LIBRARY define, inline ones and templates included, from
      clang's syntax tree; defaulted and deleted ones are no code to read
  (4) report the functions that (2) has not reached, except EXCEPTIONS

A function is known by the file and line where its body begins, so all instances of a template are
one. A class's constructor refers to its virtual functions. A call at compile time leaves no reference
in the code, so a constexpr function only needs to be named somewhere in LIBRARY. Sources that passed
are not compiled again until one changes.

usage: check_unreferenced.py BUILD_FOLDER    in the project's root, with a compile_commands.json of
                                             clang; exit status 1 on any finding
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

from compile_commands import entries_of, name_of
from includes import IncludeGraph

LIBRARY = ("codec", "plugin", "value")
USERS = ("ndjson", "standin", "tools")
NAMESPACE = "com::velanto::connectivity"

# Functions that only tests call, as a report names them, each with its reason.
EXCEPTIONS = {
    "map_t::insert(std::pair<data_t, data_t> &&)": "the form of insertion for pairs",
    "map_t::begin()": "values can be changed in place while a map is walked",
    "map_t::end()": "the end of that walk",
}
MOST_EXCEPTIONS = 5

# Of LLVM's text form.
SYMBOL = re.compile(r'@("[^"]+"|[\w.$]+)')
INTERNAL = re.compile(r'^(?:define internal [^@]*)?@("[^"]+"|[\w.$]+)(?:\(| = internal| = private)',
                      re.MULTILINE)
DEFINITION = re.compile(r'^define [^@]*@("[^"]+"|[\w.$]+)\(.*?(?:!dbg !(\d+) )?\{$', re.MULTILINE)
SUBPROGRAM = re.compile(r"^!(\d+) = distinct !DISubprogram\(.*file: !(\d+),.* scopeLine: (\d+)",
                        re.MULTILINE)
FILE = re.compile(r'^!(\d+) = !DIFile\(filename: "([^"]+)", directory: "([^"]*)"', re.MULTILINE)


class Sources:
    """Sources of one folder, which are compiled together."""

    def __init__(self, root, entries):
        self.root = root
        self.entries = entries
        self.names = [name_of(root, entry) for entry in entries]
        self.layer = self.names[0].split("/", 1)[0]

    def compile(self, *arguments):
        """Runs clang as for the first source; returns its outputs, one or more."""
        names = list(self.names)
        if self.layer in LIBRARY: # a header that only tests include has functions, too
            names += [path.relative_to(self.root) for path in (self.root / self.layer).rglob("*.hpp")]
        text = "".join(f'#include "{self.root / name}"\n' for name in names)
        words = shlex.split(self.entries[0]["command"])
        flags = [word for word in words[1:words.index("-o")] if not word.startswith(("-O", "-W"))]
        command = [words[0], *flags, "-O0", "-w", *arguments, "-x", "c++", "-"]
        result = subprocess.run(command, input=text, text=True, check=False, capture_output=True,
                                cwd=self.entries[0]["directory"])
        if result.returncode == 0:
            return [result.stdout]
        middle = len(self.entries) // 2
        if middle == 0:
            sys.exit(f"check_unreferenced.py: {self.names[0]}: {result.stderr}")
        # Two sources may have a name for themselves.
        return [output for half in (self.entries[:middle], self.entries[middle:])
                for output in Sources(self.root, half).compile(*arguments)]

    def code(self):
        return self.compile("-Xclang", "-disable-llvm-passes", "-gline-tables-only", "-S",
                            "-emit-llvm", "-o", "-")

    def syntax(self):
        return self.compile("-fsyntax-only", "-Xclang", "-ast-dump=json", "-Xclang",
                            f"-ast-dump-filter={NAMESPACE}")


class References:
    """What refers to what in all sources, and where each function's body begins."""

    def __init__(self, root):
        self.root = root
        self.codes = 0
        self.roots = set()
        self.mentions = {} # symbol: the symbols in its definition
        self.places = {} # symbol: (file, line)

    def add(self, sources, code):
        # Other code may repeat internal symbols.
        self.codes += 1
        internal = {symbol: f"{symbol}#{self.codes}" for symbol in INTERNAL.findall(code)}
        self.add_places(code, internal)
        if sources.layer in USERS:
            self.roots.update(internal.get(symbol, symbol) for symbol in SYMBOL.findall(code))
            return
        current = None
        for line in code.splitlines():
            if match := DEFINITION.match(line):
                current = internal.get(match[1], match[1])
                if not match[1].strip('"').startswith("_Z"):
                    self.roots.add(current)
            elif line.startswith("@"):
                symbol = SYMBOL.match(line)[1]
                current = internal.get(symbol, symbol)
            elif not line.startswith(" "):
                continue
            self.mentions.setdefault(current, set()).update(
                internal.get(symbol, symbol) for symbol in SYMBOL.findall(line))

    def add_places(self, code, internal):
        files = {number: os.path.relpath(os.path.join(folder, name), self.root)
                 for number, name, folder in FILE.findall(code)}
        places = {number: (files[file], int(line)) for number, file, line in SUBPROGRAM.findall(code)}
        for symbol, number in DEFINITION.findall(code):
            if number in places: # the compiler's own functions have none
                self.places[internal.get(symbol, symbol)] = places[number]

    def reached(self, also):
        """The places to which the roots and the functions at the places `also` lead."""
        pending = [symbol for symbol, place in self.places.items() if place in also]
        pending += self.roots
        seen = set(pending)
        while pending:
            more = self.mentions.get(pending.pop(), set()) - seen
            seen |= more
            pending += more
        return {self.places[symbol] for symbol in seen if symbol in self.places}


class Functions:
    """Reads the library's functions from dumps of clang's syntax tree. A location there leaves out
    file and line where they are those of the location before."""

    KINDS = ("FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl",
             "CXXConversionDecl")
    CLASSES = ("CXXRecordDecl", "ClassTemplateSpecializationDecl",
               "ClassTemplatePartialSpecializationDecl")
    BODIES = ("CompoundStmt", "CXXTryStmt")

    def __init__(self, root):
        self.root = root
        self.names = {} # (file, line): name
        self.at_compile_time = set() # places of functions that are called then, or may be
        self.scopes = {} # of a class, its name with those around it

    def add(self, dump):
        decoder = json.JSONDecoder(object_hook=self.complete)
        position = dump.find("{")
        while position >= 0:
            self.file, self.line = "", 0
            tree, position = decoder.raw_decode(dump, position)
            self.walk(tree, "")
            position = dump.find("{", position)

    def complete(self, node):
        """The decoder calls this for inner objects first: for locations in the dump's order."""
        if "offset" in node:
            self.file = node.setdefault("file", self.file)
            self.line = node.setdefault("line", self.line)
        elif str(node.get("kind", "")).endswith(("Stmt", "Expr", "Operator", "Literal")):
            return {"kind": node["kind"], "range": node["range"]}
        return node

    def walk(self, node, scope):
        kind = node.get("kind")
        scope = self.scopes.get(node.get("parentDeclContextId"), scope)
        if kind in self.KINDS:
            self.add_function(node, scope)
        elif kind in self.CLASSES and "name" in node:
            scope = f"{scope}{node['name']}::"
            self.scopes[node["id"]] = scope
        for child in node.get("inner", []):
            self.walk(child, scope)

    def add_function(self, node, scope):
        body = next((child for child in node.get("inner", []) if child.get("kind") in self.BODIES),
                    None)
        if body is None or node.get("isImplicit") or node.get("explicitlyDefaulted"):
            return
        begin = body["range"]["begin"]
        begin = begin.get("expansionLoc", begin)
        place = (os.path.relpath(begin["file"], self.root), begin["line"])
        if place[0].split("/", 1)[0] in LIBRARY:
            parameters = node["type"]["qualType"].partition("(")[2].partition(" -> ")[0]
            name = re.sub(rf"{NAMESPACE}::(\w+::)*", "", f"{scope}{node['name']}({parameters}")
            self.names.setdefault(place, name)
            if node.get("constexpr") and (node.get("isUsed") or node.get("isReferenced")):
                self.at_compile_time.add(place)


def library_and_users(root, entries):
    """The sources of LIBRARY, by folder, and those of USERS that include any of it, by layer."""
    graph = IncludeGraph(root)
    folders = {}
    for entry in entries:
        name = name_of(root, entry)
        layer = name.split("/", 1)[0]
        layers = {included.split("/", 1)[0] for included in graph.closure(name)}
        if layer in LIBRARY or layer in USERS and layers.intersection(LIBRARY):
            names = name.split("/")[:-1]
            folders.setdefault(tuple(names if layer in LIBRARY else names[:2]), []).append(entry)
    return [Sources(root, group) for group in folders.values()]


def findings_in(root, entries, exceptions):
    """Returns the findings, each a line."""
    folders = library_and_users(root, entries)
    references, functions = References(root), Functions(root)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        codes = list(workers.map(Sources.code, folders))
        library = [sources for sources in folders if sources.layer in LIBRARY]
        dumps = list(workers.map(Sources.syntax, library))
    for sources, outputs in zip(folders, codes):
        for code in outputs:
            references.add(sources, code)
    for outputs in dumps:
        for dump in outputs:
            functions.add(dump)

    def unreached(also):
        reached = references.reached(also) | functions.at_compile_time
        return {place: name for place, name in sorted(functions.names.items())
                if place not in reached}

    excepted = {place: name for place, name in unreached(()).items() if name in exceptions}
    findings = [f"{file}:{line}: only tests call {name}"
                for (file, line), name in unreached(excepted).items() if name not in exceptions]
    findings += [f"EXCEPTIONS: {name} is gone or called by others than tests"
                 for name in exceptions if name not in excepted.values()]
    if len(exceptions) > MOST_EXCEPTIONS:
        findings.append(f"EXCEPTIONS: {len(exceptions)}, at most {MOST_EXCEPTIONS}")
    return findings


def key_of(root, entries):
    """A hash over everything of the project's own that can change the outcome."""
    graph = IncludeGraph(root)
    names = {name for sources in library_and_users(root, entries) for one in sources.names
             for name in graph.closure(one)}
    names.update(path.relative_to(root).as_posix() for layer in LIBRARY
                 for path in (root / layer).rglob("*.hpp"))
    paths = [pathlib.Path(__file__), *(root / name for name in sorted(names))]
    digest = hashlib.sha256("\0".join(entry["command"] for entry in entries).encode())
    for path in paths:
        digest.update(f"\0{path}\0".encode() + path.read_bytes())
    return digest.hexdigest()


def main():
    root = pathlib.Path.cwd().resolve()
    build = pathlib.Path(sys.argv[1])
    entries = entries_of(root, build)
    mark, key = build / "unreferenced.passed", key_of(root, entries)
    if mark.is_file() and mark.read_text(encoding="utf-8") == key:
        return
    findings = findings_in(root, entries, EXCEPTIONS)
    for line in findings:
        print(line)
    if findings:
        sys.exit(1)
    mark.write_text(key, encoding="utf-8")


if __name__ == "__main__":
    main()
