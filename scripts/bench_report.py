#!/usr/bin/env python3
"""bench_report.py RESULTS_FOLDER TARGETS_FILE DOCS_FOLDER: writes DOCS_FOLDER/benchmarks.md and its plots from one run of
scripts/bench.sh.

The results of a program's rounds are in "<platform>.<program>_benchmarks.<round>.json". A benchmark's name is
"<work>/<contestant>". In each round the contestants of a work ran one after the other, so the ratio of a peer's time to
ours is taken round by round; its median and its spread are shown. In growth_benchmarks the second part of the name is a
size in megabytes instead, and the ratio is that of two sizes.

Exits with 3 when something that the targets name was not measured.
"""

import json
import math
import pathlib
import statistics
import sys

import bench_plots

OURS = "KelInsInfra"
PLATFORMS = {"native": "natively (Linux)", "mingw": "Windows build under Wine"}
GROWTH_LIMIT = 1.3  # time per byte at 64 MB over that at 1 MB
NO_GROWTH_LIMIT = "JSON parse of one string"  # its limit is a row of its own: 8 MiB beside two of 4 MiB
GROWTH_NOTE = {"native": "The heap keeps its memory from one run of a work to the next (`M_MMAP_MAX` 0, no trimming) and each work "
               "runs once before it is timed:\nby itself glibc returns large blocks to the system at once, and the kernel's "
               "page faults for them are no growth of ours.\n\n"}


def read_rounds(paths):
    """{work: {contestant: [value of each round]}}, works in the order of their registration. A value is a time in
    nanoseconds, or what the benchmark counted as its "bytes". A round in which a contestant failed is none of its work's."""
    works = {}
    factor = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    for path in paths:
        found, failed = {}, set()
        for run in json.loads(path.read_text())["benchmarks"]:
            work, contestant = run["run_name"].split("/")[:2]
            if run.get("error_occurred"):
                print(f"left out of {path.name}: {run['run_name']}: {run['error_message']}", file=sys.stderr)
                failed.add(work)
            else:
                value = run["bytes"] if "bytes" in run else run["real_time"] * factor[run["time_unit"]]
                found.setdefault(work, {})[contestant] = value
        for work in (w for w in found if w not in failed):
            for contestant, value in sorted(found[work].items()):
                works.setdefault(work, {}).setdefault(contestant, []).append(value)
    return works


def amount(work, value):
    if work.startswith("Memory"):
        return f"{value:.0f} bytes"
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if value >= size:
            return f"{value / size:.3g} {unit}"
    return f"{value:.3g} ns"


class Comparison:
    """Ours beside one peer."""

    def __init__(self, platform, work, peer, ours, theirs, target=None, moonshot=None):
        ratios = [their / our for their, our in zip(theirs, ours)]
        self.platform, self.work, self.peer, self.target, self.moonshot = platform, work, peer, target, moonshot
        self.ours, self.theirs = statistics.median(ours), statistics.median(theirs)
        self.ratio, self.least, self.greatest = statistics.median(ratios), min(ratios), max(ratios)

    def verdict(self, aim, reached, short):
        return "" if aim is None else f"{aim:g}x: " + (reached if self.ratio >= aim else short)

    def row(self):
        return (self.work, amount(self.work, self.ours), self.peer, amount(self.work, self.theirs),
                f"**{self.ratio:.2f}x**", f"{self.least:.2f} to {self.greatest:.2f}",
                self.verdict(self.target, "holds", "**missed**"), self.verdict(self.moonshot, "reached", "not yet"))


def comparisons(platform, works, targets):
    for work, contestants in works.items():
        if OURS not in contestants:
            raise SystemExit(f"no contestant {OURS} in {work}")
        for peer, values in contestants.items():
            if peer != OURS:
                yield Comparison(platform, work, peer, contestants[OURS], values, *targets.get((platform, work, peer), ()))


def growth_rows(works):
    """(work, {megabytes: nanoseconds per byte}, exponent, per byte at the largest over the smallest in the same round: the
    median and the least and greatest)"""
    for work, sizes in works.items():
        rounds = {int(size): [time / (int(size) << 20) for time in times] for size, times in sizes.items()}
        small, large = min(rounds), max(rounds)
        factors = [b / a for a, b in zip(rounds[small], rounds[large])]
        factor = statistics.median(factors)
        per_byte = {size: statistics.median(times) for size, times in sorted(rounds.items())}
        yield work, per_byte, 1 + math.log(factor, large / small), factor, (min(factors), max(factors))


