#!/usr/bin/env bash
# A short tour of what the plug-in gives, over a real media server; then a prompt where there is a terminal.
# Run by enter-world.sh.
set -euo pipefail
# shellcheck source=demo/furnish.sh
. "$WORLD_ROOT/demo/furnish.sh"

# show SENTENCE COMMAND…: says what comes, then runs it as a person would type it.
show() {
    printf '\n%s\n  $ %s\n' "$1" "$(as_typed "${@:2}")"
    "${@:2}"
}

# as_typed WORD…: quoted only where a shell needs it.
as_typed() {
    local word text=
    for word; do
        [[ $word =~ ^[A-Za-z0-9_./:=,-]+$ ]] || word="'${word//\'/\'\\\'\'}'"
        text+=" $word"
    done
    printf '%s' "${text# }"
}

echo "Starting a media server (MiniDLNA) with $(library_size) tracks on a network of its own …"
furnish "Demo Music"

show "The media servers on this network:" orka servers
show "A folder:" orka ls "Demo Music/Music/Album"
show "An album:" orka ls "Demo Music/Music/Album/Punctuation"
show "All that is known of one track:" orka info "Demo Music/Music/Album/Punctuation/Say \"Hello\""
show "A search:" orka search "Demo Music" --artist Überläufer
show "Every sixth row of a longer folder:" orka sample "Demo Music/Browse Folders/Long List/Twenty-Five" 0,24,6
show "The playlist of an artist's folder:" orka queue "Demo Music/Browse Folders/Ada Quartz"

if [ -t 0 ] && [ -t 1 ]; then
    echo
    prompt
fi
