#!/usr/bin/env bash
# The demo's tour where there is no terminal, in the world that the tour makes itself.
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/checks.sh"

started=$SECONDS status=0
"$WORLD_ROOT/demo/tour.sh" </dev/null >"$WORLD_DIR/tour" 2>&1 || status=$?
check "the tour's exit status" 0 "$status"
for words in 'orka servers' 'Demo Music' 'Punctuation' 'Say "Hello"' 'back\slash' '夜の海'; do
    grep -qF "$words" "$WORLD_DIR/tour" || check "the tour shows" "$words" "$(cat "$WORLD_DIR/tour")"
done
check "in less than a minute" yes "$( ((SECONDS - started < 60)) && echo yes || echo "$((SECONDS - started)) s")"
finish
