#!/usr/bin/env bash
# A folder of 10,000 tracks, whose listing a server gives in pieces.
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/checks.sh"

world_lan
world_host nas 2
"$WORLD_ROOT/tests/e2e/make_tracks.py" "$WORLD_DIR/music/big" 10000
start_minidlna nas "$WORLD_DIR/music" Big
wait_indexed nas 10000
start_bus
start_bridge

folder="Big/Browse Folders/big"
check "the folder's size, and its last rows" "$(echo 10000; seq -f 'Track %05g' 9981 10000)" \
    "$(orka --json ls "$folder" --rows 9980-9999 | jq -r '.rowsCount, .rows[].title')"
check "all rows in one answer, none missing" "$(echo 10000; seq -f 'Track %05g' 1 10000)" \
    "$(orka --json ls "$folder" --rows 0-9999 | jq -r '.rowsCount, .rows[].title')"
check "a sample of the whole folder" "$(echo 10000; seq -f 'Track %05g' 1 100 10000)" \
    "$(orka --json sample "$folder" 0,9999,100 --rows 0-99 | jq -r '.rowsCount, .rows[].title')"
check "the queue of a whole server, each track once" "$(seq -f 'Track %05g' 1 10000)" \
    "$(orka --json queue Big | jq -r '.items[].title' | sort)"
check "a quick queue is a folder's first hundred" 100 "$(orka --json queue --quick "$folder" | jq '.items | length')"
mapfile -t tracks < <(orka --json ls "$folder" --rows 0-64 | jq -r '.rows[].path')
check "a queue of 65 tracks by their paths" "$(seq -f 'Track %05g' 1 65)" \
    "$(orka --json queue "${tracks[@]}" | jq -r '.items[].title')"
finish
