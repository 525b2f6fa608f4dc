#!/usr/bin/python3
# SPDX-License-Identifier: MIT

"""Pages through the list that a program shows: what a page costs the processor, the X server's part
included, and how long it takes from the key to the first pixel that changes.

  page.py PROGRAM [ARGUMENT ...]
"""

import os
import statistics
import sys
import time

from Xlib import X, XK, display
from Xlib.ext import xtest

import session
import start

LIMIT_CPU_MS = 3
LIMIT_KEY_MS = 3
LIMIT_WORST_MS = 6
KEYS_A_SECOND = 30  # as a held key repeats
SECONDS = 4
SINGLE_KEYS = 61
PATIENCE = 2  # seconds for one key


def processor_time(process):
    """Milliseconds that all threads of a process have run."""
    folder = "/proc/%d/task" % process
    total = 0
    for thread in os.listdir(folder):
        try:
            with open("%s/%s/schedstat" % (folder, thread)) as file:
                total += int(file.read().split()[0])
        except FileNotFoundError:
            pass  # has ended
    return total / 1e6


class Keys:
    def __init__(self, name):
        self._display = display.Display(name)

    def press(self, name):
        code = self._display.keysym_to_keycode(XK.string_to_keysym(name))
        xtest.fake_input(self._display, X.KeyPress, code)
        xtest.fake_input(self._display, X.KeyRelease, code)
        self._display.sync()


def wait_for_change(desktop):
    started = time.monotonic()
    while not desktop.has_changed():
        if time.monotonic() - started > PATIENCE:
            raise AssertionError("a key changed nothing")
        time.sleep(0.0001)
    return 1000 * (time.monotonic() - started)


def held_key(keys, processes):
    """Processor time of each process for each key, in ms."""
    before = [processor_time(process) for process in processes]
    started = time.monotonic()
    count = KEYS_A_SECOND * SECONDS
    for number in range(count):
        time.sleep(max(0, started + number / KEYS_A_SECOND - time.monotonic()))
        keys.press("Next")
    time.sleep(0.3)
    return [(processor_time(process) - was) / count for process, was in zip(processes, before)]


def single_keys(desktop, keys):
    times = []
    for _ in range(SINGLE_KEYS):
        time.sleep(0.06)
        desktop.has_changed()
        keys.press("Next")
        times.append(wait_for_change(desktop))
    return times


def main():
    with session.Session(1320, 900) as desktop:
        process, _ = desktop.launch(sys.argv[1:])
        try:
            keys = Keys(desktop.name)
            desktop.watch_lines(400, 40)
            for _ in range(3):  # the first one selects a row, and caches are filled
                keys.press("Next")
                time.sleep(0.2)
            program, server = held_key(keys, [process.pid, desktop.server.pid])
            times = single_keys(desktop, keys)
        finally:
            process.kill()
            process.wait()
    good = start.row("processor time of a page, X server included", program + server, "ms",
                     LIMIT_CPU_MS, "program %.2f, server %.2f" % (program, server))
    good &= start.row("from key to first pixel", statistics.median(times), "ms", LIMIT_KEY_MS,
                      "median")
    good &= start.row("  at worst", max(times), "ms", LIMIT_WORST_MS, "of %d" % SINGLE_KEYS)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
