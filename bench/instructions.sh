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

# figure NAME VALUE
figure() {
    printf '{"name": "%s", "value": %s}\n' "$1" "$2"
}

# count NAME WORK [OBJECTS]
count() {
    local value
    value=$(counted "${@:2}")
    figure "$1" "$value"
}

# over_floor NAME WORK OBJECTS: the work's count over the floor's for as many.
over_floor() {
    local value floor
    value=$(counted "$2" "$3")
    floor=$(counted floor "$3")
    figure "$1" "$(awk "BEGIN { print $value / $floor }")"
}

count "floor instructions" floor
count "instructions a row" rows
count "screen row instructions" screen-rows
count "one row instructions" rows 1
count "mapping instructions" mapping
count "screen mapping instructions" screen-mapping
count "map mapping instructions" map-mapping
count "playlist item instructions" items
count "path from service instructions" from-service 10000
count "path to service instructions" to-service 10000
count "call instructions" calls 100
count "first start instructions" starts 1
count "start instructions" starts 100
over_floor "instructions over the floor" rows 1000
over_floor "one row over the floor" rows 1
over_floor "one screen row over the floor" screen-rows 1
