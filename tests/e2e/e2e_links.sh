#!/usr/bin/env bash
# The machine's own link goes and comes back, in every way that links do, and both media servers are there again
# within three seconds. Five are allowed, for a machine that is busy.
# shellcheck disable=SC2317 # functions that others call
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/checks.sh"

servers() {
    dbus-send --session --print-reply=literal --reply-timeout=5000 --dest=com.intel.dleyna-server \
        /com/intel/dLeynaServer com.intel.dLeynaServer.Manager.GetServers | grep -o '/server/' | wc -l
}

there_are() {
    [ "$(servers)" = "$1" ]
}

# back WHAT COMMAND…: after it, both servers are listed in time.
back() {
    local what=$1 since
    shift
    "$@"
    since=$(date +%s%3N)
    within 10 there_are 2 || true
    printf '      %s: %d servers after %d ms\n' "$what" "$(servers)" "$(($(date +%s%3N) - since))"
    check "$what" back "$( (($(date +%s%3N) - since <= 5200)) && there_are 2 && echo back)"
}

# gone WHAT COMMAND…: after it, no server is listed any more.
gone() {
    "${@:2}"
    within 6 there_are 0 || check "gone: $1" 0 "$(servers)"
}

ports() {
    ip link set lan11 "$1"
    ip link set lan12 "$1"
}

start_servers() {
    local name
    for name in one two; do
        serve_on_host $name "$ORKA_BUILD/tests/support/upnp/scripted-upnp-server" "uuid:links-$name"
    done
}

start_bus
ip link set lo up
start_bridge
check "nobody yet" 0 "$(servers)"

world_lan
world_host one 11
world_host two 12
for name in one two; do
    on_host $name ip address add "10.88.0.${host_address[$name]##*.}/24" dev eth0
    on_host $name ip address add "fd77::${host_address[$name]##*.}/64" dev eth0 nodad
done
back "an interface that appears later" start_servers

gone "interface down" ip link set lan down
back "interface up" ip link set lan up
gone "carrier lost" ports down
back "carrier back" ports up
gone "address removed" ip address flush dev lan
back "address added" ip address add 10.77.0.1/24 dev lan
ip address del 10.77.0.1/24 dev lan
back "another address" ip address add 10.77.0.2/24 dev lan
ip address del 10.77.0.2/24 dev lan
back "another subnet" ip address add 10.88.0.1/24 dev lan
gone "no IPv4" ip address flush dev lan
back "IPv6 only" ip address add fd77::1/64 dev lan
gone "interface down, IPv6" ip link set lan down
ip link set lan up
back "interface up, IPv6" ip address replace fd77::1/64 dev lan
finish
