# shellcheck shell=bash
# The one table of the project's needs of its operating system, Debian 12, and the functions that
# install missing packages, npm's included. Sourced by ./dev.
#
#   group     needed by
#   build     compiling with g++ 12 and running the tests; git tells the commit of a build
#   clang     the presets `clang` and `quick`, and clang-tidy's view of the sources
#   lint      ./dev lint, ./dev format
#   costs     ./dev costs
#   prove     ./dev prove, together with clang and lint: a solver
#   coverage  ./dev coverage
#   fuzz      ./dev fuzz and the preset `sanitize`, together with clang: the fuzzer's and the
#             sanitizers' runtime, and names in their reports
#   mutate    ./dev mutate, together with clang
#   arm64     ./dev test-arm64 and a step of ./dev test: the compiler for aarch64 and an emulator;
#             scripts/arm64.sh unpacks the libraries of group build for aarch64
#   page      tests/page: a browser, what drives it, and npm, which installs the rest
#   trace     the test of the tracer's lines in docs/operating.md
#   package   ./dev package: dependencies of a .deb, what of a package is a program, the bill of
#             materials, and the source of a library that the tools link
#   root      ./dev test-package, together with package: a clean Debian to install in, judges of
#             packages, and a second user, processor and locale
#   cluster   ./dev test-cluster, together with package: a clean Debian for its daemons, and what
#             enters it
#   bench     ./dev bench; besides, scripts/bench.sh unpacks libboost1.81-dev, which conflicts with
#             libboost-dev
#
# Each package has the reason why the project needs it: a command (cmake), a C or C++ header
# (zlib.h), or a file (a pattern that begins with /). Only without that does the function install
# the package, so another version of a library, from any source, will do.
#
# The function installs only the packages in this table, without recommended ones. So a missing name
# shows on a fresh machine.

