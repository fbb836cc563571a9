#!/usr/bin/env bash
# walkthroughs.sh BUILD_FOLDER: follows the walk-throughs of docs/ with the package of what was built there, each in an empty folder and
# in a Wine prefix that is thrown away.
set -euo pipefail
build=$1
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$build/walkthroughs
export KELINS_WINEPREFIX=$work/wineprefix WINEPREFIX=$work/wineprefix
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=d" LANG=C.UTF-8
unset LC_ALL DISPLAY

rm -rf "$work" && mkdir -p "$work"
cp -a "${KELINS_TEMPLATE:-$root/build/wineprefix}" "$WINEPREFIX"
trap '"$root/scripts/wine-prefix.sh" stop; rm -rf "$WINEPREFIX"' EXIT
"$root/scripts/wine-prefix.sh"
cmake --install "$build" --prefix "$work/sdk" >"$work/install.log"

status=0
for document in custom-action nsis; do
    mkdir "$work/$document"
    (cd "$work/$document" && "$root/tests/package/walkthrough.py" "$root/docs/$document.md" "$work/sdk") || status=1
done
exit $status
