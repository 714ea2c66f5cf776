#!/usr/bin/env bash
# What the page's program answers: documents like --json's, every line of its documentation, and refusals.
set -euo pipefail
. "$WORLD_ROOT/tests/e2e/checks.sh"

# serve ARGUMENTS…: starts it; $URL is its address, $serve_pid its process.
serve() {
    : >"$WORLD_DIR/serve.out" # what the last one said is none of this one's
    orka serve "$@" >>"$WORLD_DIR/serve.out" 2>"$WORLD_DIR/serve.err" &
    serve_pid=$!
    within 20 grep -q ^http "$WORLD_DIR/serve.out" || say_and_fail "It did not start: $(cat "$WORLD_DIR/serve.err")"
    URL=$(grep -m 1 ^http "$WORLD_DIR/serve.out")
    URL=${URL%/}
}
status_of() {
    curl -sk -o "$WORLD_DIR/body" -w '%{http_code}' "$@"
}
rows_of() {
    curl -fsSk -G "$URL/api/rows" --data-urlencode "path=$1" "${@:2}"
}
has_server() {
    rows_of upnp: | jq -e '.rowsCount == 1' >/dev/null
}

export HOME=$WORLD_DIR
furnish "Test Music"
serve
within 10 has_server
SERVER=$(rows_of upnp: | jq -r '.rows[0].path')
rows_of "$(orka --json ls "Test Music/Music/Album/Glass Rivers" | jq -r '.path')" >"$WORLD_DIR/album"
TRACK=$(jq -r '.rows[0].mediaData.resources[0].uri' "$WORLD_DIR/album")
ART=$(jq -r '.rows[0].icon | sub(".*/proxy/"; "") | @base64d' "$WORLD_DIR/album")
OUT=$WORLD_DIR/out
export URL SERVER TRACK ART OUT

check "rows as --json prints them" "$(orka --json rows "$SERVER" --last 9)" "$(rows_of "$SERVER" -d last=9)"
check "one node" "$(orka --json data "$SERVER" --roles title,type)" \
    "$(curl -fsS -G "$URL/api/data" --data-urlencode "path=$SERVER" -d roles=title,type)"
while read -r line; do
    bash -c "$line" >"$WORLD_DIR/stdout" 2>&1 || check "documented: $line" "" "$(cat "$WORLD_DIR/stdout")"
done < <(sed -n 's/^    \(curl .*\)/\1/p' "$WORLD_ROOT/docs/web-api.md")
check "a track's bytes" "$(curl -fsS "$TRACK" -r 100-1099 | sha1sum)" \
    "$(curl -fsS "$URL/media/$(printf %s "$TRACK" | base64 -w 0)" -r 100-1099 | sha1sum)"
tag=$(curl -fsSD - -o /dev/null "$URL/style.css" | sed -n 's/\r$//; s/^ETag: //p')
check "what a client has is not sent again" 304 "$(status_of -H "If-None-Match: $tag" "$URL/style.css")"
check "one connection for two requests" "1 0" \
    "$(curl -fsS -w '%{num_connects}\n' -o /dev/null "$URL/" -o /dev/null "$URL/style.css" | paste -sd ' ')"
check "for who can read it, compressed" "$(rows_of "$SERVER")" "$(rows_of "$SERVER" --compressed)"

head -c 9000000 /dev/zero >"$WORLD_DIR/nine"
# refused STATUS CURL-ARGUMENTS…
refused() { # or not, with 200
    check "refused: $(printf '%.90s' "${*:2}")" "$1" "$(status_of "${@:2}")"
}
refused 421 -H "Host: evil.example" "$URL/"
refused 403 -H "Origin: http://evil.example" "$URL/api/rows?path=upnp:"
refused 403 -H "Sec-Fetch-Site: cross-site" "$URL/api/rows?path=upnp:"
refused 415 -d '""' "$URL/api/set?path=upnp:"
refused 404 --path-as-is "$URL/../../etc/passwd"
refused 400 --path-as-is "$URL/%2e%2e%2fCMakeLists.txt"
refused 400 "$URL/api/rows?path=upnp:&first=0&last=1000000"
refused 414 "$URL/api/rows?path=upnp:$(printf 'x%.0s' $(seq 9000))"
refused 413 -H "Content-Type: application/json" --data-binary "@$WORLD_DIR/nine" "$URL/api/set?path=upnp:"
refused 411 -H "Content-Type: application/json" -H "Transfer-Encoding: chunked" -d '""' "$URL/api/set?path=upnp:"
refused 502 "$URL/api/rows?path=upnp:/nix"
refused 400 -H "Content-Type: application/json" -d '{"items":[{"title":"B"}]}' "$URL/api/queue?format=m3u8"

