#!/usr/bin/env bash
# Searches on servers that can, each in its own way (MiniDLNA, Rygel), and on one that can't (Gerbera 1).
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/checks.sh"

world_lan
world_host minidlna 2
world_host gerbera 3
world_host rygel 4
make_library "$WORLD_DIR/music"
start_minidlna minidlna "$WORLD_DIR/music" Searches
start_gerbera gerbera "$WORLD_DIR/music" Lists
start_rygel rygel "$WORLD_DIR/music" Virtual
wait_indexed minidlna "$(library_size)"
wait_indexed gerbera "$(library_size)"
wait_indexed rygel "$(library_size)"
start_bus
start_bridge

# found SERVER ORKA-ARGUMENTS…: the titles of the tracks found.
found() {
    orka --json search "$@" --rows 0-99 |
        jq -r '(.error.message // empty | "error: " + .), (.rows[]? | select(.type == 2).title)' | sort -u
}

for server in Searches Virtual; do
    check "$server: by artist" $'Delta\nDusk\nLamps\nRapids\nSource' "$(found "$server" --artist "Ada Quartz")"
    check "$server: by a part of the artist" $'Delta\nDusk\nLamps\nRapids\nSource' "$(found "$server" --artist Quartz)"
    check "$server: by album" $'夜の海\n灯台' "$(found "$server" --album 夜の海)"
    check "$server: by a title in quotes" 'Say "Hello"' "$(found "$server" --title 'Say "Hello"')"
    check "$server: by a title with umlauts" "Äpfel & Öl" "$(found "$server" --title 'Äpfel')"
    check "$server: a dollar is a dollar" "\$HOME, sweet \$(home)" "$(found "$server" --title "\$HOME")"
    check "$server: a quote alone is no syntax error" 'Say "Hello"' "$(found "$server" --title '"')"
    check "$server: nothing found is an empty list" 0 \
        "$(orka --json search "$server" --title nowhere-at-all | jq .rowsCount)"
    check "$server: the total, beyond the rows asked for" "25 3" \
        "$(orka --json search "$server" --title Piece --rows 0-2 | jq -r '"\(.rowsCount) \(.rows | length)"')"
done
check "the plug-in's menu in German, not for programs" "Interpret Artist" \
    "$(export LC_ALL=de_DE.UTF-8 && orka menu Searches | awk '/^ *0 / { print $3 }') $(
        LC_ALL=de_DE.UTF-8 orka --json menu Searches | jq -r '.rows[0].title')"
# MiniDLNA knows no backslash inside a search; what matters is that it understands the request.
check "a backslash, which MiniDLNA never finds" "" "$(found Searches --title 'back\slash')"
check "a backslash, which Rygel finds" 'back\slash' "$(found Virtual --title 'back\slash')"

for server in Searches Lists/Audio Virtual; do
    check "$server: each file once, in however many folders it is" "$(library_tracks | cut -d '|' -f 8 | sort)" \
        "$(orka --json queue "$server" | jq -r '.items[].title' | sort)"
done
# Gerbera can search from its second version on, and finds tracks in folders where their titles begin with the artist.
if orka --json servers | jq -e '.rows[] | select(.title == "Lists").search' >/dev/null; then
    check "Lists: by artist" $'Delta\nDusk\nLamps\nRapids\nSource' \
        "$(found Lists --artist "Ada Quartz" | sed 's/^Ada Quartz - //' | sort -u)"
else
    check_fails "a server that can't search" 1 "search" orka search Lists --artist Quartz
fi
finish
