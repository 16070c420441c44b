#!/usr/bin/env bash
# The first process of the small cluster of ./dev test-cluster, as root in namespaces of its own,
# where no other network and no other process exists:
#
#   head    this root, with the controller, both nodes and the scheduler's credentials (munge)
#   far     the root in /srv/far, with an SSH daemon alone
#
# All addresses are local. They are none of 127.0.0.0/8, which the resolver does not count as a
# network, so that it would look up no address at all.
set -euo pipefail

hostname head
ip link set lo up
for address in 10.17.0.1 10.17.0.2 10.17.0.3 10.17.0.4; do
  ip address add "$address/32" dev lo
done
mount -t sysfs sysfs /sys # the nodes count processors
mount -t proc proc /srv/far/proc

mkdir -p /run/munge /run/slurm /srv/far/run/sshd
chown munge: /run/munge
chown slurm: /run/slurm

chroot /srv/far /usr/sbin/sshd -D -o ListenAddress=10.17.0.4 &
setpriv --reuid munge --regid munge --clear-groups munged --foreground &
until [[ -S /run/munge/munge.socket.2 ]]; do
  sleep 0.1
done
setpriv --reuid slurm --regid slurm --clear-groups slurmctld -D &
slurmd -D -N node1 &
slurmd -D -N node2 &
wait
