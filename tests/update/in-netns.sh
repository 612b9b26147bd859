#!/usr/bin/env bash
# Runs a command inside a private network namespace that has only loopback, with its own system
# D-Bus and an avahi-daemon allowed on lo alone, so that DNS-SD traffic never leaves the machine.
# Where that can't be made (not root, tools missing) it says why and exits 77: skipped.
set -u
skip() { echo "SKIPPED: $*"; exit 77; }
[ "$(id -u)" = 0 ] || skip "a network namespace for the DNS-SD tests needs root"
for tool in unshare ip dbus-daemon avahi-daemon; do
  command -v "$tool" >/dev/null || skip "$tool is not installed (scripts/setup installs it)"
done

if [ "${VELMORA_IN_NETNS:-}" != 1 ]; then
  VELMORA_IN_NETNS=1 exec unshare --net --mount "$0" "$@" || skip "unshare refused to make a namespace"
fi

# Inside: loopback with multicast, private /run for the bus and the daemon.
ip link set lo up && ip link set lo multicast on || skip "can't bring up loopback in the namespace"
mount -t tmpfs tmpfs /run || skip "can't mount a private /run"
mkdir -p /run/dbus /run/avahi-daemon
# The tests' environment hides the machine's system bus; in here the bus is the namespace's own.
export DBUS_SYSTEM_BUS_ADDRESS=unix:path=/run/dbus/system_bus_socket
conf=$(mktemp -d)
cat > "$conf/avahi-daemon.conf" <<'CONF'
[server]
use-ipv4=yes
use-ipv6=no
allow-interfaces=lo
enable-dbus=yes
[publish]
publish-addresses=yes
[reflector]
[rlimits]
CONF
dbus-daemon --system --fork --nopidfile || skip "can't start a system bus in the namespace"
avahi-daemon -f "$conf/avahi-daemon.conf" --no-drop-root --no-chroot -D || skip "can't start avahi-daemon"
for _ in $(seq 50); do avahi-daemon -c 2>/dev/null && break; sleep 0.1; done

VELMORA_DNSSD_NAMESPACE=1 "$@"
status=$?
avahi-daemon -k 2>/dev/null
rm -rf "$conf"
exit $status
