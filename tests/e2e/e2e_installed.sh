#!/usr/bin/env bash
# What was installed for one place and moved to another still finds its parts: without a session bus the program needs
# its bus configuration, its bridge and its plug-in.
set -euo pipefail

DESTDIR=$WORLD_DIR/stage cmake --install "$ORKA_BUILD" --prefix /opt/orka >"$WORLD_DIR/install.log"
mv "$WORLD_DIR/stage/opt/orka" "$WORLD_DIR/moved"
unset DBUS_SESSION_BUS_ADDRESS
export XDG_RUNTIME_DIR=$WORLD_DIR
"$WORLD_DIR/moved/bin/orka" --wait 0 doctor | tee "$WORLD_DIR/doctor.txt"
grep -q '^ok .*plug-in: loaded' "$WORLD_DIR/doctor.txt"
ldd "$(find "$WORLD_DIR/moved" -name libplayListHelper.so)" | grep "liborka_api.* => $WORLD_DIR/moved"
