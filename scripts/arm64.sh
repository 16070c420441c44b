# shellcheck shell=bash
# Building for aarch64 and testing the result by an emulator. Sourced by ./dev, which runs in the
# project's root.
#
#   set_up_arm64         the compiler, the emulator and Debian's libraries for aarch64
#   test_arm64 [ARGS…]   the optimised build and its tests; ARGS go to ctest
#   test_arm64_shortly   both plug-ins, not optimised, in hosts written in C: seconds
#
# The libraries are unpacked into build/arm64-libraries, C library included, with a database of dpkg's
# for them alone. So this machine's dpkg need not know of another architecture, whose -dev packages
# could conflict with its own.

arm64_libraries=$PWD/build/arm64-libraries
arm64_database=var/lib/dpkg # of dpkg, in that folder

# Programs of tests that end in time when they are emulated. value_tests, misuse_tests and
# check_plugin_tests take more than ten minutes on a busy machine.
arm64_programs=(
  built_library_tests codec_tests conformance_tests end_to_end_tests exhaustion_tests ndjson_tests
  plugin_tests recorder_tests recording_tests standin_tests threads_tests
)
# Of the tests, those of a host in a language of its own.
arm64_hosts=(c_host chain_host ending_host minimal_host own_runtime_host)

set_up_arm64() {
  set_up build arm64
  local folder=$arm64_libraries part=$arm64_libraries.part row
  local -a rows=() packages=()
  # shellcheck disable=SC2154 # the table of scripts/packages.sh
  read -r -d '' -a rows <<<"${package_groups[build]}" || true
  for row in "${rows[@]}"; do
    [[ $row != *-dev=* ]] || packages+=("${row%%=*}")
  done
  [[ -d $folder/$arm64_database && $(<"$folder/packages") == "${packages[*]}" ]] && return
  note "unpacking the libraries of aarch64 into build/arm64-libraries"
  rm -rf "$part" "$folder"
  mkdir -p "$part/apt/lists/partial" "$part/apt/archives/partial"
  : >"$part/apt/status"
  # Sources and keys are this machine's; all that apt keeps is in the folder. So it needs no root.
  local -a arm64_only=(
    --option APT::Architecture=arm64 --option APT::Architectures=arm64
    --option "APT::Sandbox::User=$(id --user --name)" --option Debug::NoLocking=true
    --option "Dir::State::Lists=$part/apt/lists" --option "Dir::State::Status=$part/apt/status"
    --option "Dir::Cache=$part/apt" --option "Dir::Cache::Archives=$part/apt/archives"
  )
  apt_get -- update "${arm64_only[@]}"
  apt_get -- install "${arm64_only[@]}" --download-only --yes --no-install-recommends "${packages[@]}"
  local package link
  mkdir -p "$part/$arm64_database/info"
  echo arm64 >"$part/$arm64_database/arch"
  echo 1 >"$part/$arm64_database/info/format" # names of files have the machine
  for package in "$part"/apt/archives/*.deb; do
    dpkg-deb --extract "$package" "$part"
    record_arm64_package "$package" "$part/$arm64_database"
  done
  # Absolute links would lead to this machine's libraries.
  while IFS= read -r link; do
    ln --symbolic --relative --no-dereference --force "$part$(readlink "$link")" "$link"
  done < <(find "$part" -lname '/*')
  rm -rf "$part/apt"
  echo "${packages[*]}" >"$part/packages"
  mv "$part" "$folder"
}

# record_arm64_package FILE DATABASE: what dpkg itself would note. The packages that ./dev makes get
# their dependencies and the versions of linked libraries from there.
record_arm64_package() {
  local name control
  name=$(dpkg-deb --field "$1" Package)
  if [[ $(dpkg-deb --field "$1" Multi-Arch) == same ]]; then
    name+=:arm64
  fi
  { dpkg-deb --field "$1" | sed '1a Status: install ok installed' && echo; } >>"$2/status"
  dpkg-deb --fsys-tarfile "$1" | tar --list |
    sed "s|^\\.|$arm64_libraries|; s|/\$||" >"$2/info/$name.list"
  for control in symbols shlibs; do
    dpkg-deb --info "$1" "$control" >"$2/info/$name.$control" 2>/dev/null ||
      rm "$2/info/$name.$control" # it has none
  done
}

test_arm64() {
  local pattern
  build arm64 "${arm64_programs[@]}" "${arm64_hosts[@]}" ostrovia-replay \
    ostrovia-check-plugin
  pattern=$(IFS='|' && echo "${arm64_programs[*]}")
  note "testing arm64"
  ctest --preset arm64 --tests-regex "^($pattern|checked_plugin)(\\.|\$)" "$@"
}

test_arm64_shortly() {
  build arm64-quick c_host chain_host minimal_host
  note "testing arm64-quick"
  ctest --preset arm64-quick --tests-regex '^end_to_end_tests\.(HostWrittenInC|MinimalHost|ChainInC)$'
}
