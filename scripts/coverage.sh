# shellcheck shell=bash
# The coverage of the code that hosts load. Sourced by ./dev, which runs in the project's root.
#
# Tests of the tools are left out: they run the same code for minutes. In build/coverage:
#
#   profiles/       counters of each program and library of tests, added up over its processes
#   all.profdata    all of them

coverage() {
  local folder=$PWD/build/coverage file
  local -a objects=()
  build coverage
  rm -rf "$folder/profiles"
  note "testing coverage"
  LLVM_PROFILE_FILE=$folder/profiles/%m.profraw ctest --preset coverage --label-exclude single \
    --exclude-regex '^(check_plugin|explain|manual|report|tools)_tests$' >&2
  llvm-profdata-19 merge --sparse --output "$folder/all.profdata" "$folder"/profiles/*.profraw
  for file in "$folder"/bin/* ; do
    [[ ! -f $file ]] || objects+=(--object "$file")
  done
  llvm-cov-19 export "${objects[@]}" "--instr-profile=$folder/all.profdata" \
    --sources value plugin codec recorder | python3 scripts/coverage.py tests/unreached.tsv
}
