#!/usr/bin/env bash
# The media servers that can be started in the world; sourced by world.sh, which declares the tables.
# shellcheck disable=SC2004,SC2034,SC2154

# server_folder NAME: where the server of a machine keeps its things.
server_folder() {
    mkdir -p "$WORLD_DIR/$1"
    printf '%s\n' "$WORLD_DIR/$1"
}

start_minidlna() {
    local name=$1 media=$2 title=$3 folder
    folder=$(server_folder "$name")
    cat >"$folder/minidlna.conf" <<CONF
media_dir=$media
friendly_name=$title
db_dir=$folder
log_dir=$folder
network_interface=eth0
port=8200
inotify=no
album_art_names=cover.jpg
uuid=4d696e69-444c-4e41-9d41-$(printf %s "$name" | cksum | awk '{ printf "%012x", $1 }')
CONF
    server_kind[$name]=minidlna
    serve_on_host "$name" minidlnad -S -f "$folder/minidlna.conf" -P "$folder/pid"
}

# http HOST PORT REQUEST: the answer of a web server to a request, headers included.
http() {
    exec 9<>"/dev/tcp/$1/$2" || return
    printf '%s' "$3" >&9
    timeout 10 cat <&9
    exec 9>&-
}

http_get() {
    http "$1" "$2" "GET $3 HTTP/1.0"$'\r\n'"Host: $1"$'\r\n\r\n'
}

# browse HOST PORT PATH OBJECT: a ContentDirectory listing as it travels, DIDL-Lite escaped.
browse() {
    local service=urn:schemas-upnp-org:service:ContentDirectory:1 line=$'\r\n' body
    body="<?xml version=\"1.0\"?><s:Envelope xmlns:s=\"http://schemas.xmlsoap.org/soap/envelope/\"
s:encodingStyle=\"http://schemas.xmlsoap.org/soap/encoding/\"><s:Body><u:Browse xmlns:u=\"$service\">
<ObjectID>$4</ObjectID><BrowseFlag>BrowseDirectChildren</BrowseFlag><Filter>*</Filter><StartingIndex>0</StartingIndex>
<RequestedCount>0</RequestedCount><SortCriteria></SortCriteria></u:Browse></s:Body></s:Envelope>"
    http "$1" "$2" "POST $3 HTTP/1.0${line}Host: $1:$2${line}Content-Type: text/xml; charset=\"utf-8\"${line}\
SOAPAction: \"$service#Browse\"${line}Content-Length: ${#body}$line$line$body"
}

# minidlna_has_indexed NAME COUNT: by its status page.
minidlna_has_indexed() {
    local page
    page=$(http_get "${host_address[$1]}" 8200 / 2>/dev/null) || return
    [[ $page != *"scan in progress"* && $page =~ "Audio files</td><td>"([0-9]+) ]] && ((BASH_REMATCH[1] >= $2))
}

xml_text() {
    sed 's/&/\&amp;/g; s/</\&lt;/g' <<<"$1"
}

start_gerbera() {
    local name=$1 media=$2 title=$3 folder
    folder=$(server_folder "$name")
    cat >"$folder/config.xml" <<CONF
<?xml version="1.0" encoding="UTF-8"?>
<config version="2" xmlns="http://mediatomb.cc/config/2">
  <server>
    <ui enabled="no"/>
    <name>$(xml_text "$title")</name>
    <udn>uuid:67657262-6572-4121-9d41-$(printf %s "$name" | cksum | awk '{ printf "%012x", $1 }')</udn>
    <home>$folder</home>
    <webroot>/usr/share/gerbera/web</webroot>
    <storage>
      <sqlite3 enabled="yes"><database-file>gerbera.db</database-file></sqlite3>
    </storage>
  </server>
  <import hidden-files="no">
    <autoscan use-inotify="no">
      <directory location="$(xml_text "$media")" mode="timed" interval="3600" level="full" recursive="yes" hidden-files="no"/>
    </autoscan>
    <scripting script-charset="UTF-8">
      <common-script>/usr/share/gerbera/js/common.js</common-script>
      <virtual-layout type="builtin"/>
    </scripting>
    <mappings>
      <extension-mimetype ignore-unknown="yes">
        <map from="mp3" to="audio/mpeg"/>
        <map from="flac" to="audio/x-flac"/>
      </extension-mimetype>
      <mimetype-upnpclass>
        <map from="audio/*" to="object.item.audioItem.musicTrack"/>
      </mimetype-upnpclass>
      <mimetype-contenttype>
        <treat mimetype="audio/mpeg" as="mp3"/>
        <treat mimetype="audio/x-flac" as="flac"/>
      </mimetype-contenttype>
    </mappings>
  </import>
</config>
CONF
    server_kind[$name]=gerbera
    serve_on_host "$name" gerbera --config "$folder/config.xml" --interface eth0 --port 49152
}

# Rygel wants a bus and a home of its own; its configuration is only read from there.
start_rygel() {
    local name=$1 media=$2 title=$3 folder
    folder=$(server_folder "$name")
    cat >"$folder/rygel.conf" <<CONF
[general]
ipv6=false
interface=eth0
port=0
enable-transcoding=false
media-engine=librygel-media-engine-gst.so
log-level=*:4
[MediaExport]
enabled=true
title=$title
uris=$media
extract-metadata=true
monitor-changes=false
virtual-folders=true
[Tracker3]
enabled=false
[Playbin]
enabled=false
CONF
    start_bus_at "$folder/bus"
    server_kind[$name]=rygel
    serve_on_host "$name" env DBUS_SESSION_BUS_ADDRESS="unix:path=$folder/bus" HOME="$folder" \
        XDG_CONFIG_HOME="$folder" XDG_CACHE_HOME="$folder/cache" rygel
}

# rygel_has_indexed NAME COUNT: it tells in its log when all is done.
rygel_has_indexed() {
    grep -q "Harvesting of .* done" "$WORLD_DIR/$1.log"
}

# gerbera_container HOST OBJECT TITLE: id and child count of a container, by its title.
gerbera_container() {
    browse "$1" 49152 /upnp/control/cds "$2" 2>/dev/null | tr -d '\n' | sed 's/&lt;container/\n&/g' |
        grep -F "title&gt;$3&lt;" | sed -n 's/.* id=&quot;\([0-9]*\)&quot;.*childCount=&quot;\([0-9]*\)&quot;.*/\1 \2/p'
}

# gerbera_has_indexed NAME COUNT: its database is locked while it runs, so its own listing tells.
gerbera_has_indexed() {
    local host=${host_address[$1]} audio all
    audio=$(gerbera_container "$host" 0 Audio) || return
    all=$(gerbera_container "$host" "${audio% *}" "All Audio") || return
    [ -n "$all" ] && ((${all#* } >= $2))
}

# wait_indexed NAME COUNT
wait_indexed() {
    within 60 "${server_kind[$1]}_has_indexed" "$1" "$2" || {
        tail -n 20 "$WORLD_DIR/$1.log" "$WORLD_DIR/$1"/*.log >&2
        say_and_fail "The server on $1 did not index $2 tracks within a minute."
    }
}
