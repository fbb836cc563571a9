#!/usr/bin/env bash
# The long runs, for every night: defects that the sweeps must find, other versions of Windows, coverage, large sizes, ten minutes of
# fuzzing.
# Installs and builds what they need. Exits 0 only when all passed; logs are in build/logs/long.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1
logs=$root/build/logs/long
mkdir -p "$logs"
failed=()

step() { # NAME COMMAND...
    local name=$1 start=$SECONDS
    shift
    printf '%-24s' "$name"
    if "$@" >"$logs/$name.log" 2>&1 </dev/null; then
        printf 'ok    %5d s\n' $((SECONDS - start))
    else
        printf 'FAILED %4d s, see build/logs/long/%s.log\n' $((SECONDS - start)) "$name"
        failed+=("$name")
    fi
}

build() { # PRESET TARGET...
    local preset=$1
    shift
    cmake --preset "$preset" && cmake --build --preset "$preset" -j "$(nproc)" --target "$@"
}

in_wine() ( # PROGRAM ARGUMENT...: in a shell of its own, as it changes the folder
    mkdir -p build/mingw/results && cd build/mingw/results && "$root/scripts/wine-test.sh" "../bin/$1.exe" "${@:2}"
)

step install scripts/install.sh
step build-windows build mingw all
step wine scripts/wine-prefix.sh
step sweep-breaks scripts/sweep_breaks.sh
step scale in_wine scale_tests
step versions scripts/test-on-versions.sh
step coverage scripts/coverage.sh
step build-fuzz build native-fuzz all
step fuzz scripts/fuzz.sh "${KELINS_FUZZ_SECONDS:-300}" # ten minutes of processors in all
step wine-stop scripts/wine-prefix.sh stop
[ "${#failed[@]}" -eq 0 ] || { printf 'FAILED: %s\n' "${failed[*]}"; exit 1; }
echo "Everything passed."
