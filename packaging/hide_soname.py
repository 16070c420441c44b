"""Empties the soname of a library, for the stand-in in a package: a package manager that reads
sonames, as RPM's does, would offer it as the library of a host. The tools still find the file, by
its name; so may a program that is linked with -l:FILE.

    hide_soname.py LIBRARY      a 64-bit, little-endian ELF file, changed in place
"""

import struct
import sys

PT_DYNAMIC = 2
DT_SONAME = 14
EMPTY_STRING = 0 # where every table of strings has one


def hide_soname(content):
    (headers,) = struct.unpack_from("<Q", content, 32)
    size, count = struct.unpack_from("<HH", content, 54)
    for header in range(headers, headers + size * count, size):
        kind, _, start, _, _, length = struct.unpack_from("<IIQQQQ", content, header)
        if kind != PT_DYNAMIC:
            continue
        for entry in range(start, start + length, 16):
            if struct.unpack_from("<q", content, entry)[0] == DT_SONAME:
                struct.pack_into("<Q", content, entry + 8, EMPTY_STRING)
                return
    raise ValueError("the library has no soname")


def main():
    with open(sys.argv[1], "r+b") as library:
        content = bytearray(library.read())
        hide_soname(content)
        library.seek(0)
        library.write(content)


if __name__ == "__main__":
    main()
