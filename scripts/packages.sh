#!/bin/sh
# Sourced by ./run: makes sure that the Debian packages of some sections of packages.txt are there.
# Needs $root, the repository's folder.
# shellcheck disable=SC2154 # root is set by ./run

# packages_of SECTION…: the names listed under these sections; those of which one will do have a "|" between them.
packages_of() {
    awk -v wanted=" $* " '
        /^# \[/ { section = substr($2, 2, length($2) - 2); next }
        /^#/ || NF == 0 { next }
        index(wanted, " " section " ") { print $1 }' "$root/packages.txt" | sort -u
}

# packages_missing SECTION…: those of them that are not installed, on one line.
packages_missing() {
    names=$(packages_of "$@")
    # shellcheck disable=SC2046 # a list of names
    there=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' $(echo "$names" | tr '|' ' ') 2>/dev/null |
        sed -n 's/^installed //p' | tr '\n' ' ') || true
    echo "$names" | awk -F '|' -v there="$there" '
        BEGIN { count = split(there, names, " "); for (i = 1; i <= count; ++i) is_there[names[i]] = 1 }
        { for (i = 1; i <= NF; ++i) if ($i in is_there) next; printf " %s", $1 }'
}

# as_root COMMAND…: directly, or with sudo where that works without a question or there is somebody to ask.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null && { [ -t 0 ] || sudo -n true 2>/dev/null; }; then
        sudo "$@"
    else
        return 1
    fi
}

apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "$@"
}

# Media servers come with a service of their own that starts with the machine; nobody asked for it here.
switch_off_service() {
    if [ -d /run/systemd/system ]; then
        as_root systemctl disable --now "$1" || true
    fi
}

# Qt's tools for translations, where they aren't installed, without the 27 packages that come with them.
tools_need() {
    tools=$root/build/tools
    PATH=$tools/usr/lib/qt5/bin:$PATH
    if [ -x /usr/lib/qt5/bin/lrelease ] || [ -x "$tools/usr/lib/qt5/bin/lrelease" ]; then
        return
    fi
    mkdir -p "$tools"
    for package in $(packages_of unpacked); do
        echo "Unpacking this Debian package into build/tools: $package" >&2
        if ! { apt_download "$package" || { as_root apt-get update -q && apt_download "$package"; }; } >&2; then
            echo "This Debian package is needed and could not be fetched: $package" >&2
            echo "Install it as root: apt-get install $package" >&2
            exit 3
        fi
    done
}

apt_download() {
    (cd "$tools" && apt-get download -q "$1" && dpkg-deb -x "$1"_*.deb . && rm "$1"_*.deb)
}

# packages_need SECTION…: installs what is missing; a sentence and status 3 where that can't be done.
packages_need() {
    if ! command -v dpkg-query >/dev/null; then
        echo "This is not a Debian machine, so nothing is installed; packages.txt says what is needed." >&2
        return
    fi
    packages_install "$@"
    case " $* " in *" build "*) tools_need ;; esac
}

packages_install() {
    missing=$(packages_missing "$@")
    [ -n "$missing" ] || return 0 # the usual case asks apt nothing
    echo "Installing these Debian packages:$missing" >&2
    # shellcheck disable=SC2086 # a list of names
    if ! { apt_install $missing || { as_root apt-get update -q && apt_install $missing; }; } >&2; then
        echo "These Debian packages are needed and could not be installed:$missing" >&2
        echo "Install them as root: apt-get install$missing" >&2
        exit 3
    fi
    for server in minidlna gerbera; do
        case "$missing " in *" $server "*) switch_off_service "$server" >&2 ;; esac
    done
}
