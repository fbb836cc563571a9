#!/usr/bin/env bash
# Runs a Windows program in the prefix of this checkout's build folder; never in the user's own.
# KELINS_WINEPREFIX names another prefix, for tests that change theirs.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${KELINS_WINEPREFIX:-$root/build/wineprefix}
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=d"
export LANG=C.UTF-8
unset LC_ALL
exec wine "$@"
