#!/usr/bin/env bash
# fuzz.sh SECONDS: runs every fuzz target that is built in build/native-fuzz, from its seeds, with its dictionary, as many side
# by side as there are processors: JSON for so long, XML for a quarter of it, the smaller formats for a tenth.
# New inputs are kept in build/fuzz/<target>, findings are build/fuzz/<target>-*.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1
seconds=$1
logs=$root/build/logs
mkdir -p build/fuzz "$logs"
shopt -s nullglob
targets=(build/native-fuzz/bin/*Fuzz)
[ "${#targets[@]}" -gt 0 ] || { echo "no fuzz target was built"; exit 1; }

status=0
jobs=()
for target in "${targets[@]}"; do
    name=$(basename "$target")
    mkdir -p "build/fuzz/$name"
    case $name in
        Json*) time=$seconds ;;
        Xml*) time=$((seconds / 4 + 1)) ;;
        *) time=$((seconds / 10 + 1)) ;;
    esac
    options=(-max_total_time="$time" -timeout=25 -rss_limit_mb=4096 -print_final_stats=1
        -artifact_prefix="build/fuzz/$name-")
    [ -f "fuzz/${name%Fuzz}.dict" ] && options+=("-dict=fuzz/${name%Fuzz}.dict")
    "$target" "${options[@]}" "build/fuzz/$name" "fuzz/corpus/${name%Fuzz}" >"$logs/$name.log" 2>&1 &
    jobs+=("$!:$name")
    while [ "$(jobs -rp | wc -l)" -ge "$(nproc)" ]; do sleep 0.2; done
done
for job in "${jobs[@]}"; do
    if wait "${job%%:*}"; then
        echo "${job#*:}: $(grep -oE 'number_of_executed_units: *[0-9]+' "$logs/${job#*:}.log")"
    else
        echo "FAILED ${job#*:}"
        tail -n 20 "$logs/${job#*:}.log"
        status=1
    fi
done
exit $status
