#!/usr/bin/env bash
# What orka lists of a MiniDLNA library against the tags of its files.
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/checks.sh"

furnish "Test Music"

check "the server's row" "Test Music server" \
    "$(orka --json servers | jq -r '.rows[] | .title + " " + (.path | capture("itemType=(?<t>[a-z]+)").t)')"
check "every track, with its tags" "$(tags_of "$WORLD_DIR/music" | sort)" \
    "$(rows "$row_fields" ls "Test Music/Music/All Music" --rows 0-99 | sort)"
check "an album in its order" "$(tags_of "$WORLD_DIR/music/Odd Signs")" \
    "$(rows "$row_fields" ls "Test Music/Music/Album/Punctuation")"
check "a folder's page and its total" $'25\nPiece 10\nPiece 11\nPiece 12' \
    "$(orka --json ls "Test Music/Browse Folders/Long List/Twenty-Five" --rows 9-11 | jq -r '.rowsCount, .rows[].title')"
check "rows beyond the end" 25 \
    "$(orka --json ls "Test Music/Browse Folders/Long List/Twenty-Five" --rows 25-40 | jq -r '.rowsCount, .rows[].title')"

# A path is all that a program needs: the listing's paths lead on.
album=$(orka --json ls "Test Music/Music/Album" --rows 0-99 | jq -r '.rows[] | select(.title == "夜の海").path')
check "a container's path says what it is" container "$(sed -n 's/.*itemType=\([a-z]*\).*/\1/p' <<<"$album")"
check "its tracks, by that path" $'夜の海\n灯台' "$(orka --json ls "$album" | jq -r '.rows[].title')"
track=$(orka --json ls "$album" | jq -r '.rows[1].path')
check "one track, by its path" "灯台 林檎楽団 2000 audio/mpeg" "$(orka --json info "$track" |
    jq -r '.roles | [.title, .mediaData.metaData.artist, (.mediaData.resources[0] | .duration, .mimeType)] | map(tostring) | join(" ")')"

check "what can be done with it" 3 "$(orka --json menu --context "$track" | jq .rowsCount)"
check_fails "a folder that isn't there" 3 'no folder "Musik".*mean "Music"' orka ls "Test Music/Musik/Album"
check_fails "an object that isn't there" 1 "error" orka ls "${album%%\?*}/nothing?itemType=container"

uri=$(orka --json info "$track" | jq -r '.roles.mediaData.resources[0].uri')
check "what the track's address gives" 灯台 \
    "$(ffprobe -v error -show_entries format_tags=title -of default=noprint_wrappers=1:nokey=1 "$uri")"

# Covers come by way of the device's own proxy, at the address that this network gave it.
icon=$(orka --json ls "Test Music/Music/Album/Glass Rivers" --rows 0-0 | jq -r '.rows[0].icon')
check "an album's cover, by the device's proxy" https://10.77.0.1/proxy "${icon%/*}"
cover=$(base64 -d <<<"${icon##*/}")
check "what the proxy is to fetch" "Content-Type: image/jpeg" \
    "$(http_get 10.77.0.2 8200 "/${cover#http://*/}" | tr -d '\r' | grep -a Content-Type)"

# A media framework that knows nothing of the bridge works with it unchanged.
udn=$(orka --json servers | jq -r '.rows[0].path | capture("/(?<udn>[^?]+)").udn')
check "the same track, by grilo" "灯台,林檎楽団" \
    "$(GRL_PLUGIN_LIST=grl-dleyna grl-launch-0.3 -k title,artist search 灯台 "grl-dleyna-$udn" 2>/dev/null | head -n 1)"
finish
