# shellcheck shell=bash
# What the project costs today, beside the accepted values in bench/costs.tsv. Sourced by ./dev, which
# runs in the project's root.
#
#   costs            prints the table; fails when a message takes over 1 % more instructions than accepted
#   accept_costs     writes today's values into the file: part of the commit that changes them
#
# Instructions do not depend on the speed or load of a machine, so that they can fail a run. Lines and
# seconds are for people to read.
#
#   instructions/KIND       of a message, plug-in and host library: callgrind counts all that
#                           ostrovia-replay spends in the entry point for batches towards the host
#   lines/…                 of sources and headers
#   seconds/release         of all its tests, one after the other, when they last ran
#   percent/surviving-mutants   by hand from ./dev mutate --sample 60

costs_file=bench/costs.tsv
readonly costs_limit=1 # percent
readonly costs_repeats=40 # of a sample, so that the first message of a kind hardly counts

cost_of_messages() {
  local sample=samples/$1.ndjson counts=build/release/instructions.$1 messages
  local -a files
  mapfile -t files < <(yes "$sample" | head -n "$costs_repeats" || true)
  messages=$(($(grep -c . "$sample") * costs_repeats))
  valgrind --quiet --tool=callgrind "--callgrind-out-file=$counts" \
    --toggle-collect=vlt_plugin_sendBatchTowardsHost_OstroviaNotifications2Codec \
    build/release/bin/ostrovia-replay "${files[@]}" >/dev/null 2>"$counts.log" ||
    fail "ostrovia-replay failed under callgrind:"$'\n'"$(tail -5 "$counts.log")"
  awk -v messages="$messages" '/^totals:/ { printf "%.0f\n", $2 / messages }' "$counts"
}

# lines_in FOLDER…
lines_in() {
  project_files "${@/%//*.[ch]pp}" "${@/%//*.[ch]}" | xargs cat | wc --lines
}

# costs_today: name and value of each, separated by a tab.
costs_today() {
  local sample
  for sample in alarms events managedobjects measurements operations; do
    printf 'instructions/%s\t%s\n' "$sample" "$(cost_of_messages "$sample")"
  done
  printf 'lines/codec\t%s\n' "$(lines_in codec)"
  printf 'lines/library\t%s\n' "$(lines_in host value plugin codec standin)"
  printf 'lines/all-but-tests\t%s\n' \
    "$(lines_in host identity value plugin codec recorder ndjson standin runtime tools bench fuzz)"
  printf 'lines/tests\t%s\n' "$(lines_in tests)"
  awk '$3 > 0 { seconds += $3 } END { printf "seconds/release\t%.0f\n", seconds }' \
    build/release/Testing/Temporary/CTestCostData.txt
}

costs() {
  note "counting the instructions of messages"
  costs_today | compare_costs
}

compare_costs() {
  awk -v limit="$costs_limit" -v file="$costs_file" -F '\t' '
    FNR == NR { if (!/^#/) accepted[$1] = $2; next }
    FNR == 1 { printf "%-28s%12s%12s%10s\n", "cost", "accepted", "today", "change" }
    {
      seen[$1] = 1
      if (!($1 in accepted)) { printf "%-28s%12s%12s\n", $1, "none", $2; missing = 1; next }
      change = 100 * ($2 - accepted[$1]) / accepted[$1]
      printf "%-28s%12s%12s%+9.2f%%\n", $1, accepted[$1], $2, change
      if ($1 ~ /^instructions/ && change > limit) dearer = dearer " " $1
    }
    END {
      for (name in accepted) if (!(name in seen)) printf "%-28s%12s\n", name, accepted[name]
      if (missing) print file " lacks a value: ./dev costs --accept writes it"
      if (dearer) {
        print "Over " limit " % more than accepted:" dearer ". Find out why, or accept the cost: ./dev costs --accept"
      }
      exit missing || dearer != ""
    }' "$costs_file" -
}

accept_costs() {
  local today
  today=$(costs_today)
  {
    echo "# Accepted costs of the project, compared by ./dev costs and ./dev test, written by ./dev costs --accept."
    awk -F '\t' '/^percent/' "$costs_file"
    echo "$today"
  } >"$costs_file.part"
  mv "$costs_file.part" "$costs_file"
}
