"""Prints the coverage that llvm-cov exported: lines, branches, and conditions by MC/DC, where each
condition of a decision must have been seen to decide the outcome alone.

    llvm-cov export … | coverage.py REASONS

A template counts once: an outcome seen in one of its instances is seen. REASONS lists the places that
no test reaches, each with the reason:

    FILE <tab> TEXT OF THE LINE <tab> REASON

All other missed places are listed, with the kind (line, branch, condition) and the text. Exit status 1
when there is one, or when a place of REASONS is reached.
"""

import collections
import json
import pathlib
import sys

ROOT = pathlib.Path.cwd()
KINDS = ("lines", "branches", "conditions")


def lines_of(file):
    """Whether each line with code was reached, as llvm-cov's own line counts have it."""
    reached = {}
    segments = file["segments"]
    for number, (line, _, count, has_count, _, is_gap) in enumerate(segments):
        end = segments[number + 1][0] if number + 1 < len(segments) else line
        if has_count and not is_gap:
            for one in range(line, end + 1):
                if one == line or one < end:
                    reached[one] = max(reached.get(one, 0), count)
    return {(line, 0): bool(count) for line, count in reached.items()}


def branches_of(file):
    outcomes = {}
    for line, column, _, _, when_true, when_false, *_ in file["branches"]:
        for outcome, count in ((True, when_true), (False, when_false)):
            key = (line, column, outcome)
            outcomes[key] = outcomes.get(key, False) or count > 0
    return outcomes


def conditions_of(file):
    conditions = {}
    for line, column, _, _, _, _, decided in file.get("mcdc_records", []):
        for number, shown in enumerate(decided):
            key = (line, column, number)
            conditions[key] = conditions.get(key, False) or shown
    return conditions


def missed(file, places):
    text = (ROOT / file).read_text(encoding="utf-8").splitlines()
    for kind, found in places.items():
        for (line, *which), reached in sorted(found.items()):
            if not reached:
                yield kind, line, which, text[line - 1].strip()


def main():
    exported = json.load(sys.stdin)["data"][0]
    reasons = {}
    for row in pathlib.Path(sys.argv[1]).read_text(encoding="utf-8").splitlines():
        if row and not row.startswith("#"):
            file, text, reason = row.split("\t")
            reasons[file, text] = reason
    totals = collections.defaultdict(lambda: dict.fromkeys(KINDS, (0, 0)))
    open_places, used = [], set()
    for file in exported["files"]:
        name = str(pathlib.Path(file["filename"]).relative_to(ROOT))
        places = {"lines": lines_of(file), "branches": branches_of(file),
                  "conditions": conditions_of(file)}
        for folder in (name.split("/", 1)[0], "all"):
            for kind, found in places.items():
                reached, count = totals[folder][kind]
                totals[folder][kind] = reached + sum(found.values()), count + len(found)
        for kind, line, which, text in missed(name, places):
            if (name, text) in reasons:
                used.add((name, text))
            else:
                open_places.append(f"{name}:{line}: {kind} {which}: {text}")
    print(f"{'':10}" + "".join(f"{kind:>24}" for kind in KINDS))
    for folder, figures in totals.items():
        cells = (f"{reached} of {count} {100 * reached / max(count, 1):6.2f} %"
                 for reached, count in figures.values())
        print(f"{folder:10}" + "".join(f"{cell:>24}" for cell in cells))
    for place in open_places:
        print(place)
    for file, text in reasons.keys() - used:
        print(f"{file}: reached, but listed as unreachable: {text}")
    return bool(open_places or reasons.keys() - used)


if __name__ == "__main__":
    sys.exit(main())
