#!/usr/bin/env bash
# commands.sh PROGRAMS: how long a person waits for a command where no media service is installed, beside what the
# program's start alone takes (`orka --version`); run by enter-world.sh in a world of its own. Medians of 20 rounds.
set -euo pipefail
# shellcheck source=world/world.sh
. "$WORLD_ROOT/world/world.sh"
orka=$(dirname "$1")/host/orka
rounds=20
unset DBUS_SESSION_BUS_ADDRESS
export XDG_RUNTIME_DIR=$WORLD_DIR/run ORKA_LINGER=600
mkdir -m 700 "$XDG_RUNTIME_DIR"
declare -A times=()

world_lan
world_host nas 2
"$WORLD_ROOT/tests/e2e/make_tracks.py" "$WORLD_DIR/music/Album" 20
start_minidlna nas "$WORLD_DIR/music" Shelf
wait_indexed nas 20

# timed NAME ARGUMENTS…: runs orka; its milliseconds go to the others of that name.
timed() {
    local name=$1 start=$EPOCHREALTIME end
    "$orka" "${@:2}" >"$WORLD_DIR/printed" 2>&1 || say_and_fail "orka ${*:2}: $(cat "$WORLD_DIR/printed")"
    end=$EPOCHREALTIME
    times[$name]+=" $(((${end/./} - ${start/./}) / 1000)).$((((${end/./} - ${start/./}) % 1000) / 100))"
}

median() {
    tr ' ' '\n' <<<"${times[$1]}" | grep . | sort -n | awk '{ all[NR] = $1 } END { print all[int((NR + 1) / 2)] }'
}

# report NAME: its median, and over that of the program's start.
report() {
    local time start
    time=$(median "$1")
    start=$(median start)
    printf '{"name": "%s, ms", "value": %s}\n{"name": "%s", "value": %s}\n' "$1" "$time" "$1" \
        "$(awk "BEGIN { print $time / $start }")"
}

forget_nothing() { "$orka" stop >/dev/null; }
forget_servers() { forget_nothing && rm -r "$XDG_CACHE_HOME/orka-media-bridge"; }

"$orka" ls Shelf >/dev/null
folder=$("$orka" --json ls "Shelf/Browse Folders" | jq -r '.rows[] | select(.title == "Album").path')
for ((i = 0; i < rounds; ++i)); do
    timed start --version
    timed "ls by path" ls "$folder"
    timed "ls by titles" ls "Shelf/Browse Folders/Album"
    timed "servers" servers
    timed "completion" complete bash 0 'orka ls Shelf/Browse\ Folders/Al'
done
for ((i = 0; i < rounds; ++i)); do
    forget_nothing
    timed "first, remembered" ls "$folder"
done
for ((i = 0; i < rounds; ++i)); do
    forget_servers
    timed "first, never seen" ls "$folder"
done
forget_nothing
for name in "ls by path" "ls by titles" servers completion "first, remembered" "first, never seen"; do report "$name"; done
printf '{"name": "start, ms", "value": %s}\n' "$(median start)"
counted=$(valgrind --tool=callgrind --callgrind-out-file=/dev/null "$orka" --version 2>&1 | sed -n 's/.*Collected *: *//p')
printf '{"name": "program start instructions", "value": %s}\n' "$counted"
