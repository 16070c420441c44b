"""Runs the examples of a document: console_blocks.py DOCUMENT INFO PREFIX…

Each line "$ COMMAND" of the blocks ```console INFO is run as PREFIX… bash -c COMMAND, and must show
what stands below it, as in the tests of tests/docs. Times differ from run to run, a line that ends
in "…" is only begun, and a line that is "…" stands for any number of lines.

Exit status 1 when something else was shown, with both on standard output.
"""

import re
import subprocess
import sys

TIME = re.compile(r"\b[0-9]+\.[0-9]+ ms\b")


def sessions(document, info):
    """Yields (line number, command, lines shown) for each command of the blocks."""
    session = None
    inside = False
    for number, line in enumerate(document.read().splitlines(), start=1):
        if line.startswith("```"):
            if session:
                yield session
            session = None
            inside = line == "```console " + info
        elif inside and line.startswith("$ "):
            if session:
                yield session
            session = (number, line[2:], [])
        elif inside:
            session[2].append(line)


def pattern(lines):
    """The regular expression for the output of a command."""
    text = ""
    for line in lines:
        line = TIME.sub("T ms", line)
        if line == "…":
            text += "(.*\n)*"
        elif line.endswith("…"):
            text += re.escape(line[:-1]) + ".*\n"
        else:
            text += re.escape(line) + "\n"
    return re.compile(text)


def run(command, prefix):
    done = subprocess.run(prefix + ["bash", "-c", command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, encoding="utf-8", check=False)
    return TIME.sub("T ms", done.stdout)


def main():
    path, info, *prefix = sys.argv[1:]
    with open(path, encoding="utf-8") as document:
        commands = list(sessions(document, info))
    if not commands:
        sys.exit(f"{path}: no block ```console {info}")
    for number, command, expected in commands:
        shown = run(command, prefix)
        if not pattern(expected).fullmatch(shown):
            sys.exit("\n".join([f"{path}:{number}: $ {command}", "expected:", *expected,
                                "shown:", shown]))


if __name__ == "__main__":
    main()
