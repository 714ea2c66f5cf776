#!/usr/bin/env bash
# Runs a command in a world of its own: a network, process numbers and a folder ($WORLD_DIR) that nobody
# outside sees and that end with the command, whichever way it ends. Needs root or user namespaces.
#   enter-world.sh COMMAND [ARGUMENTS…]
# Exit status: the command's; 3 ($WORLD_REFUSED_STATUS where it is set) where no such world may be made.
set -euo pipefail

export WORLD_ROOT WORLD_DIR
WORLD_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

user=()
if [ "$(id -u)" -ne 0 ]; then
    user=(unshare --user --map-root-user)
fi
# The kernel ends everything in here when the first process ends, and that one when this shell does.
world=("${user[@]}" setpriv --pdeathsig KILL
    unshare --net --mount --pid --fork --kill-child --mount-proc)

if ! refusal=$("${world[@]}" ip link add probe type bridge 2>&1); then
    echo "This machine lets you make no network of your own (${refusal:-no reason given})." \
        "Run it as root, or where user namespaces are allowed and the kernel has network bridges." >&2
    exit "${WORLD_REFUSED_STATUS:-3}"
fi

WORLD_DIR=$(mktemp -d "${TMPDIR:-/tmp}/orka-world.XXXXXX")
trap 'rmdir "$WORLD_DIR"' EXIT
# shellcheck disable=SC2016 # expanded inside
"${world[@]}" bash -c '
    trap "exit 130" INT
    trap "exit 143" TERM HUP
    mount -t tmpfs -o mode=755 world "$WORLD_DIR"
    "$@"' world "$@"
