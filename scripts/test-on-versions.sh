#!/usr/bin/env bash
# Runs the tests of the public contract in copies of the Wine prefix that report Windows 10, Windows 11 and a server.
# build/mingw must be built.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export KELINS_WINEPREFIX=$root/build/leg_prefix
results=$root/build/mingw-versions/results

clean_up() {
    [ ! -d "$KELINS_WINEPREFIX" ] || "$root/scripts/wine-prefix.sh" stop
    rm -rf "$KELINS_WINEPREFIX"
}
trap clean_up EXIT

wine() {
    "$root/scripts/wine.sh" "$@" </dev/null
}

set_value() { # KEY NAME DATA
    wine reg add "$1" /v "$2" /d "$3" /f >/dev/null 2>&1
}

run() { # LEG SUITES FILTER
    (cd "$results" && "$root/scripts/wine-test.sh" "$root/build/mingw/bin/dll_tests.exe" "--gtest_filter=$3" --gtest_brief=1 \
        "--gtest_output=xml:dll_tests_$2_$1.xml" </dev/null)
}

# Process builder and registry in a process of their own, for the reasons that stand in tests/CMakeLists.txt.
leg() { # NAME
    if run "$1" All '-*Isolated*:*ProcessBuilder*:*Registry*' && run "$1" ProcessBuilder '*ProcessBuilder*-*Isolated*' &&
        run "$1" Registry '*Registry*-*Isolated*'; then
        echo "ok: $1, $(wine "$root/build/mingw/bin/system_child_manifested.exe" facts 2>/dev/null | head -n 1 | tr -d '\r')"
    else
        echo "FAILED: $1"
        status=1
    fi
}

status=0
clean_up
rm -rf "$root/build/mingw-versions" && mkdir -p "$results"
cp -a "$root/build/wineprefix" "$KELINS_WINEPREFIX"
"$root/scripts/wine-prefix.sh"
wine winecfg -v win10 >/dev/null 2>&1
leg Windows10
set_value 'HKLM\Software\Microsoft\Windows NT\CurrentVersion' CurrentBuildNumber 22631
set_value 'HKLM\Software\Microsoft\Windows NT\CurrentVersion' CurrentBuild 22631
leg Windows11
set_value 'HKLM\System\CurrentControlSet\Control\ProductOptions' ProductType ServerNT
leg Server
exit $status