declare -A package_groups=(
  [build]="
    cmake=cmake ninja-build=ninja
    gcc-12=gcc-12 g++-12=g++-12 libc6-dev=stdlib.h
    abigail-tools=abidiff binutils=readelf git=git
    libboost-dev=boost/optional.hpp
    libsimdjson-dev=simdjson.h rapidjson-dev=rapidjson/document.h
    zlib1g-dev=zlib.h libzstd-dev=zstd.h libsodium-dev=sodium.h libyaml-cpp-dev=yaml-cpp/yaml.h
    systemtap-sdt-dev=sys/sdt.h libmimalloc2.0=/usr/lib/*/libmimalloc.so.2.0
    libgtest-dev=gtest/gtest.h libgmock-dev=gmock/gmock.h
    man-db=man
  "
  [clang]="clang-14=clang++-14"
  [lint]="
    clang-format-14=clang-format-14 clang-tidy-14=clang-tidy-14 cppcheck=cppcheck
    git=git python3=python3 shellcheck=shellcheck
  "
  [costs]="valgrind=valgrind"
  [coverage]="
    clang-19=clang++-19 llvm-19=llvm-cov-19 python3=python3
    libclang-rt-19-dev=/usr/lib/llvm-19/lib/clang/*/lib/linux/libclang_rt.profile-*.a
  "
  [prove]="z3=z3"
  [fuzz]="
    libclang-rt-14-dev=/usr/lib/llvm-14/lib/clang/*/lib/linux/libclang_rt.fuzzer-*.a
    llvm-14=llvm-symbolizer-14 python3=python3
  "
  [mutate]="python3=python3"
  [arm64]="
    gcc-12-aarch64-linux-gnu=aarch64-linux-gnu-gcc-12
    g++-12-aarch64-linux-gnu=aarch64-linux-gnu-g++-12
    qemu-user=qemu-aarch64
  "
  [page]="chromium=chromium nodejs=node npm=npm"
  [trace]="bpftrace=bpftrace"
  [package]="dpkg-dev=dpkg-shlibdeps file=file python3=python3"
  [root]="
    debootstrap=debootstrap python3=python3
    lintian=lintian rpm=/usr/lib/rpm/elfdeps pkg-config=pkg-config util-linux=setpriv
    locales=/usr/share/i18n/locales/tr_TR
    debian-archive-keyring=/usr/share/keyrings/debian-archive-keyring.gpg
  "
  [cluster]="
    debootstrap=debootstrap python3=python3 util-linux=nsenter
    debian-archive-keyring=/usr/share/keyrings/debian-archive-keyring.gpg
  "
  [bench]="
    jq=jq valgrind=valgrind libcli11-dev=CLI/CLI.hpp
    libbenchmark-dev=benchmark/benchmark.h nlohmann-json3-dev=nlohmann/json.hpp
  "
)

# Where compilers look for headers.
header_folders=(/usr/local/include /usr/include "/usr/include/$(uname -m)-linux-gnu")

# is_present NEED: whether the machine has that command, header or file.
is_present() {
  local folder
  case $1 in
    /*) compgen -G "$1" >/dev/null ;;
    *.h | *.hpp)
      for folder in "${header_folders[@]}"; do
        [[ ! -e $folder/$1 ]] || return 0
      done
      return 1
      ;;
    *) command -v "$1" >/dev/null || [[ -x /usr/sbin/$1 ]] ;;
  esac
}

debian_suite=bookworm # Debian 12

# debian_mirror: where this machine's own apt gets the suite.
debian_mirror() {
  local mirror
  mirror=$(mirror_in_lists)
  if [[ -z $mirror ]]; then
    ((EUID != 0)) || apt_get -- update
    mirror=$(mirror_in_lists)
  fi
  [[ -n $mirror ]] || fail "this machine's apt has no source of Debian $debian_suite"
  echo "$mirror"
}

mirror_in_lists() {
  # shellcheck disable=SC2016 # the dollars are apt's
  apt-get indextargets --format '$(ORIGIN) $(CODENAME) $(COMPONENT) $(REPO_URI)' \
    'Identifier: Packages' |
    awk -v suite="$debian_suite" '$1 == "Debian" && $2 == suite && $3 == "main" { print $4; exit }'
}

# set_up GROUP…: installs missing packages of the groups; silent when there are none.
set_up() {
  local group row
  local -a rows=() missing=() as_root=()
  for group in "$@"; do
    read -r -d '' -a rows <<<"${package_groups[$group]}" || true
    for row in "${rows[@]}"; do
      is_present "${row#*=}" || missing+=("${row%%=*}")
    done
  done
  ((${#missing[@]})) || return 0

  command -v apt-get >/dev/null || fail "this is no Debian system; it lacks: ${missing[*]}"
  if ((EUID != 0)); then
    command -v sudo >/dev/null || fail "neither root nor sudo; as root: apt-get install ${missing[*]}"
    as_root=(sudo)
  fi
  note "installing ${missing[*]}"
  apt_get "${as_root[@]}" -- update
  apt_get "${as_root[@]}" -- install --yes --no-install-recommends --no-remove "${missing[@]}"
}

# apt_get [PREFIX…] -- ARGS…: apt-get without questions; shows its output and dpkg's when they fail.
# The variable comes after the prefix because sudo drops the caller's environment. With --quiet=2
# apt-get would not say which packages are in each other's way.
apt_get() {
  local output
  local -a prefix=()
  while [[ $1 != -- ]]; do
    prefix+=("$1")
    shift
  done
  shift
  output=$("${prefix[@]}" env DEBIAN_FRONTEND=noninteractive apt-get --quiet \
    --option Acquire::Retries=3 --option DPkg::Lock::Timeout=120 --option Dpkg::Use-Pty=0 \
    "$@" 2>&1 </dev/null) || fail "apt-get $1 failed:"$'\n'"$output"
}

# set_up_simdjson: unpacks the one source of Debian's source package, and its licence, into
# build/simdjson: Debian has the library for shared linking only (cmake/ForeignLibraries.cmake). apt
# checks the signatures, with lists of its own, since most machines have none of sources.
set_up_simdjson() {
  local folder=build/simdjson part=$PWD/build/simdjson.part version mirror
  # Headers from elsewhere will do, too: then Debian's newest source.
  version=$(dpkg-query --show --showformat='${source:Version}' libsimdjson-dev 2>/dev/null) || version=''
  [[ -f $folder/simdjson.cpp && $(cat "$folder/version") == "$version" ]] && return
  note "unpacking the source of simdjson ${version:+$version }into $folder"
  mirror=$(debian_mirror)
  rm -rf "$part" "$folder"
  mkdir -p "$part/lists/partial"
  echo "deb-src $mirror $debian_suite main" >"$part/sources.list"
  local -a lists=(--option "Dir::Etc::SourceList=$part/sources.list"
    --option Dir::Etc::SourceParts=/dev/null --option "Dir::State::Lists=$part/lists"
    --option "APT::Sandbox::User=$(id --user --name)")
  apt_get -- update "${lists[@]}"
  (cd "$part" && apt_get -- source "${lists[@]}" --download-only "simdjson${version:+=$version}")
  dpkg-source --no-check --extract "$part"/*.dsc "$part/source" >/dev/null
  mkdir "$folder"
  cp "$part"/source/singleheader/simdjson.{cpp,h} "$part/source/debian/copyright" "$folder"
  echo "$version" >"$folder/version"
  rm -rf "$part"
  rm -f build/*/build.ninja # which know nothing of it yet
}

# set_up_modules: installs what tests/page needs from npm into build/page, after a change of the list.
set_up_modules() {
  local list=tests/page/package-lock.json
  [[ build/page/node_modules/.package-lock.json -nt $list ]] && return
  note "installing npm's packages into build/page"
  mkdir -p build/page
  cp tests/page/package.json "$list" build/page
  local output
  output=$(npm ci --prefix build/page --prefer-offline --no-audit --no-fund 2>&1) ||
    fail "npm ci failed:"$'\n'"$output"
}
