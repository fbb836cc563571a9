#!/usr/bin/env bash
# check.sh BUILD_FOLDER: installs what was built there into an empty folder, moves that folder, builds the consumer project
# against it, and runs its programs under Wine with nothing but the installed DLLs beside them.
set -euo pipefail
build=$1
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
work=$build/package
expected='C:\Orchard\bin\pear.exe ok a\=b \'

rm -rf "$work" && mkdir -p "$work"
cmake --install "$build" --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$work/installed" # the package must be relocatable
if grep -rIl "$build" "$work/installed" --include='*.cmake' --include='*.pc'; then
    echo "the files above name the build folder"
    exit 1
fi

cmake -S "$here" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" -DCMAKE_PREFIX_PATH="$work/installed" >"$work/configure.log"
cmake --build "$work/build" >"$work/build.log" || { cat "$work/build.log"; exit 1; }

mkdir "$work/alone" # the static one must run without any DLL of ours or of the compiler
mv "$work/build/consumer_static.exe" "$work/alone/"
mv "$work/build/consumer_shared.exe" "$work/installed/bin/"
for program in "$work/alone/consumer_static.exe" "$work/installed/bin/consumer_shared.exe"; do
    actual=$("$root/scripts/wine.sh" "$program" </dev/null | tr -d '\r')
    if [ "$actual" != "$expected" ]; then
        printf '%s printed "%s" instead of "%s"\n' "$(basename "$program")" "$actual" "$expected"
        exit 1
    fi
    echo "$(basename "$program") runs"
done
