#!/usr/bin/env python3
"""count_tests.py FOLDER...: what GoogleTest's XML reports in these folders add up to. Fails when a folder holds no test,
a test failed, or where fewer ran than LEAST: a pattern or a target that no longer names all of its tests."""

import pathlib
import sys
import xml.etree.ElementTree as ET

LABELS = {
    "native-asan": "natively, address and undefined-behaviour sanitizers",
    "native-tsan": "natively, thread sanitizer",
    "mingw": "under Wine",
    "mingw-user": "under Wine, as an ordinary user",
}
LEAST = {"native-asan": 1500, "native-tsan": 6, "mingw": 3000, "mingw-user": 1300}  # well below what there is
total = {"passed": 0, "failed": 0, "skipped": 0}
complete = len(sys.argv) > 1
for folder in map(pathlib.Path, sys.argv[1:]):
    count = dict.fromkeys(total, 0)
    skipped = []
    for report in folder.glob("*.xml"):
        text = report.read_bytes().decode(errors="replace")  # a failure's message may hold any byte
        for case in ET.fromstring(text).iter("testcase"):
            if case.get("status") != "run":
                continue
            if case.find("failure") is not None:
                result = "failed"
                print(f"    FAILED: {case.get('classname')}.{case.get('name')}")
            elif case.get("result") == "skipped":
                result = "skipped"
                skipped.append(f"{case.get('classname')}.{case.get('name')}")
            else:
                result = "passed"
            count[result] += 1
    label = LABELS.get(folder.parent.name, folder.parent.name)
    print(f"Tests {label}: {count['passed']} passed, {count['failed']} failed, {count['skipped']} skipped")
    for name in skipped:
        print(f"    skipped: {name}")
    least = LEAST.get(folder.parent.name, 1)
    ran = sum(count.values())
    if ran < least:
        print(f"    too few: there are at least {least}")
    complete = complete and ran >= least and count["passed"] > 0 and count["failed"] == 0
    for result, number in count.items():
        total[result] += number
print(f"{total['passed']} passed, {total['failed']} failed, {total['skipped']} skipped")
sys.exit(0 if complete else 1)
