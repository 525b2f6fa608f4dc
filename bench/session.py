#!/usr/bin/python3
# SPDX-License-Identifier: MIT

"""A desktop of its own for measuring: the tests' display and a session bus. Run as a program,
starts a command in one.

  session.py COMMAND [ARGUMENT ...]
"""

import ctypes
import mmap
import os
import struct
import subprocess
import sys
import time

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../tests/x11"))
import desktop

QUIET = 0.3  # seconds without a change: the picture is complete

_memcmp = ctypes.CDLL(None).memcmp
_memcmp.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_size_t]


class Session(desktop.Display):
    def __init__(self, width=1100, height=900, manager=True):
        super().__init__((width, height), manager)
        try:
            self._start_bus()
            self._map_screen()
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def _start_bus(self):
        bus = self._start(["dbus-daemon", "--session", "--nofork", "--print-address=1"],
                          self._closing, env=self.env, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True)
        self._closing.callback(bus.stdout.close)
        self.env["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def _map_screen(self):
        with open(os.path.join(self.folder, "Xvfb_screen0"), "r+b") as file:
            self._screen = mmap.mmap(file.fileno(), 0)
        header = struct.unpack(">25I", self._screen[:100])
        start = header[0] + 12 * header[19]
        self._line_size = header[12]
        self._size = self._line_size * header[5]
        self._now = ctypes.addressof(ctypes.c_char.from_buffer(self._screen, start))
        self._seen = ctypes.create_string_buffer(self._size)

    def watch_lines(self, first, count):
        """From now on only changes in these lines of the screen count: looking at all takes long."""
        self._now += first * self._line_size
        self._size = count * self._line_size
        self.has_changed()

    def has_changed(self):
        """Whether the screen differs from what it was at the last call."""
        if _memcmp(self._now, self._seen, self._size) == 0:
            return False
        ctypes.memmove(self._seen, self._now, self._size)
        return True

    def launch(self, command):
        """Starts a program; returns it and the seconds from exec to its complete picture."""
        self._come_to_rest(time.monotonic())
        started = time.monotonic()
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, env=self.env)
        return process, self._come_to_rest(started, process) - started

    def _come_to_rest(self, started, process=None):
        """When the screen changed last. A process that is given must change it first."""
        last = None if process else started
        while last is None or time.monotonic() - last < QUIET:
            if self.has_changed():
                last = time.monotonic()
            if process and process.poll() is not None:
                raise AssertionError(f"{process.args[0]} has ended")
            if time.monotonic() - started > desktop.PATIENCE:
                raise AssertionError("the screen does not come to rest")
            time.sleep(0.0005)
        return last


class WaylandSession(Session):
    """The compositor's window covers the screen of the X server."""

    def __init__(self):
        super().__init__(manager=False)
        try:
            self._start_compositor()
        except BaseException:
            self.close()
            raise

    def _start_compositor(self):
        settings = os.path.join(self.folder, "weston.ini")
        with open(settings, "w") as file:
            file.write("[core]\nidle-time=0\n[shell]\npanel-position=none\nanimation=none\n"
                       "startup-animation=none\nlocking=false\n")
        self._start(["weston", "--backend=x11-backend.so", "--use-pixman",
                     "--width=%d" % self.size[0], "--height=%d" % self.size[1],
                     "--socket=wayland-bench", "--config=" + settings],
                    self._closing, env=self.env, stdin=subprocess.DEVNULL,
                    stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        desktop.wait_until(lambda: os.path.exists(os.path.join(self.folder, "wayland-bench")),
                           "the compositor")
        self.env.update(WAYLAND_DISPLAY="wayland-bench", QT_QPA_PLATFORM="wayland")


if __name__ == "__main__":
    with Session(2000, 1200) as session:  # room for a large window and its frame
        sys.exit(subprocess.call(sys.argv[1:], env=session.env))
