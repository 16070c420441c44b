"""Finds the conditional jumps of a built library for x86-64 and turns them round in the file.

The last bit of the operation code decides for the condition or for its opposite:

    7x dd              a jump by one byte        the bit is in the first byte
    0F 8x dd dd dd dd  a jump by four bytes      the bit is in the second byte
"""

import collections
import dataclasses
import hashlib
import os
import re
import subprocess

# Line numbers for the report; they change no instruction.
FLAGS = ("-DCMAKE_CXX_FLAGS_RELEASE=-O3 -DNDEBUG -g1",)
FUNCTION = re.compile(r"^[0-9a-f]+ <(.*)>:$")
INSTRUCTION = re.compile(r"^ *([0-9a-f]+):\t((?:[0-9a-f]{2} )+) *\t(?:bnd |notrack )*(j\w+) ")
NAMESPACES = re.compile(r"com::velanto::connectivity::(plugins::pulsar::)?")
ABOVE = re.compile(r".*/\.\./") # in a place: the way from the build folder to the sources
TEXT_SECTION = re.compile(r"^ *\d+ \.text +\w+ +(\w+) +\w+ +(\w+) ", re.MULTILINE)


@dataclasses.dataclass(frozen=True)
class Jump:
    """`offset` is the one of the byte in the file; `content` is a hash of the library."""
    content: str
    function: str
    place: str
    offset: int
    name: str
    operator = "jump"


def condition_at(code):
    """The byte of a jump whose last bit turns it round; None for another instruction."""
    if 0x70 <= code[0] <= 0x7F:
        return 0
    if code[0] == 0x0F and len(code) > 1 and 0x80 <= code[1] <= 0x8F:
        return 1
    return None


def output_of(*command):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE).stdout


def jumps_of(library):
    """All jumps in the library's code, in the order of their addresses."""
    section = TEXT_SECTION.search(output_of("objdump", "--section-headers", library))
    shift = int(section[2], 16) - int(section[1], 16)
    content = hashlib.sha256(library.read_bytes()).hexdigest()[:16]
    function, found = "", []
    listing = output_of("objdump", "--disassemble", "--demangle", "--section=.text", library)
    for line in listing.splitlines():
        if match := FUNCTION.match(line):
            function = match[1]
        elif match := INSTRUCTION.match(line):
            at = condition_at(bytes.fromhex(match[2]))
            if at is not None:
                found.append((int(match[1], 16), at, match[3], function))
    places = output_of("addr2line", f"--exe={library}", *(hex(jump[0]) for jump in found)).splitlines()
    return [Jump(content, NAMESPACES.sub("", function), ABOVE.sub("", place.split(" (")[0]), address + at + shift,
                 f"{os.path.basename(library)}:{address:#x}:{name}")
            for (address, at, name, function), place in zip(found, places)]


def whole(library):
    return library.with_suffix(".whole")


def flip(library, content, jump):
    """Puts `content` with the jump turned round into the library's place."""
    flipped = bytearray(content)
    flipped[jump.offset] ^= 1
    os.replace(library, whole(library))
    library.write_bytes(flipped)


def restore(library):
    if whole(library).is_file():
        os.replace(whole(library), library)


def print_groups(chosen, survivors):
    """The survivors by function, those with most of them first."""
    totals = collections.Counter(jump.function for jump in chosen)
    groups = collections.defaultdict(collections.Counter)
    for jump in survivors:
        groups[jump.function][jump.place] += 1
    for function, places in sorted(groups.items(), key=lambda group: -group[1].total()):
        print(f"{function}: {places.total()} of {totals[function]}")
        for place, count in sorted(places.items()):
            print(f"  {place}" + (f" ({count})" if count > 1 else ""))
