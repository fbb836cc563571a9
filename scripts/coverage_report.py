#!/usr/bin/env python3
"""coverage_report.py REPORT.json REASONS.md LEAST_LINES LEAST_BRANCHES: prints the coverage, and the lines and branches that
are missing. Fails below the least percentages, and for a source with missing branches that the document does not name."""

import json
import pathlib
import sys

report, reasons, least_lines, least_branches = sys.argv[1:]
data = json.loads(pathlib.Path(report).read_text())
text = pathlib.Path(reasons).read_text()
lines = branches = covered_lines = covered_branches = 0
unexplained = []
for source in data["files"]:
    missing_lines, missing_branches = [], []
    for line in source["lines"]:
        if line.get("gcovr/noncode"):
            continue
        lines += 1
        covered_lines += line["count"] > 0
        if line["count"] == 0:
            missing_lines.append(line["line_number"])
        taken = [branch["count"] > 0 for branch in line["branches"] if not branch.get("throw")]
        branches += len(taken)
        covered_branches += sum(taken)
        if not all(taken):
            missing_branches.append(f"{line['line_number']} ({len(taken) - sum(taken)} of {len(taken)})")
    if missing_lines:
        print(f"{source['file']}: lines {missing_lines}")
    if missing_branches:
        print(f"{source['file']}: branches at lines {', '.join(missing_branches)}")
        if source["file"].removeprefix("KelInsInfra/") not in text:
            unexplained.append(source["file"])

line_share = 100 * covered_lines / lines
branch_share = 100 * covered_branches / branches
print(f"lines: {covered_lines} of {lines}, {line_share:.2f} %; branches: {covered_branches} of {branches}, {branch_share:.2f} %")
for file in unexplained:
    print(f"no reason in {reasons} for the missing branches of {file}")
failed = line_share < float(least_lines) or branch_share < float(least_branches) or unexplained
print("coverage is too low" if failed else "coverage is as it should be")
sys.exit(1 if failed else 0)
