#!/usr/bin/env python3
"""Checks what people read: links between the pages of the project, and the names of ours in them."""

import pathlib
import re
import subprocess
import sys

problems = []
listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.md"], capture_output=True, check=True)
pages = [pathlib.Path(name) for name in listed.stdout.decode().split() if name != "docs/benchmarks.md"]  # scripts/bench.sh writes it
headers = "\n".join(p.read_text() for p in pathlib.Path("KelInsInfra").rglob("*.h") if "internal" not in p.parts)
known = set(re.findall(r"[A-Za-z_]\w*", headers))

for page in pages:
    text = page.read_text(encoding="utf-8")
    prose = re.sub(r"^```.*?^```", "", text, flags=re.MULTILINE | re.DOTALL)
    for target in re.findall(r"\]\(([^)#\s]+)[^)]*\)", prose):
        if "://" not in target and not (page.parent / target).exists():
            problems.append(f"{page}: no {target}")
    for name in re.findall(r"\b(?:KelIns\w+|JSON|XML)::([\w:]+)", prose):
        for part in name.split("::"):
            if part and part != "operator" and part not in known and part not in ("KelInsInfra", "KelInsInfraStatic"):
                problems.append(f"{page}: no {name} in the headers")
    for script in re.findall(r"\bscripts/[\w.-]+", text):
        if not pathlib.Path(script).exists():
            problems.append(f"{page}: no {script}")

print("\n".join(problems) or f"pages: {len(pages)} with their links and names")
sys.exit(1 if problems else 0)
