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
  recorder three bytes of settings, and random steps
  decompression
           a sample in each form, cut and damaged
  configuration
           a file with each kind of value, and files with each fault that has a reason of its own
  dead_letters
           a text of the log, and a line of the samples, with and without a remark
  comparison
           two neighbours of the samples; two values of every kind; a golden file
  explain  a line of the samples

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


def recorders():
    """As fuzz/recorder.cpp reads them."""
    return [bytes([files, 0, 0]) + program for files in range(4) for program in programs()]


def compressed(lines):
    """As fuzz/decompression.cpp reads them."""
    return [bytes([form, members, 0, place, flips]) + lines[0].encode()
            for form in range(2) for members in range(3) for place in (0, 20, 60) for flips in (0, 1)]


def configurations():
    values = ["12", "-7", "+7", "0x1F", "1.5", "1e3", "-.5", "true", "FALSE", "~", "null", "", "'12'",
              '"a\\u00e9\\n\\0"', "[1, [a], {b: 2}]", "{a: [1], b: {}}", "|\n    two\n    lines",
              ">-\n    one\n    line", "&a [x, *a]", "&a 1", "*a", "!!str 12", "9223372036854775808",
              "-inf", "# remark", "a: b", "[1", "? [k]", "\u00e9"]
    files = [f"tenantId: t1\nkey: {value}\n" for value in values]
    files += [value for value in values if value[:1] in "-+.0123456789tFn"]
    files += ["- a\n", "a: 1\na: 2\n", "a: 1\n---\nb: 2\n", "--- {a: 1}\n...\n", "[1]: x\n",
              "a: 1\n b: 2\n", "", "%YAML 1.2\n---\na: 1\n", "\ufeffa: 1\n", "<<: {a: 1}\n"]
    return [file.encode() for file in files]


def dead_letters(lines):
    """As fuzz/dead_letters.cpp reads them."""
    log = "<connectivity.codec.chain> Error when transforming message towards host ('id' = '1'): "
    texts = ["Key 'text' not found in payload", "Unrecognized alarm status: x", "", 'a "b" \\']
    remark = '"dropped":{"file":"f","line":1,"reason":"r","key":"k","text":"t"}'
    plain = [f"{log}{texts[i % len(texts)]}\n{line}" for i, line in enumerate(lines)]
    again = [f"{log}\n{line[:-1]},{remark}}}" for line in lines[:3]]
    return [text.encode() for text in [*plain, *again, log + "\n{}", f"{log}\n{{{remark}}}"]]


def comparisons(lines):
    pairs = [f"{one}\n{other}" for one, other in zip(lines, lines[1:])]
    values = ["null", "true", "false", "1", "2", "1.0", '"a"', '"b"', "[]", "[1]", "{}", '{"a":1}']
    pairs += [f'{{"k":{one}}}\n{{"k":{other}}}' for one in values for other in values]
    golden = ['{"at":"a:1","outcome":"converted","event":{"payload":1}}', '{"made by":"a"}',
              '{"at":"","outcome":"no message","log":[{"level":3,"text":"t"}]}']
    return [text.encode() for text in [*pairs, "1.0\n1", "[1,{}]\n[2]", "\n".join(golden)]]


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
    write(folder / "recorder", recorders())
    write(folder / "decompression", compressed(lines))
    write(folder / "configuration", configurations())
    write(folder / "dead_letters", dead_letters(lines))
    write(folder / "comparison", comparisons(lines))
    write(folder / "explain", [line.encode() for line in lines])
    write(folder / "replay", [line.encode() for line in lines + ["\n".join(lines[:3])]])


if __name__ == "__main__":
    main()
