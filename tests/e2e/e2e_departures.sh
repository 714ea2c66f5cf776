#!/usr/bin/env bash
# A media server, and then the media service, that goes away and comes back while orka looks on.
# shellcheck disable=SC2317 # functions that others call
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/checks.sh"

furnish Comes

# told WHAT SECONDS COMMAND…: the command succeeds in that time.
told() {
    within "$2" "${@:3}" || check "$1" "to be seen" "$(cat "$WORLD_DIR"/watch.*)"
}

# events TEXT: what the watching orka has told so far.
events() {
    [ "$(jq -r '[.event, .server.title // empty] | join(" ")' "$WORLD_DIR/watch.json" | paste -sd ' ')" = "$1" ]
}

timeout 60 orka --json servers --watch >"$WORLD_DIR/watch.json" 2>"$WORLD_DIR/watch.err" &
told "the server is listed" 10 events "arrived Comes"
stop_server nas
told "it is gone once it has stopped" 5 events "arrived Comes departed Comes"
check_fails "no server on the network" 3 "No media server" orka --wait 1 ls Music
check "no server is an empty list" 0 "$(orka --wait 1 --json servers | jq '.rowsCount')"
start_minidlna nas "$WORLD_DIR/music" Comes
told "it is back once it has started" 10 events "arrived Comes departed Comes arrived Comes"

kill -KILL "$bridge_pid"
wait "$bridge_pid" 2>/dev/null || true
seen="arrived Comes departed Comes arrived Comes departed Comes service left"
told "the media service went" 5 events "$seen"
start_bridge
told "it is back, and its server" 10 events "$seen service back arrived Comes"
finish
