#!/usr/bin/env bash
# What people do with the installed packages, in the system below a folder; try-packages.sh runs this in a world of its own.
#   use-packages.sh SYSTEM
set -euo pipefail

# shellcheck source=world/world.sh
. "$WORLD_ROOT/world/world.sh"
# shellcheck source=world/library.sh
. "$WORLD_ROOT/world/library.sh"
system=$1

# in_session COMMAND…: with a session bus of its own, on which programs are started as they are asked for.
in_session() {
    timeout 60 chroot "$system" env -i PATH=/usr/bin:/bin LC_ALL=C.UTF-8 HOME=/root dbus-run-session -- "$@"
}

# expect WHAT WORDS COMMAND…: it succeeds and says these words, a pattern.
expect() {
    local what=$1 words=$2 said
    shift 2
    said=$("$@" 2>&1) && grep -qE "$words" <<<"$said" || {
        printf 'FAIL  %s: "%s" is wanted, this was said:\n%s\n' "$what" "$words" "$said" >&2
        exit 1
    }
    printf '        ok  %s\n' "$what"
}

doctor() {
    local said
    said=$(in_session orka doctor) || return
    echo "$said"
    ! grep -v '^ok ' <<<"$said"
}

# The way of docs/writing-a-worker.md, and a translation with pkg-config alone.
build_example() {
    chroot "$system" env -i PATH=/usr/bin:/bin LC_ALL=C.UTF-8 sh -ec '
        cp -r /usr/share/doc/liborka-api-dev/examples/radio-worker /var/tmp
        cmake -S /var/tmp/radio-worker -B /var/tmp/radio
        cmake --build /var/tmp/radio
        echo "#include <api/core/CMPath.h>
            int main() { return CMPath::fromEncoded(QStringLiteral(\"a:/b\")).base().isEmpty(); }" >/var/tmp/path.cpp
        g++ -fPIC /var/tmp/path.cpp -o /var/tmp/path $(pkg-config --cflags --libs orka-api)
        /var/tmp/path'
}

mount --bind "$system" "$system"
mount -t proc proc "$system/proc"
mount --bind /dev "$system/dev"
world_lan
world_host nas 2
mkdir "$WORLD_DIR/music"
make_library "$WORLD_DIR/music"
start_minidlna nas "$WORLD_DIR/music" "Packaged Music"
wait_indexed nas "$(library_size)"

expect "orka lists the media server" "Packaged Music" in_session orka servers
expect "orka lists an album" "Say \"Hello\"" in_session orka ls "Packaged Music/Music/Album/Punctuation"
expect "orka doctor has nothing to complain of" "media server: \"Packaged Music\"" doctor
expect "it speaks German, and so does the plug-in" "Interpret" in_session env LC_ALL=de_DE.UTF-8 orka menu "Packaged Music"
expect "man finds the pages" "browse, search and play" chroot "$system" sh -c 'zcat /usr/share/man/man1/orka.1.gz'
expect "Grilo browses through the bridge that it starts" "Music" in_session sh -c '
    export GRL_PLUGIN_LIST=grl-dleyna
    dbus-send --session --print-reply --dest=com.intel.dleyna-server /com/intel/dLeynaServer \
        com.intel.dLeynaServer.Manager.GetServers >/dev/null
    sleep 2
    grl-launch-0.3 -d 2 -k title browse "grl-dleyna-uuid:4d696e69-444c-4e41-9d41-'"$(printf %s nas | cksum | awk '{ printf "%012x", $1 }')"'"'
expect "the example is built" "Built target radio" build_example
expect "and loaded" "Station One" in_session orka --plugin /var/tmp/radio/libradio.so --prefix radio ls radio:
rm -rf "$system"/var/tmp/radio "$system"/var/tmp/radio-worker "$system"/var/tmp/path*
