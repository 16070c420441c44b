# shellcheck shell=bash
# Configuring, building and testing one preset of CMakePresets.json. Sourced by ./dev, which runs in
# the project's root. Everything that builds speaks on stderr, and only when there is work.

# The targets of tests that builds of all leave out where nothing is optimised (tests/CMakeLists.txt).
# shellcheck disable=SC2034 # for ./dev
slow_tests=(
  tests/{cost,docs,enumeration,exhaustion,identity,install,misuse,simulation,soak,tools/check}/all
)

# configure PRESET
configure() {
  local ninja_file=build/$1/build.ninja
  # Ninja reconfigures by itself when a CMake file changes, but knows nothing of the presets.
  [[ $ninja_file -nt CMakePresets.json ]] && return
  note "configuring $1"
  cmake --preset "$1" --log-level=NOTICE >&2
}

# build PRESET [TARGET…]: all targets without a name.
build() {
  local preset=$1
  shift
  configure "$preset"
  is_current "$preset" "$@" && return
  note "building $preset"
  cmake --build "build/$preset" ${1:+--target "$@"} >&2
}

# is_current PRESET [TARGET…]: whether a build would have nothing to do. A dry run ends at
# build.ninja, since it cannot tell whether the globs have other files now. So that file is made
# current before, and read under a name that has no rule.
is_current() {
  local directory=build/$1
  shift
  ninja -C "$directory" build.ninja &>/dev/null &&
    ninja -C "$directory" -n -f /dev/stdin "$@" <"$directory/build.ninja" 2>/dev/null |
    grep --quiet '^ninja: no work to do'
}

# build_and_test PRESET [CTEST ARGS…]: stdout has the output of ctest alone.
build_and_test() {
  local preset=$1
  shift
  build "$preset"
  note "testing $preset"
  ctest --preset "$preset" "$@"
}
