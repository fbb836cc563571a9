#!/usr/bin/env bash
# Line and branch coverage of the library's own sources by the tests, those under Wine and the native ones together. Prints the
# figures and what is not covered; fails below 100 % of the lines or 98 % of the branches, and where branches are missing without a
# reason in docs/reliability.md. scripts/coverage_report.py says what counts as a branch.
#
#   scripts/coverage.sh              builds, runs, reports
#   scripts/coverage.sh --wine       the tests under Wine alone: what scripts/test.sh asks for, as they cover all by themselves
#   scripts/coverage.sh --report     reports on what ran last
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
windows=build/mingw
native=build/native

# Trees of a million levels take minutes where nothing is optimised, and run no line that smaller ones do not.
portable='-*Isolated*:*Scaling*:*JsonDepth*'

forget() { # what ran before
    find "$1" -name '*.gcda' -delete
}

run_windows() {
    cmake --preset mingw
    cmake --build --preset mingw -j "$(nproc)" --target portable_tests_counted internal_tests_counted dll_tests_counted \
        system_child planted_library planted_program
    scripts/wine-prefix.sh
    cp "$windows"/bin/{system_child.exe,planted_library.dll,planted_program.exe} "$windows/counted/"
    forget "$windows"
    # One after another: two processes that end at once would both add to the same counts.
    scripts/wine-test.sh "$windows/counted/portable_tests.exe" --gtest_filter="$portable" --gtest_brief=1
    KELINS_PROGRAMS=$root/$windows/counted ctest --preset mingw -j 1 -R '^(internal_tests|dll_tests.*)$|Isolated' -LE long
}

run_native() {
    cmake --preset native
    cmake --build --preset native -j "$(nproc)" --target portable_tests_counted
    forget "$native"
    "$native/counted/portable_tests" --gtest_filter="$portable" --gtest_brief=1
}

builds=(x86_64-w64-mingw32-gcov-posix "$windows")
case ${1:-} in
    --report) ;;
    --wine) run_windows ;;
    *) run_windows && run_native ;;
esac
[ "${1:-}" = --wine ] || builds+=(gcov "$native")
options=()
# What this processor cannot run:
grep -qw sha_ni /proc/cpuinfo || options+=(--leave-out=hash/Sha256Extensions.cpp)
{ grep -qw avx /proc/cpuinfo && grep -qw bmi2 /proc/cpuinfo; } || options+=(--leave-out=hash/Sha256Bmi2.cpp)
python3 scripts/coverage_report.py "${options[@]}" docs/reliability.md 100 98 "${builds[@]}"
