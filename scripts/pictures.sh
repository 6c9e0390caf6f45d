#!/usr/bin/env bash
# Takes pictures of the window, light and dark, at 100 and at 200 percent: pictures.sh [FOLDER]
# They go to build/pictures unless another folder is given. Look at each of them.
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ ${1:-} == -* ]] || (($# > 1)); then
    echo "usage: pictures.sh [FOLDER]" >&2
    exit 2
fi
folder=$(realpath -m -- "${1:-build/pictures}")
scripts/install-packages.sh test
scripts/build.sh dev window_pictures quorvel
scripts/make-music.sh "$folder/music"
for look in light dark; do
    for scale in 1 2; do
        QT_SCALE_FACTOR=$scale xvfb-run --auto-servernum --server-args="-screen 0 $((1100 * scale))x$((700 * scale))x24" \
            build/dev/bin/window_pictures "$folder/music" "$folder" "$look"
    done
done
rm -rf "$folder"/*-profile
