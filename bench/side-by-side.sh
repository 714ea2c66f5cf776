#!/usr/bin/env bash
# side-by-side.sh PROGRAMS: the same container of 1,000 tracks listed by several clients, each a whole process.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
programs=$1
runs=7
folder=$(mktemp -d)
container=726f777331303030 # "rows1000"

cleanup() {
    kill "${pids[@]}" 2>/dev/null || true
    rm -rf "$folder"
}
pids=()
trap cleanup EXIT

export DBUS_SESSION_BUS_ADDRESS=unix:path=$folder/bus
dbus-daemon --config-file="$here/../host/chain/private-bus.conf" --nofork --nopidfile --address="$DBUS_SESSION_BUS_ADDRESS" \
    2>/dev/null &
pids+=($!)
until [ -S "$folder/bus" ]; do sleep 0.05; done
"$programs/fast-service" >"$folder/ready" &
pids+=($!)
until [ -s "$folder/ready" ]; do sleep 0.05; done

"$programs/bm_process" "libdbus, nothing decoded" $runs "$programs/bench-list" floor rows1000 1000
"$programs/bm_process" "plug-in" $runs "$programs/bench-list" plugin rows1000 1000
orka=$(dirname "$programs")/host/orka
if [ -x "$orka" ]; then
    "$programs/bm_process" "orka rows" $runs "$orka" --bus session --media-service session \
        --plugin "$(dirname "$programs")/modules/upnpClient/liborka_cb_upnpClient.so" --json \
        rows "upnp:/uuid:fast0000-0000/$container" --first 0 --last 999
fi
"$programs/bm_process" "Python on GDBus" $runs /usr/bin/python3 "$here/gdbus-client.py" \
    "/com/intel/dLeynaServer/server/uuid_3afast0000_2d0000/$container" 1000
# Lists the server's own container, which holds 1,000 tracks too; its elapsed time includes a second's delay.
if command -v grl-launch-0.3 >/dev/null; then
    export GRL_PLUGIN_LIST=grl-dleyna
    "$programs/bm_process" "grilo, after a second" $runs grl-launch-0.3 --count 1000 --keys title,artist,album,url \
        browse grl-dleyna-uuid:fast0000-0000
fi
