# shellcheck shell=bash
# Replaying an archive on several machines, as docs/scaling.md shows, by GNU parallel and by a job
# array of Slurm, all on this machine. Sourced by ./dev, which runs in the project's root; makes its
# roots by functions of scripts/test_package.sh.
#
#   test_cluster   makes two clean roots, starts the daemons, and runs every check_… below in the
#                  order of cluster_checks. Prints a line for each, and at the end how many held
#
# In build/cluster:
#
#   base.tar    the root as debootstrap made it, for the next run; remove it for a newer one
#   root        the machine `head` of this run, and in its folder /srv/far the machine `far`
#   daemons.log what the daemons say on standard error; more is in root/var/log/slurm
#
# The daemons have processes, mounts and a network of their own (scripts/cluster/start.sh). The
# first of these processes ends with ./dev, and all others with it.

cluster_folder=$PWD/build/cluster
cluster_packages=slurmctld,slurmd,slurm-client,munge,parallel,openssh-server,rsync,iproute2,jq
cluster_root=$cluster_folder/root
cluster_home=$cluster_root/home/replay

# make_machine ROOT: a clean Debian with the tools and a user `replay`.
make_machine() {
  mkdir -p "$1"
  tar --extract --file "$cluster_folder/base.tar" --directory "$1" --numeric-owner
  install --strip --target-directory "$1/usr/local/bin" \
    build/release/bin/{ostrovia-replay,libOstroviaNotifications2Codec.so,libtvclient.so.10.15}
  chroot "$1" useradd --create-home --shell /bin/bash replay
  printf '127.0.0.1 localhost\n10.17.0.1 head\n10.17.0.2 node1\n10.17.0.3 node2\n10.17.0.4 far\n' \
    >"$1/etc/hosts"
}

# The user's key opens `far`.
make_keys() {
  local far=$cluster_root/srv/far
  chroot "$cluster_root" setpriv --reuid replay --regid replay --clear-groups \
    ssh-keygen -q -t ed25519 -N '' -f /home/replay/.ssh/id_ed25519
  mkdir -p "$far/home/replay/.ssh"
  cp "$cluster_home/.ssh/id_ed25519.pub" "$far/home/replay/.ssh/authorized_keys"
  chroot "$far" chown --recursive replay: /home/replay/.ssh
  echo "far $(cat "$far/etc/ssh/ssh_host_ed25519_key.pub")" >"$cluster_home/.ssh/known_hosts"
  chroot "$cluster_root" chown --recursive replay: /home/replay
}

