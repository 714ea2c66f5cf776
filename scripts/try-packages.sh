#!/usr/bin/env bash
# Installs the Debian packages into a clean Debian, uses them as their people would, and removes them again.
#   try-packages.sh FOLDER SUITE      FOLDER holds the packages, SUITE names the Debian that they were built on (bookworm)
# Needs root. The bare system is fetched once and kept beside FOLDER.
set -euo pipefail

folder=$(cd "$1" && pwd)
suite=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
bare=$(dirname "$folder")/$suite.tar
system=$(mktemp -d "${TMPDIR:-/var/tmp}/orka-$suite.XXXXXX")
trap 'rm -rf --one-file-system "$system"' EXIT
SECONDS=0

# step SENTENCE: what comes now, and when.
step() {
    printf '%4d s  %s\n' "$SECONDS" "$1"
}

inside() {
    chroot "$system" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
}

# quietly COMMAND…: what it says only where it fails.
quietly() {
    "$@" >"$system/var/tmp/said" 2>&1 || {
        tail -n 40 "$system/var/tmp/said" >&2
        return 1
    }
}

if [ ! -f "$bare" ]; then
    step "Debian $suite is fetched."
    debootstrap --variant=minbase "$suite" "$system" http://deb.debian.org/debian >/dev/null
    tar --create --one-file-system --directory="$system" --file="$bare.new" .
    mv "$bare.new" "$bare"
else
    tar --extract --directory="$system" --file="$bare"
fi
# Nothing that is installed may start here, and unpacking needs no flush to the disk.
printf '#!/bin/sh\nexit 101\n' >"$system/usr/sbin/policy-rc.d"
chmod +x "$system/usr/sbin/policy-rc.d"
echo force-unsafe-io >"$system/etc/dpkg/dpkg.cfg.d/unsafe-io"
cp /etc/resolv.conf "$system/etc/resolv.conf"

step "What the trial itself needs is installed."
quietly inside apt-get update -q
quietly inside apt-get install -y -q --no-install-recommends cmake dbus-daemon g++ libgrilo-0.3-bin grilo-plugins-0.3 \
    make pkg-config

step "The packages are installed."
mkdir "$system/packages"
cp "$folder"/*.deb "$system/packages"
rm -f "$system"/packages/*-dbgsym_*
mapfile -t names < <(for package in "$system"/packages/*.deb; do dpkg-deb -f "$package" Package; done)
quietly inside sh -c 'apt-get install -y -q /packages/*.deb'
inside dpkg-query --listfiles "${names[@]}" | sort -u >"$system/var/tmp/installed"
rm -r "$system/packages"

step "They are used, on a network of their own."
"$here/../world/enter-world.sh" "$here/use-packages.sh" "$system"

step "They are removed."
quietly inside apt-get purge -y -q "${names[@]}"
left=$(while read -r path; do
    if { [ -e "$system$path" ] || [ -L "$system$path" ]; } && ! inside dpkg-query --search "$path" >/dev/null 2>&1; then
        echo "$path"
    fi
done <"$system/var/tmp/installed" | grep -vx /. || true)
if [ -n "$left" ]; then
    printf 'Left after the removal:\n%s\n' "$left" >&2
    exit 1
fi
step "Nothing is left of them."
