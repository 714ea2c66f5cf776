#!/usr/bin/env bash
# The plug-in for an arm64 device, built as its maker does: with a toolchain file, the system's headers and libraries in a
# folder, and the SDK installed there.
#   cross-build.sh FOLDER       FOLDER/liborka_cb_upnpClient.so is what it makes
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=$1
system=$folder/system
toolchain=(-G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=/usr
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/aarch64-linux-gnu.cmake" -DCMAKE_SYSROOT="$system")

mkdir -p "$folder"
"$root/scripts/arm64-system.sh" "$system"
cmake "${toolchain[@]}" -S "$root" -B "$folder/sdk" -DBUILD_TESTING=OFF -DORKA_WITH_HOST=OFF -DORKA_WITH_BRIDGE=OFF
cmake --build "$folder/sdk" --target orka_api playListHelper
DESTDIR=$system cmake --install "$folder/sdk/sdk" >/dev/null

cmake "${toolchain[@]}" -S "$root/modules/upnpClient" -B "$folder/plug-in"
cmake --build "$folder/plug-in"
library=$folder/plug-in/liborka_cb_upnpClient.so
aarch64-linux-gnu-readelf --file-header "$library" | grep 'Machine: *AArch64'
[ "$(aarch64-linux-gnu-nm --dynamic --defined-only "$library" | awk '{ print $3 }')" = worker_create ]
cp "$library" "$folder"
echo "$folder/${library##*/}"
