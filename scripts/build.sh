#!/usr/bin/env bash
# Configures and builds one preset: build.sh PRESET [TARGET...]
# Shows one line of progress; everything else goes to build/PRESET/build.log. With nothing to do it takes about a second.
set -euo pipefail
cd "$(dirname "$0")/.."

if (($# == 0)); then
    echo "usage: build.sh PRESET [TARGET...]" >&2
    exit 2
fi
preset=$1
shift
folder=build/$preset
log=$folder/build.log
began=$SECONDS

fail() {
    tail -n 40 "$log" >&2
    echo "build: $1 failed; the whole log is $log" >&2
    exit 1
}

mkdir -p "$folder"
if [[ ! -e $folder/build.ninja ]]; then
    echo "Configuring $preset"
    cmake --preset "$preset" >"$log" 2>&1 || fail "configuring $preset"
fi

# On a terminal the line counts up in place; in a log it appears once, at the end.
progress() {
    local line shown=no
    while IFS= read -r line; do
        if [[ $line =~ ^([0-9]+/[0-9]+)\  && -t 1 ]]; then
            printf '\rBuilding %s: %s' "$preset" "${BASH_REMATCH[1]}"
            shown=yes
        fi
    done
    if [[ $shown == yes ]]; then printf '\r'; fi
}

if ! NINJA_STATUS='%f/%t ' ninja -C "$folder" -j "$(nproc)" "$@" 2>&1 | tee "$log" | progress; then
    if [[ -t 1 ]]; then echo; fi
    fail "building $preset"
fi
if grep -q 'no work to do' "$log"; then
    echo "Building $preset: nothing to do"
else
    echo "Building $preset: done in $((SECONDS - began)) s"
fi
