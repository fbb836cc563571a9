#!/usr/bin/env bash
# Line and branch coverage of the library's own sources by the tests, those under Wine and the native ones together, without
# the branches that only an exception takes. Prints the figures and what is not covered; fails when they drop below
# 100 % of the lines or 98 % of the branches, or when a line is missing without a reason in docs/reliability.md.
#
#   scripts/coverage.sh              builds, runs, reports
#   scripts/coverage.sh --report     reports on what ran last
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
windows=build/mingw-coverage
native=build/native-coverage
reports=build/coverage
least_lines=100
least_branches=98

run() {
    scripts/wine-prefix.sh
    cmake --preset mingw-coverage
    cmake --build --preset mingw-coverage -j "$(nproc)" --target portable_tests internal_tests dll_tests system_child
    cmake --preset native -B "$native" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS=--coverage
    cmake --build "$native" -j "$(nproc)" --target portable_tests
    find "$windows" "$native" -name '*.gcda' -delete
    local suites='^(portable_tests|internal_tests|dll_tests.*)$|Isolated'
    ctest --test-dir "$windows" --output-on-failure -R "$suites"
    ctest --test-dir "$native" --output-on-failure -R "$suites"
}

collect() { # BUILD GCOV NAME: what one compiler's tool makes of one build
    gcovr --root "$root" --object-directory "$1" --gcov-executable "$2" --filter "$root/KelInsInfra/" \
        --exclude '.*/json/(Scanner|Parser)\.cpp' --exclude '.*/json/internal/Parser\.h' --exclude-throw-branches \
        --exclude-unreachable-branches --gcov-ignore-parse-errors --json "$reports/$3.json" "$1/KelInsInfra" >/dev/null
}

[ "${1:-}" = --report ] || run
mkdir -p "$reports"
collect "$windows" x86_64-w64-mingw32-gcov-posix windows
collect "$native" gcov native
gcovr --root "$root" --add-tracefile "$reports/windows.json" --add-tracefile "$reports/native.json" \
    --txt "$reports/lines.txt" --json "$reports/all.json" --json-summary "$reports/summary.json" >/dev/null
gcovr --root "$root" --add-tracefile "$reports/all.json" --branches --txt "$reports/branches.txt" >/dev/null
cat "$reports/lines.txt"
python3 scripts/coverage_report.py "$reports/all.json" docs/reliability.md "$least_lines" "$least_branches"
