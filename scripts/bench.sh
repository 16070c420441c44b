# shellcheck shell=bash
# Building and running the benchmarks. Sourced by ./dev, which runs in the project's root.
#
#   bench                the tables; results.json and chart.svg in build/bench/results
#   bench_instructions   instructions per message, counted by callgrind
#   bench --replay       ostrovia-replay against jq, by scripts/replay_speed.sh
#   bench_against REV    builds the plug-in of another revision; prints its path

# The headers of the Boost that has Boost.JSON, unpacked into build/boost-1.81: the package itself
# conflicts with the one of the codec's Boost.
unpack_boost_json() {
  local folder=build/boost-1.81
  [[ -f $folder/usr/include/boost/json/src.hpp ]] && return
  local part=$folder.part
  rm -rf "$part" "$folder"
  mkdir -p "$part"
  note "unpacking libboost1.81-dev into $folder"
  local -a as_root=()
  ((EUID == 0)) || as_root=(sudo)
  apt_get "${as_root[@]}" -- update
  (cd "$part" && apt_get -- download libboost1.81-dev)
  dpkg-deb --extract "$part"/libboost1.81-dev_*.deb "$part"
  rm "$part"/libboost1.81-dev_*.deb
  mv "$part" "$folder"
}

build_bench() {
  unpack_boost_json
  build bench ostrovia-bench OstroviaNotifications2Codec OstroviaNotificationsRecorder
}

# bench_against REV: its sources in a work tree of their own, built in the same way.
bench_against() {
  local -a own_tree=(git -c "safe.directory=$PWD")
  local commit
  commit=$("${own_tree[@]}" rev-parse --verify --quiet "$1^{commit}") || fail "no revision '$1'"
  local folder=$PWD/build/against/$commit
  "${own_tree[@]}" worktree prune
  [[ -e $folder/source/.git ]] ||
    "${own_tree[@]}" worktree add --detach "$folder/source" "$commit" >&2
  note "building $1"
  cmake -S "$folder/source" -B "$folder/build" -G Ninja --log-level=NOTICE \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_COMPILER=gcc-12 -DCMAKE_CXX_COMPILER=g++-12 \
    -DVLT_BUILD_TESTS=OFF >&2
  cmake --build "$folder/build" --target OstroviaNotifications2Codec >&2
  echo "$folder/build/bin/libOstroviaNotifications2Codec.so"
}

# bench_instructions ARGS…: kinds by contenders, instructions per message.
bench_instructions() {
  local folder=build/bench/instructions
  rm -rf "$folder"
  mkdir -p "$folder"
  note "counting instructions; callgrind takes its time"
  valgrind --quiet --tool=callgrind --collect-atstart=no \
    --callgrind-out-file="$folder/counts" build/bench/bin/ostrovia-bench --instructions "$@" >&2
  # Each dump names its measurement: "desc: Trigger: Client Request: KIND;CONTENDER;MESSAGES". Dumps
  # have numbers, and awk has to read them in that order.
  # shellcheck disable=SC2016 # the dollars are awk's
  find "$folder" -name 'counts.*' | sort --version-sort | xargs awk '
    /^desc: Trigger: Client Request: / {
      sub(/^desc: Trigger: Client Request: /, "")
      split($0, label, ";")
    }
    /^totals: / && label[1] != "" {
      if (!(label[1] in kind_seen)) { kind_seen[label[1]] = 1; kinds[++kind_count] = label[1] }
      if (!(label[2] in name_seen)) { name_seen[label[2]] = 1; names[++name_count] = label[2] }
      count[label[1], label[2]] = $2 / label[3]
      label[1] = ""
    }
    END {
      if (kind_count == 0) { print "no counts" > "/dev/stderr"; exit 1 }
      printf "Instructions per message\n\n%-20s", ""
      for (k = 1; k <= kind_count; ++k) printf "%16s", kinds[k]
      print ""
      for (n = 1; n <= name_count; ++n) {
        printf "%-20s", names[n]
        for (k = 1; k <= kind_count; ++k) printf "%16.0f", count[kinds[k], names[n]]
        print ""
      }
    }'
}

# bench ARGS…
bench() {
  local instructions=no
  local -a arguments=()
  if [[ ${1:-} == --replay ]]; then
    shift
    build release ostrovia-replay OstroviaNotifications2Codec
    scripts/replay_speed.sh build/release/bin/ostrovia-replay "$@"
    return
  fi
  while (($#)); do
    case $1 in
      --instructions) instructions=yes ;;
      --against)
        (($# >= 2)) || fail "--against takes a revision"
        local library
        library=$(bench_against "$2")
        arguments+=(--against "$library" --against-name "$2")
        shift
        ;;
      *) arguments+=("$1") ;;
    esac
    shift
  done
  build_bench
  if [[ $instructions == yes ]]; then
    bench_instructions "${arguments[@]}"
  else
    build/bench/bin/ostrovia-bench --results build/bench/results "${arguments[@]}"
  fi
}
