#!/usr/bin/env bash
# Playlists of tracks, albums, folders and whole servers, on a server that can search (MiniDLNA) and on one
# that can't (Gerbera), against the tags of the files.
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/checks.sh"

# 25 albums of two tracks, one folder each, two levels down.
make_nested_albums() {
    local number
    for number in $(seq -w 1 25); do
        "$WORLD_ROOT/tests/e2e/make_tracks.py" "$1/Shelf/Album $number" 2 "Album $number"
    done
}

queue() {
    orka --json queue "$@" | jq -r '(.error.message // empty | "error: " + .), (.items[]? | [.title, .artist, .album] | @tsv)'
}

# nested ALBUM…: what a queue holds of these nested albums.
nested() {
    local album
    for album; do
        printf 'Track %s\tArtist 000\tAlbum %s\n' 00001 "$album" 00002 "$album"
    done
}

world_lan
world_host minidlna 2
world_host gerbera 3
make_library "$WORLD_DIR/music"
make_nested_albums "$WORLD_DIR/nested"
start_minidlna minidlna "$WORLD_DIR/music" Searches
start_gerbera gerbera "$WORLD_DIR/nested" Walks
wait_indexed minidlna "$(library_size)"
wait_indexed gerbera 50
start_bus
start_bridge

all=$(tags_of "$WORLD_DIR/music" | cut -f 1-3)
signs=$(grep Punctuation <<<"$all")
hello='Searches/Music/Album/Punctuation/Say "Hello"'
check "a track" "$(head -n 1 <<<"$signs")" "$(queue "$hello")"
check "an album of a searching server" "$signs" "$(queue Searches/Music/Album/Punctuation)"
check "a nested folder of a searching server" "$(grep Quartz <<<"$all" | sort)" \
    "$(queue "Searches/Browse Folders/Ada Quartz" | sort)"
check "a whole searching server" "$(sort <<<"$all")" "$(queue Searches | sort)"
check "a track named twice" "$(head -n 1 <<<"$signs")" "$(queue "$hello" "$hello")"
check "every item as a device gets it" "$(orka --json queue --quick Searches/Music/Album/Punctuation)" \
    "$(orka --json queue Searches/Music/Album/Punctuation)"
check "places in the order given" "$(nested 07 03)" "$(queue "Walks/Audio/Albums/Album 07" "Walks/Audio/Albums/Album 03")"

albums=Walks/Audio/Albums
check "an album of a server that can't search" "$(nested 07)" "$(queue "$albums/Album 07")"
check "a track of a server that can't search" "$(nested 07 | head -n 1)" "$(queue "$albums/Album 07/Track 00001")"
check "25 nested albums of a server that can't search, each track once and in order" \
    "$(nested $(seq -w 1 25))" "$(queue "$albums")"
check "the folders on its disk" 50 "$(queue "Walks/PC Directory" | wc -l)"

# Read back by other programs, every character of a title in its place.
orka queue "Searches/Music/Album/Punctuation" --format xspf >"$WORLD_DIR/list.xspf"
check "XSPF for programs" "$(cut -f 1 <<<"$signs" | sed 's/\\\\/\\/g')" \
    "$(xmllint --xpath '//*[local-name()="track"]/*[local-name()="title"]/text()' "$WORLD_DIR/list.xspf" |
        sed 's/&lt;/</g; s/&gt;/>/g; s/&quot;/"/g; s/&amp;/\&/g')"
orka queue "Searches/Music/Album/Punctuation" --format m3u8 >"$WORLD_DIR/list.m3u8"
check "M3U8 for players: the files it names" "$(cut -f 1 <<<"$signs")" \
    "$(grep -v '^#' "$WORLD_DIR/list.m3u8" | while read -r address; do
        ffprobe -v error -show_entries format_tags=title -of json "$address"
    done | jq -r '[.format.tags.title] | @tsv')"
finish
