#!/usr/bin/env bash
# check.sh BUILD_FOLDER: makes every kind of package of what was built there: an installed folder (moved afterwards), the ZIP, and the
# Windows installer, which is run silently under Wine. Builds the consumer project against each of them, with the shared and with the
# static library, and runs its programs with nothing but what the package put beside them.
set -euo pipefail # so no "grep -q" behind a pipe: what writes into it would fail when that leaves early
build=$1
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
work=$build/package
wine=$root/scripts/wine.sh
prefix=${KELINS_WINEPREFIX:-$root/build/wineprefix}
sdk='C:\KelInsSdkTest' # where the installer puts it
uninstall_key='HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\KelInsInfra'
export SOURCE_DATE_EPOCH=1700000000 # so that all kinds must be the same to the last byte
expected='C:\Orchard\bin\pear.exe ok a\=b \
ba7816bf 36 {"a": [1, true]} <a/>
GetRootKeyHandleFromString - HKXX
0 1'

fail() {
    echo "FAILED: $*"
    exit 1
}

run() { # PROGRAM ARGUMENT...: its output, with line feeds
    "$wine" "$@" </dev/null | tr -d '\r'
}

check_consumer() { # NAME FOLDER: builds against the package there and runs the programs
    local name=$1 folder=$2 kind
    cmake -S "$here" -B "$work/$name-build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_STANDARD=20 \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" -DCMAKE_PREFIX_PATH="$folder" >"$work/log"
    cmake --build "$work/$name-build" >"$work/log" || { cat "$work/log"; fail "the consumer does not build against $name"; }
    for kind in shared static; do
        [ "$(run "$work/$name-build/$kind/consumer_$kind.exe")" = "$expected" ] || fail "consumer_$kind of $name prints something else"
    done
    [ "$(ls "$work/$name-build/static")" = consumer_static.exe ] || fail "the static consumer is not alone"
    python3 "$here/check_bill.py" "$folder"
    echo "$name: consumer built and run, shared and static"
}

check_properties() { # FILE DESCRIPTION
    local wanted="ProductName: KelInsInfra
ProductVersion: $version
FileVersion: $version
FileDescription: $2
CompanyName: The KelInsInfra authors"
    [ "$(run "$work/properties.exe" "Z:$1")" = "$wanted" ] || fail "the properties of $1"
}

rm -rf "$work" && mkdir -p "$work"

# An installed folder: relocatable, debug symbols apart but usable.
cmake --install "$build" --prefix "$work/first" >"$work/log"
mv "$work/first" "$work/installed"
! grep -rlE "$build|$root" "$work/installed" || fail "the files above name folders of this machine"
check_consumer installed "$work/installed"
version=$(sed -n 's/^set(PACKAGE_VERSION "\(.*\)")/\1/p' "$work/installed"/lib/cmake/KelInsInfra/KelInsInfraConfigVersion.cmake)
fits() { # VERSION: whether find_package(KelInsInfra VERSION) takes the package
    cat >"$work/version.cmake" <<CMAKE
set(PACKAGE_FIND_VERSION $1)
string(REGEX MATCH "^[0-9]+" PACKAGE_FIND_VERSION_MAJOR $1)
set(CMAKE_SIZEOF_VOID_P 8)
include("$work/installed/lib/cmake/KelInsInfra/KelInsInfraConfigVersion.cmake")
if(NOT PACKAGE_VERSION_COMPATIBLE)
    message(FATAL_ERROR "no")
endif()
CMAKE
    cmake -P "$work/version.cmake" >"$work/log" 2>&1
}
major=${version%%.*}
fits "$major" && fits "$version" || fail "the package does not take its own version"
! fits $((major + 1)) && ! fits "$major.999" || fail "the package takes another version"
! cmake -S "$here" -B "$work/native-build" -G Ninja -DCMAKE_PREFIX_PATH="$work/installed" >"$work/log" 2>&1 ||
    fail "the package is taken by a compiler of this machine"
