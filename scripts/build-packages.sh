#!/usr/bin/env bash
# Builds the Debian packages of the tree as it is (what git ignores is left out) and lets lintian judge them.
#   build-packages.sh FOLDER      FOLDER then holds them and nothing else
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=$1
# Always the same place, so that a compiler cache knows it again.
work=$folder.work
rm -rf "$work"
mkdir -p "$work"
trap 'rm -rf "$work"' EXIT

version=$(dpkg-parsechangelog -l "$root/debian/changelog" -S Version)
grep -q "^project(orka VERSION $version " "$root/CMakeLists.txt" || {
    echo "debian/changelog says $version, CMakeLists.txt another version. Make them the same." >&2
    exit 1
}
mkdir "$work/source"
(cd "$root" && git ls-files -z --cached --others --exclude-standard |
    tar --create --null --files-from=- --ignore-failed-read) | tar --extract --directory="$work/source"
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    # Debug information names folders: what was compiled elsewhere is not the same to the byte.
    unset CCACHE_BASEDIR CCACHE_NOHASHDIR
fi
export DEB_BUILD_OPTIONS="${DEB_BUILD_OPTIONS:-} terse"
if ! (cd "$work/source" && dpkg-buildpackage --build=binary --no-sign) >"$work/log" 2>&1; then
    tail -n 60 "$work/log" >&2
    exit 1
fi
rm -rf "$folder"
mkdir -p "$folder"
mv "$work"/*.deb "$work"/*.changes "$work"/*.buildinfo "$folder"
lintian --allow-root --fail-on error,warning --display-info "$folder"/*.changes
ls -1 "$folder"/*.deb
