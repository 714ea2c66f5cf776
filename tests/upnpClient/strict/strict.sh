#!/usr/bin/env bash
# Does the plug-in need anything of the SDK outside its adaption header that not every SDK has? Compiles its sources
# as one piece against copies of our SDK's headers, each altered in one way: every error must lie in sdk.h.
#   strict.sh SOURCE-FOLDER [NAME]    with a name only the alterations that have it in theirs
set -euo pipefail
source=$(cd "$1" && pwd) only=${2:-}
here=$source/tests/upnpClient/strict
work=$(mktemp -d "${TMPDIR:-/tmp}/orka-strict.XXXXXX")
trap 'rm -rf "$work"' EXIT
export source work

# Qt's headers are read once for all alterations.
flags="-std=c++17 -fPIC $(pkg-config --cflags Qt5Core Qt5DBus)"
export flags
grep -rhoE '^#include <Q[^>]*>' "$source/modules/upnpClient" "$source/sdk/api" | sort -u >"$work/qt.h"
# shellcheck disable=SC2086 # flags are words
${CXX:-c++} $flags -x c++-header "$work/qt.h" -o "$work/qt.h.gch"
{
    echo '#include "qt.h"'
    printf '#include "%s"\n' "$source"/modules/upnpClient/*.cpp
} >"$work/plugin.cpp"

# errors_outside HEADERS: the compiler's errors that lie anywhere but in the adaption header.
errors_outside() {
    # shellcheck disable=SC2086 # flags are words
    { ${CXX:-c++} $flags -fsyntax-only -I"$1" "$work/plugin.cpp" 2>&1 || true; } | grep -E '(fatal )?error: ' |
        grep -v "^$source/modules/upnpClient/sdk.h:" || true
}

# check NAME HEADER SED: prints what is wrong.
check() {
    local headers files errors
    headers=$(mktemp -d "$work/headers.XXXXXX")
    cp -r "$source/sdk/api" "$source/sdk/playListHelper" "$headers"
    files=$headers/$2
    [ "$2" != '*' ] || files=$(find "$headers" -name '*.h')
    # shellcheck disable=SC2086 # a list of files
    sed -E -i "$3" $files
    if diff -rq "$source/sdk/api" "$headers/api" >/dev/null; then
        echo "$1: alters nothing; bring alterations.txt up to date."
    fi
    errors=$(errors_outside "$headers")
    [ -z "$errors" ] || printf '%s:\n%s\n' "$1" "$errors"
    rm -rf "$headers"
}
export -f check errors_outside

grep -v '^#' "$here/alterations.txt" | { grep -F -- "$only" || true; } | sed 's/ :: /\n/g' >"$work/table"
wrong=$(xargs -d '\n' -n 3 -P 2 bash -c 'check "$@"' check <"$work/table")
count=$(($(wc -l <"$work/table") / 3))
[ "$count" -gt 0 ] || { echo "No alteration has \"$only\" in its name." >&2 && exit 2; }
if [ -n "$wrong" ]; then
    printf '%s\n' "$wrong"
    exit 1
fi
echo "$count alterations of the SDK end in the adaption header or nowhere."
