#!/usr/bin/env python3
"""check_bill.py FOLDER: the bill of materials of an installed package lists each of its files, with the digests that they have, and
all that it refers to is in it."""

import hashlib
import json
import pathlib
import sys

root = pathlib.Path(sys.argv[1])
(path,) = root.glob("share/doc/*/KelInsInfra.spdx.json")
bill = json.loads(path.read_text(encoding="utf-8"))

present = {f"./{file.relative_to(root).as_posix()}" for file in root.rglob("*") if file.is_file()}
present -= {f"./{path.relative_to(root).as_posix()}", "./Uninstall.exe"}  # the bill itself, and what the installer makes
listed = {file["fileName"] for file in bill["files"]}
problems = [f"not listed: {name}" for name in sorted(present - listed)]
problems += [f"listed but missing: {name}" for name in sorted(listed - present)]
for file in bill["files"]:
    content = (root / file["fileName"]).read_bytes() if file["fileName"] in present else b""
    for checksum in file["checksums"]:
        if hashlib.new(checksum["algorithm"].lower(), content).hexdigest() != checksum["checksumValue"]:
            problems.append(f"{checksum['algorithm']} of {file['fileName']}")

(package,) = [package for package in bill["packages"] if package["filesAnalyzed"]]
sums = sorted(c["checksumValue"] for file in bill["files"] for c in file["checksums"] if c["algorithm"] == "SHA1")
if package["packageVerificationCode"]["packageVerificationCodeValue"] != hashlib.sha1("".join(sums).encode()).hexdigest():
    problems.append("verification code")
for package in bill["packages"]:
    problems += [f"{package['name']}: no {field}" for field in ("versionInfo", "licenseConcluded") if not package.get(field)]
    problems += [f"{package['name']}: version {package['versionInfo']}"] if not package["versionInfo"][0].isdigit() else []

identifiers = [item["SPDXID"] for item in bill["packages"] + bill["files"]] + [bill["SPDXID"]]
if len(identifiers) != len(set(identifiers)):
    problems.append("identifiers are not unique")
for relation in bill["relationships"]:
    for end in ("spdxElementId", "relatedSpdxElement"):
        if relation[end] not in identifiers:
            problems.append(f"relationship with unknown {relation[end]}")

print("\n".join(problems) or f"bill of materials: {len(listed)} files, {len(bill['packages'])} packages")
sys.exit(1 if problems else 0)
