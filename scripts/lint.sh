# shellcheck shell=bash
# What must hold of the sources beyond compiling. Sourced by ./dev, which runs in the project's root.
#
#   lint_format   clang-format would change nothing
#   lint_shell    shellcheck is content with every script; no function of ./dev replaces another one
#   lint_scripts  the scripts that have tests pass them
#   lint_layers   includes point down, no cycles, files stay short
#   lint_c        gcc's path analysis finds nothing in the hosts written in C; of C++ it knows too little
#   lint_values   cppcheck finds nothing in code that a host loads
#   lint_tidy     clang-tidy is content with every source
#
#   prove_headers  every header is self-contained
#   prove_calls    no function of the library is there for tests alone
#   prove_values   cppcheck finds nothing in all other code but the tests
#   prove_bench    clang-tidy is content with the benchmarks, which need packages of their own
#   prove_paths    clang's path analysis finds nothing in code that a host loads
#   prove_timestamps, prove_tables
#                  every case of the spaces that tests/enumeration has, not only a share of them
#   prove_lives    no life of tests/simulation breaks a law, of a million or of the number given
#   prove_words    reading eight digits at a time is right for every word, says a solver
#
# The cheap checks come first. The second group takes minutes and seldom finds anything, so it is not
# part of each run of the tests.

# project_files PATTERN…: the project's own files whose path matches one of the shell patterns,
# added to git or not, one per line. Git's own list leaves out what .gitignore names; an unpacked
# archive has no such list and no such files but those in build/.
project_files() {
  local -a own_tree=(git -c "safe.directory=$PWD")
  if "${own_tree[@]}" rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    "${own_tree[@]}" ls-files --cached --others --exclude-standard --deduplicate -- "$@"
  else
    local pattern
    for pattern in "$@"; do
      find . -path ./build -prune -o -type f -path "./$pattern" -printf '%P\n'
    done
  fi | LC_ALL=C sort | while IFS= read -r file; do
    # A file that is deleted but not yet committed is still in git's list.
    [[ ! -f $file ]] || printf '%s\n' "$file"
  done
}

c_and_cpp_files() { project_files '*.h' '*.hpp' '*.c' '*.cpp'; }

lint_format() {
  c_and_cpp_files | xargs --no-run-if-empty clang-format-14 --dry-run -Werror
}

lint_shell() {
  local twice
  twice=$(grep --no-filename --only-matching -E '^[a-z0-9_-]+\(\)' dev scripts/*.sh | sort | uniq -d)
  [[ -z $twice ]] || fail "./dev sources two functions of one name: $twice"
  { project_files '*.sh' && printf '%s\n' dev .ci/run; } | xargs shellcheck --external-sources
}

lint_scripts() { test_scripts scripts; }

# test_scripts FOLDER: runs the tests of the scripts in it, but not in folders below.
test_scripts() {
  local output
  output=$(python3 -m unittest discover --start-directory "$1" --pattern 'test_*.py' 2>&1) ||
    fail "a script is broken:"$'\n'"$output"
}

# list_sources: compile_commands.json as clang reads it in several checks.
list_sources() {
  configure lint
  cmake --build build/lint --target build.ninja >&2 # its list of sources may be an older one
}

lint_layers() {
  c_and_cpp_files | xargs python3 scripts/check_layers.py
}

lint_c() {
  project_files '*.c' |
    xargs --max-args=1 gcc-12 -std=c11 -fanalyzer -O1 -Wall -Wextra -Werror -I . -c -o /dev/null
}

lint_values() { analyse_values host plugin codec recorder value; }

prove_values() { analyse_values bench fuzz identity ndjson runtime standin tools; }

# analyse_values FOLDER…
analyse_values() {
  cppcheck --quiet --error-exitcode=1 -j "$CMAKE_BUILD_PARALLEL_LEVEL" --std=c++20 -I . \
    --enable=warning,performance,portability --library=posix --template=gcc \
    --suppressions-list=scripts/cppcheck_suppressions.txt "$@"
}

prove_bench() {
  set_up bench
  unpack_boost_json
  cmake --preset lint --log-level=NOTICE -B build/lint-bench -D VLT_BUILD_BENCH=ON >&2
  python3 scripts/run_clang_tidy.py build/lint-bench bench
}

prove_calls() {
  list_sources
  python3 scripts/check_unreferenced.py build/lint
}

# Headers of the tests and of the benchmarks get definitions from the commands of their sources.
prove_headers() {
  project_files '*.h' '*.hpp' | grep --invert-match -E '^(bench|fuzz|tests)/' |
    xargs python3 scripts/check_headers.py build/lint/headers.passed
}

lint_tidy() {
  list_sources
  python3 scripts/run_clang_tidy.py build/lint
}

prove_paths() {
  list_sources
  python3 scripts/run_clang_tidy.py build/lint --paths
}

# share COMMAND…: on each processor, with the number of processors and its own, from 0.
share() {
  local part failed=0 parts=$CMAKE_BUILD_PARALLEL_LEVEL
  local -a running=()
  for ((part = 0; part < parts; part++)); do
    "$@" "$parts" "$part" &
    running+=($!)
  done
  for part in "${running[@]}"; do
    wait "$part" || failed=1
  done
  return "$failed"
}

# enumerate_all NAME: all cases of a program of tests/enumeration.
enumerate_all() {
  build release "enumerate-$1"
  share "build/release/bin/enumerate-$1"
}

prove_timestamps() { enumerate_all timestamps; }

prove_tables() {
  enumerate_all operations
  enumerate_all inputs
}

prove_words() {
  test_scripts scripts/prove
  python3 scripts/prove/words.py codec/timestamps.cpp
}

# prove_lives [NUMBER]: from the seeds after those of the tests.
prove_lives() {
  local count=${1:-1000000}
  [[ $count =~ ^[1-9][0-9]*$ ]] || fail "no number of lives: '$count'"
  build release ostrovia-lives
  share live_share "$count"
}

# live_share LIVES PARTS PART
live_share() {
  local first=10000
  build/release/bin/ostrovia-lives build/release/bin/libOstroviaNotifications{2Codec,Recorder}.so \
    --seeds $((first + $1 * $3 / $2))-$((first + $1 * ($3 + 1) / $2 - 1))
}

lint() { run_steps lint format shell scripts layers c values tidy; }

prove_steps=(calls headers values bench paths words timestamps tables lives)

# prove [STEP…]: all steps without a name. prove lives NUMBER: so many lives.
prove() {
  local step
  if [[ $# == 2 && $1 == lives ]]; then
    prove_lives "$2"
    return
  fi
  for step in "$@"; do
    [[ " ${prove_steps[*]} " == *" $step "* ]] ||
      fail "there is no step '$step'; there are: ${prove_steps[*]}"
  done
  (($#)) || set -- "${prove_steps[@]}"
  run_steps prove "$@"
}

# run_steps GROUP STEP…
run_steps() {
  local group=$1 step
  shift
  for step in "$@"; do
    note "$group: $step"
    "${group}_$step" >&2
  done
}

format() {
  c_and_cpp_files | xargs --no-run-if-empty clang-format-14 -i
}
