# shellcheck shell=bash
# Building and running the fuzz targets. Sourced by ./dev, which runs in the project's root.
#
#   fuzz_all SECONDS             every target, as many at a time as there are processors
#   fuzz_target TARGET SECONDS   one of them
#   fuzz_file TARGET FILE        one input, once: the effect of a finding today
#   fuzz_minimise                keeps the fewest inputs that reach all that is known, in fuzz/corpus
#   fuzz_night HOURS             every target for its share of so many hours, then fuzz_minimise
#
# In build/fuzz, for each target:
#
#   seeds/TARGET      made by each run from the samples and from fuzz/corpus, and run first
#   corpus/TARGET     inputs that reached something new; later runs go on from there
#   findings/TARGET   inputs that broke a check, crashed, leaked or took too long
#   log/TARGET        the last run's output
#   runs/TARGET       the number of inputs run so far

fuzz_targets=(plugin explain map replay recording recorder comparison dead_letters decompression
  configuration time number)

# The longest inputs, in bytes. Longer ones show little more and slow everything down.
declare -A fuzz_longest=([time]=64 [number]=64 [map]=1024 [plugin]=256 [replay]=4096
  [recording]=2048 [recorder]=1024 [decompression]=1024 [configuration]=512 [dead_letters]=2048
  [comparison]=2048 [explain]=1024)

# An ordinary input takes milliseconds: one that takes seconds, on a busy machine too, found a way
# to make the code slow. The memory includes 256 MB that AddressSanitizer holds back from reuse.
fuzz_limits=(-timeout=10 -rss_limit_mb=1024 -malloc_limit_mb=256)

is_fuzz_target() {
  local target
  for target in "${fuzz_targets[@]}"; do
    [[ $1 != "$target" ]] || return 0
  done
  return 1
}

build_fuzz_targets() {
  build fuzz "${@/#/fuzz-}"
}

# fuzz_program TARGET ARGS…: the program of a target, with the sanitizers set up.
fuzz_program() {
  local target=$1
  shift
  ASAN_SYMBOLIZER_PATH=/usr/bin/llvm-symbolizer-14 UBSAN_OPTIONS=print_stacktrace=1 \
    "build/fuzz/bin/fuzz-$target" "${fuzz_limits[@]}" -max_len="${fuzz_longest[$target]}" \
    -len_control=20 "$@"
}

