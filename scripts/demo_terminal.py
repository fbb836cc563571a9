#!/usr/bin/env python3
"""demo_terminal.py show|interrupt COMMAND...: runs a command on a terminal of its own, prints what it shows there without
the control sequences, and passes its exit code on. With interrupt, Ctrl+C is pressed once a fifth of its work is done."""

import os
import pty
import re
import select
import sys
import time

PATIENCE_SECONDS = 120


def run(command, interrupt):
    process, terminal = pty.fork()
    if process == 0:
        os.environ["TERM"] = "xterm"
        os.execvp(command[0], command)
    shown = b""
    deadline = time.monotonic() + PATIENCE_SECONDS
    while time.monotonic() < deadline:
        if not select.select([terminal], [], [], 1)[0]:
            continue
        try:
            shown += os.read(terminal, 65536)
        except OSError:  # the other end is closed
            break
        if interrupt and b"20 %" in shown:
            os.write(terminal, b"\x03")
            interrupt = False
    text = re.sub(r"\x1b\[[?0-9;]*[A-Za-z]", "", shown.decode("utf-8", "replace"))
    print(text.replace("\r", "\n"))
    return os.waitstatus_to_exitcode(os.waitpid(process, 0)[1])


if __name__ == "__main__":
    sys.exit(run(sys.argv[2:], sys.argv[1] == "interrupt"))
