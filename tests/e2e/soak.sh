#!/usr/bin/env bash
# The whole chain under use for a long time: the answers stay the same, the media service doesn't grow, and a
# watching orka sees every departure. Not a part of the tests:
#   ./run world bash tests/e2e/soak.sh [MINUTES]
# shellcheck disable=SC2317 # functions that others call
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/world.sh"
. "$WORLD_ROOT/tests/e2e/library.sh"
. "$WORLD_ROOT/tests/e2e/checks.sh"
minutes=${1:-10}
[[ $minutes =~ ^[0-9]+$ ]] || say_and_fail "How many minutes? \"$minutes\" is no number."

# answers: one round of what people ask for, as one text.
answers() {
    orka --json ls "Soak/Music/All Music" --rows 0-99 | jq -c .rows
    orka --json search Soak --artist Quartz | jq -c .rows
    orka --json queue Soak/Music/Album/Punctuation | jq -c .items
}

# resident PROCESS: its memory in KiB.
resident() {
    awk '/^VmRSS/ { print $2 }' "/proc/$1/status"
}

# departures COUNT: so many has the watching orka told.
departures() {
    [ "$(grep -c '"departed"' "$WORLD_DIR/watch.json")" = "$1" ]
}

# The server stays away until that has been seen: a shorter absence may rightly go unnoticed.
restart_server() {
    restarts=$((restarts + 1))
    stop_server nas
    within 10 departures "$restarts" || check "departure $restarts was told" told "$(cat "$WORLD_DIR/watch.json")"
    start_minidlna nas "$WORLD_DIR/music" Soak
    wait_indexed nas "$(library_size)"
}

world_lan
world_host nas 2
make_library "$WORLD_DIR/music"
start_minidlna nas "$WORLD_DIR/music" Soak
wait_indexed nas "$(library_size)"
start_bus
start_bridge
orka --json servers --watch >"$WORLD_DIR/watch.json" 2>"$WORLD_DIR/watch.err" &
watching=$!

rounds=0 restarts=0 warm=0 end=$((SECONDS + minutes * 60))
first=$(answers)
while ((SECONDS < end)) && ((failures == 0)); do
    again=$(answers)
    [ "$again" = "$first" ] || check "round $rounds" "$first" "$again"
    rounds=$((rounds + 1))
    ((rounds != 20)) || warm=$(resident "$bridge_pid")
    ((rounds % 25)) || restart_server
done
((warm)) || say_and_fail "Only $rounds rounds in $minutes minutes: too few to tell anything."

echo "$rounds rounds, $restarts restarts of the server; the media service holds $(resident "$bridge_pid") KiB" \
    "after $warm KiB at round 20, orka --watch $(resident "$watching") KiB."
check "the media service has not grown by more than a quarter" yes \
    "$( (($(resident "$bridge_pid") * 4 <= warm * 5)) && echo yes || echo no)"
kill "$watching"
finish
