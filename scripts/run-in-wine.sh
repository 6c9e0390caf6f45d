#!/usr/bin/env bash
# Runs a Windows program under Wine: run-in-wine.sh PROGRAM.exe [ARGUMENT...]
#                                   run-in-wine.sh --stop
# The Windows folder is made at the first use, in build/wine or WINEPREFIX. The server runs until it is stopped, on the screen
# (DISPLAY) of the first program.
set -euo pipefail

if (($# == 0)) || [[ $1 == -h || $1 == --help ]]; then
    sed -n '2,5s/^# \{0,1\}//p' "$0"
    exit 2
fi
WINEPREFIX=${WINEPREFIX:-$(cd "$(dirname "$0")/.." && pwd)/build/wine}
export WINEPREFIX WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree=;mshtml="  # or Wine asks to download them

if [[ $1 == --stop ]]; then
    if [[ -e $WINEPREFIX ]]; then wineserver --kill || true; fi # none may be running
    exit 0
fi

# With a server running, a program starts in 0.03 s instead of 3 s. The server and its children must not hold our output open,
# or its reader waits forever. Of several scripts starting at once, one starts the server.
mkdir -p "$WINEPREFIX"
(
    flock 9
    if [[ ! -e $WINEPREFIX/.made ]]; then
        wineboot --init 9>&- >"$WINEPREFIX/made.log" 2>&1
        # Windows need no screen, and the system's resolution is not the one that programs unaware of it are shown: tests see both.
        wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f 9>&- >>"$WINEPREFIX/made.log" 2>&1
        wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d 192 /f 9>&- >>"$WINEPREFIX/made.log" 2>&1
        wineserver --wait
        touch "$WINEPREFIX/.made"
    fi
    if wineserver -p 9>&- >/dev/null 2>&1; then
        wine cmd /c exit 9>&- >/dev/null 2>&1
    fi
) 9>"$WINEPREFIX/.lock" </dev/null
exec wine "$@"
