#!/usr/bin/env bash
# The demo's world: one media server with a small library, a message bus and the media service on it.
# Sourced by tour.sh and prompt.sh, which enter-world.sh runs.

# shellcheck source=world/world.sh
. "$WORLD_ROOT/world/world.sh"
# shellcheck source=world/library.sh
. "$WORLD_ROOT/world/library.sh"

export PATH=$ORKA_BUILD/host:$ORKA_BUILD/services/mediaBridge:$PATH

# prompt: a shell in this world, until the person leaves it.
prompt() {
    cat >"$WORLD_DIR/bashrc" <<'RC'
[ ! -f ~/.bashrc ] || . ~/.bashrc
PS1='(orka world) \w \$ '
RC
    echo "You are on a network of its own with the server \"Demo Music\" on ${host_address[nas]}; try \"orka --help\"."
    echo "The library's files are in $WORLD_DIR/music. Everything here ends when you leave (exit or Ctrl-D)."
    bash --rcfile "$WORLD_DIR/bashrc" -i
}
