#!/usr/bin/env bash
# Everything a person can get wrong: a sentence and an exit status each, never a crash.
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/world.sh"
. "$WORLD_ROOT/tests/e2e/library.sh"
. "$WORLD_ROOT/tests/e2e/checks.sh"

world_lan
world_host nas 2
start_bus
start_bridge

check_fails "no server on the network" 3 "[Nn]o media server" orka --wait 2 ls Music
check "no server is an empty list" 0 "$(orka --wait 2 --json servers | jq '.rowsCount')"

make_library "$WORLD_DIR/music"
start_minidlna nas "$WORLD_DIR/music" Music
wait_indexed nas "$(library_size)"
server=$(orka --json servers | jq -r '.rows[0].path')
server=${server%%\?*}

check_fails "a server's name that isn't there" 3 "no media server.*\"?Musik" orka ls Musik
check_fails "a folder that isn't there" 3 "Nowhere" orka ls Music/Nowhere
check_fails "a server's path that isn't there" 3 "server" orka --wait 1 ls upnp:/uuid:no-such-server/64
check_fails "an object that isn't there" 1 "." orka ls "$server/nothing?itemType=container"
check_fails "a path that can't be decoded" 2 "%zz" orka ls 'upnp:/uuid:%zz'
check_fails "rows backwards" 2 "5-2" orka ls Music --rows 5-2
check_fails "rows that are no numbers" 2 "two-three" orka ls Music --rows two-three
check_fails "a step below 1" 2 "step" orka sample Music 0,9,0
check_fails "a command that doesn't exist" 2 "frobnicate|--help" orka frobnicate
check_fails "JSON that is none" 2 "JSON" orka set upnp:playlist/prepareItems '{'
check_fails "no plug-in there" 3 "no plug-in.*/nowhere.so" orka --plugin /nowhere.so servers
check_fails "a plug-in that is no library" 3 "README.md" orka --plugin "$WORLD_ROOT/README.md" servers
library=$(find "$ORKA_BUILD/sdk" -name 'liborka_api.so' | head -n 1)
check_fails "a library that is no plug-in" 3 "worker_create" orka --plugin "$library" servers
check_fails "a bus that isn't there" 3 "bus" orka --bus "unix:path=$WORLD_DIR/no-bus" servers
start_bus_at "$WORLD_DIR/empty-bus"
check_fails "a bus without a media service" 3 "media service" \
    orka --media-service session --bus "unix:path=$WORLD_DIR/empty-bus" servers
finish
