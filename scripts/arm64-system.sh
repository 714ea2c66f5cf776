#!/usr/bin/env bash
# What a device's vendor gives its builders: a folder with the headers and libraries of an arm64 system, here Debian's
# own packages. Nothing is installed on this machine, and no root is needed.
#   arm64-system.sh FOLDER      made once; the machine's package sources must have arm64, as Debian's do
set -euo pipefail

folder=$1
[ ! -e "$folder" ] || exit 0
work=$folder.new
rm -rf "$work"
mkdir -p "$work/lists/partial" "$work/archives/partial" "$work/system"
: >"$work/installed"
cat >"$work/apt.conf" <<CONF
APT::Architecture "arm64";
APT::Architectures "arm64";
APT::Install-Recommends "false";
Dir::State::Lists "$work/lists";
Dir::State::status "$work/installed";
Dir::Cache::Archives "$work/archives";
Dir::Cache::pkgcache "";
Dir::Cache::srcpkgcache "";
Debug::NoLocking "true";
CONF
export APT_CONFIG=$work/apt.conf
apt-get update -q >&2
apt-get install -q -y --download-only libc6-dev liblog4cplus-dev qtbase5-dev >&2
for package in "$work"/archives/*.deb; do
    dpkg-deb --fsys-tarfile "$package" | tar --extract --directory="$work/system" --exclude=./usr/share --exclude=./etc --exclude=./var
done
# Qt's CMake package runs moc from here, which has to be the building machine's.
rm -rf "$work/system/usr/lib/qt5/bin"
ln -s /usr/lib/qt5/bin "$work/system/usr/lib/qt5/bin"
# log4cplus's names libraries by their places on the machine that made it.
sed -i -E 's|([";])/usr/lib/|\1${CMAKE_SYSROOT}/usr/lib/|g' \
    "$work"/system/usr/lib/aarch64-linux-gnu/cmake/log4cplus/log4cplusTargets*.cmake
mv "$work/system" "$folder"
rm -rf "$work"
