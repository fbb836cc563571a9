#!/usr/bin/env bash
# Builds and runs the benchmark programs, natively and as Windows programs under Wine, ours and its peers one after the
# other in one process for each of several rounds, and writes docs/benchmarks.md.
#
#   scripts/bench.sh                all of them
#   scripts/bench.sh io config      only the programs whose name begins so; the report then holds only these
#   scripts/bench.sh --quick        one short round of each, no report: shows that they still run
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

quick=
wanted=()
for argument in "$@"; do
    case $argument in
        --quick) quick=1 ;;
        -h | --help) sed -n '2,7s/^# \?//p' "${BASH_SOURCE[0]}"; exit 0 ;;
        *) wanted+=("$argument") ;;
    esac
done

scripts/install.sh --benchmarks
# Client and server of Wine on one core: a round trip between them costs a sixth of what it does on two.
pin=(taskset -c $(($(nproc) - 1)))
scripts/wine-prefix.sh stop
"${pin[@]}" scripts/wine-prefix.sh
results=$root/build/bench${quick:+-quick}
mkdir -p "$results" && rm -f "$results"/*
git rev-parse --short HEAD >"$results/commit"

# Files of benchmarks that are not about a disk lie in memory, where the machine has such a place.
[ -w /dev/shm ] && export KELINS_BENCHMARK_MEMORY='Z:\dev\shm'

times=(--benchmark_min_time=0.05 --benchmark_min_warmup_time=0.02) # for each contestant, in each round
[ -z "$quick" ] || times=(--benchmark_min_time=0.001)

chosen() { # NAME: whether the command line asks for it
    [ "${#wanted[@]}" -eq 0 ] && return 0
    local prefix
    for prefix in "${wanted[@]}"; do [[ $1 == "$prefix"* ]] && return 0; done
    return 1
}

for preset in native mingw; do
    echo "== $preset: build"
    cmake --preset "$preset" -DKELINS_BENCHMARKS=ON >"$results/$preset.configure.log" 2>&1 ||
        { tail -n 20 "$results/$preset.configure.log"; exit 1; }
    cmake --build --preset "$preset" --target all_benchmarks >"$results/$preset.build.log" 2>&1 ||
        { grep -E 'error|FAILED' "$results/$preset.build.log" | head -n 20; exit 1; }
    for program in "$root/build/$preset/bin/"*_benchmarks "$root/build/$preset/bin/"*_benchmarks.exe; do
        [ -f "$program" ] || continue
        name=$(basename "$program" .exe)
        chosen "$name" || continue
        echo "== $preset: $name"
        run=("$program")
        [ "$preset" = native ] || run=("$root/scripts/wine.sh" "$program")
        case $preset.$name in
            *.growth*) rounds=7 ;;                               # large inputs
            native.hash* | *.registry* | *.system*) rounds=15 ;; # small differences, or noisy calls
            *) rounds=9 ;;
        esac
        [ -z "$quick" ] || rounds=1
        options=("${times[@]}")
        # No more loads than they ask for themselves: each takes some of the process for good.
        case $name in load*) options=() ;; esac
        # One process a round, in which the contestants of a work run one right after the other: what the machine's
        # neighbours do in that moment, they do to all of them.
        for ((round = 1; round <= rounds; ++round)); do
            (cd "$results" && "${pin[@]}" "${run[@]}" "${options[@]}" \
                --benchmark_out="$preset.$name.$round.json" --benchmark_out_format=json \
                >"$preset.$name.$round.log" 2>&1 </dev/null) ||
                { tail -n 20 "$results/$preset.$name.$round.log"; exit 1; }
            if grep -A 1 '"error_occurred": true' "$results/$preset.$name.$round.json" && [ -n "$quick" ]; then exit 1; fi
            options+=(--benchmark_filter=-checked) # what is only checked is checked once
        done
    done
done
compgen -G "$results/*_benchmarks.1.json" >/dev/null || { echo "no program's name begins with: ${wanted[*]}" >&2; exit 2; }
[ -n "$quick" ] && { echo "every benchmark runs"; exit 0; }

python3 - build/mingw "$results/sizes.json" <<'END' # what ships, without debug symbols
import json, os, subprocess, sys, tempfile
build, output = sys.argv[1:]
sizes = {}
for name in ("bin/KelInsInfra.dll", "lib/KelInsInfraStatic.a", "bin/single_file.dll", "bin/libstdc++-6.dll"):
    path = os.path.join(build, name.replace("KelInsInfraStatic", "libKelInsInfraStatic"))
    if os.path.exists(path):
        with tempfile.TemporaryDirectory() as folder:
            stripped = os.path.join(folder, "stripped")
            subprocess.run(["x86_64-w64-mingw32-strip", "--strip-unneeded", "-o", stripped, path], check=True)
            sizes[os.path.basename(path)] = os.path.getsize(stripped)
json.dump(sizes, open(output, "w"))
END
unmeasured=3 # which is meant where only some programs were asked for
python3 scripts/bench_report.py "$results" benchmarks/targets.json docs ||
    { status=$?; [ "$status" -eq "$unmeasured" ] && [ "${#wanted[@]}" -gt 0 ] || exit "$status"; }
echo "written: docs/benchmarks.md, docs/benchmarks.svg, docs/growth.svg"
