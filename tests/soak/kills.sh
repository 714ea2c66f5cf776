#!/usr/bin/env bash
# Kills, at random moments, the command, the bridge it leaves, their bus or the media server; after each the next command
# has to work, and at the end nothing may be left. In a world of its own:
#   world/enter-world.sh tests/soak/kills.sh [KILLS [SEED]]
set -euo pipefail
. "$WORLD_ROOT/world/world.sh"
. "$WORLD_ROOT/world/library.sh"
export PATH=$ORKA_BUILD/host:$PATH XDG_RUNTIME_DIR=$WORLD_DIR/run ORKA_LINGER=3
unset DBUS_SESSION_BUS_ADDRESS
kills=${1:-200}
RANDOM=${2:-1}
mkdir "$WORLD_DIR/music" "$XDG_RUNTIME_DIR"
world_lan
world_host nas 2
make_library "$WORLD_DIR/music"

serve() {
    start_minidlna nas "$WORLD_DIR/music" "Demo Music"
    wait_indexed nas "$(library_size)"
}
# victim NAME: its process.
victim() {
    case $1 in
    command) echo "$command" ;;
    bridge) pgrep -f 'orka-media-bridge --bus' || true ;;
    bus) pgrep -f 'dbus-daemon .*orka/bus' || true ;;
    server) echo "${server_pid[nas]}" ;;
    esac
}
serve
victims=(command command bridge bridge bus bus server)
declare -A killed=()
for ((i = 0; i < kills; ++i)); do
    orka --linger 3 ls "Demo Music" >/dev/null 2>&1 &
    command=$!
    name=${victims[RANDOM % ${#victims[@]}]}
    moment=400 # milliseconds; a command that finds the bridge there is soon over
    [ "$name" != command ] || moment=60
    sleep "0.$(printf %03d $((RANDOM % moment)))"
    # shellcheck disable=SC2046 # there may be none, or two that change places
    kill -KILL $(victim "$name") 2>/dev/null && killed[$name]=$((${killed[$name]:-0} + 1))
    wait "$command" 2>/dev/null || true
    if [ "$name" = server ]; then
        wait "${server_pid[nas]}" 2>/dev/null || true
        serve
    fi
    timeout 30 orka --wait 20 ls "Demo Music" >"$WORLD_DIR/printed" 2>&1 ||
        say_and_fail "After kill $i of $name the next command ends with $?: $(cat "$WORLD_DIR/printed")"
    ((RANDOM % 4)) || orka stop # the next begins with nothing
done
sleep 5
left=$(pgrep -af 'orka-media-bridge|orka/bus' || true)$(find "$XDG_RUNTIME_DIR" "$WORLD_DIR/cache" "$WORLD_DIR/config" \
    ! -type d ! -name lock ! -path '*/servers' 2>/dev/null || true)
[ -z "$left" ] || say_and_fail "Left behind: $left"
for name in "${!killed[@]}"; do printf '%s: %d kills\n' "$name" "${killed[$name]}"; done
echo "Nothing is left, and every next command worked."
