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
table | while IFS= read -r line; do
    grep -qxF -- "$line" "$page" || {
        echo "$page lacks this line of scripts/sdk-table.sh: $line" >&2
        exit 1
    }
done
