#!/usr/bin/env bash
# What the end-to-end tests are written with; sourced by them. A test goes on after a failed
# check, so that one run shows them all, and ends with "finish".

# shellcheck source=world/world.sh
. "$WORLD_ROOT/world/world.sh"
# shellcheck source=world/library.sh
. "$WORLD_ROOT/world/library.sh"
export PATH=$ORKA_BUILD/host:$PATH
failures=0

# check WHAT EXPECTED ACTUAL: both texts are the same, line by line.
check() {
    if [ "$2" = "$3" ]; then
        printf 'ok    %s\n' "$1"
    else
        failures=$((failures + 1))
        printf 'FAIL  %s ("<" is wanted, ">" is there)\n' "$1"
        diff <(printf '%s\n' "$2") <(printf '%s\n' "$3") | head -n 40 || true
    fi
}

# check_fails WHAT STATUS WORDS COMMAND…: it ends with that status and says these words (a pattern) on
# standard error, in one message that is no crash.
check_fails() {
    local what=$1 wanted=$2 words=$3 status=0 said
    shift 3
    said=$(timeout 60 "$@" 2>&1 >"$WORLD_DIR/stdout") || status=$?
    check "$what: exit status" "$wanted" "$status"
    grep -qE "$words" <<<"$said" || check "$what: message" "$words" "$said"
}

# finish: ends the test.
finish() {
    if ((failures)); then
        printf '%d checks failed. The media service said:\n' "$failures"
        tail -n 20 "$WORLD_DIR/bridge.log" 2>/dev/null || true
        exit 1
    fi
    exit 0
}

# rows FILTER ORKA-ARGUMENTS…: what jq's FILTER makes of every row, tab-separated.
rows() {
    local filter=$1
    shift
    orka --json "$@" | jq -r "(.error.message // empty | \"error: \" + .), (.rows[]? | $filter | @tsv)"
}

# The same fields of a row and of a file's tags.
# shellcheck disable=SC2034,SC2016 # for who sources this
row_fields='[.title, .mediaData.metaData.artist, .mediaData.metaData.album, .mediaData.metaData.genre,
    (.mediaData.metaData.date / 1000 | todate | .[0:4]), (.mediaData.resources[0].duration // 0) / 1000]'
tag_fields='[.title, .artist, .album, .genre, .date, .seconds]'

# tags_of FOLDER…: the tags of every music file in it, as ffprobe reads them.
tags_of() {
    local file
    find "$@" -name '*.mp3' -o -name '*.flac' | sort | while read -r file; do
        ffprobe -v error -show_entries format=duration:format_tags -of json "$file"
    done | jq -r ".format | (.tags | with_entries(.key |= ascii_downcase)) + {seconds: (.duration | tonumber | floor)}
        | $tag_fields | @tsv"
}
