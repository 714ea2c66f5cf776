#!/usr/bin/env bash
# run.sh PROGRAMS [--quick | --record]: measures everything and prints a table of target, measured, ratio, and
# pass or short; the figures are in PROGRAMS/figures.json afterwards. PROGRAMS is the bench folder of a build.
#   --quick    only the instruction counts, which hardly vary; status 1 when one is more than 10 % above recorded.json;
#               nothing on another system than that one's
#   --record   the same, and records them
# Status of the whole run: 0 also when a target is missed; the table tells.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
programs=$(cd "${1:?names the folder with the measuring programs}" && pwd)
lines=$(mktemp)
trap 'rm -f "$lines"' EXIT

# measure WHAT COMMAND…: its figures go to the others.
measure() {
    printf '%s: %s …\n' "$(date +%T)" "$1" >&2
    shift
    "$@" >>"$lines"
}

# Where no network may be made for a media server, this is left out and the table says so.
# in_world SCRIPT
in_world() {
    WORLD_REFUSED_STATUS=0 ORKA_BUILD=$(dirname "$programs") \
        "$here/../world/enter-world.sh" "$here/$1" "$programs"
}

print_table() {
    jq -rn --slurpfile targets "$here/targets.json" --slurpfile figures "$lines" '
        ($figures | map({(.name): .value}) | add) as $measured |
        def rounded: if . >= 100 then round else . * 100 | round / 100 end;
        ["what", "target", "measured", "of target", "", "unit"],
        ($targets[0][] | $measured[.name] as $value |
            if $value == null then [.what, .target, "-", "-", "not measured", .unit]
            else [.what, .target, ($value | rounded), (if .target == 0 then "-" else $value / .target | rounded end),
                (if $value <= .target then "pass" else "short" end), .unit] end) | @tsv' |
        column -t -s "$(printf '\t')"
}

save() {
    jq -s 'map({(.name): .value}) | add' "$lines"
}

# regressions: those counts that are over a tenth above what was recorded, or never were recorded, one a line.
regressions() {
    jq -rn --slurpfile recorded "$here/recorded.json" --slurpfile figures "$lines" '
        $recorded[0] as $before | $figures[] | select(.value > 1.1 * ($before[.name] // 0)) |
        "\(.name): \(.value), recorded: \($before[.name] // "nothing")"'
}

quick() {
    local worse system recorded
    system=$(sed -n 's/^PRETTY_NAME="\([^"(]*[^"( ]\).*/\1/p' /etc/os-release)
    recorded=$(jq -r .system "$here/recorded.json")
    if [ "$1" = --quick ] && [ "$system" != "$recorded" ]; then
        echo "Not compared: another compiler and library execute other counts, and those recorded are of $recorded." >&2
        return
    fi
    measure "instructions" "$here/instructions.sh" "$programs"
    save
    if [ "$1" = --record ]; then
        save | jq --arg system "$system" '{$system} + .' >"$here/recorded.json"
        return
    fi
    worse=$(regressions)
    [ -z "$worse" ] || {
        printf 'More than 10 %% over the recorded figures:\n%s\nIf that is meant, record them: ./run bench --record\n' \
            "$worse" >&2
        exit 1
    }
}

case ${2:-} in
--quick | --record) quick "$2" ;;
"")
    measure "rows and properties beside the floor" "$programs/bm_listing"
    measure "instructions" "$here/instructions.sh" "$programs"
    measure "start, turns, messages" "$programs/bm_worker"
    measure "memory" "$programs/bm_memory"
    measure "the whole chain" in_world chain.sh
    measure "commands" in_world commands.sh
    measure "the page" in_world page.sh
    measure "growth" "$programs/bm_growth" "$programs/growth.svg"
    measure "side by side" "$here/side-by-side.sh" "$programs"
    save >"$programs/figures.json"
    print_table
    printf '\nAll figures: %s; growth: %s; load now: %s\n' "$programs/figures.json" "$programs/growth.svg" \
        "$(cut -d ' ' -f 1-3 /proc/loadavg)"
    ;;
*)
    echo "bench/run.sh knows --quick and --record, not $2." >&2
    exit 2
    ;;
esac
