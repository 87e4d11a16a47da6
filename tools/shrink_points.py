#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Reduces a text file of points, one a line, to the fewest lines on which a command still fails.

    shrink_points.py POINTS SHRUNK [COMMAND...]

COMMAND is run with the name of a point file in place of {}, or at its end; it fails as on the whole
file: with the same exit status or by the same signal. Without a command, the program tulo3d of a
release build checks the mesh. Lines that are not needed go in ever smaller groups (delta debugging,
Zeller and Hildebrandt), so that in the end none can be left out alone. The order stays.
"""
import subprocess
import sys
import tempfile
from pathlib import Path

PROGRAM = Path(__file__).parent.parent / "build" / "release" / "apps" / "tulo3d"
SECONDS = 600  # a command that takes longer hangs, which is a failure, too


def statusOf(command, lines):
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder, "points.xyz")
        path.write_text("".join(lines))
        words = [str(path) if word == "{}" else word for word in command]
        try:
            return subprocess.run(words, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL, cwd=folder, timeout=SECONDS).returncode
        except subprocess.TimeoutExpired:
            return "timeout"


def shrink(lines, fails):
    size = max(1, len(lines) // 2)
    while True:
        start, before = 0, len(lines)
        while start < len(lines):
            rest = lines[:start] + lines[start + size:]
            if rest and fails(rest):
                lines = rest
            else:
                start += size
        if size == 1 and len(lines) == before:
            return lines
        size = max(1, size // 2)


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    source, target, *command = sys.argv[1:]
    command = command or [str(PROGRAM), "--check", "{}"]
    if "{}" not in command:
        command.append("{}")
    lines = [line.rstrip("\n") + "\n" for line in open(source) if line.strip()]
    status = statusOf(command, lines)
    if status == 0:
        sys.exit(f"{source}: the command does not fail")
    shrunk = shrink(lines, lambda some: statusOf(command, some) == status)
    Path(target).write_text("".join(shrunk))
    print(f"{len(lines)} lines, {len(shrunk)} needed for status {status}")


if __name__ == "__main__":
    main()
