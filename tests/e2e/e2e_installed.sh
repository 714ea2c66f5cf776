#!/usr/bin/env bash
# What was installed for one place and moved to another still finds its parts: without a session bus the program needs
# its bus configuration, its bridge and its plug-in. Its manual pages tell of what it takes, and of nothing else.
set -euo pipefail

DESTDIR=$WORLD_DIR/stage cmake --install "$ORKA_BUILD" --prefix /opt/orka >"$WORLD_DIR/install.log"
mv "$WORLD_DIR/stage/opt/orka" "$WORLD_DIR/moved"
cd "$WORLD_DIR/moved"
unset DBUS_SESSION_BUS_ADDRESS
export XDG_RUNTIME_DIR=$WORLD_DIR XDG_CONFIG_HOME=$WORLD_DIR
bin/orka --log-config share/doc/orka/examples/log.properties --wait 0 doctor | tee doctor.txt
grep -q '^ok .*plug-in: loaded' doctor.txt
grep -q 'DEBUG\|INFO' orka.log
ldd "$(find . -name libplayListHelper.so)" | grep "liborka_api.* => $WORLD_DIR/moved"

# names: the long options in a text, a manual page's too.
names() {
    sed 's/\\-/-/g' | grep -oE -- '--[a-z][a-z-]*' | sort -u
}

# compare HELP MANUAL-PAGE: every option is in the page, and the page names nothing that the help text doesn't.
compare() {
    comm -23 <(sed -n 's/^  \(-[^ ]*\).*/\1/p' <<<"$1" | names) <(names <"$2")
    comm -13 <(names <<<"$1") <(names <"$2")
}

commands=$(bin/orka --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
help=$(for command in '' $commands; do bin/orka ${command:+"$command"} --help; done)
stale=$(compare "$help" share/man/man1/orka.1
    compare "$(bin/orka-media-bridge --help)" share/man/man1/orka-media-bridge.1
    for command in $commands; do grep -q "^\.BI\?R\? $command\b" share/man/man1/orka.1 || echo "$command"; done)
[ -z "$stale" ] || { printf 'Help texts and manual pages differ in:\n%s\n' "$stale" && exit 1; }
