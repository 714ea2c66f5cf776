#!/usr/bin/env bash
# Builds the plug-in alone, the two ways a device maker may: against the installed SDK package, and against a
# folder that holds nothing but the SDK's headers and libraries.
#   tst_three_builds.sh SOURCE-FOLDER BUILD-FOLDER
set -euo pipefail
source=$1 build=$2
work=$(mktemp -d "${TMPDIR:-/tmp}/orka-three-builds.XXXXXX")
trap 'rm -rf "$work"' EXIT

# exports_one_symbol LIBRARY
exports_one_symbol() {
    local symbols
    symbols=$(nm -D --defined-only "$1" | awk '{ print $3 }')
    echo "$1 exports: $symbols"
    [ "$symbols" = worker_create ]
}

# build_alone NAME CMAKE-ARGUMENTS…
build_alone() {
    local folder=$work/$1
    shift
    cmake -G Ninja -S "$source/modules/upnpClient" -B "$folder" -DCMAKE_BUILD_TYPE=Debug "$@"
    grep -E '^OrkaApi_(DIR|LIBRARY|INCLUDE_DIR)' "$folder/CMakeCache.txt"
    cmake --build "$folder" -j 2
    exports_one_symbol "$folder/liborka_cb_upnpClient.so"
}

exports_one_symbol "$build/modules/upnpClient/liborka_cb_upnpClient.so"

cmake --install "$build/sdk" --prefix "$work/sdk" >"$work/install.log"
build_alone against-package -DCMAKE_PREFIX_PATH="$work/sdk"
grep -q "OrkaApi_DIR:PATH=$work/sdk" "$work/against-package/CMakeCache.txt"

# A maker's folder: headers of other names, libraries, no CMake package; adapted to by a header of the maker's own.
headers=$(dirname "$(dirname "$(dirname "$(find "$work/sdk" -path '*api/core/orka.h')")")")
mkdir -p "$work/maker/include" "$work/maker/lib"
cp -r "$headers/." "$work/maker/include/"
find "$work/sdk" \( -name 'liborka_api.so*' -o -name 'libplayListHelper.so*' \) -exec cp -P {} "$work/maker/lib/" \;
rm -rf "$work/sdk"
mv "$work/maker/include/api/core/orka.h" "$work/maker/include/api/core/main.h"
cp "$source/modules/upnpClient/sdk.h" "$work/maker/include/adaption.h"
find "$work/maker/include" -name '*.h' -exec sed -i 's|<api/core/orka.h>|<api/core/main.h>|' {} +
build_alone against-folder -DOrkaApi_ROOT="$work/maker" -DORKA_SDK_HEADER="$work/maker/include/adaption.h"
grep -q "OrkaApi_LIBRARY:FILEPATH=$work/maker" "$work/against-folder/CMakeCache.txt"
