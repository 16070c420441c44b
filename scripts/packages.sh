# shellcheck shell=bash
# The one table of what the project needs of its operating system, Debian 12, and the function that
# installs what is missing. Sourced by ./dev.
#
#   group     needed by
#   build     compiling with g++ 12 and running the tests
#   clang     the preset `clang`, and clang-tidy's view of the sources
#   lint      ./dev lint, ./dev format
#   coverage  ./dev coverage
#   fuzz      ./dev fuzz, together with clang: the fuzzer's and the sanitizers' runtime, and names in
#             their reports
#   package   ./dev package: dependencies of a .deb, and what of a package is a program
#   root      ./dev test-package, together with package: a clean Debian to install in
#   bench     ./dev bench; besides, scripts/bench.sh unpacks libboost1.81-dev, which conflicts with
#             libboost-dev
#
# Only what is named here is installed: recommended packages are left out, so a name that is missing
# shows on a fresh machine and not on the machine of whoever forgot it.

declare -A package_groups=(
  [build]="
    cmake ninja-build
    gcc-12 g++-12 libc6-dev
    binutils
    libboost-dev
    libcli11-dev libsimdjson-dev rapidjson-dev
    zlib1g-dev libzstd-dev libyaml-cpp-dev
    libgtest-dev libgmock-dev
    man-db
  "
  [clang]="clang-14"
  [lint]="clang-format-14 clang-tidy-14 git python3 shellcheck"
  [coverage]="gcovr"
  [fuzz]="libclang-rt-14-dev llvm-14 python3"
  [package]="git dpkg-dev file"
  [root]="debootstrap debian-archive-keyring python3"
  [bench]="git jq libbenchmark-dev nlohmann-json3-dev valgrind"
)

# missing_packages NAME…: prints the packages that are not installed, one per line.
missing_packages() {
  local installed name
  # dpkg-query fails as soon as one name is unknown to it, which only means that it is missing.
  installed=$(dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' "$@" \
    2>/dev/null) || true
  for name in "$@"; do
    grep --quiet --line-regexp --fixed-strings "installed $name" <<<"$installed" || echo "$name"
  done
}

# set_up GROUP…: installs what is missing of the groups; silent when nothing is.
set_up() {
  local group
  local -a names=() missing=() as_root=()
  for group in "$@"; do
    # shellcheck disable=SC2206 # split at blanks on purpose: a group is a list of names
    names+=(${package_groups[$group]})
  done
  command -v dpkg-query >/dev/null || fail "this is no Debian system; it needs: ${names[*]}"
  mapfile -t missing < <(missing_packages "${names[@]}")
  ((${#missing[@]})) || return 0

  if ((EUID != 0)); then
    command -v sudo >/dev/null || fail "neither root nor sudo; as root: apt-get install ${missing[*]}"
    as_root=(sudo)
  fi
  note "installing ${missing[*]}"
  apt_get "${as_root[@]}" -- update
  apt_get "${as_root[@]}" -- install --yes --no-install-recommends "${missing[@]}"
}

# apt_get [PREFIX…] -- ARGS…: apt-get without questions; what it and dpkg say is shown only when they
# fail. The variable stands behind the prefix because sudo drops the caller's environment.
apt_get() {
  local output
  local -a prefix=()
  while [[ $1 != -- ]]; do
    prefix+=("$1")
    shift
  done
  shift
  output=$("${prefix[@]}" env DEBIAN_FRONTEND=noninteractive apt-get --quiet=2 \
    --option Acquire::Retries=3 --option DPkg::Lock::Timeout=120 --option Dpkg::Use-Pty=0 \
    "$@" 2>&1 </dev/null) || fail "apt-get $1 failed:"$'\n'"$output"
}
