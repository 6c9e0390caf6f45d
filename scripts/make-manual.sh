#!/usr/bin/env bash
# Writes the manual pages: make-manual.sh PROGRAM LOWDOWN FOLDER. Those of the commands come from the program, those of the two
# languages from docs/.
set -euo pipefail
if (($# != 3)); then
    sed -n '2,3s/^# //p' "$0" >&2
    exit 2
fi
program=$1
lowdown=$2
folder=$3
docs=$(dirname "$0")/../docs

mkdir -p "$folder/man1" "$folder/man7"
"$program" manual >"$folder/man1/ostrevan.1"
"$program" complete -- '' | while IFS=$'\t' read -r command _; do
    "$program" manual "$command" >"$folder/man1/ostrevan-$command.1"
done
# language PAGE DOCUMENT: the first heading says what it is about.
language() {
    {
        printf '# NAME\n\n%s - %s\n\n# DESCRIPTION\n\n' "$1" "$(sed -n '1s/^#* *//p' "$2")"
        sed -e 1d -e 's/\[\([^]]*\)\]([^)]*)/\1/g' "$2"  # links lead nowhere here
    } | "$lowdown" -s -Tman -Mtitle="${1^^}" -Msection=7 -Mvolume="ostrevan" -Msource="ostrevan" -o "$folder/man7/$1.7"
}
language ostrevan-query "$docs/query-language.md"
language ostrevan-title-formatting "$docs/title-formatting.md"
