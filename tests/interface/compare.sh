#!/usr/bin/env bash
# Compares the interface with the host, as compilers see it, with the accepted one in accepted.xml:
#
#   compare.sh LIBRARY            fails on any difference, harmless ones included
#   compare.sh --accept LIBRARY   accepts the interface of LIBRARY
#
# Without libabigail it skips the test, as ctest reads status 77; in CI, where ./dev test has
# installed it, that is a failure.
set -euo pipefail

accepted=$(dirname "${BASH_SOURCE[0]}")/accepted.xml

# describe LIBRARY: its interface, without any path or the name of a machine.
describe() {
  abidw --no-architecture --no-comp-dir-path --no-corpus-path --no-elf-needed --no-show-locs \
    --no-parameter-names --exported-interfaces-only --type-id-style hash "$1" |
    sed "s| path='[^']*'||"
}

if [[ $1 == --accept ]]; then
  describe "$2" >"$accepted"
  exit
fi

library=$1
if ! command -v abidiff >/dev/null; then
  echo "the interface is not compared: there is no abidiff; ./dev test installs it"
  [[ ${CI:-} != true ]] || exit 1
  exit 77
fi
found=$(mktemp)
trap 'rm "$found"' EXIT
describe "$library" >"$found"
abidiff --harmless --no-architecture "$accepted" "$found" && exit
cat <<EOT

The interface with the host has changed. Hosts are built without this project, so they break.
If every host knows of the change, accept it:

    ${BASH_SOURCE[0]} --accept $library
EOT
exit 1
