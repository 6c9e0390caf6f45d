#!/usr/bin/env bash
# Makes a small folder of tagged music in five formats: make-music.sh FOLDER
# The same notes and tags every time. Existing files are kept.
set -euo pipefail

if (($# != 1)) || [[ $1 == -* ]]; then
    echo "usage: make-music.sh FOLDER" >&2
    exit 2
fi
folder=$1
if ! command -v ffmpeg >/dev/null; then
    echo "make-music: ffmpeg is missing; scripts/install-packages.sh run installs it" >&2
    exit 1
fi

# A chord of three tones, struck softly one after the other and fading: track FILE SECONDS HZ HZ HZ TAG=VALUE...
track() {
    local file=$folder/$1 seconds=$2 first=$3 second=$4 third=$5
    shift 5
    if [[ -e $file ]]; then return; fi
    mkdir -p "$(dirname "$file")"
    local tags=() tag
    for tag in "$@"; do tags+=(-metadata "$tag"); done
    # Ogg and Opus keep their tags with the stream, the others with the file.
    if [[ $file == *.ogg || $file == *.opus ]]; then tags=("${tags[@]/#-metadata/-metadata:s:a:0}"); fi
    local envelope="min(1,t*20)*exp(-t*1.1)"
    local strike="between(t,0.3,99)*min(1,max(0,t-0.3)*20)*exp(-(t-0.3)*1.1)"
    local last="between(t,0.6,99)*min(1,max(0,t-0.6)*20)*exp(-(t-0.6)*1.1)"
    local tones="0.22*(sin(2*PI*$first*t)*$envelope+sin(2*PI*$second*t)*$strike+sin(2*PI*$third*t)*$last)"
    local partial=${file%.*}.partial.${file##*.}
    if ! ffmpeg -v error -nostdin -y -f lavfi -i "aevalsrc=exprs='$tones':sample_rate=44100:duration=$seconds" \
        -ac 2 -fflags +bitexact -flags:a +bitexact "${tags[@]}" "$partial"; then
        rm -f "$partial"
        echo "make-music: cannot make $file" >&2
        exit 1
    fi
    mv "$partial" "$file"
}

album() { common=("artist=$1" "album_artist=$1" "album=$2" "date=$3" "genre=$4"); }

album "The Paper Lanterns" "Harbour Lights" 2011 "Ambient"
track "harbour lights/01 first ferry.flac" 4 261.63 329.63 392.00 "${common[@]}" "track=1" "title=First Ferry"
track "harbour lights/02 low water.mp3" 3 220.00 261.63 329.63 "${common[@]}" "track=2" "title=Low Water"
track "harbour lights/03 gulls over the roof.ogg" 5 293.66 349.23 440.00 "${common[@]}" "track=3" "title=Gulls over the Roof"
track "harbour lights/04 home before rain.m4a" 3 196.00 246.94 293.66 "${common[@]}" "track=4" "title=Home before Rain"

album "Ines Valdåker" "Café Étoile" 2019 "Jazz"
track "café étoile/01 opening hour.opus" 4 311.13 392.00 466.16 "${common[@]}" "track=1" "title=Opening Hour"
track "café étoile/02 the other umbrella.flac" 2 277.18 349.23 415.30 "${common[@]}" "track=2" "title=The Other Umbrella"
track "café étoile/03 trois cuillères.mp3" 5 233.08 293.66 349.23 "${common[@]}" "track=3" "title=Trois cuillères"
track "café étoile/04 last tram.ogg" 3 246.94 311.13 369.99 "${common[@]}" "track=4" "title=Last Tram"
