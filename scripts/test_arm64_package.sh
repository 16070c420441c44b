# shellcheck shell=bash
# Unpacking the packages for aarch64 and running them by an emulator, on the libraries of Debian that
# scripts/arm64.sh unpacks. Sourced by ./dev, which runs in the project's root.
#
#   test_arm64_package   makes the packages and runs every check_… below in the order of
#                        arm64_package_checks
#
# In build/package-test:
#
#   arm64-archive    the .tar.gz, unpacked
#   arm64-packages   the .deb files, unpacked over each other
#
# Nothing is installed, so no dependency is resolved: that would take a root of aarch64 and a kernel
# that starts its programs.

# shellcheck disable=SC2154 # of scripts/test_package.sh and scripts/arm64.sh
arm64_archive=$package_folder/arm64-archive
# shellcheck disable=SC2154
arm64_installed=$package_folder/arm64-packages
# shellcheck disable=SC2154
emulator=(qemu-aarch64 -L "$arm64_libraries")

check_arm64_hashes() {
  (cd "$package_output" && sha256sum --check --strict SHA256SUMS)
  expect_same 7 "$(grep -c . "$package_output/SHA256SUMS")"
  (cd "$arm64_installed" && md5sum --check --strict --quiet ../arm64-md5sums)
}

# arm64_field NAME FIELD
arm64_field() {
  dpkg-deb --field "$package_output/$1"_*.deb "$2"
}

check_arm64_fields() {
  local name
  for name in "$package_name"{,-tools,-dbgsym,-tools-dbgsym}; do
    expect_same arm64 "$(arm64_field "$name" Architecture)"
  done
  expect_same all "$(arm64_field "$package_name-dev" Architecture)"
  expect_same 'libc6 (>= 2.17), libgcc-s1 (>= 3.3.1), libstdc++6 (>= 5.2)' \
    "$(arm64_field "$package_name" Depends)"
  local libraries='libc6, libgcc-s1, libsimdjson14, libsodium23, libstdc++6, libyaml-cpp0.7, libzstd1'
  expect_same "$package_name, $libraries, zlib1g" \
    "$(arm64_field "$package_name-tools" Depends | sed 's/ ([^)]*)//g')"
}

# Each program and library is for aarch64 and without lines of sources; the lines of the codec are in
# the -dbgsym package, under the number of its build.
check_arm64_machine() {
  local file id count=0
  while IFS= read -r file; do
    readelf --file-header "$file" | grep 'Machine: *AArch64'
    expect_same "" "$(readelf --sections "$file" | grep -F .debug_ || true)"
    count=$((count + 1))
  done < <(find "$arm64_archive" "$arm64_installed/usr" -path '*/lib/debug' -prune -o -type f \
    \( -name '*.so*' -o -path '*/bin/*' \) -print)
  expect_same 10 "$count"
  id=$(readelf --notes "$arm64_installed$package_libraries/plugin/libOstroviaNotifications2Codec.so" |
    sed -n 's/.*Build ID: //p')
  readelf --debug-dump=decodedline "$arm64_installed/usr/lib/debug/.build-id/${id:0:2}/${id:2}.debug" |
    grep 'codec/dispatch.cpp'
}

# The kernel may not know how to start these programs, so the emulator comes before the name of each.
check_arm64_readme() {
  python3 scripts/console_blocks.py packaging/README.md readme env "--chdir=$arm64_archive" \
    bash -c "eval \"${emulator[*]} \$3\"" emulated
}

check_arm64_archive_alone() {
  local tool needed
  for tool in ostrovia-replay ostrovia-check-plugin; do
    needed=$(readelf --dynamic "$arm64_archive/bin/$tool" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
    grep libtvclient.so.10.15 <<<"$needed"
    expect_same "" "$(grep -vE '^(libtvclient|libc|libm|ld-linux-aarch64)\.so' <<<"$needed" || true)"
  done
}

check_arm64_same_events() {
  local top sample
  for top in "$arm64_archive" "$arm64_installed/usr"; do
    for sample in samples/*.ndjson; do
      cmp <("${emulator[@]}" "$top/bin/ostrovia-replay" \
        "$top/share/doc/$package_name/$sample" 2>/dev/null) \
        <(build/release/bin/ostrovia-replay "$sample" 2>/dev/null)
    done
  done
}

check_arm64_plugins() {
  local top plugin
  for top in "$arm64_archive" "$arm64_installed/usr"; do
    for plugin in OstroviaNotifications2Codec OstroviaNotificationsRecorder; do
      "${emulator[@]}" "$top/bin/ostrovia-check-plugin" "$top/lib/$package_name/plugin/lib$plugin.so"
    done
  done
}

check_arm64_bill() {
  local bill version
  bill=$(echo "$package_output"/*.spdx.json)
  version=$(dpkg-query --show --showformat='${Version}' libsodium-dev:arm64)
  grep -A 20 '"name": "libsodium-dev"' "$bill" | grep "\"versionInfo\": \"$version\""
  grep '"name": "libstdc++-12-dev-arm64-cross"' "$bill"
  grep "^libsodium-dev $version:" "$arm64_archive/share/doc/$package_name/NOTICES"
}

check_arm64_lintian() {
  expect_same "" "$(lintian --allow-root "$package_output"/*.deb)"
}

arm64_package_checks=(
  "arm64_hashes         SHA256SUMS holds the hashes of the packages, and these those of their files"
  "arm64_fields         the .deb files are for arm64 and ask for the libraries that they need"
  "arm64_machine        all programs and libraries are for aarch64, with their lines in -dbgsym"
  "arm64_bill           bill of materials and notices have the versions of the linked libraries"
  "arm64_lintian        lintian finds nothing but the licence to be chosen"
  "arm64_archive_alone  the archive's tools need the C library and the host's, and no other"
  "arm64_readme         the commands of the archive's README give the output in it, emulated"
  "arm64_same_events    the emulated ostrovia-replay makes the same of every sample as the native one"
  "arm64_plugins        the emulated codec and recorder pass the emulated ostrovia-check-plugin"
)

unpack_arm64_packages() {
  rm -rf "$arm64_archive" "$arm64_installed"
  mkdir -p "$arm64_archive" "$arm64_installed"
  tar --extract --file "$package_output"/*.tar.gz --directory "$arm64_archive" --strip-components=1
  local package
  for package in "$package_output"/*.deb; do
    dpkg-deb --extract "$package" "$arm64_installed"
    dpkg-deb --info "$package" md5sums
  done >"$package_folder/arm64-md5sums"
}

test_arm64_package() {
  package >/dev/null
  build release ostrovia-replay OstroviaNotifications2Codec
  unpack_arm64_packages
  run_checks "${arm64_package_checks[@]}"
}
