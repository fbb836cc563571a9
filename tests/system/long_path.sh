#!/usr/bin/env bash
# long_path.sh SOURCE_FOLDER BUILD_FOLDER: a program that lies deeper than 260 characters is told its path up to there.
# Started from outside, as CreateProcessW takes no such path.
set -euo pipefail
source_folder=$1
build=$2

top=$build/long_path
rm -rf "$top"
trap 'rm -rf "$top"' EXIT
deep=$top/$(printf 'a%.0s' {1..100})/$(printf 'b%.0s' {1..100})/$(printf 'c%.0s' {1..100})
mkdir -p "$deep"
cp "$build/bin/system_child.exe" "$deep/setup.exe"

windows_path() { printf 'Z:%s' "${1//\//\\}"; } # Wine shows the machine's root as drive Z
export KELINS_TEST_REPORT
KELINS_TEST_REPORT=$(windows_path "$top/report")
"$source_folder/scripts/wine.sh" "$deep/setup.exe" </dev/null

program=$(windows_path "$deep/setup.exe")
parent() { printf '%s' "${1%\\*}"; }
mapfile -d '' report <"$top/report"
expect() { # LABEL ACTUAL WANTED...
    local label=$1 actual=$2 wanted
    shift 2
    for wanted in "$@"; do
        [ "$actual" != "$wanted" ] || { echo "ok: $label"; return 0; }
    done
    printf 'FAILED: %s\nwanted: %s\ngot:    %s\n' "$label" "$1" "$actual"
    exit 1
}
# 260 characters, or 259 and a NUL, as the system's version has it
expect "path" "${report[0]}" "${program:0:260}" "${program:0:259}"
expect "directory" "${report[1]}" "$(parent "${report[0]}")"
expect "program as it was started" "${report[2]}" "$program"
