#!/usr/bin/env bash
# make_library FOLDER: a small tagged music library; sourced after world.sh by the demo and the end-to-end tests.
# Three short clips are encoded once; every file is a copy of one of them with tags of its own.

# One line a track: folder and file, seconds, artist, album, year, genre, number, title.
library_tracks() {
    cat <<'TRACKS'
Ada Quartz/Glass Rivers/01.mp3|2|Ada Quartz|Glass Rivers|2001|Jazz|1|Source
Ada Quartz/Glass Rivers/02.mp3|3|Ada Quartz|Glass Rivers|2001|Jazz|2|Rapids
Ada Quartz/Glass Rivers/03.mp3|5|Ada Quartz|Glass Rivers|2001|Jazz|3|Delta
Ada Quartz/Nightfall/01.flac|3|Ada Quartz|Nightfall|2008|Jazz|1|Dusk
Ada Quartz/Nightfall/02.flac|2|Ada Quartz|Nightfall|2008|Jazz|2|Lamps
Die Überläufer/Grüße aus Köln/01.mp3|2|Die Überläufer|Grüße aus Köln|1999|Pop|1|Größenwahn
Die Überläufer/Grüße aus Köln/02.mp3|3|Die Überläufer|Grüße aus Köln|1999|Pop|2|Äpfel & Öl
林檎楽団/夜の海/01.mp3|3|林檎楽団|夜の海|2015|Rock|1|夜の海
林檎楽団/夜の海/02.mp3|2|林檎楽団|夜の海|2015|Rock|2|灯台
Odd Signs/Punctuation/01.mp3|2|Odd Signs|Punctuation|2020|Pop|1|Say "Hello"
Odd Signs/Punctuation/02.mp3|2|Odd Signs|Punctuation|2020|Pop|2|back\slash
Odd Signs/Punctuation/03.mp3|2|Odd Signs|Punctuation|2020|Pop|3|Rock & Roll <live>
Odd Signs/Punctuation/04.mp3|2|Odd Signs|Punctuation|2020|Pop|4|$HOME, sweet $(home)
Odd Signs/Punctuation/05.mp3|2|Odd Signs|Punctuation|2020|Pop|5|100% 'quoted' / slashed
TRACKS
    local number
    for number in $(seq 1 25); do
        printf 'Long List/Twenty-Five/%02d.mp3|2|Long List|Twenty-Five|2024|Pop|%d|Piece %02d\n' \
            "$number" "$number" "$number"
    done
}

# encode_clips FOLDER: 2.mp3, 3.mp3, 5.mp3, 2.flac and 3.flac, named after their seconds.
encode_clips() {
    local seconds outputs=()
    for seconds in 2 3 5; do
        outputs+=(-t "$seconds" -b:a 64k "$1/$seconds.mp3")
    done
    for seconds in 2 3; do
        outputs+=(-t "$seconds" "$1/$seconds.flac")
    done
    ffmpeg -nostdin -v error -f lavfi -i sine=frequency=330:sample_rate=44100:duration=5 "${outputs[@]}"
}

# make_cover FILE COLOUR
make_cover() {
    ffmpeg -nostdin -v error -f lavfi -i "color=c=$2:s=320x320" -frames:v 1 -y "$1"
}

make_library() {
    local library=$1 clips=$1/.clips
    mkdir -p "$clips"
    encode_clips "$clips"
    local inputs=(2.mp3 3.mp3 5.mp3 2.flac 3.flac) arguments=() outputs=() input
    local file seconds artist album year genre number title
    for input in "${inputs[@]}"; do
        arguments+=(-i "$clips/$input")
    done
    while IFS='|' read -r file seconds artist album year genre number title; do
        mkdir -p "$library/${file%/*}"
        case $seconds.${file##*.} in
        2.mp3) input=0 ;; 3.mp3) input=1 ;; 5.mp3) input=2 ;; 2.flac) input=3 ;; *) input=4 ;;
        esac
        outputs+=(-map "$input:a" -c copy -map_metadata -1 -metadata "artist=$artist" -metadata "album=$album"
            -metadata "date=$year" -metadata "genre=$genre" -metadata "track=$number" -metadata "title=$title"
            "$library/$file")
    done < <(library_tracks)
    ffmpeg -nostdin -v error "${arguments[@]}" "${outputs[@]}"
    rm -r "$clips"
    make_cover "$library/Ada Quartz/Glass Rivers/cover.jpg" teal
    make_cover "$library/Ada Quartz/Nightfall/cover.jpg" navy
    make_cover "$library/林檎楽団/夜の海/cover.jpg" maroon
}

# library_size: how many tracks make_library makes.
library_size() {
    library_tracks | wc -l
}

# furnish TITLE: a machine "nas" whose MiniDLNA serves that library under this title, the message bus and the media
# service.
furnish() {
    world_lan
    world_host nas 2
    make_library "$WORLD_DIR/music"
    start_minidlna nas "$WORLD_DIR/music" "$1"
    wait_indexed nas "$(library_size)"
    start_bus
    start_bridge
}
