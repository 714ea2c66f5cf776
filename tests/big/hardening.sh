#!/bin/sh
# Is the plug-in linked and hardened as it was told to be? hardening.sh LIBRARY COMPILE-COMMANDS BUILD-TYPE
set -eu
library=$1 commands=$2 build_type=$3
failed=0

# want WHAT COMMAND…: the command finds it.
want() {
    what=$1
    shift
    if ! "$@" >/dev/null; then
        echo "$library lacks $what." >&2
        failed=1
    fi
}

dynamic=$(readelf --dynamic --wide "$library")
symbols=$(readelf --syms --wide "$library")
segments=$(readelf --segments --wide "$library")
# shellcheck disable=SC2317 # called through want
finds() { printf '%s\n' "$2" | grep -E "$1"; }

# It lives beside a host's own symbols and those of other plug-ins.
want "worker_create as its only export" [ "$(nm --dynamic --defined-only "$library" | cut -d ' ' -f 2-)" = "T worker_create" ]
want "immediate binding (-z now)" finds 'FLAGS.*NOW' "$dynamic"
want "read-only relocations (-z relro)" finds 'GNU_RELRO' "$segments"
want "-z nodelete" finds 'NODELETE' "$dynamic"
want "the stack protector" finds '__stack_chk_fail' "$symbols"
want "a stack that can't be executed" finds 'GNU_STACK.* RW ' "$segments"
# Hardly any of its calls have a checked twin, so the library itself doesn't show this one.
if [ "$build_type" != Debug ]; then
    unfortified=$(grep -E '"command": .*upnpClient_objects' "$commands" | grep -cv -e -D_FORTIFY_SOURCE=2 || true)
    want "-D_FORTIFY_SOURCE=2 in $unfortified of its sources" [ "$unfortified" -eq 0 ]
    want "the compile commands of its sources" grep -q upnpClient_objects "$commands"
fi
exit $failed
