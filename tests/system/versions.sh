#!/usr/bin/env bash
# versions.sh SOURCE_FOLDER BUILD_FOLDER: the version facts as Windows tells them to a program whose manifest names Windows
# 10 and to one that has none, on several Windows versions: a copy of the Wine prefix is changed to each of them in turn.
set -euo pipefail
source_folder=$1
build=$2
wine=$source_folder/scripts/wine.sh
template=${KELINS_WINEPREFIX:-$source_folder/build/wineprefix}
export KELINS_WINEPREFIX=$build/versions_prefix

server() { # Debian keeps wineserver out of PATH
    local program
    program=$(command -v wineserver || ls /usr/lib/wine/wineserver64 /usr/lib/wine/wineserver 2>/dev/null | head -n 1)
    WINEPREFIX=$KELINS_WINEPREFIX "$program" "$@"
}

clean_up() {
    [ ! -d "$KELINS_WINEPREFIX" ] || { server -k || true; server -w; } 2>/dev/null
    rm -rf "$KELINS_WINEPREFIX"
}
trap clean_up EXIT
clean_up
cp -a "$template" "$KELINS_WINEPREFIX"
"$source_folder/scripts/wine-prefix.sh"

run() { # PROGRAM ARGUMENT...
    "$wine" "$@" </dev/null 2>/dev/null | tr -d '\r'
}

set_value() { # KEY NAME DATA
    run reg add "$1" /v "$2" /d "$3" /f >/dev/null
}

failures=0
expect() { # LABEL PROGRAM VERSION CLIENT WINDOWS11
    local wanted actual
    wanted=$(printf 'version: %s\nclient: %s\nWindows 11: %s\nadmin: true\nWOW64: false\nRTOS64: true' "$3" "$4" "$5")
    actual=$(run "$build/bin/$2.exe" facts)
    if [ "$actual" = "$wanted" ]; then
        echo "ok: $1"
    else
        printf 'FAILED: %s\nwanted:\n%s\ngot:\n%s\n' "$1" "$wanted" "$actual"
        failures=$((failures + 1))
    fi
}

plain=system_child
manifested=system_child_manifested
options='HKLM\System\CurrentControlSet\Control\ProductOptions'
current='HKLM\Software\Microsoft\Windows NT\CurrentVersion'

run winecfg -v win7
expect "Windows 7" $plain "6.1.7601 Service Pack 1 Client" true false
expect "Windows 7, manifested" $manifested "6.1.7601 Service Pack 1 Client" true false
set_value "$options" ProductType ServerNT
expect "server with a service pack" $plain "6.1.7601 Service Pack 1 Server" false false

run winecfg -v win10
expect "Windows 10 reports a compatibility version" $plain "6.2.9200 Client" true false
expect "Windows 10, manifested" $manifested "10.0.18362 Client" true false
set_value "$options" ProductType LanmanNT
expect "domain controller, manifested" $manifested "10.0.18362 Server" false false
set_value "$options" ProductType WinNT

set_value "$current" CurrentBuildNumber 22631
set_value "$current" CurrentBuild 22631
expect "Windows 11 reports a compatibility version" $plain "6.2.9200 Client" true false
expect "Windows 11, manifested" $manifested "10.0.22631 Client" true true
set_value "$options" ProductType ServerNT
expect "server with a build of Windows 11, manifested" $manifested "10.0.22631 Server" false true

[ "$failures" -eq 0 ]
