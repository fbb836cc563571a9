#!/usr/bin/env bash
# Counts the instructions of fixed workloads of the portable part, which are the same on a busy machine and an idle one, and
# compares them with the committed figures: more than 3 % above one of them fails.
#
#   scripts/check-speed.sh            compares
#   scripts/check-speed.sh --write    writes the figures anew, after a change that is meant
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
case ${1:-} in
    "" | --write) ;;
    -h | --help) sed -n '2,6s/^# \?//p' "${BASH_SOURCE[0]}"; exit 0 ;;
    *) echo "unknown option $1; see --help" >&2; exit 2 ;;
esac

log=$(cmake --preset native 2>&1 && cmake --build --preset native -j "$(nproc)" --target workloads 2>&1) ||
    { echo "$log" >&2; exit 1; }
program=build/native/bin/workloads
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export program folder

count() { # NAME: its instructions, into a file of that name
    valgrind --tool=callgrind --toggle-collect=RunWorkload --callgrind-out-file=/dev/null "$program" "$1" \
        >"$folder/$1.out" 2>"$folder/$1.log" || { cat "$folder/$1.log" >&2; return 1; }
    sed -nE 's/.*Collected : ([0-9]+).*/\1/p' "$folder/$1.log" >"$folder/$1.count"
    [ -s "$folder/$1.count" ]
}
export -f count
"$program" | xargs -P "$(nproc)" -I{} bash -c 'count {}'

python3 - "$folder" benchmarks/workloads/instructions.json "${1:-}" <<'END'
import json, pathlib, sys
folder, committed, option = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]
counts = {path.stem: int(path.read_text()) for path in sorted(folder.glob("*.count"))}
if option == "--write":
    committed.write_text(json.dumps(counts, indent=2) + "\n")
    print(f"written: {committed}")
    sys.exit()
figures = json.loads(committed.read_text())
failed = counts.keys() != figures.keys()
if failed:
    print("the workloads are others than the committed ones:", sorted(counts.keys() ^ figures.keys()))
for name in sorted(counts.keys() & figures.keys()):
    change = counts[name] / figures[name] - 1
    slower = change > 0.03
    failed |= slower
    note = "SLOWER" if slower else "faster: --write keeps it so" if change < -0.03 else ""
    print(f"{name:18}{counts[name]:>12,} instructions {change:+7.2%}  {note}".rstrip())
sys.exit(failed)
END
