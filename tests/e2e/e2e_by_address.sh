#!/usr/bin/env bash
# Media servers that multicast doesn't reach, found by their address: on the same network, and over a router.
# shellcheck disable=SC2317 # functions that others call
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/checks.sh"

# add ADDRESS: what the media service says to it.
add() {
    dbus-send --session --print-reply=literal --reply-timeout=25000 --dest=com.intel.dleyna-server \
        /com/intel/dLeynaServer org.orka.MediaBridge1.AddServer "string:$1" 2>&1 || true
}
servers() {
    orka --json servers | jq -r '[.rows[].title] | join(",")'
}
servers_are() {
    [ "$(servers)" = "$1" ]
}

world_lan
world_host desk 3
world_host nas 2
for port in lan2 lan3; do
    ip link set "$port" type bridge_slave mcast_flood off
done
make_library "$WORLD_DIR/music"
start_minidlna nas "$WORLD_DIR/music" NAS
wait_indexed nas "$(library_size)"
start_bus
start_bridge on_host desk
check "multicast doesn't get through" "" "$(servers)"
check "the server is there by its host" " NAS" "$(add 10.77.0.2 | sed 's|.*/server/uuid_3a4d69.*| NAS|')"
check "it is browsed" 3 "$(orka --json ls NAS/Music/Album/Glass\ Rivers | jq .rowsCount)"
check "it is searched" Delta "$(orka --json search NAS --title Delta | jq -r '.rows[0].title')"

# No goodbye gets through: a call finds out.
lose_it() {
    stop_server nas KILL
    orka ls NAS >/dev/null 2>&1 || true
    check "it is lost when it has gone" ok "$(within 5 servers_are "" && echo ok)"
}
lose_it
start_minidlna nas "$WORLD_DIR/music" NAS
check "it is found again when it is back" ok "$(within 10 servers_are NAS && echo ok)"

lose_it
on_host nas ip address replace 10.99.0.2/24 dev eth0
on_host nas ip address delete 10.77.0.2/24 dev eth0
on_host nas ip route replace default via 10.99.0.1
on_host desk ip route replace default via 10.77.0.1
ip address add 10.99.0.1/24 dev lan
echo 1 >/proc/sys/net/ipv4/ip_forward
check "nobody is there over the router" 1 "$(add 10.99.0.2:8200 | grep -c refused)"
start_minidlna nas "$WORLD_DIR/music" NAS
check "until it is" ok "$(within 10 servers_are NAS && echo ok)"
check "it is browsed over the router" 3 "$(orka --json ls NAS/Music/Album/Glass\ Rivers | jq .rowsCount)"
finish
