"""Measures the tests: plants faults in the plug-ins' sources, one at a time, and lists those that no
test notices.

  (1) make the mutants of all sources of the plug-ins (mutants.py)
  (2) leave out those of LIST, which change nothing that a caller can see, each with its reason
  (3) build each of the others and run the programs of its layer's road until one fails
      (mutation_tree.py)
  (4) compare the compiled code of the survivors with the original's: the same code is no fault
  (5) list the survivors, and rows of LIST without a mutant

With --jumps the mutants are conditional jumps of the built codec library (jumps.py), each the other
way round. A survivor there may be a fast way that gives the same result: one reads them in groups.

usage: mutate.py (--sample N [--seed S] | --all | --only PREFIX) [--jumps]
                                            in the project's root; standard input has the names of
                                            the project's files. Exit status 1 with a survivor
"""

import argparse
import collections
import fcntl
import pathlib
import random
import signal
import sys

import jumps
from mutants import mutants_of
from mutation_tree import (FOLDER, NOT_COMPILED, SAME_CODE, SURVIVED, Laboratory, Program, Results,
                           digest_of)

LIST = pathlib.Path("tests/mutants.tsv")
CODEC = "{bin}/libOstroviaNotifications2Codec.so"
RECORDER = "{bin}/libOstroviaNotificationsRecorder.so"

LONG = "MapModel.AgreesUnderTheHostsHash:*Deep*"

PROGRAMS = {
    "value": Program("value_tests", f"--gtest_filter=-{LONG}", loads_plugins=False),
    "long_value": Program("value_tests", f"--gtest_filter={LONG}", loads_plugins=False),
    "plugin": Program("plugin_tests", loads_plugins=False),
    "codec": Program("codec_tests", loads_plugins=False),
    "recorder": Program("recorder_tests", loads_plugins=False),
    "cost": Program("cost_tests", loads_plugins=False),
    "threads": Program("threads_tests", loads_plugins=False),
    "conformance": Program("conformance_tests"),
    "end_to_end": Program("end_to_end_tests"),
    "c_host": Program("c_host", CODEC),
    "misuse": Program("misuse_tests"),
    "exhaustion": Program("exhaustion_tests"),
    "recording": Program("recording_tests"),
    "check_codec": Program("ostrovia-check-plugin", f"--timeout 60 {CODEC}"),
    "check_recorder": Program("ostrovia-check-plugin", f"--timeout 60 {RECORDER}"),
    "tracers": Program("docs_tests", "--gtest_filter=OperatingDocument.TracersCountAsShown"),
    "soak": Program("ostrovia-soak", f"0.5 {CODEC} {RECORDER} {{samples}}"),
}

# By layer: the programs that are the first to notice, then the rest.
ROADS = {
    "value": "value conformance codec end_to_end c_host plugin recorder misuse exhaustion check_codec "
             "recording check_recorder soak cost long_value",
    "plugin": "plugin conformance end_to_end codec c_host recorder misuse exhaustion check_codec "
              "recording check_recorder soak cost tracers",
    "codec": "codec conformance end_to_end cost c_host tracers misuse exhaustion check_codec soak",
    "recorder": "recorder recording exhaustion check_recorder threads soak",
}
JUMP_ROAD = ("conformance", "end_to_end", "exhaustion", "misuse")


def mutants_in(files):
    """The mutants of the layers' sources."""
    return [mutant for file in files
            if file.split("/")[0] in ROADS and file.endswith((".cpp", ".hpp"))
            for mutant in mutants_of(file, pathlib.Path(file).read_text(encoding="utf-8"))]


def read_list():
    """The reason by file, line and changed line."""
    rows = [line.split("\t") for line in LIST.read_text(encoding="utf-8").splitlines()
            if line and not line.startswith("#")]
    return {(file, before, after): reason for file, before, after, reason in rows}


def chosen_from(mutants, options):
    if options.only:
        return [mutant for mutant in mutants if mutant.name.startswith(options.only)]
    if options.sample is None:
        return mutants
    chosen = random.Random(options.seed).sample(mutants, min(options.sample, len(mutants)))
    return sorted(chosen, key=mutants.index)


