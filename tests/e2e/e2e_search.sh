#!/usr/bin/env bash
# Searches on a server that can (MiniDLNA) and on one that can't (Gerbera).
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/world.sh"
. "$WORLD_ROOT/tests/e2e/library.sh"
. "$WORLD_ROOT/tests/e2e/checks.sh"

world_lan
world_host minidlna 2
world_host gerbera 3
make_library "$WORLD_DIR/music"
start_minidlna minidlna "$WORLD_DIR/music" Searches
start_gerbera gerbera "$WORLD_DIR/music" Lists
wait_indexed minidlna "$(library_size)"
wait_indexed gerbera "$(library_size)"
start_bus
start_bridge

# found ORKA-ARGUMENTS…: the titles of the tracks found.
found() {
    orka --json search Searches "$@" --rows 0-99 |
        jq -r '(.error.message // empty | "error: " + .), (.rows[]? | select(.type == 2).title)' | sort -u
}

check "by artist" $'Delta\nDusk\nLamps\nRapids\nSource' "$(found --artist "Ada Quartz")"
check "by a part of the artist" $'Delta\nDusk\nLamps\nRapids\nSource' "$(found --artist Quartz)"
check "by album" $'夜の海\n灯台' "$(found --album 夜の海)"
check "by a title in quotes" 'Say "Hello"' "$(found --title 'Say "Hello"')"
check "by a title with umlauts" "Äpfel & Öl" "$(found --title 'Äpfel')"
check "a dollar is a dollar" "\$HOME, sweet \$(home)" "$(found --title "\$HOME")"
check "a quote alone is no syntax error" 'Say "Hello"' "$(found --title '"')"
# This server knows no backslash inside a search; what matters is that it understands the request.
check "a backslash, which this server never finds" "" "$(found --title 'back\slash')"
check "nothing found is an empty list" 0 "$(orka --json search Searches --title nowhere-at-all | jq .rowsCount)"
check "the server's total, beyond the rows asked for" "25 3" \
    "$(orka --json search Searches --title "Piece" --rows 0-2 | jq -r '"\(.rowsCount) \(.rows | length)"')"

check_fails "a server that can't search" 1 "search" orka search Lists --artist Quartz
check "its menu has no search" 0 "$(orka --json servers | jq '[.rows[] | select(.title == "Lists" and .search != null)] | length')"
finish
