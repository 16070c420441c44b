# shellcheck shell=bash
# What must hold of the sources beyond compiling. Sourced by ./dev, which runs in the project's root.
#
#   lint_format   clang-format would change nothing
#   lint_shell    shellcheck is content with every script
#   lint_scripts  the scripts that have tests pass them
#   lint_layers   includes point down, no cycles, files stay short
#   lint_calls    no function of the library is there for tests alone
#   lint_headers  every header is self-contained
#   lint_tidy     clang-tidy is content with every source
#   lint_paths    clang's path analysis finds nothing; not a step of lint
#
# The cheap checks come first.

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
  { project_files '*.sh' && printf '%s\n' dev .ci/run; } | xargs shellcheck --external-sources
}

lint_scripts() {
  local output
  output=$(python3 -m unittest discover --start-directory scripts --pattern 'test_*.py' 2>&1) ||
    fail "a script is broken:"$'\n'"$output"
}

# list_sources: compile_commands.json as clang-tidy and lint_calls read it.
list_sources() {
  configure lint
  cmake --build build/lint --target build.ninja >&2 # its list of sources may be an older one
}

lint_layers() {
  c_and_cpp_files | xargs python3 scripts/check_layers.py
}

lint_calls() {
  list_sources
  python3 scripts/check_unreferenced.py build/lint
}

# Headers of the tests and of the benchmarks get definitions from the commands of their sources.
lint_headers() {
  project_files '*.h' '*.hpp' | grep --invert-match -E '^(bench|fuzz|tests)/' |
    xargs python3 scripts/check_headers.py build/lint/headers.passed
}

lint_tidy() {
  list_sources
  python3 scripts/run_clang_tidy.py build/lint
}

lint_paths() {
  list_sources
  python3 scripts/run_clang_tidy.py build/lint --paths
}

lint() {
  local step
  for step in format shell scripts layers calls headers tidy; do
    note "lint: $step"
    "lint_$step" >&2
  done
}

format() {
  c_and_cpp_files | xargs --no-run-if-empty clang-format-14 -i
}
