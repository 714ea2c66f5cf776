#!/usr/bin/env bash
# What the program starts, and what is left of it afterwards.
#   lifetime.sh WORKER FAKE-BRIDGE
set -euo pipefail
WORLD_DIR=$(mktemp -d "${TMPDIR:-/tmp}/orka-lifetime.XXXXXX")
trap 'rm -rf "$WORLD_DIR"' EXIT
. "$WORLD_ROOT/tests/e2e/checks.sh"
export TMPDIR=$WORLD_DIR/tmp ORKA_TEST_TELL=1
mkdir "$TMPDIR"
bus=$DBUS_SESSION_BUS_ADDRESS bridge=$2
export DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent
orka=(env --default-signal=INT "$ORKA_BUILD/host/orka" --plugin "$1")

# starts NUMBER-OF-CHILDREN WORDS ORKA-ARGUMENTS…: in the background, until it has said the words.
starts() {
    count=$1 words=$2
    "${orka[@]}" "${@:3}" >"$WORLD_DIR/said" 2>&1 &
    pid=$!
    within 10 has_begun || check "${*:3}: begins" "$words" "$(cat "$WORLD_DIR/said")"
}
has_begun() {
    children=$(xargs <"/proc/$pid/task/$pid/children")
    [ "$(wc -w <<<"$children")" = "$count" ] && grep -q "$words" "$WORLD_DIR/said"
}
# ends WHAT STATUS: within a second, with its children and their files.
ends() {
    local status=0
    within 1 are_gone "$pid" || { check "$1: ends" "in time" late && kill -KILL "$pid"; }
    wait "$pid" || status=$?
    check "$1" "$2" "$status"
    # shellcheck disable=SC2086 # numbers
    within 5 are_gone $children || check "$1: children" "" "$children"
}
are_gone() {
    ! ps -o stat= -p "$(tr ' ' , <<<"${*:-0}")" | grep -qv Z
}

for signal in INT:130 TERM:143 KILL:137; do
    starts 2 Shelf --bridge "$bridge" servers --watch
    # shellcheck disable=SC2086 # numbers
    socket=$(for child in $children; do tr '\0' '\n' <"/proc/$child/cmdline"; done | sed -n 's/.*unix:path=\([^,]*\).*/\1/p' | head -n 1)
    check "bridge and bus run" "$socket" "$(find "$socket" -type s)"
    kill -s "${signal%:*}" "$pid"
    ends "${signal%:*}" "${signal#*:}"
    within 5 test ! -e "$socket" || check "the bus's socket" "" "$socket"
done
cp "$bridge" "$WORLD_DIR/bridge"
check "three servers" 3 "$("${orka[@]}" --json --bridge "$WORLD_DIR/bridge" servers 2>&- | jq '.items // .rows | length')"
within 5 eval '! pgrep -f "$WORLD_DIR/bridge"' || check "the bridge, afterwards" gone "still there"

# On a bus where somebody has the service's name; no bridge is started there.
"$bridge" --bus "$bus" &
service=$!
on_bus=(--bus "$bus" --bridge /nonexistent)
within 5 eval '"${orka[@]}" "${on_bus[@]}" servers >"$WORLD_DIR/said" 2>&1' || check "the service there is used" "" "$(cat "$WORLD_DIR/said")"
interrupted() {
    starts "$@"
    kill -INT "$pid"
    ends "interrupted: ${*:5}" 130
    check "interrupted: ${*:5}: files" "" "$(ls "$TMPDIR")"
}
interrupted 0 "asked /shelf/silent" "${on_bus[@]}" ls Shelf/Silent
interrupted 0 "asked $" "${on_bus[@]}" --wait 60 ls Nowhere
interrupted 0 Shelf "${on_bus[@]}" servers --watch
interrupted 1 playing "${on_bus[@]}" play --player 'sh -c "echo playing; exec sleep 60"' 'Shelf/AC\/DC'
kill "$service"

# refused STATUS WORDS ORKA-ARGUMENTS…
refused() {
    check_fails "${*:3}" "$1" "^orka: .*$2" "${orka[@]}" "${@:3}" servers
    check "${*:3}: output" "" "$(cat "$WORLD_DIR/stdout")"
}
unset ORKA_TEST_TELL
refused 3 "can't be reached" --media-service session
refused 3 "can't be reached" --bus unix:path=/nonexistent
refused 3 "can't be reached" --bus nonsense
refused 3 /nonexistent --bridge /nonexistent
ORKA_TEST_FAIL=1 refused 3 "no network card" --bridge "$bridge"
within 5 are_gone "$service"
refused 3 "no media service" --bus "$bus" --media-service session
daemon=$(pgrep -P "$PPID" dbus-daemon)
trap 'kill -CONT "$daemon"; rm -rf "$WORLD_DIR"' EXIT
kill -STOP "$daemon"
refused 4 "doesn't answer" --bus "$bus" --timeout 0.5 --media-service session
kill -CONT "$daemon"
finish