# fuzz_run TARGET SECONDS: runs a target that is built; prints its closing line and each finding.
fuzz_run() {
  local target=$1 seconds=$2 status=0 begin=$SECONDS
  local corpus=build/fuzz/corpus/$target findings=build/fuzz/findings/$target
  local log=build/fuzz/log/$target
  mkdir -p "$corpus" "$findings" build/fuzz/{log,runs}
  touch "$log.begun"
  # Without the standard error of the code under test, which would fill the log line by line.
  fuzz_program "$target" -max_total_time="$seconds" -close_fd_mask=2 -print_final_stats=1 \
    -artifact_prefix="$findings/" "$corpus" "build/fuzz/seeds/$target" >"$log" 2>&1 || status=$?
  local -a found
  mapfile -t found < <(find "$findings" -type f -newer "$log.begun" | LC_ALL=C sort)
  rm "$log.begun"
  fuzz_closing_line "$target" "$log" $((SECONDS - begin)) "${#found[@]}"
  local file
  for file in "${found[@]}"; do
    echo "  $file; again: ./dev fuzz $target $file"
  done
  if ((status != 0 || ${#found[@]} > 0)); then
    # The input may be in the output, with any bytes.
    grep --text -E 'FINDING|runtime error:|^SUMMARY|^==[0-9]+==ERROR' "$log" |
      cat --show-nonprinting | sed 's/^/  /' || true
    echo "  all of it: $log"
    return 1
  fi
}

# fuzz_closing_line TARGET LOG SECONDS FINDINGS: prints it, and adds the runs to those so far.
fuzz_closing_line() {
  local count=build/fuzz/runs/$1 before
  before=$(cat "$count" 2>/dev/null) || before=0
  awk -v target="$1" -v seconds="$3" -v findings="$4" -v before="$before" -v count="$count" '
    match($0, /cov: [0-9]+/) { coverage = substr($0, RSTART + 5, RLENGTH - 5) }
    /^stat::number_of_executed_units:/ { runs = $2 }
    /^COUNTS: / { counts = "; " substr($0, 9) }
    END {
      # A %d ends at 31 bits.
      printf "%s: %.0f runs, %.0f in all, coverage %d, %d seconds, %d findings%s\n",
             target, runs, before + runs, coverage, seconds, findings, counts
      printf "%.0f\n", before + runs >count
    }' "$2"
}

# make_fuzz_inputs FOLDER: of each target in FOLDER/TARGET, those to begin with.
make_fuzz_inputs() {
  local folder=$1 target
  rm -rf "$folder"
  python3 fuzz/make_seeds.py "$folder"
  for target in "${fuzz_targets[@]}"; do
    # A new target has no corpus yet.
    [[ ! -f fuzz/corpus/$target.txt ]] ||
      python3 scripts/fuzz_corpus.py unpack "fuzz/corpus/$target.txt" "$folder/$target"
  done
}

prepare_fuzzing() {
  build_fuzz_targets "$@"
  make_fuzz_inputs build/fuzz/seeds
}

# for_each_target FUNCTION [ARGS…]: as many at a time as there are processors. False: one of them failed.
for_each_target() {
  local function=$1 failed=0 running=0 target
  shift
  for target in "${fuzz_targets[@]}"; do
    if ((running == CMAKE_BUILD_PARALLEL_LEVEL)); then
      wait -n || failed=1
      running=$((running - 1))
    fi
    "$function" "$target" "$@" &
    running=$((running + 1))
  done
  while ((running > 0)); do
    wait -n || failed=1
    running=$((running - 1))
  done
  return "$failed"
}

fuzz_target() {
  local target=$1 seconds=$2
  prepare_fuzzing "$target"
  note "fuzzing $target for $seconds seconds"
  fuzz_run "$target" "$seconds"
}

fuzz_all() {
  local seconds=$1
  prepare_fuzzing "${fuzz_targets[@]}"
  note "fuzzing ${fuzz_targets[*]}, each for $seconds seconds"
  for_each_target fuzz_run "$seconds"
}

minimise_target() {
  local target=$1 corpus=build/fuzz/corpus/$1 merged=build/fuzz/merged/$1
  rm -rf "$merged"
  mkdir -p "$merged" "$corpus" "build/fuzz/findings/$target" build/fuzz/log
  fuzz_program "$target" -merge=1 -close_fd_mask=2 \
    -artifact_prefix="build/fuzz/findings/$target/" \
    "$merged" "build/fuzz/seeds/$target" "$corpus" >"build/fuzz/log/$target.merge" 2>&1 ||
    fail "cannot merge the inputs of $target: build/fuzz/log/$target.merge"
  rm -rf "$corpus"
  mv "$merged" "$corpus"
  python3 scripts/fuzz_corpus.py pack "$corpus" "fuzz/corpus/$target.txt"
}

fuzz_minimise() {
  prepare_fuzzing "${fuzz_targets[@]}"
  for_each_target minimise_target
}

# In rounds of at most ten minutes a target: one that finds something ends its round there.
fuzz_night() {
  local seconds failed=0 round end
  seconds=$(LC_ALL=C awk -v hours="$1" 'BEGIN { print int(3600 * hours) }')
  end=$((SECONDS + seconds))
  round=$((seconds * CMAKE_BUILD_PARALLEL_LEVEL / ${#fuzz_targets[@]}))
  ((round <= 600)) || round=600
  while ((SECONDS < end)); do
    fuzz_all "$((round > 0 ? round : 1))" || failed=1
  done
  fuzz_minimise
  return "$failed"
}

fuzz_file() {
  local target=$1 file=$2
  build_fuzz_targets "$target"
  fuzz_program "$target" "$file"
}

# fuzz [TARGET] [SECONDS | FILE], fuzz --minimise, fuzz --night HOURS
fuzz() {
  local target='' seconds=30
  if [[ ${1:-} == --minimise ]]; then
    (($# == 1)) || fail "fuzz --minimise takes no arguments"
    fuzz_minimise
    return
  fi
  if [[ ${1:-} == --night ]]; then
    [[ $# == 2 && $2 =~ ^[0-9]*\.?[0-9]+$ ]] || fail "fuzz --night takes a number of hours"
    fuzz_night "$2"
    return
  fi
  if (($#)) && is_fuzz_target "$1"; then
    target=$1
    shift
  fi
  (($# <= 1)) || fail "fuzz takes a target and a number of seconds or a file"
  if [[ ${1:-} =~ ^[0-9]+$ ]]; then
    seconds=$1
  elif (($#)); then
    [[ -n $target ]] || fail "no fuzz target '$1'; there are: ${fuzz_targets[*]}"
    # shellcheck disable=SC2154 # set by ./dev
    local file=$callers_directory/$1
    [[ $1 != /* ]] || file=$1
    [[ -f $file ]] || fail "no such file: $file"
    fuzz_file "$target" "$file"
    return
  fi
  if [[ -n $target ]]; then
    fuzz_target "$target" "$seconds"
  else
    fuzz_all "$seconds"
  fi
}
