#!/usr/bin/env python3
"""Keeps the corpora of the fuzz targets in the tree: fuzz/corpus/TARGET.txt, an input a line, so that
git shows a change as lines added and removed.

  line     the bytes of an input: \\\\ \\n \\r \\t \\xNN for a backslash and all that is not printable ASCII
  order    that of the lines; an input comes once

usage: fuzz_corpus.py pack FOLDER FILE      writes the inputs in FOLDER, the shortest of them up to
                                            the bound of a target
       fuzz_corpus.py unpack FILE FOLDER    writes each line of FILE as an input into FOLDER
"""

import hashlib
import pathlib
import sys

MOST_BYTES = 150_000  # of a target; all of them together stay under 2 MB
MOST_BYTES_OF = {"explain": 30_000}  # an explanation takes a twentieth of a second


def escaped(content):
    return content.decode("latin-1").encode("unicode_escape").decode("ascii")


def plain(line):
    return line.encode("ascii").decode("unicode_escape").encode("latin-1")


def pack(folder, file):
    lines = {escaped(path.read_bytes()) for path in folder.iterdir()}
    kept = []
    size = 0
    most = MOST_BYTES_OF.get(file.stem, MOST_BYTES)
    for line in sorted(lines, key=lambda line: (len(line), line)):
        size += len(line) + 1
        if size > most:
            break
        kept.append(line)
    file.parent.mkdir(exist_ok=True)
    file.write_text("".join(line + "\n" for line in sorted(kept)), encoding="ascii")
    print(f"{file}: {len(kept)} of {len(lines)} inputs, {file.stat().st_size} bytes")


def unpack(file, folder):
    for line in file.read_text(encoding="ascii").splitlines():
        content = plain(line)
        (folder / hashlib.sha1(content).hexdigest()).write_bytes(content)


def main():
    action, source, target = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    (pack if action == "pack" else unpack)(source, target)


if __name__ == "__main__":
    main()