def round_count(works):
    return max(len(values) for contestants in works.values() for values in contestants.values())


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows]) + "\n"


def machine(folder):
    model = next((line.split(":")[1].strip() for line in open("/proc/cpuinfo") if line.startswith("model name")), "?")
    return model, (folder / "commit").read_text().strip()


def sizes(folder):
    """The library's files, without debug symbols."""
    path = folder / "sizes.json"
    if not path.exists():
        return ""
    rows = [(name, f"{size / 1e6:.2f} MB") for name, size in json.loads(path.read_text()).items()]
    return "## Sizes\n\n" + table(("file, stripped", "size"), rows) + "\n"


def growth_section(platform, works):
    rows = []
    for work, per_byte, exponent, factor, (least, greatest) in growth_rows(works):
        verdict = f"{GROWTH_LIMIT:g}x: " + ("holds" if factor <= GROWTH_LIMIT else "**missed**")
        if work == NO_GROWTH_LIMIT:
            verdict = ""
        rows.append((work, *(f"{v:.3g} ns" for v in per_byte.values()), f"{exponent:.2f}", f"{factor:.2f}x",
                     f"{least:.2f} to {greatest:.2f}", verdict))
    head = ("work", "a byte of 1 MB", "of 8 MB", "of 64 MB", "exponent", "64 MB over 1 MB", "spread", "at most")
    return f"## Growth, {PLATFORMS[platform]}, {round_count(works)} rounds\n\n" + GROWTH_NOTE.get(platform, "") + table(head, rows) + "\n"


def main():
    folder, targets_file, docs = (pathlib.Path(argument) for argument in sys.argv[1:4])
    given = json.loads(targets_file.read_text())
    targets = {tuple(t[:3]): t[3:] for t in given["targets"]}
    model, commit = machine(folder)
    sections, plotted, growth = [], [], {}
    for platform, title in PLATFORMS.items():
        programs = {}
        for path in sorted(folder.glob(f"{platform}.*.json")):
            programs.setdefault(path.name.split(".")[1].removesuffix("_benchmarks"), []).append(path)
        for program, paths in programs.items():
            works = read_rounds(paths)
            if program == "growth":
                growth[platform] = works
                continue
            found = list(comparisons(platform, works, targets))
            plotted += found
            head = ("work", "ours", "peer", "the peer's", "ratio", "spread", "must", "moonshot")
            sections.append(f"## {program}, {title}, {round_count(works)} rounds\n\n" + table(head, [c.row() for c in found]) + "\n")
    for platform, works in growth.items():
        sections.append(growth_section(platform, works))
    unmeasured = set(targets) - {(c.platform, c.work, c.peer) for c in plotted}
    for target in sorted(unmeasured):
        print(f"bench_report.py: not measured: {target}", file=sys.stderr)
    bench_plots.write(docs, plotted, {p: list(growth_rows(w)) for p, w in growth.items()})
    text = ("# Benchmarks\n\nWritten by `scripts/bench.sh`; do not edit. Ours and its peers run one after the other in one "
            "process, pinned to one core,\nin each of several rounds, ours mostly first; times are medians, the ratio "
            "is the peer's value over ours in the same\nround (above 1: ours is faster or smaller), its median and its least "
            "and greatest value. Files of INI, `ReplaceInLines` and tree\nrows lie in memory unless the row says otherwise. "
            "\"must\" is the least ratio that will do, \"moonshot\" one aimed at beyond it.\n\n"
            f"Machine: {model}; on top of commit {commit}. Absolute times hold for this machine alone.\n\n"
            "![The peer's time over ours, for each row that has a target](benchmarks.svg)\n\n"
            "![Time per byte at three sizes](growth.svg)\n\n" + "".join(sections) + sizes(folder))
    notes = targets_file.parent / "notes.md"
    if notes.exists():
        text += notes.read_text()
    (docs / "benchmarks.md").write_text(text)
    return 3 if unmeasured else 0


sys.exit(main())
