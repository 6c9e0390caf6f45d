#!/usr/bin/env bash
# Takes pictures of the component's dialogs under Wine at 96 and 192 dots per inch: windows-screenshots.sh [FOLDER]
# They go to FOLDER, by default build/screenshots. Needs Xvfb and ImageMagick; nothing appears on your own screen.
set -euo pipefail

if [[ ${1:-} == -h || ${1:-} == --help ]]; then
    sed -n '2,3s/^# \{0,1\}//p' "$0"
    exit 0
fi
mkdir -p "${1:-$(dirname "$0")/../build/screenshots}"
folder=$(cd "${1:-$(dirname "$0")/../build/screenshots}" && pwd)
cd "$(dirname "$0")/.."
scripts/build.sh windows show_dialog

# A separate Windows folder, because it stores screen and resolution.
export WINEPREFIX=$PWD/build/wine-screenshots
exec {display}< <(exec Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp 2>/dev/null)
xvfb=$!
cleanup() {
    kill "$xvfb"
    scripts/run-in-wine.sh --stop
}
trap cleanup EXIT
read -r -t 30 -u "$display" number
export DISPLAY=:$number

set_value() { scripts/run-in-wine.sh reg add "HKCU\\$1" /v "$2" /t "$3" /d "$4" /f >/dev/null 2>&1; }
set_value 'Software\Wine\Drivers' Graphics REG_SZ x11
for dpi in 96 192; do
    set_value 'Control Panel\Desktop' LogPixels REG_DWORD "$dpi"
    for dialog in full full-without-library short import; do
        # In a desktop of Wine's own, which draws the frames. The program prints the dialog's position once it is drawn, and
        # runs until its input ends.
        coproc shown { timeout 60 scripts/run-in-wine.sh explorer "/desktop=at$dpi,1280x1024" \
            build/windows/bin/show_dialog.exe "$dialog" 2>/dev/null; }
        program=$!
        input=${shown[1]}
        read -r -t 60 place <&"${shown[0]}"
        import -window root -crop "${place%$'\r'}" +repage "$folder/$dialog-$dpi.png"
        exec {input}>&-
        wait "$program"
        echo "$folder/$dialog-$dpi.png"
    done
done
