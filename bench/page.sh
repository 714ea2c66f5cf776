#!/usr/bin/env bash
# page.sh PROGRAMS [SECONDS]: measures the program behind the page, over a MiniDLNA with 1,000 tracks, then over a worker with
# 100,000 rows and covers, which 50 clients scroll through for so long (30 s); run by enter-world.sh in a world of its own.
# Node.js plays the clients; where there is none, nothing is measured.
set -euo pipefail
# shellcheck source=world/world.sh
. "$WORLD_ROOT/world/world.sh"
here=$WORLD_ROOT/bench
command -v node >/dev/null || exit 0
export HOME=$WORLD_DIR XDG_CACHE_HOME=$WORLD_DIR/cache ORKA_TEST_ART=http://10.77.0.1:9000

# on_page GLOBAL-OPTIONS… -- PLACE KIND…: measures these kinds there, over a program of its own.
on_page() {
    local options=()
    while [ "$1" != -- ]; do
        options+=("$1")
        shift
    done
    shift
    "$ORKA_BUILD/host/orka" "${options[@]}" serve --port 8770 >"$WORLD_DIR/page" 2>"$WORLD_DIR/page.err" &
    local program=$!
    within 30 grep -q ^http "$WORLD_DIR/page"
    node "$here/page.mjs" http://127.0.0.1:8770/ "$program" "$@"
    kill "$program"
    wait "$program" || true
}

world_lan
world_host nas 2
"$WORLD_ROOT/tests/e2e/make_tracks.py" "$WORLD_DIR/music/big" 1000
start_minidlna nas "$WORLD_DIR/music" Big
wait_indexed nas 1000
on_page -- "Big/Music/All Music" rows pages slow

node "$here/pictures.mjs" 10.77.0.1 9000 &
within 30 curl -fso /dev/null http://10.77.0.1:9000/art/1
on_page --plugin "$1/libbench_page_worker.so" -- Big "scroll=${2:-30}"
