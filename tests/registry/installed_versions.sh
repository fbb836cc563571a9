#!/usr/bin/env bash
# installed_versions.sh BUILD_FOLDER: builds packages with wixl, installs, upgrades and uninstalls them in a copy of the Wine
# prefix, and compares what KelInsMSI::GetVersion tells of them, all four fields of every entry.
set -euo pipefail
build=$1
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
work=$build/installed_versions
export KELINS_WINEPREFIX=$work/wineprefix

rm -rf "$work" && mkdir -p "$work"
cp -a "$root/build/wineprefix" "$KELINS_WINEPREFIX"
trap '"$root/scripts/wine-prefix.sh" stop; rm -rf "$KELINS_WINEPREFIX"' EXIT
"$root/scripts/wine-prefix.sh"
cd "$work"
echo pear >pear.txt
failures=0

package() { # NAME PRODUCT_CODE UPGRADE_CODE VERSION REPLACES_OLDER
    wixl -a x64 -D ProductCode="$2" -D UpgradeCode="$3" -D ProductVersion="$4" -D ReplacesOlder="$5" -o "$1.msi" \
        "$here/package/orchard.wxs"
}

run() { # PROGRAM ARGUMENT...: again where Wine could not start the program, as happens now and then on a busy machine
    local status=0 attempt
    for attempt in 1 2 3; do
        status=0
        "$root/scripts/wine.sh" "$@" </dev/null 2>"$work/errors" || status=$?
        [ "$status" -ne 0 ] && grep -q 'could not be started' "$work/errors" || break
        echo "attempt $attempt: Wine could not start $1" >&2
    done
    cat "$work/errors" >&2
    return "$status"
}

msi() { # ARGUMENT...: msiexec, which must succeed
    run msiexec "$@" /qn || { echo "msiexec $* failed: $?"; exit 1; }
}

expect() { # TITLE UPGRADE_CODE LINE...
    local title=$1 upgrade_code=$2 actual expected
    shift 2
    expected=$(printf '%s\n' "$@")
    actual=$(run "$build/bin/installed_versions_probe.exe" "$upgrade_code" | tr -d '\r')
    if [ "$actual" = "$expected" ]; then
        echo "ok      $title"
    else
        printf 'FAILED  %s\nexpected:\n%s\nactual:\n%s\n' "$title" "$expected" "$actual"
        failures=$((failures + 1))
    fi
}

# Each scenario has an upgrade code of its own: Wine forgets to list an upgrade code's products when one is removed.
pair='{C0000001-0000-0000-0000-00000000CCCC}'
major='{C0000002-0000-0000-0000-00000000CCCC}'
removed='{C0000003-0000-0000-0000-00000000CCCC}'
package pair-1 '{A0000011-0000-0000-0000-00000000AAAA}' "$pair" 1.0.0 no
package pair-2 '{A0000012-0000-0000-0000-00000000AAAA}' "$pair" 2.5.17 no
package major-1 '{A0000021-0000-0000-0000-00000000AAAA}' "$major" 1.0.0 yes
package major-2 '{A0000022-0000-0000-0000-00000000AAAA}' "$major" 2.0.0 yes
package removed-1 '{A0000031-0000-0000-0000-00000000AAAA}' "$removed" 1.0.0 no

expect "nothing is installed" "$pair" "not found"
msi /i pair-1.msi
expect "one version" "$pair" "1.0.0|||0" "found"
msi /i pair-2.msi
expect "two versions of one upgrade code" "$pair" "1.0.0|||0" "2.5.17|||0" "found"
expect "other upgrade codes are not concerned" "$major" "not found"
expect "letter case does not count" "${pair,,}" "1.0.0|||0" "2.5.17|||0" "found"

# What the database keeps of the two is damaged: each entry names the place.
installer='HKLM\Software\Microsoft\Windows\CurrentVersion\Installer'
run reg delete 'HKLM\Software\Classes\Installer\Products\1100000A00000000000000000000AAAA' /f >/dev/null
run reg delete \
    "$installer\\UserData\\S-1-5-18\\Products\\2100000A00000000000000000000AAAA\\InstallProperties" /f >/dev/null
unknown_key='Unknown key HKEY_CLASSES_ROOT\Installer\Products\1100000A00000000000000000000AAAA'
invalid_data='Invalid data in HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Installer\UserData\S-1-5-18'
invalid_data+='\Products\2100000A00000000000000000000AAAA'
expect "two damaged products" "$pair" "|The product is unadvertised or uninstalled|$unknown_key|1605" \
    "|The property is unrecognized|$invalid_data|1608" "not found"

msi /i major-1.msi
expect "before a major upgrade" "$major" "1.0.0|||0" "found"
msi /i major-2.msi
msi /i major-2.msi REINSTALL=ALL # Wine lists the survivor only then
expect "after a major upgrade" "$major" "2.0.0|||0" "found"

msi /i removed-1.msi
expect "before an uninstall" "$removed" "1.0.0|||0" "found"
msi /x removed-1.msi
expect "after an uninstall" "$removed" "not found"

exit "$((failures > 0))"
