#!/usr/bin/env bash
# The page in a browser: over a MiniDLNA server, then over a worker with 100,000 rows and hostile ones.
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/checks.sh"
here=$WORLD_ROOT/tests/web
tools=$ORKA_BUILD/tests/web/npm

# skip SENTENCE: what is missing isn't the page's fault.
skip() {
    echo "Skipped: $*"
    exit 77
}
[ -d "$tools/node_modules/playwright-core" ] || skip "the npm packages are not in $tools (npm couldn't fetch them)."
command -v chromium >/dev/null || skip "there is no chromium."

start_page() {
    PATH=$WORLD_DIR/bin:$PATH orka "$@" serve --port 8770 >"$WORLD_DIR/serve.out" 2>>"$WORLD_DIR/serve.err" &
    serve_pid=$!
    within 20 grep -q ^http "$WORLD_DIR/serve.out" || say_and_fail "It did not start: $(cat "$WORLD_DIR/serve.err")"
}
stop_page() {
    kill "$serve_pid"
    wait "$serve_pid" 2>/dev/null || true
    : >"$WORLD_DIR/serve.out"
}

# drive SCRIPT: runs it beside the world; its lines "do COMMAND" are carried out here.
drive() {
    coproc NODE { NODE_PATH=$tools/node_modules timeout 240 node "$tools/$1" http://127.0.0.1:8770/ 2>&1; }
    local word command node=$NODE_PID
    while read -r word command <&"${NODE[0]}"; do
        if [ "$word" = "do" ]; then
            $command
            echo "done" >&"${NODE[1]}"
        else
            echo "$word $command"
        fi
    done
    wait "$node" || failures=$((failures + 1))
}

mkdir -p "$WORLD_DIR/bin" "$WORLD_DIR/cache"
export XDG_CACHE_HOME=$WORLD_DIR/cache HOME=$WORLD_DIR
printf '#!/bin/sh\nexec /usr/bin/mpv --ao=null "$@"\n' >"$WORLD_DIR/bin/mpv"
chmod +x "$WORLD_DIR/bin/mpv"
cp "$here"/*.mjs "$tools"
furnish "Test Music"
start_again() {
    start_minidlna nas "$WORLD_DIR/music" "Test Music"
}
start_page
drive page.mjs
stop_page

ORKA_TEST_ART=http://10.77.0.1:9000
export ORKA_TEST_ART
python3 "$here/art_server.py" 10.77.0.1 9000 "$WORLD_DIR/art.log" &
art_server_is_there() {
    http_get 10.77.0.1 9000 /fine >/dev/null 2>&1
}
within 10 art_server_is_there || say_and_fail "The server of pictures did not start."
start_page --plugin "$ORKA_BUILD/tests/web/liborka_test_page_worker.so"
drive big.mjs
check "only what rows named was asked for" "" "$(grep -vE '^/(art/[0-9]+|redirect-port|redirect-host|redirects|bomb|endless|svg|html|fine)$' "$WORLD_DIR/art.log" || true)"
stop_page
finish
