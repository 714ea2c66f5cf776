#!/usr/bin/env bash
# Does the plug-in hold on an SDK that chooses otherwise wherever nothing says what an SDK does? Builds ours in that
# form, adapts the plug-in by a header of its own, and runs the plug-in's whole test program.
#   foreign.sh SOURCE-FOLDER BUILD-FOLDER    the build stays there, for the next time
set -euo pipefail
source=$1 build=$2
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
cmake -G Ninja -S "$source" -B "$build" -DCMAKE_BUILD_TYPE=Debug -DBUILD_TESTING=ON -DORKA_WITH_HOST=OFF \
    -DORKA_WITH_BRIDGE=OFF -DORKA_FOREIGN_SDK=ON -DORKA_SDK_HEADER="$source/tests/upnpClient/strict/foreign_sdk.h"
cmake --build "$build" --target upnpClient_tests
cd "$build/tests/upnpClient"
exec ctest --output-on-failure -j 2 --label-exclude build
