#!/usr/bin/env bash
# Runs all checks and tests: installs what is missing (Debian 12, apt-get), builds, tests the portable part natively under
# sanitizers and everything under Wine, fuzzes each text format for a while, and prints a verdict.
#
#   scripts/test.sh              everything
#   scripts/test.sh --no-fuzz    without the fuzzing
#
# Exits 0 only when everything passed. Logs are in build/logs, reports of the tests in build/*/results.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1

fuzz_seconds=${KELINS_FUZZ_SECONDS:-60} # for JSON; XML gets a quarter of it, the smaller formats a tenth
case ${1:-} in
    --no-fuzz) fuzz_seconds=0 ;;
    -h | --help) sed -n '2,9s/^# \?//p' "${BASH_SOURCE[0]}"; exit 0 ;;
    "") ;;
    *) echo "unknown option $1; see --help" >&2; exit 2 ;;
esac

logs=$root/build/logs
mkdir -p "$logs"
failed=()
results=() # folders with reports of the tests that ran
step_number=0

step() { # TITLE COMMAND...: runs it with its output in a log, and says how it went
    local title=$1 log start=$SECONDS
    shift
    step_number=$((step_number + 1))
    log=$logs/$(printf '%02d' "$step_number").log
    printf '%2d. %-62s' "$step_number" "$title"
    if "$@" >"$log" 2>&1 </dev/null; then
        printf 'ok    %4d s\n' $((SECONDS - start))
        return 0
    fi
    printf 'FAILED %3d s\n' $((SECONDS - start))
    echo "    last lines of build/logs/$(basename "$log"):"
    tail -n 30 "$log" | sed 's/^/    /'
    echo "    failures in it:"
    grep -anE -A 3 'error:|FAILED|Failure|runtime error|==ERROR' "$log" | tail -n 40 | cut -c 1-300
    failed+=("$title")
    return 1
}

build() { # PRESET TARGET...
    local preset=$1
    shift
    cmake --preset "$preset" && cmake --build --preset "$preset" -j "$(nproc)" --target "$@"
}

tests() { # PRESET OPTION...: the tests that are built there
    local preset=$1
    shift
    rm -rf "build/$preset/results" && mkdir -p "build/$preset/results" && ctest --preset "$preset" -LE long -j "$(nproc)" "$@"
}

echo "KelInsInfra: all checks and tests"
step "install what is missing" scripts/install.sh || exit 1
step "layout and lint" scripts/check-style.sh
step "reference, without a warning" scripts/docs.sh
if step "build natively, address and undefined-behaviour sanitizers" build native-asan all; then
    step "test natively, address and undefined-behaviour sanitizers" tests native-asan
    results+=(build/native-asan/results)
fi
step "instructions of fixed workloads beside the committed figures" scripts/check-speed.sh
if step "build natively, thread sanitizer" build native-tsan portable_tests; then
    step "test natively, thread sanitizer" tests native-tsan -R "^portable_tests_|Isolated"
    results+=(build/native-tsan/results)
fi
if step "build for Windows, each public header alone too" build mingw all all_verify_interface_header_sets; then
    if step "make the Wine prefix in build/" scripts/wine-prefix.sh; then
        step "test under Wine" tests mingw
        results+=(build/mingw/results)
        step "coverage by the tests under Wine" scripts/coverage.sh --wine
        if [ "$(id -u)" -eq 0 ]; then
            step "test under Wine as an ordinary user" scripts/test-as-user.sh
            results+=(build/mingw-user/results)
        fi
        step "stop that Wine's server" scripts/wine-prefix.sh stop
    fi
fi
if [ "$fuzz_seconds" -gt 0 ] && step "build the fuzz targets" build native-fuzz all; then
    step "fuzz, up to $fuzz_seconds s for a format" scripts/fuzz.sh "$fuzz_seconds"
fi

python3 scripts/count_tests.py "${results[@]}" || failed+=("the count of tests")
if [ "${#failed[@]}" -gt 0 ]; then
    printf 'FAILED: %s\n' "${failed[@]}"
    exit 1
fi
echo "Everything passed."
