# shellcheck shell=bash
# Measuring the tests with planted faults. Sourced by ./dev, which runs in the project's root.

# mutate ARGS…: those of scripts/mutate.py.
mutate() {
  project_files '*' | python3 scripts/mutate.py "$@"
}
