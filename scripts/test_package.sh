# shellcheck shell=bash
# Installing, running, upgrading and purging the packages in a clean Debian 12 with their
# dependencies and nothing else; running the .tar.gz where there is only a C library; and making all
# of it again elsewhere. Sourced by ./dev, which runs in the project's root.
#
#   test_package   makes the packages and the clean root, and runs every check_… below in the order of
#                  package_checks. Prints a line for each, and at the end how many held
#
# In build/package-test:
#
#   base.tar    the root as debootstrap made it, for the next run; remove it for a newer one
#   root        the root of this run; the packages are in its folder /srv/packages
#   bare        a root with nothing but the C library and coreutils, where the .tar.gz is unpacked
#   elsewhere   the packages of the second build
#
# Commands in the root have mounts and processes of their own, which end with them.

# shellcheck disable=SC2154 # of scripts/packages.sh
readonly package_suite=$debian_suite
package_name=ostrovia-notifications
package_folder=$PWD/build/package-test
package_root=$package_folder/root
package_libraries=/usr/lib/$package_name
package_samples=/usr/share/doc/$package_name/samples
installed_packages=("$package_name" "$package_name-tools" "$package_name-dev")

in_root=(
  unshare --mount --pid --fork --kill-child "--mount-proc=$package_root/proc"
  chroot "$package_root" env --ignore-environment --chdir=/srv/packages
  PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive
)

# use_proxy: the one that this machine's apt has, for debootstrap and the root, too.
use_proxy() {
  local proxy=''
  eval "$(apt-config shell proxy Acquire::http::Proxy)"
  [[ -n $proxy ]] || return 0
  export http_proxy=$proxy
  in_root+=("http_proxy=$proxy")
}

# make_base PACKAGES: a clean root with these, separated by commas.
make_base() {
  local mirror packages=$1
  mirror=$(debian_mirror)
  [[ $mirror != https:* ]] || packages+=,ca-certificates
  note "making a clean Debian $package_suite with debootstrap"
  rm -rf "$package_root"
  debootstrap --variant=minbase "--include=$packages" "$package_suite" "$package_root" "$mirror" \
    >"$package_folder/debootstrap.log" 2>&1 ||
    fail "debootstrap failed:"$'\n'"$(tail -20 "$package_folder/debootstrap.log")"
  tar --create --file "$package_folder/base.tar.part" --directory "$package_root" --numeric-owner .
  mv "$package_folder/base.tar.part" "$package_folder/base.tar"
}

make_root() {
  mkdir -p "$package_folder"
  [[ -f $package_folder/base.tar ]] || make_base bash-completion,man-db
  rm -rf "$package_root"
  mkdir "$package_root"
  tar --extract --file "$package_folder/base.tar" --directory "$package_root" --numeric-owner
  cp --dereference /etc/resolv.conf /etc/hosts "$package_root/etc/"
  mkdir "$package_root/srv/packages"
  cp build/package/* "$package_root/srv/packages/"
  "${in_root[@]}" apt-get --quiet=2 update
  "${in_root[@]}" apt-get --quiet=2 autoremove --purge --yes
  files_of_root >"$package_folder/files.before"
}

# package_file NAME: where the Debian package is.
package_file() {
  echo "build/package/$1"_*.deb
}

# files_of_root: every path but the ones that any installation changes: caches, logs and the package
# manager's own lists.
files_of_root() {
  (cd "$package_root" && find . -xdev \( -path ./proc -o -path ./run -o -path ./srv -o -path ./tmp \
    -o -path ./var/cache -o -path ./var/log -o -path ./var/lib/apt -o -path ./var/lib/dpkg \) \
    -prune -o -print) | LC_ALL=C sort
}

# older_package FILE: the package, as if it were an older version with a file that is gone since.
older_package() {
  local content=$package_folder/older
  rm -rf "$content"
  dpkg-deb --raw-extract "$(package_file "$package_name")" "$content"
  sed -i 's/^Version: .*/Version: 0.0.1/' "$content/DEBIAN/control"
  echo "gone" >"$content$package_samples/gone.ndjson"
  dpkg-deb --root-owner-group --build "$content" "$1"
}

# No check puts `grep --quiet` after a pipe: it leaves early, and the command before it may then
# fail.

