#!/usr/bin/env python3
"""walkthrough.py MARKDOWN SDK: follows a walk-through to the letter in an empty folder, the current one: writes the files that it
shows, runs the commands, and compares what the last of them print with the text that follows."""

import pathlib
import re
import subprocess
import sys

document = pathlib.Path(sys.argv[1])
text = document.read_text(encoding="utf-8")
block = re.compile(r"^<!-- (file: (?P<file>\S+)|run) -->\n```\w+\n(?P<content>.*?)^```$", re.MULTILINE | re.DOTALL)
commands = ["set -euo pipefail", f"sdk={sys.argv[2]}"]
for found in block.finditer(text):
    if found["file"]:
        pathlib.Path(found["file"]).write_text(found["content"], encoding="utf-8")
    else:
        commands.append(found["content"])
wanted = re.findall(r"^```text\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)
if len(commands) < 3 or len(wanted) != 1:
    sys.exit(f"{document}: commands or their output are missing")

done = subprocess.run(["bash", "-c", "\n".join(commands)], capture_output=True, stdin=subprocess.DEVNULL)
output = done.stdout.decode(errors="replace").replace("\r", "").rstrip("\n") + "\n"
if done.returncode != 0 or not output.endswith(wanted[0]):
    print(f"{document.name}: exit code {done.returncode}, output\n{output}{done.stderr.decode(errors='replace')}")
    sys.exit(1)
print(f"{document.name}: as it says")
