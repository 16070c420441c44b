# shellcheck shell=bash
# Making the packages. Sourced by ./dev, which runs in the project's root.
#
#   package            the .deb files and the .tar.gz in package_output, with their bill of materials
#                      and hashes; prints the names
#   package_into DIR   the same, into a folder, without building
#   package_for_arm64  lets all of this, from now on, be for aarch64
#
# All of it is of the preset in package_preset.
package_preset=dist
package_output=build/package

# Dependencies and versions are of the libraries that scripts/arm64.sh unpacks: Debian's tools read
# these variables.
package_for_arm64() {
  package_preset=dist-arm64
  package_output=build/package-arm64
  # shellcheck disable=SC2154 # of scripts/arm64.sh
  export DEB_HOST_ARCH=arm64 DPKG_ADMINDIR=$arm64_libraries/$arm64_database
}

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

# finish_debug_package FILE.ddeb: makes a FILE.deb of it that apt installs. CPack leaves paths of its own
# folders among the hashes, and no document of the package.
finish_debug_package() {
  local name content=$1.content
  dpkg-deb --raw-extract "$1" "$content"
  name=$(dpkg-deb --field "$1" Package)
  mkdir -p "$content/usr/share/doc"
  chmod -R u=rwX,go=rX "$content" # not the caller's own permissions
  find "$content" -name '*.debug' -exec chmod 644 {} +
  ln -s "${name%-dbgsym}" "$content/usr/share/doc/$name"
  (cd "$content" && find usr -type f -print0 | LC_ALL=C sort --zero-terminated |
    xargs -0 md5sum >DEBIAN/md5sums)
  chmod 644 "$content/DEBIAN/md5sums"
  SOURCE_DATE_EPOCH=$(commit_time) dpkg-deb --root-owner-group --build "$content" "${1%.ddeb}.deb" \
    >/dev/null
  rm -r "$content" "$1"
}

package_into() {
  local output
  rm -rf "$1"
  # Folders get the usual permissions, not the caller's own.
  output=$(umask 022 && SOURCE_DATE_EPOCH=$(commit_time) LC_ALL=C.UTF-8 \
    cpack --config "build/$package_preset/CPackConfig.cmake" -B "$1" 2>&1) ||
    fail "cpack failed:"$'\n'"$output"
  rm -rf "$1/_CPack_Packages"
  local package
  for package in "$1"/*.ddeb; do
    finish_debug_package "$package"
  done
  (
    umask 022
    python3 packaging/bill_of_materials.py "$1" "$(commit_time)"
    cd "$1" || return
    LC_ALL=C
    sha256sum -- * >SHA256SUMS.part
    mv SHA256SUMS.part SHA256SUMS
  )
}

# build_for_packages: all that is installed.
build_for_packages() {
  configure "$package_preset"
  grep --quiet '^VLT_CLIENT_LIBRARY:[^=]*=$' "build/$package_preset/CMakeCache.txt" ||
    fail "build/$package_preset is configured with VLT_CLIENT_LIBRARY: there is no package of that"
  build "$package_preset" all ostrovia-replay-shared ostrovia-check-plugin-shared
}

package() {
  build_for_packages
  note "packaging"
  package_into "$PWD/$package_output"
  local LC_COLLATE=C
  printf '%s\n' "$package_output"/*
}
