#!/usr/bin/env python3
"""bench_report.py RESULTS_FOLDER TARGETS_FILE: the Markdown report of one run of scripts/bench.sh, on standard output.

A benchmark's name is "<work>/<contestant>". In each round the contestants of a work ran one after the other, so the
ratio of a peer's time to ours is taken round by round; its median and its spread are shown.
"""

import json
import pathlib
import statistics
import subprocess
import sys

OURS = "KelInsInfra"
PLATFORMS = {"native": "natively (Linux)", "mingw": "Windows build under Wine"}


def read_rounds(path):
    """{work: {contestant: [time of each round, in nanoseconds]}}, works in the order of their registration."""
    works = {}
    factor = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    runs = json.loads(path.read_text())["benchmarks"]
    for run in sorted(runs, key=lambda r: (r["family_index"], r["per_family_instance_index"])):
        if run["run_type"] != "iteration":
            continue
        work, contestant = run["run_name"].split("/")[:2]
        entry = (run["repetition_index"], run["real_time"] * factor[run["time_unit"]])
        works.setdefault(work, {}).setdefault(contestant, []).append(entry)
    return {w: {c: [e[1] for e in sorted(entries)] for c, entries in sorted(cs.items())} for w, cs in works.items()}


def duration(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def rows_of(platform, works, targets):
    for work, contestants in works.items():
        if OURS not in contestants:
            raise SystemExit(f"no contestant {OURS} in {work}")
        ours = contestants[OURS]
        for peer, times in contestants.items():
            if peer == OURS:
                continue
            ratios = [theirs / our for theirs, our in zip(times, ours)]
            ratio = statistics.median(ratios)
            target = targets.get((platform, work, peer))
            verdict = "" if target is None else f"{target:g}x: " + ("holds" if ratio >= target else "**missed**")
            yield (work, duration(statistics.median(ours)), peer, duration(statistics.median(times)),
                   f"**{ratio:.2f}x**", f"{min(ratios):.2f} to {max(ratios):.2f}", verdict)


def machine():
    model = next((line.split(":")[1].strip() for line in open("/proc/cpuinfo") if line.startswith("model name")), "?")
    commit = subprocess.run(["git", "rev-parse", "--short", "HEAD"], capture_output=True, text=True).stdout.strip()
    return model, commit


def main():
    folder, targets_file = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    targets = {tuple(t[:3]): t[3] for t in json.loads(targets_file.read_text())["targets"]}
    model, commit = machine()
    print("# Benchmarks\n")
    print("Written by `scripts/bench.sh`; do not edit. Ours and its peers alternate in one process, pinned to one core; times "
          "are medians of 9 rounds,\nthe ratio is the peer's time over ours, round by round (above 1: ours is faster), the "
          "spread its least and greatest value.\n")
    print(f"Machine: {model}; on top of commit {commit}. Absolute times hold for this machine alone.\n")
    unmet = set(targets)
    for platform, title in PLATFORMS.items():
        for path in sorted(folder.glob(f"{platform}.*.json")):
            program = path.name.split(".")[1].removesuffix("_benchmarks")
            print(f"## {program}, {title}\n")
            print("| work | ours | peer | peer's time | ratio | spread | must |\n|---|---|---|---|---|---|---|")
            for row in rows_of(platform, read_rounds(path), targets):
                unmet.discard((platform, row[0], row[2]))
                print("| " + " | ".join(row) + " |")
            print()
    for target in sorted(unmet):
        print(f"bench_report.py: not measured: {target}", file=sys.stderr)


main()