make_cluster() {
  mkdir -p "$cluster_folder"
  [[ -f $cluster_folder/base.tar ]] || make_base "$cluster_packages"
  rm -rf "$cluster_root"
  make_machine "$cluster_root"
  make_machine "$cluster_root/srv/far"
  cp scripts/cluster/slurm.conf "$cluster_root/etc/slurm/"
  echo CgroupPlugin=cgroup/v1 >"$cluster_root/etc/slurm/cgroup.conf" # or it looks for one
  cp scripts/cluster/start.sh "$cluster_root/srv/"
  cp samples/*.ndjson "$cluster_home/"
  # shellcheck disable=SC2016 # backquotes of the document
  sed -n '/^```sh backfill.sh$/,/^```$/ { /^```/d; p }' docs/scaling.md >"$cluster_home/backfill.sh"
  make_keys
}

# start_cluster: starts the daemons and sets in_cluster, a prefix for commands of the user.
start_cluster() {
  setpriv --pdeathsig KILL \
    unshare --mount --pid --fork --kill-child --net --uts --ipc "--mount-proc=$cluster_root/proc" \
    chroot "$cluster_root" env --ignore-environment PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
    bash /srv/start.sh >"$cluster_folder/daemons.log" 2>&1 </dev/null &
  cluster_process=$!
  disown # or the shell reports its end
  trap stop_cluster EXIT
  local first=''
  until [[ -n $first ]]; do
    kill -0 "$cluster_process" 2>/dev/null || fail "no namespaces: $(cat "$cluster_folder/daemons.log")"
    read -r first <"/proc/$cluster_process/task/$cluster_process/children" || sleep 0.1
  done
  in_cluster=(
    nsenter --target "$first" --mount --pid --net --uts --ipc --root
    setpriv --reuid replay --regid replay --clear-groups
    env --ignore-environment --chdir=/home/replay
    PATH=/usr/local/bin:/usr/bin:/bin HOME=/home/replay USER=replay LC_ALL=C.UTF-8
  )
}

stop_cluster() {
  kill -KILL "$cluster_process" 2>/dev/null || true
}

# processes_of_cluster: their number, by the roots that they have.
processes_of_cluster() {
  find /proc -maxdepth 2 -name root -lname "$cluster_root*" 2>/dev/null | wc -l
}

check_nodes() {
  local deadline=$((SECONDS + 60))
  until "${in_cluster[@]}" sinfo --noheader --Node --format '%N %t' >"$cluster_folder/nodes" &&
    [[ $(<"$cluster_folder/nodes") == $'node1 idle\nnode2 idle' ]] &&
    "${in_cluster[@]}" ssh far true; do
    ((SECONDS < deadline)) || return 1
    sleep 0.5
  done
}

# as_documented INFO: the blocks of that name in the document.
as_documented() {
  python3 scripts/console_blocks.py docs/scaling.md "$1" "${in_cluster[@]}"
}

check_parallel() {
  as_documented parallel
}

check_ssh() {
  as_documented ssh
  expect_same $'far\nhead' "$(tail -n +2 "$cluster_home/jobs" | cut -f 2 | sed 's/^:$/head/' | sort -u)"
}

check_slurm() {
  as_documented slurm
  local log=$cluster_root/var/log/slurm/slurmctld.log
  expect_same $'node1\nnode2' "$(grep -o 'NodeList=node[12]' "$log" | cut -d = -f 2 | sort -u)"
}

# A part that fails leaves no summary, and the job fails with it.
check_failure() {
  echo "archive/none.ndjson" >"$cluster_home/none"
  "${in_cluster[@]}" mkdir none.parts
  local status=0
  "${in_cluster[@]}" env FILES=none PARTS=none.parts sbatch --wait --array=1 backfill.sh || status=$?
  ((status != 0))
  expect_same "" "$("${in_cluster[@]}" ls none.parts | grep json || true)"
}

# comparable FILE: a summary without times and places, which are those of the parts.
comparable() {
  "${in_cluster[@]}" jq --sort-keys 'del(.seconds, .messages_per_second, .batches.median_us,
    .batches.p99_us, .batches.classes, .plugin.path, .reasons[].first, .printed[].first)' "$1"
}

# All ways give the summary of one run over the archive, and its events.
check_same() {
  "${in_cluster[@]}" bash -c \
    'cat archive/* | ostrovia-replay --quiet --summary=json 2>one.json >one.events'
  local name
  for name in files pieces far array; do
    diff <(comparable one.json) <(comparable "$name.json")
    expect_same "$("${in_cluster[@]}" jq .batches.count one.json)" \
      "$("${in_cluster[@]}" jq '[.batches.classes[][1]] | add' "$name.json")"
    # shellcheck disable=SC2016 # the bash in the cluster expands the dollar
    "${in_cluster[@]}" bash -c 'cmp one.events <(ls -v "$1"/*.events | xargs cat)' compare "$name"
  done
}

check_no_daemon() {
  (($(processes_of_cluster) > 5))
  stop_cluster
  local deadline=$((SECONDS + 10))
  until (($(processes_of_cluster) == 0)); do
    ((SECONDS < deadline)) || return 1
    sleep 0.1
  done
}

cluster_checks=(
  "nodes          the controller has two idle nodes, and the other machine answers"
  "parallel       GNU parallel replays files and pieces of a file, as docs/scaling.md shows"
  "ssh            GNU parallel replays on two machines over SSH, as docs/scaling.md shows"
  "slurm          a job array replays on both nodes, as docs/scaling.md shows"
  "failure        a part that fails leaves no summary and fails its job"
  "same           the merged summary and the events of each way are those of one run"
  "no_daemon      no daemon outlives the cluster"
)

test_cluster() {
  ((EUID == 0)) || fail "test-cluster makes namespaces and a root folder, which takes root: use sudo"
  local failed_checks=0 name text
  # shellcheck disable=SC2034 # the shared functions use them
  local package_folder=$cluster_folder package_root=$cluster_root
  build release ostrovia-replay OstroviaNotifications2Codec
  use_proxy
  make_cluster >&2
  start_cluster
  while read -r name text; do
    run_check "$name" "$text"
  done < <(printf '%s\n' "${cluster_checks[@]}")
  echo "test-cluster: $((${#cluster_checks[@]} - failed_checks)) of ${#cluster_checks[@]} checks"
  ((failed_checks == 0))
}
