#!/usr/bin/env bash
# What the world of enter-world.sh is furnished with: sourced by the demo's tour and the end-to-end tests.
#   world_lan                         the network, 10.77.0.0/24; this side of it is 10.77.0.1
#   world_host NAME NUMBER            one more machine on it, 10.77.0.NUMBER
#   on_host NAME COMMAND…             runs a command there
#   serve_on_host NAME COMMAND…       starts a server there; its process id is in server_pid[NAME]
#   start_minidlna NAME FOLDER TITLE  (also start_gerbera, start_rygel) a media server on that machine
#   wait_indexed NAME COUNT           until it has indexed so many tracks, a minute at most
#   start_bus                         the message bus
#   start_bridge [on_host NAME]       the media service on it (process id: bridge_pid), here or on that machine
# Everything is kept below $WORLD_DIR, logs included; $ORKA_BUILD is the build folder.

: "${WORLD_DIR:?is set by enter-world.sh, which runs this script}" "${WORLD_ROOT:?}"
ORKA_BUILD=${ORKA_BUILD:-$WORLD_ROOT/build/release}
# Nobody's own settings, and nothing that one command leaves for the next.
export XDG_CONFIG_HOME=$WORLD_DIR/config XDG_CACHE_HOME=$WORLD_DIR/cache ORKA_LINGER=0
declare -A host_pid=() host_address=() server_pid=() server_kind=()

# say_and_fail SENTENCE: the end of this script.
say_and_fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

# within SECONDS COMMAND…: repeats it until it succeeds.
within() {
    local tries=$(($1 * 10))
    shift
    until "$@"; do
        ((tries-- > 0)) || return 1
        sleep 0.1
    done
}

world_lan() {
    ip link set lo up
    # No snooping: nobody on this network asks for multicast memberships.
    ip link add lan type bridge mcast_snooping 0 forward_delay 0
    ip link set lan addrgenmode none
    ip link set lan up
    ip address add 10.77.0.1/24 dev lan
    ip route add default dev lan
}

world_host() {
    local name=$1 address=10.77.0.$2 outside=lan$2
    unshare --net sleep infinity &
    host_pid[$name]=$!
    host_address[$name]=$address
    within 5 has_own_network "${host_pid[$name]}" || say_and_fail "No network for $name."
    ip link add "$outside" type veth peer name eth0 address "02:00:0a:4d:00:$(printf %02x "$2")" netns "$!"
    ip link set "$outside" addrgenmode none master lan up
    on_host "$name" ip link set lo up
    on_host "$name" ip link set eth0 addrgenmode none up
    on_host "$name" ip address add "$address/24" dev eth0
    on_host "$name" ip route add default dev eth0
}

has_own_network() {
    [ "$(readlink /proc/self/ns/net)" != "$(readlink "/proc/$1/ns/net")" ]
}

on_host() {
    local pid=${host_pid[$1]}
    shift
    nsenter --net="/proc/$pid/ns/net" "$@"
}

serve_on_host() {
    local name=$1
    shift
    nsenter --net="/proc/${host_pid[$name]}/ns/net" "$@" >>"$WORLD_DIR/$name.log" 2>&1 &
    server_pid[$name]=$!
}

# stop_server NAME [SIGNAL]: returns when it is gone.
stop_server() {
    kill -s "${2:-TERM}" "${server_pid[$1]}"
    wait "${server_pid[$1]}" 2>/dev/null || true
}

# shellcheck source=world/servers.sh
. "$WORLD_ROOT/world/servers.sh"

# start_bus_at SOCKET: a bus that can activate nothing.
start_bus_at() {
    dbus-daemon --config-file="$WORLD_ROOT/host/chain/private-bus.conf" --nofork --nopidfile \
        --address="unix:path=$1" 2>>"$WORLD_DIR/bus.log" &
    within 5 test -S "$1" || say_and_fail "The message bus did not start: $(cat "$WORLD_DIR/bus.log")"
}

start_bus() {
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$WORLD_DIR/bus
    start_bus_at "$WORLD_DIR/bus"
}

start_bridge() {
    "$@" "$ORKA_BUILD/services/mediaBridge/orka-media-bridge" 2>>"$WORLD_DIR/bridge.log" &
    # shellcheck disable=SC2034 # for who sources this
    bridge_pid=$!
    within 10 media_service_is_there || say_and_fail "The bridge did not start: $(tail -n 3 "$WORLD_DIR/bridge.log")"
}

media_service_is_there() {
    dbus-send --session --print-reply=literal --dest=org.freedesktop.DBus / \
        org.freedesktop.DBus.NameHasOwner string:com.intel.dleyna-server | grep -q true
}
