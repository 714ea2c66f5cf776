#!/usr/bin/env bash
# instructions.sh PROGRAMS: counts what the client executes, with callgrind, and prints the figures as JSON
# lines. PROGRAMS is the folder with the measuring programs. Repeatable to a few parts in ten thousand.
set -euo pipefail
programs=$1

# counted WHAT [OBJECTS]: instructions of that piece of work, by objects.
counted() {
    local output total objects=${2:-1000}
    output=$(valgrind --tool=callgrind --instr-atstart=no --callgrind-out-file=/dev/null \
        "$programs/bench-instructions" "$1" "$objects" 2>&1) || {
        printf 'callgrind could not count "%s":\n%s\n' "$1" "$output" >&2
        exit 1
    }
    total=$(sed -n 's/.*Collected *: *//p' <<<"$output")
    echo $((total / objects))
}

figure() {
    printf '{"name": "%s", "value": %s}\n' "$1" "$2"
}

floor=$(counted floor)
rows=$(counted rows)
figure "floor instructions" "$floor"
figure "instructions a row" "$rows"
figure "one row instructions" "$(counted rows 1)"
figure "instructions over the floor" "$(awk "BEGIN { print $rows / $floor }")"
figure "mapping instructions" "$(counted mapping)"
figure "screen mapping instructions" "$(counted screen-mapping)"
figure "screen row instructions" "$(counted screen-rows)"
