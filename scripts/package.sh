# shellcheck shell=bash
# Making the packages. Sourced by ./dev, which runs in the project's root.
#
#   package            a .deb and a .tar.gz in build/package, with their bill of materials and
#                      hashes; prints the names
#   package_into DIR   the same, into a folder, without building

# commit_time: seconds since 1970 of the packaged sources: of the last commit, or of the newest file
# of an unpacked archive. SOURCE_DATE_EPOCH overrides it.
commit_time() {
  local -a own_tree=(git -c "safe.directory=$PWD")
  if [[ -n ${SOURCE_DATE_EPOCH:-} ]]; then
    echo "$SOURCE_DATE_EPOCH"
  elif "${own_tree[@]}" rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    "${own_tree[@]}" log -1 --format=%ct
  else
    find . -path ./build -prune -o -type f -printf '%Ts\n' | sort --numeric-sort | tail -1
  fi
}

package_into() {
  local output
  rm -rf "$1"
  # Folders get the usual permissions, not the caller's own.
  output=$(umask 022 && SOURCE_DATE_EPOCH=$(commit_time) LC_ALL=C.UTF-8 \
    cpack --config build/release/CPackConfig.cmake -B "$1" 2>&1) ||
    fail "cpack failed:"$'\n'"$output"
  rm -rf "$1/_CPack_Packages"
  (
    umask 022
    python3 packaging/bill_of_materials.py "$1" "$(commit_time)"
    cd "$1" || return
    LC_ALL=C
    sha256sum -- * >SHA256SUMS.part
    mv SHA256SUMS.part SHA256SUMS
  )
}

# build_for_packages: all installed targets, and the host that tests the packages.
build_for_packages() {
  configure release
  grep --quiet '^VLT_CLIENT_LIBRARY:[A-Z]*=$' build/release/CMakeCache.txt ||
    fail "build/release is configured with VLT_CLIENT_LIBRARY: there is no package of that"
  build release chain_host OstroviaNotifications2Codec OstroviaNotificationsRecorder \
    ostrovia-replay ostrovia-check-plugin manual_files
}

package() {
  build_for_packages
  note "packaging"
  package_into "$PWD/build/package"
  local LC_COLLATE=C
  printf '%s\n' build/package/*
}