# expect_same EXPECTED CAME
expect_same() {
  [[ $1 == "$2" ]] && return
  printf 'expected: %s\ncame:     %s\n' "$1" "$2"
  return 1
}

check_hashes() {
  "${in_root[@]}" sha256sum --check --strict SHA256SUMS
  expect_same 7 "$("${in_root[@]}" grep -c . SHA256SUMS)"
}

# Each file of the installed package is in the bill of materials with its hash.
check_bill() {
  local bill file count=0
  bill=$(echo build/package/*.spdx.json)
  while IFS= read -r file; do
    [[ -f $package_root$file && ! -L $package_root$file ]] || continue
    grep -A 20 "\"fileName\": \".$file\"" "$bill" |
      grep "\"$(sha256sum "$package_root$file" | cut -d ' ' -f 1)\""
    count=$((count + 1))
  done < <("${in_root[@]}" dpkg --listfiles "${installed_packages[@]}")
  ((count > 40))
  grep '"relationshipType": "STATIC_LINK"' "$bill"
  grep "\"sourceInfo\": \"made from $package_name " "$bill"
}

check_two_commands() {
  python3 scripts/console_blocks.py docs/operating.md debian "${in_root[@]}"
}

check_same_events() {
  local sample
  for sample in samples/*.ndjson; do
    cmp <("${in_root[@]}" ostrovia-replay "$package_samples/${sample#samples/}" 2>/dev/null) \
      <(build/dist/bin/ostrovia-replay "$sample" 2>/dev/null)
  done
}

check_plugins() {
  local plugin
  for plugin in OstroviaNotifications2Codec OstroviaNotificationsRecorder; do
    "${in_root[@]}" ostrovia-check-plugin "$package_libraries/plugin/lib$plugin.so"
  done
}

# replayed INPUT: the counts of a replay in the root.
replayed() {
  "${in_root[@]}" ostrovia-replay --log-level 2 "$1" 2>&1 >/dev/null |
    sed -n 's/^\(read .*malformed [0-9]*\),.*/\1/p'
}

# A chain with both plug-ins of the package in the host of docs/operating.md. Both recordings replay,
# the events are what the installed tool makes of the notifications, and a copy to hand on fails where
# the recording does.
check_recording() {
  gcc-12 -std=c11 -I. tests/end_to_end/chain_host.c -o "$package_root/srv/packages/chain_host" \
    build/dist/bin/libtvclient.so.10.15 -ldl
  "${in_root[@]}" "LD_LIBRARY_PATH=$package_libraries/standin" sh -c "
    mkdir recordings && touch recordings/on && ./chain_host \
      $package_libraries/plugin/libOstroviaNotifications2Codec.so \
      $package_libraries/plugin/libOstroviaNotificationsRecorder.so \
      recordings $package_samples/site-day.ndjson $package_samples/failing.ndjson"
  "${in_root[@]}" sh -c "
    echo 'tenantId: t4100' > codec.yaml && ostrovia-replay --quiet --config codec.yaml \
      --expect-events recordings/after recordings/before > events.ndjson"
  "${in_root[@]}" sh -c "ostrovia-replay --quiet --redact all-texts --redacted copy.ndjson \
      recordings/before > events.ndjson"
  local before='read 469, reached the host 395, dropped 74, malformed 0'
  expect_same "$before" "$(replayed recordings/before)"
  expect_same "$before" "$(replayed copy.ndjson)"
  expect_same 'read 395, reached the host 395, dropped 0, malformed 0' \
    "$(replayed recordings/after)"
  rm -r "$package_root"/srv/packages/{chain_host,recordings,codec.yaml,events.ndjson,copy.ndjson}
}

check_files() {
  expect_same "" "$("${in_root[@]}" dpkg --verify "${installed_packages[@]}")"
}

check_man_pages() {
  local tool
  for tool in ostrovia-replay ostrovia-check-plugin; do
    expect_same "/usr/share/man/man1/$tool.1.gz" "$("${in_root[@]}" man -w "$tool")"
    "${in_root[@]}" man "$tool" | grep '^EXIT STATUS'
    "${in_root[@]}" whatis "$tool"
  done
}

check_completion() {
  # shellcheck disable=SC2016 # the bash in the root expands these dollars
  expect_same "--summary" "$("${in_root[@]}" bash -c '
    source /usr/share/bash-completion/bash_completion
    _completion_loader ostrovia-replay
    COMP_WORDS=(ostrovia-replay --summ) COMP_CWORD=1
    function=$(complete -p ostrovia-replay | sed "s/.*-F \([^ ]*\) .*/\1/")
    "$function" ostrovia-replay
    echo "${COMPREPLY[@]}"')"
}

check_linker_path() {
  "${in_root[@]}" ldconfig
  expect_same "" "$("${in_root[@]}" ldconfig -p | grep -E 'tvclient|Ostrovia' || true)"
  local plugin
  for plugin in "$package_root$package_libraries/plugin/"*.so; do
    "${in_root[@]}" ldd "${plugin#"$package_root"}" | grep 'libtvclient.so.10.15 => not found'
  done
}

check_upgrade() {
  older_package "$package_root/srv/packages/older.deb"
  "${in_root[@]}" dpkg --remove "$package_name-tools" "$package_name-dev"
  "${in_root[@]}" apt-get --quiet=2 install --yes --allow-downgrades ./older.deb
  [[ -f $package_root$package_samples/gone.ndjson ]]
  "${in_root[@]}" bash -c "apt-get --quiet=2 install --yes ./${package_name}{,-tools}_*.deb"
  [[ ! -e $package_root$package_samples/gone.ndjson ]]
  expect_same "$package_name"$'\t'"$(dpkg-deb --field "$(package_file "$package_name")" Version)" \
    "$("${in_root[@]}" dpkg-query --show "$package_name")"
  check_same_events
}

check_purge() {
  "${in_root[@]}" apt-get --quiet=2 purge --yes "$package_name" "$package_name-tools"
  expect_same "" "$(files_of_root | grep -i ostrovia || true)"
  expect_same "" "$("${in_root[@]}" dpkg --list | grep "$package_name" || true)"
}

# With the C++ library in place that the plug-in needs.
check_archive() {
  python3 scripts/console_blocks.py docs/operating.md archive "${in_root[@]}"
}

# copy_to_bare PACKAGE…: the files of packages, out of the root.
copy_to_bare() {
  "${in_root[@]}" dpkg --listfiles "$@" | sed 's|^/||; /^\.$/d' | LC_ALL=C sort --unique |
    tar --create --directory "$package_root" --no-recursion --files-from - |
    tar --extract --directory "$package_folder/bare" --keep-directory-symlink
}

# The tools start without a C++ library. The codec alone asks for one; with its two files in place,
# all is as in the packaged README.
check_bare() {
  local bare=$package_folder/bare
  local -a in_bare=(
    unshare --mount --pid --fork --kill-child "--mount-proc=$bare/proc"
    chroot "$bare" /usr/bin/env --ignore-environment --chdir=/unpacked PATH=/usr/bin
  )
  rm -rf "$bare"
  mkdir -p "$bare"/{proc,tmp,unpacked,usr/{bin,lib,lib64}}
  local folder
  for folder in bin lib lib64; do
    ln -s "usr/$folder" "$bare/$folder"
  done
  copy_to_bare libc6 coreutils libacl1 libattr1 libgmp10 libpcre2-8-0 libselinux1
  tar --extract --file build/package/*.tar.gz --directory "$bare/unpacked" --strip-components=1
  expect_same "" "$(find "$bare" -name 'libstdc++*' -o -name 'libgcc_s*' -o -name 'libz*' \
    -o -name 'libsimdjson*' -o -name 'libyaml*' -o -name 'libsodium*')"
  local tool
  for tool in ostrovia-replay ostrovia-check-plugin; do
    "${in_bare[@]}" "bin/$tool" --version
    "${in_bare[@]}" "bin/$tool" --help >/dev/null
  done
  expect_same 'ostrovia-replay: cannot load libstdc++.so.6: cannot open shared object file: No such file or directory' \
    "$("${in_bare[@]}" bin/ostrovia-replay copyright 2>&1)"
  copy_to_bare libstdc++6 libgcc-s1
  copy_to_bare bash libtinfo6 # to run the commands of the README
  python3 scripts/console_blocks.py packaging/README.md readme "${in_bare[@]}"
}

check_readme() {
  local top=$package_folder/bare/unpacked
  [[ -f $top/README.md && -f $top/copyright ]]
  expect_same "" "$(grep -F './dev' "$top/README.md" "$top/share/doc/$package_name/README.md" || true)"
  expect_same 1 "$(grep -c 'chosen no licence yet' "$top/copyright")"
  local path # all that the README names is there
  # shellcheck disable=SC2016 # backquotes of the README
  while IFS= read -r path; do
    [[ -e $top/$path ]]
  done < <(grep -oE '`(bin|include|lib|share)/[^`]*`' "$top/README.md" | tr -d '`')
}

# The generator that RPM runs on each packaged file.
check_rpm() {
  local file
  while IFS= read -r file; do
    expect_same "" "$(/usr/lib/rpm/elfdeps --provides "$file" | grep -v '^libOstrovia' || true)"
  done < <(find "$package_folder/bare/unpacked" "$package_root/usr/lib/$package_name" -type f \
    \( -name '*.so*' -o -path '*/bin/*' \))
  /usr/lib/rpm/elfdeps --provides build/dist/bin/libtvclient.so.10.15 | grep tvclient
}

check_lintian() {
  expect_same "" "$(lintian --allow-root build/package/*.deb)"
  expect_same "copyright-without-copyright-notice" \
    "$(lintian --allow-root --show-overrides build/package/*.deb | sed -n 's/^O: [^ ]* //p' | sort -u |
      cut -d ' ' -f 1)"
}

# With the headers of the packages and the stand-in as they ship.
check_examples() {
  local prefix=$package_folder/bare/unpacked work=$package_folder/examples
  local examples=$prefix/share/doc/$package_name-dev/examples plugin
  plugin=$prefix/lib/$package_name/plugin/libOstroviaNotifications2Codec.so
  rm -rf "$work"
  cmake -S "$examples" -B "$work" "-DCMAKE_PREFIX_PATH=$prefix" -DCMAKE_C_COMPILER=gcc-12
  cmake --build "$work"
  local -a flags
  read -r -a flags <<<"$(PKG_CONFIG_PATH=$prefix/share/pkgconfig pkg-config --cflags --libs \
    "$package_name")"
  gcc-12 "$examples/minimal_host.c" -o "$work/by_pkg_config" "${flags[@]}" -ldl
  local host
  for host in minimal_host by_pkg_config; do
    readelf --dynamic "$work/$host" | grep -F '[libtvclient.so.10.15]'
    LD_LIBRARY_PATH=$prefix/lib/$package_name/standin "$work/$host" "$plugin" |
      grep '^vlt.type: com.tivra.ostrovia.Event$'
  done
}

check_debug_information() {
  "${in_root[@]}" bash -c "apt-get --quiet=2 install --yes ./$package_name-dbgsym_*.deb"
  local id
  id=$(readelf --notes "$package_root$package_libraries/plugin/libOstroviaNotifications2Codec.so" |
    sed -n 's/.*Build ID: //p')
  readelf --debug-dump=decodedline "$package_root/usr/lib/debug/.build-id/${id:0:2}/${id:2}.debug" |
    grep 'codec/dispatch.cpp'
  "${in_root[@]}" dpkg --purge "$package_name-dbgsym"
}

# make_elsewhere: begins a second build, in another folder, by another user with another umask, locale
# and time zone, at another time, on one processor. Its processes have a process tree of their own.
make_elsewhere() {
  mkdir -p "$package_folder"
  elsewhere=$(mktemp --directory)
  trap leave_elsewhere EXIT
  mkdir "$elsewhere/build"
  tar --create --exclude=./build . | tar --extract --directory "$elsewhere"
  cp -r build/simdjson "$elsewhere/build"
  localedef --no-archive -i tr_TR -f UTF-8 "$elsewhere/build/tr_TR.UTF-8"
  chown --recursive nobody "$elsewhere"
  (
    cd "$elsewhere"
    umask 077
    exec unshare --mount --pid --fork --mount-proc taskset --cpu-list 0 \
      setpriv --reuid nobody --clear-groups env --ignore-environment "PATH=$PATH" \
      "HOME=$elsewhere/build" "LOCPATH=$elsewhere/build" LC_ALL=tr_TR.UTF-8 TZ=Pacific/Apia \
      CMAKE_BUILD_PARALLEL_LEVEL=1 ./dev package
  ) >"$package_folder/elsewhere.log" 2>&1 </dev/null &
  elsewhere_process=$!
}

# leave_elsewhere: ends the second build if it still runs, and removes its folder. The first process of
# its tree is gone only after all others, so none can write into the folder later.
leave_elsewhere() {
  local first=''
  if [[ -n ${elsewhere_process:-} ]]; then
    read -r first </proc/"$elsewhere_process/task/$elsewhere_process/children" || true
    kill -KILL "${first:-$elsewhere_process}" || true
    wait "$elsewhere_process" || true
  fi 2>/dev/null # it may have ended
  rm -rf "$elsewhere"
}

# A check is no parent of the second build, so it cannot `wait`. The other packages stay in
# build/package-test/elsewhere, to be compared by hand.
check_reproducible() {
  tail --pid "$elsewhere_process" --follow /dev/null
  tail -20 "$package_folder/elsewhere.log"
  rm -rf "$package_folder/elsewhere"
  cp -r "$elsewhere/build/package" "$package_folder/elsewhere"
  diff --recursive build/package "$package_folder/elsewhere"
}

check_nothing_left() {
  "${in_root[@]}" apt-get --quiet=2 autoremove --purge --yes
  diff "$package_folder/files.before" <(files_of_root)
}

package_checks=(
  "hashes         SHA256SUMS holds the hashes of the packages and of their bill of materials"
  "two_commands   the .deb installs with its dependencies and converts, as docs/operating.md shows"
  "same_events    the installed ostrovia-replay makes the same of every sample as the build"
  "plugins        the installed codec and recorder pass ostrovia-check-plugin"
  "recording      a host records with the installed plug-ins, and the tool gives the recorded events"
  "debug_information    the -dbgsym package has the lines of the installed codec"
  "files          the installed files are the package's"
  "bill           the bill of materials has each installed file, with its hash"
  "man_pages      man finds and shows both pages"
  "completion     bash loads the completion and completes an option"
  "linker_path    the linker's path knows neither the stand-in nor a plug-in"
  "upgrade        an older version is upgraded, and a file that is gone since goes"
  "purge          purging the package removes everything of it"
  "archive        the .tar.gz runs in a folder with a blank in its name, as docs/operating.md shows"
  "bare           the tools start with nothing but the C library; with the C++ library, the codec works"
  "readme         the archive's README and copyright are on top; its paths exist"
  "examples       the hosts in C build with CMake and pkg-config, and run the codec"
  "rpm            RPM's generator finds no library of a host in any packaged file"
  "lintian        lintian finds nothing but the licence to be chosen"
  "nothing_left   the root is as it was before"
  "reproducible   another user in another folder, with one processor, makes the same bytes"
)

# run_check NAME TEXT: in a shell of its own that ends with the first command that fails; a
# condition would not end there.
run_check() {
  local status
  set +e
  (
    set -e
    "check_$1"
  ) >"$package_folder/check.log" 2>&1 </dev/null
  status=$?
  set -e
  if ((status == 0)); then
    printf 'ok    %-19s %s\n' "$1" "$2"
    return
  fi
  printf 'FAIL  %-19s %s (status %d)\n' "$1" "$2" "$status"
  sed 's/^/        /' "$package_folder/check.log"
  failed_checks=$((failed_checks + 1))
}

# run_checks ROW…: rows of a table such as package_checks. Never part of a condition, where no check
# would end with its first failing command.
run_checks() {
  local failed_checks=0 name text
  while read -r name text; do
    run_check "$name" "$text"
  done < <(printf '%s\n' "$@")
  if ((failed_checks > 0)); then
    echo "test-package: $failed_checks of $# checks failed"
    return 1
  fi
  echo "test-package: all $# checks passed"
}

test_package() {
  ((EUID == 0)) || fail "test-package makes a root folder of its own, which takes root: use sudo"
  package >/dev/null
  use_proxy
  make_elsewhere
  make_root >&2
  run_checks "${package_checks[@]}"
}
