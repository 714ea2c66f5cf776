#!/usr/bin/env bash
# chain.sh PROGRAMS [TRACKS]: measures the whole chain on a MiniDLNA with a folder of so many tracks (1,000); run by
# enter-world.sh in a world of its own.
set -euo pipefail
# shellcheck source=world/world.sh
. "$WORLD_ROOT/world/world.sh"

world_lan
world_host nas 2
"$WORLD_ROOT/tests/e2e/make_tracks.py" "$WORLD_DIR/music/big" "${2:-1000}"
start_minidlna nas "$WORLD_DIR/music" Big
wait_indexed nas "${2:-1000}"
start_bus
start_bridge
# shellcheck disable=SC2154,SC2016 # declared by world.sh; the id is meant as it stands
"$1/bm_chain" "${host_address[nas]}" 8200 /ctl/ContentDir '64$0'
