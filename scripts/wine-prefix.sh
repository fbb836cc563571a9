#!/usr/bin/env bash
# Makes the build folder's Wine prefix if it is missing, and warms it up: one persistent server, its services started
# away from our pipes, so that no later command waits for them. "stop" ends that server.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${KELINS_WINEPREFIX:-$root/build/wineprefix}
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=d" LANG=C.UTF-8
unset LC_ALL DISPLAY

server() { # Debian keeps wineserver out of PATH
    local program
    program=$(command -v wineserver || ls /usr/lib/wine/wineserver64 /usr/lib/wine/wineserver 2>/dev/null | head -n 1)
    "$program" "$@"
}

if [ "${1:-}" = stop ]; then
    server -k 2>/dev/null || true
    server -w
    exit 0
fi

mkdir -p "$(dirname "$WINEPREFIX")"
if [ ! -f "$WINEPREFIX/.kelins-ready" ]; then
    rm -rf "$WINEPREFIX"
    wine wineboot --init </dev/null >/dev/null 2>&1
    wine rundll32 user32.dll,GetDesktopWindow </dev/null >/dev/null 2>&1 # the first desktop takes longest to come up
    server -w                                                             # until it has closed again
    touch "$WINEPREFIX/.kelins-ready"
fi
server -p >/dev/null 2>&1 || true # already there: fine
wine cmd /c exit </dev/null >/dev/null 2>&1
