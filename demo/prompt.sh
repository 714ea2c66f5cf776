#!/usr/bin/env bash
# The demo's world with a prompt, or one command in it. Run by enter-world.sh.
set -euo pipefail
# shellcheck source=demo/furnish.sh
. "$WORLD_ROOT/demo/furnish.sh"

furnish "Demo Music"
if [ $# -gt 0 ]; then
    "$@"
else
    prompt
fi
