#!/usr/bin/env python3
"""Makes the first inputs of the fuzz targets from the samples, so that no run begins at nothing.

  target   an input is
  time     a text that the samples have under one of the names of times
  number   the kind of a text, and a number that they have as a value or in a position; besides, the
           forms that strtod knows and no sample has
  map      a program of map operations: random bytes, always the same, since the samples have none
  plugin   the settings of a run, which samples make up its batch, and what is spoilt in them
  replay   a line of the samples; a few lines together
  recording
           an odd byte and the end of a recorded line: of a sample's, and of each row of the
           notation; an even byte and random bytes, which are messages

usage: make_seeds.py FOLDER     writes FOLDER/TARGET/NAME; run in the project's root
"""

import json
import pathlib
import random
import sys

SAMPLES = sorted(path for path in pathlib.Path("samples").glob("*.ndjson")
                 if path.name != "site-day.ndjson")
TIMES = {"time", "creationTime", "lastUpdated", "firstOccurrenceTime"}
TAG_STRING = 5
# Bytes of fuzz/plugin/edits.cpp.
WAYS_TO_SPOIL = 8
ANYWHERE = 128
METADATA = 224
REPLACE = 1
FAILING_FROM = 176  # the byte of the first failing sample
ODD_NUMBERS = {"", " \t42", "+.5", "-5.", ".", "1e", "1e+400", "12abc", "0x1p3", "inf", "-Infinity",
               "nan", "nan(12)", "1,5"}
SEED = 20230405


def entries(value):
    """Every (key, value) of every object within `value`."""
    if isinstance(value, dict):
        for key, content in value.items():
            yield key, content
            yield from entries(content)
    elif isinstance(value, list):
        for element in value:
            yield from entries(element)


def times(messages):
    texts = {content for message in messages for key, content in entries(message)
             if key in TIMES and isinstance(content, str)}
    return [text.encode() for text in sorted(texts)]


def numbers(messages):
    texts = {str(content) for message in messages for key, content in entries(message)
             if key in {"value", "lat", "lng", "alt"} and not isinstance(content, (dict, list))}
    return [bytes([TAG_STRING]) + text.encode() for text in sorted(texts | ODD_NUMBERS)]


def programs():
    random.seed(SEED)
    return [random.randbytes(length) for length in (50, 200, 400, 800)]


def batches(common, failing):
    """As fuzz/plugin/scenario.cpp reads them: the usual settings, every second run traced; each
    sample alone, without edits, and batches of six."""
    samples = [*range(common), *range(FAILING_FROM, FAILING_FROM + failing)]
    singles = [bytes([index % 2, 2, 0, 0, 0, sample, 0]) for index, sample in enumerate(samples)]
    sixes = [bytes([0, 0, 0, 0, 5]) + b"".join(bytes([sample, 0]) for sample in samples[at:at + 6])
             for at in range(0, len(samples), 6)]
    return singles + sixes


def spoilt(messages):
    """The first sample of each kind, each field spoilt in each way of fuzz/plugin/edits.cpp."""
    firsts = {}
    for index, message in enumerate(messages):
        firsts.setdefault(message["metadata"]["pulsarPath"].split("/")[2], (index, message))
    return [bytes([0, 2, 0, 0, 0, index, 1, way, field])
            for index, message in firsts.values()
            for way in range(WAYS_TO_SPOIL)
            for field in range(len(message["payload"]))]


def of_every_kind():
    """A payload, and then a path, of each of the twelve kinds, with a block and without one."""
    kinds = [*range(12), *range(240, 252)]
    payloads = [bytes([0, 2, 0, 0, 0, 0, 1, ANYWHERE, 0, REPLACE, kind]) for kind in kinds]
    paths = [bytes([0, 2, 0, 0, 0, 0, 1, METADATA, 0, REPLACE, kind]) for kind in kinds]
    return payloads + paths


def recordings(lines):
    """As fuzz/recording.cpp reads them."""
    digits = '"0123456789abcdef"'
    rows = [f'["decimal",{digits}]', '["buffer","AP8Q"]', '["custom"]', '["borrowed","a"]',
            '["string",null]', '["borrowed",null]', '["bytes","Yf8="]', '["borrowed-bytes","ww=="]',
            '["double","7ff8000000000000"]', f'["tag",11,{digits}]', '["map",[[1,{"a":[]}]]]']
    ends = [line[1:] for line in lines] + [f'"payload":{{"$":{row}}}}}' for row in rows]
    return [b"\x01" + end.encode() for end in ends] + [b"\0" + bytes for bytes in programs()]


def write(folder, inputs):
    folder.mkdir(parents=True, exist_ok=True)
    for number, content in enumerate(inputs):
        (folder / f"seed-{number:03}").write_bytes(content)


def main():
    folder = pathlib.Path(sys.argv[1])
    common, failing = (
        [line for path in SAMPLES if (path.name == "failing.ndjson") == is_failing
         for line in path.read_text(encoding="utf-8").splitlines()]
        for is_failing in (False, True))
    lines = common + failing
    messages = [json.loads(line) for line in lines]
    write(folder / "time", times(messages))
    write(folder / "number", numbers(messages))
    write(folder / "map", programs())
    write(folder / "plugin", batches(len(common), len(failing))
          + spoilt(messages[:len(common)]) + of_every_kind())
    write(folder / "recording", recordings(lines))
    write(folder / "replay", [line.encode() for line in lines + ["\n".join(lines[:3])]])


if __name__ == "__main__":
    main()
