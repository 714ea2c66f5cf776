#!/bin/sh
# sdk-table.sh [--check]: prints, as a Markdown table, what the plug-in's adaption header expects of an SDK, from
# the header itself; with --check it tells whether docs/porting-to-a-device.md holds that table.
set -eu
cd "$(dirname "$0")/.."
table() {
    awk '
        /^\/\/ [A-Z].*[a-z]$/ && body { print "| **" substr($0, 4) "** | |" }
        /^namespace sdk/ { body = 1 }
        /^\/\/\/ / && body { text = text (text ? " " : "") substr($0, 5) }
        /^(inline|CMPath|QStringList|void|Record|std::string) / && body && text {
            match($0, /[a-zA-Z]+\(/)
            print "| `" substr($0, RSTART, RLENGTH) ")` | " text " |"
            text = ""
        }
        /^#define SDK_TR/ { print "| `SDK_TR()` | " text " |" }' modules/upnpClient/sdk.h
}
if [ "${1:-}" != --check ]; then
    table
    exit
fi
page=docs/porting-to-a-device.md
in_page() {
    awk '/^$/ { inside = 0 } inside > 1 { print } inside || /^\| in `sdk\.h`/ { ++inside }' "$page"
}
[ "$(table)" = "$(in_page)" ] || {
    echo "The table in $page isn't the one that scripts/sdk-table.sh prints. Put that one in." >&2
    exit 1
}