def report(chosen, listed, results, show):
    """Shows the survivors and prints the counts; returns the number of survivors."""
    stages = collections.Counter(results.of(mutant) for mutant in chosen if mutant not in listed)
    survivors = [mutant for mutant in chosen
                 if mutant not in listed and results.of(mutant) == SURVIVED]
    show(survivors)
    not_compiled, same_code = stages.pop(NOT_COMPILED, 0), stages.pop(SAME_CODE, 0)
    stages.pop(SURVIVED, 0)
    compiled = len(chosen) - not_compiled
    killers = ", ".join(f"{name} {count}" for name, count in stages.most_common())
    print(f"planted {len(chosen)}, not compiled {not_compiled}, same code {same_code}, "
          f"killed {stages.total()} ({killers}), listed {len(listed)}, surviving {len(survivors)}: "
          f"{100 * len(survivors) / max(compiled, 1):.1f} % of {compiled} that compile")
    return len(survivors)


def show_lines(mutants):
    for mutant in mutants:
        print(mutant.name, f"  - {mutant.before}", f"  + {mutant.after}", sep="\n")


def mutate_sources(files, options, tests):
    mutants = mutants_in(files)
    reasons = read_list()
    known = {(mutant.file, mutant.before, mutant.after) for mutant in mutants}
    stale = [row for row in reasons if row not in known]
    for file, before, after in stale:
        print(f"{LIST}: no such mutant: {file}: {before} => {after}")
    chosen = chosen_from(mutants, options)
    listed = {mutant for mutant in chosen if (mutant.file, mutant.before, mutant.after) in reasons}
    results = Results(FOLDER / "results.tsv", tests)
    pending = [mutant for mutant in chosen if mutant not in listed and results.of(mutant) is None]

    def write(tree, mutant, change):
        text = pathlib.Path(mutant.file).read_text(encoding="utf-8")
        (tree.root / mutant.file).write_text(change(text), encoding="utf-8")

    if pending:
        laboratory = Laboratory(files, "mutate", PROGRAMS)
        laboratory.set_up()
        laboratory.run(pending, results, lambda mutant: ROADS[mutant.file.split("/")[0]].split(),
                       lambda tree, mutant: write(tree, mutant, mutant.applied_to),
                       lambda tree, mutant: write(tree, mutant, str))
    print(f"{len(mutants)} mutants in all")
    return report(chosen, listed, results, show_lines) + len(stale)


def flip_jumps(files, options, tests):
    laboratory = Laboratory(files, "release", {name: PROGRAMS[name] for name in JUMP_ROAD},
                            jumps.FLAGS, builds=False)
    libraries = {tree: tree.bin / CODEC.removeprefix("{bin}/") for tree in laboratory.trees}
    for library in libraries.values():
        jumps.restore(library) # an earlier run may have been killed
    laboratory.set_up()
    library = libraries[laboratory.trees[0]]
    found, content = jumps.jumps_of(library), library.read_bytes()
    chosen = chosen_from(found, options)
    results = Results(FOLDER / "jumps.tsv", tests)
    laboratory.run([jump for jump in chosen if results.of(jump) is None], results,
                   lambda jump: JUMP_ROAD,
                   lambda tree, jump: jumps.flip(libraries[tree], content, jump),
                   lambda tree, jump: jumps.restore(libraries[tree]))
    print(f"{len(found)} conditional jumps in all")
    report(chosen, (), results, lambda survivors: jumps.print_groups(chosen, survivors))
    return 0


def main():
    parser = argparse.ArgumentParser(prog="./dev mutate")
    parser.add_argument("--jumps", action="store_true",
                        help="turn conditional jumps of the built codec round instead")
    parser.add_argument("--seed", type=int, default=1, help="of the sample")
    which = parser.add_mutually_exclusive_group(required=True)
    which.add_argument("--sample", type=int, metavar="N", help="take N of them by chance")
    which.add_argument("--all", action="store_true", help="take all; goes on with an earlier run")
    which.add_argument("--only", metavar="PREFIX", help="take those whose names begin so: FILE[:LINE]")
    options = parser.parse_args()
    files = sys.stdin.read().splitlines()
    tests = digest_of(name for name in files if name.startswith(("tests/", "tools/check/")))
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143)) # for the trees to be restored
    FOLDER.mkdir(parents=True, exist_ok=True)
    with (FOLDER / "lock").open("w", encoding="utf-8") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX) # an earlier run that was ended still withdraws its mutants
        found = (flip_jumps if options.jumps else mutate_sources)(files, options, tests)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