refused 404 "$URL/proxy/$(printf %s http://10.77.0.2:8200/icons/lrg.png | base64 -w 0)"
refused 404 "$URL/proxy/$(printf %s file:///etc/passwd | base64 -w 0)"
refused 400 "$URL/proxy/$(printf %s "$ART" | base64 -w 0)?w=99999"
refused 404 "$URL/media/$(printf %s "$ART" | base64 -w 0)"

for file in "$XDG_CACHE_HOME"/orka/art/*; do
    echo damaged >"$file"
done
check "a damaged cache is an empty one" image/jpeg \
    "$(curl -fsS "$URL/proxy/$(printf %s "$ART" | base64 -w 0)?w=160" -o "$OUT" -w '%{content_type}')"

# Idle clients take nobody's place.
exec 7<"$WORLD_DIR/serve.out"
for ((i = 0; i < 1000; ++i)); do
    exec {idle}<>"/dev/tcp/127.0.0.1/${URL##*:}"
done
check "a thousand idle connections" 200 "$(status_of -m 30 "$URL/")"

# The media service is started again where it ends, and the page's program goes on.
stop_bridge() {
    kill "$bridge_pid"
    wait "$bridge_pid" 2>/dev/null || true
}
stop_bridge
lists_again() {
    rows_of "$SERVER" -m 10 2>/dev/null | jq -e '.rowsCount > 0' >/dev/null
}
within 20 lists_again || check "the media service is back" 1 0
kill "$serve_pid"
wait "$serve_pid" || true

# From other machines: with the token alone.
serve --listen 10.77.0.1
token=${URL##*#token=}
URL=${URL%/#*}
check "over HTTPS" https "${URL%%:*}"
refused 200 "$URL/"
refused 401 "$URL/api/rows?path=upnp:"
refused 401 "$URL/media/eA=="
refused 200 -H "Authorization: Bearer $token" "$URL/api/rows?path=upnp:"
refused 403 -H "Authorization: Bearer $token" -H "Origin: http://10.77.0.1" "$URL/api/rows?path=upnp:"
session() {
    status_of -c "$WORLD_DIR/cookies" -H "Content-Type: application/json" -d "{\"token\":\"$1\"}" "$URL/api/session"
}
check "the right token" 200 "$(session "$token")"
refused 200 -b "$WORLD_DIR/cookies" "$URL/api/rows?path=upnp:"
refused 401 -b "orka-token-${URL##*:}=old" -b "orka-token-8=$token" "$URL/api/rows?path=upnp:"
refused 401 -H "Content-Type: application/json" -H "Expect: 100-continue" -d '""' "$URL/api/set?path=upnp:"
kill -9 "${server_pid[nas]}"
wait "${server_pid[nas]}" 2>/dev/null || true
refused 502 -b "$WORLD_DIR/cookies" "$URL/api/rows?path=$SERVER"
check "an error says what is the matter" '"Test Music" could not be read' \
    "$(jq -r .error.message "$WORLD_DIR/body" | grep -o '"Test Music" could not be read')"
check "wrong tokens, wherever, and then none" "401 401 401 401 401 401 401 401 401 429 429" \
    "$(for i in $(seq 5); do session "wrong$i"; echo; done | xargs) $(for i in $(seq 6); do
        status_of -H "Authorization: Bearer Wrong$i" "$URL/api/rows?path=upnp:"; echo; done | xargs)"
world_host other 8
check "others have their own tries" 200 \
    "$(on_host other curl -sk -o "$OUT" -w '%{http_code}' -H "Authorization: Bearer $token" "$URL/api/rows?path=upnp:")"
kill "$serve_pid"
wait "$serve_pid" || true
echo damaged >"$(echo "$XDG_CONFIG_HOME"/orka/page-*.pem)"
serve --listen 10.77.0.1
check "a certificate of our own that was damaged is made anew" 200 "$(status_of "${URL%/#*}/")"
finish
