#!/usr/bin/env bash
# Does the plug-in hold on an SDK that chooses otherwise wherever nothing says what an SDK does? Builds ours in that
# form, adapts the plug-in by a header of its own, and runs the plug-in's whole test program.
#   foreign.sh SOURCE-FOLDER BUILD-FOLDER    the build stays there, for the next time
set -euo pipefail
source=$1 build=$2
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
# That SDK has no typed answer for data and values, answers a request for a missing row with no row, and writes fewer types
# into log lines.
mkdir -p "$build"
sed -E -e '/qRegisterMetaType<CMGetRowsRequest>/d' \
    -e 's/( *)request\.reply\(\)\.setValue\(value\);/\1if constexpr (std::is_same_v<Value, OrkaRowsRoles>)\n\1    &\n\1else\n\1    CMVoidReply(request.reply()).setVariant(value);/' \
    -e 's/( *)return reply\.error\(\);/\1const bool hasRow = !CMReplyData<OrkaRowsRoles>(reply).value().rows().isEmpty();\n\1return hasRow || reply.error().isError() ? reply.error() : createErrorInternal("There is no such row.");/' \
    -e 's/stream << value;/if constexpr (std::is_same_v<Value, CMPath>)\n        stream << value.toEncoded().toStdString();\n    else\n        stream << QVariant(value);/' \
    "$source/modules/upnpClient/sdk.h" >"$build/foreign_sdk.h"
cmake -G Ninja -S "$source" -B "$build" -DCMAKE_BUILD_TYPE=Debug -DBUILD_TESTING=ON -DORKA_WITH_HOST=OFF \
    -DORKA_WITH_BRIDGE=OFF -DORKA_FOREIGN_SDK=ON -DORKA_SDK_HEADER="$build/foreign_sdk.h"
cmake --build "$build" --target upnpClient_tests
cd "$build/tests/upnpClient"
exec ctest --output-on-failure -j 2 --label-exclude build
