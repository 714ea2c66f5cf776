#!/usr/bin/env bash
# A media server, and then the media service, that goes away and comes back while orka looks on.
# shellcheck disable=SC2317 # functions that others call
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/world.sh"
. "$WORLD_ROOT/tests/e2e/library.sh"
. "$WORLD_ROOT/tests/e2e/checks.sh"

world_lan
world_host nas 2
make_library "$WORLD_DIR/music"
start_minidlna nas "$WORLD_DIR/music" Comes
wait_indexed nas "$(library_size)"
start_bus
start_bridge

# events TEXT: what the watching orka has told so far.
events() {
    [ "$(jq -r '.event + " " + .server.title' "$WORLD_DIR/watch.json" | paste -sd ' ')" = "$1" ]
}

# seen FILE SECONDS COMMAND…: "seen" if it succeeds in that time, else what the file holds.
seen() {
    local file=$1 seconds=$2
    shift 2
    if within "$seconds" "$@"; then
        echo seen
    else
        cat "$file"
    fi
}

orka --json servers --watch >"$WORLD_DIR/watch.json" 2>"$WORLD_DIR/watch.err" &
watching=$!
check "the server is listed" seen "$(seen "$WORLD_DIR/watch.json" 10 events "arrived Comes")"
stop_server nas
check "it is gone once it has stopped" seen "$(seen "$WORLD_DIR/watch.json" 5 events "arrived Comes departed Comes")"
start_minidlna nas "$WORLD_DIR/music" Comes
check "it is back once it has started" seen "$(seen "$WORLD_DIR/watch.json" 10 events "arrived Comes departed Comes arrived Comes")"

kill -KILL "$bridge_pid"
wait "$bridge_pid" 2>/dev/null || true
check "orka says that the media service went" seen \
    "$(seen "$WORLD_DIR/watch.err" 5 grep -qi "media service" "$WORLD_DIR/watch.err")"
kill "$watching" 2>/dev/null || true
wait "$watching" || true
start_bridge
check "a new run works" Comes "$(orka --json servers | jq -r '.rows[].title')"

status=0
timeout --preserve-status --signal INT --kill-after 1 3 orka servers --watch >/dev/null 2>&1 || status=$?
check "an interrupted run ends within a second" 130 "$status"
finish