grep -q 'for MinGW-w64' "$work/log" || { cat "$work/log"; fail "the refusal does not say why"; }

for dll in "$work"/installed/bin/*.dll; do
    ! x86_64-w64-mingw32-objdump -h "$dll" | grep '\.debug_' >/dev/null || fail "$dll has debug symbols"
done
x86_64-w64-mingw32-objdump -p "$work/installed/bin/KelInsInfra.dll" | grep '^Time/Date.* 1970$' >/dev/null || fail "the DLL has the time in it"
x86_64-w64-mingw32-objdump -s --section=.gnu_debuglink "$work/installed/bin/KelInsInfra.dll" | grep KelInsInf >/dev/null || fail "no link to the symbols"
code=$(x86_64-w64-mingw32-objdump -t "$work/installed/bin/KelInsInfra.dll.debug" | grep -c 'KelInsIO.*Path') || true
[ "$code" -gt 10 ] || fail "the debug symbols do not name our functions"
x86_64-w64-mingw32-objdump -h "$work/installed/bin/KelInsInfra.dll.debug" | grep '\.debug_line' >/dev/null || fail "the debug symbols have no lines"

# The same by pkg-config's files.
pc() { PKG_CONFIG_LIBDIR=$work/installed/lib/pkgconfig pkg-config "$@"; }
for name in KelInsInfra KelInsInfraStatic; do
    # shellcheck disable=SC2046 # several options
    x86_64-w64-mingw32-g++-posix "$here/consumer.cpp" -o "$work/installed/bin/$name.exe" $(pc --cflags --libs $name)
    [ "$(run "$work/installed/bin/$name.exe")" = "$expected" ] || fail "$name by pkg-config"
    rm "$work/installed/bin/$name.exe"
done
echo "pkg-config: both"

# ZIP and installer, with their sums.
cpack --config "$build/CPackConfig.cmake" -B "$work/packages" >"$work/log" || { cat "$work/log"; fail "cpack"; }
(cd "$work/packages" && sha256sum --check --quiet ./*.zip.sha256 ./*.exe.sha256)
mkdir "$work/zip" && (cd "$work/zip" && cmake -E tar x "$work"/packages/KelInsInfra-*.zip)
check_consumer zip "$work"/zip/KelInsInfra-*
diff -r "$work/installed" "$work"/zip/KelInsInfra-* || fail "the ZIP differs from what is installed"

# shellcheck disable=SC2064 # the names as they are now
trap "rm -rf '$prefix/drive_c/KelInsSdkTest'" EXIT
installer=$(ls "$work"/packages/KelInsInfra-*.exe)
"$wine" "$installer" /S "/D=$sdk" </dev/null
check_consumer installer "$prefix/drive_c/KelInsSdkTest"
diff -r --exclude=Uninstall.exe "$work/installed" "$prefix/drive_c/KelInsSdkTest" || fail "what the installer installs differs"
"$wine" reg query "$uninstall_key" /v DisplayVersion </dev/null | grep "$version" >/dev/null || fail "Windows does not list the SDK"
"$wine" "$sdk\\Uninstall.exe" /S "_?=$sdk" </dev/null
[ "$(ls "$prefix/drive_c/KelInsSdkTest")" = Uninstall.exe ] || fail "the uninstaller leaves files"
! "$wine" reg query "$uninstall_key" </dev/null >/dev/null 2>&1 || fail "Windows still lists the SDK"

x86_64-w64-mingw32-g++-posix -static "$here/properties.cpp" -o "$work/properties.exe" -lversion
check_properties "$work/installed/bin/KelInsInfra.dll" "$(sed -n 's/^Description: //p' "$work/installed/lib/pkgconfig/KelInsInfra.pc")"
check_properties "$installer" "Installer of the KelInsInfra SDK"
echo "properties: of the DLL and of the installer"
