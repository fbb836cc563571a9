#!/usr/bin/env bash
# Runs a Windows program in the prefix of this checkout's build folder; never in the user's own.
# KELINS_WINEPREFIX names another prefix, for tests that change theirs; KELINS_PROGRAMS a folder: a program of the same
# name that lies there runs instead.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${KELINS_WINEPREFIX:-$root/build/wineprefix}
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=d"
export LANG=C.UTF-8
unset LC_ALL
if [ -n "${KELINS_PROGRAMS:-}" ] && [ -f "$KELINS_PROGRAMS/$(basename "${1:-}")" ]; then
    set -- "$KELINS_PROGRAMS/$(basename "$1")" "${@:2}"
fi
exec wine "$@"
