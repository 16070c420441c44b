#!/usr/bin/env bash
# Times ostrovia-replay against jq on the mapping of alarms: the same file, in the same run, taking
# turns. Makes the file from LINES alarms (default 200000). Prints the best of ROUNDS (default 3) of
# each and the ratio; fails when ostrovia-replay is not at least fourteen times as fast.
#
#   scripts/replay_speed.sh TOOL [LINES [ROUNDS]]
set -euo pipefail

readonly wanted_ratio=14
tool=$1
lines=${2:-200000}
rounds=${3:-3}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# The codec's event of an alarm, as far as jq can make it: times become seconds, the source its id,
# the metadata type and channel.
readonly mapping='
  def seconds: (.[0:19] + "Z" | fromdateiso8601) + (.[20:23] | tonumber) / 1000
    - (if .[23:24] == "Z" then 0
       else (.[23:24] + "1" | tonumber) * ((.[24:26] | tonumber) * 3600 + (.[27:29] | tonumber) * 60)
       end);
  {metadata: {"vlt.type": "com.tivra.ostrovia.Alarm", "vlt.channel": "ostrovia.devices"},
   payload: (.payload
     | .source |= .id
     | .time |= seconds
     | .firstOccurrenceTime |= seconds
     | .creationTime |= seconds
     | .lastUpdated |= seconds
     | .measurements = {})}'

make_alarms() {
  awk -v lines="$lines" 'BEGIN {
    for (i = 0; i < lines; ++i) {
      printf "{\"metadata\":{\"pulsarPath\":\"t4100/quay-north/alarms/%d\"},\"payload\":{" \
        "\"id\":\"%d\",\"self\":\"https://quaynorth.ostrovia.example/alarms/%d\"," \
        "\"type\":\"site_Gust\",\"text\":\"Gusts above 15 m/s at the jib\"," \
        "\"source\":{\"id\":\"%d\",\"name\":\"K1 anemometer\"},\"severity\":\"WARNING\"," \
        "\"status\":\"ACTIVE\",\"count\":%d,\"time\":\"2024-05-14T09:%02d:%02d.000+02:00\"," \
        "\"firstOccurrenceTime\":\"2024-05-14T09:12:03.000+02:00\"," \
        "\"creationTime\":\"2024-05-14T07:12:03.390Z\"," \
        "\"lastUpdated\":\"2024-05-14T07:12:03.390Z\"," \
        "\"site_Gust\":{\"peak\":%d.5,\"units\":\"m/s\"}}}\n",
        i, i, i, 1000 + i % 200, 1 + i % 9, i % 60, i % 59, 15 + i % 10
    }
  }'
}

# milliseconds COMMAND…: how long it takes
milliseconds() {
  local start end
  start=$(date +%s%N)
  "$@" >"$folder/out" 2>"$folder/errors"
  end=$(date +%s%N)
  echo $(((end - start) / 1000000))
}

# The events of one program as lines with sorted keys, for comparison.
normalised() { jq --compact-output --sort-keys . "$1"; }

make_alarms >"$folder/alarms.ndjson"
head -100 "$folder/alarms.ndjson" >"$folder/some.ndjson"
"$tool" --quiet "$folder/some.ndjson" >"$folder/ours"
jq --compact-output "$mapping" "$folder/some.ndjson" >"$folder/theirs"
if ! cmp -s <(normalised "$folder/ours") <(normalised "$folder/theirs"); then
  echo "the two do not make the same of an alarm" >&2
  exit 1
fi

best_ours=
best_theirs=
for ((round = 0; round < rounds; ++round)); do
  ours=$(milliseconds "$tool" "$folder/alarms.ndjson")
  theirs=$(milliseconds jq --compact-output "$mapping" "$folder/alarms.ndjson")
  [[ -n $best_ours ]] && ((best_ours <= ours)) || best_ours=$ours
  [[ -n $best_theirs ]] && ((best_theirs <= theirs)) || best_theirs=$theirs
done

awk -v lines="$lines" -v bytes="$(stat --format=%s "$folder/alarms.ndjson")" -v ours="$best_ours" \
  -v theirs="$best_theirs" -v version="$(jq --version)" -v wanted="$wanted_ratio" 'BEGIN {
  printf "%d alarms, %.0f MB\n", lines, bytes / 1e6
  printf "ostrovia-replay %8d ms %9.0f messages/s\n", ours, lines / ours * 1000
  printf "%-15s %8d ms %9.0f messages/s\n", version, theirs, lines / theirs * 1000
  printf "ratio           %8.1f\n", theirs / ours
  exit theirs < wanted * ours
}'
