#!/usr/bin/python3
# SPDX-License-Identifier: MIT

"""Measures a start from exec to the complete picture of a folder of 20 entries, and the memory
that the program then has, beside those of an empty window; on X11 and on Wayland.

  start.py PROGRAM EMPTY_WINDOW [RUNS]
"""

import os
import re
import statistics
import sys
import tempfile

import session

LIMIT_MS = 60
LIMIT_WAYLAND_MS = 80
LIMIT_MB = 25


def fill(folder):
    for number in range(20):
        path = os.path.join(folder, "entry %02d" % number)
        if number % 4 == 0:
            os.mkdir(path)
        else:
            with open(path + ".txt", "w") as file:
                file.write("x" * number * 100)


def memory(process):
    """Proportional share of the memory, in MB."""
    with open("/proc/%d/smaps_rollup" % process.pid) as file:
        return int(re.search(r"^Pss:\s+(\d+)", file.read(), re.M).group(1)) / 1024


def measure(desktop, command):
    process, seconds = desktop.launch(command)
    size = memory(process)
    process.terminate()
    _, _, usage = os.wait4(process.pid, 0)
    process.returncode = 0
    return seconds * 1000, (usage.ru_utime + usage.ru_stime) * 1000, size


def row(what, figure, unit, limit, beside):
    bound = "at most  %7g" % limit if limit else ""
    print("%-44s %10.2f %-4s %-16s   %s" % (what, figure, unit, bound, beside), flush=True)
    return not limit or figure <= limit


def compare(desktop, commands, runs, what, limit):
    for command in commands:  # fills the caches of files and fonts
        measure(desktop, command)
    # In turns, so that a busy machine is equally unfair to both.
    figures = [[measure(desktop, command) for command in commands] for _ in range(runs)]
    middle = [[statistics.median(run[which][kind] for run in figures) for kind in range(3)]
              for which in range(2)]
    least = [min(run[which][0] for run in figures) for which in range(2)]
    good = row("start to " + what, middle[0][0], "ms", limit,
               "least %.1f; empty window %.1f, least %.1f" % (least[0], middle[1][0], least[1]))
    row("  processor time of start and end", middle[0][1], "ms", None,
        "empty window %.1f" % middle[1][1])
    good &= row("memory with 20 entries (PSS)", middle[0][2], "MB", LIMIT_MB,
                "empty window %.1f" % middle[1][2])
    return good


def main():
    program, empty = sys.argv[1:3]
    runs = int(sys.argv[3]) if len(sys.argv) > 3 else 15
    with tempfile.TemporaryDirectory() as folder:
        fill(folder)
        commands = [[program, folder], [empty]]
        with session.Session() as desktop:
            good = compare(desktop, commands, runs, "complete picture, 20 entries", LIMIT_MS)
        with session.WaylandSession() as desktop:
            good &= compare(desktop, commands, runs, "the same on Wayland", LIMIT_WAYLAND_MS)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
