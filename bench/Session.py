# SPDX-License-Identifier: MIT

"""A desktop of its own for measuring: X server, window manager, session bus and home folder, all
ended and deleted with the session. The screen is read from the server's frame buffer in memory, so
that looking costs the measured program nothing."""

import ctypes
import mmap
import os
import select
import shutil
import struct
import subprocess
import tempfile
import time

from Xlib import X, display

SETTINGS = """<?xml version="1.0"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
<focus><focusNew>yes</focusNew></focus><desktops><number>1</number></desktops>
<keyboard></keyboard>
<applications><application class="*" type="normal">
<maximized>%s</maximized><focus>yes</focus></application></applications>
</openbox_config>
"""
QUIET = 0.3  # seconds without a change: the picture is complete
PATIENCE = 20.0

_memcmp = ctypes.CDLL(None).memcmp
_memcmp.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_size_t]


class Session:
    def __init__(self, width, height, maximized=True):
        self.folder = tempfile.mkdtemp(prefix="bench-session-")
        self.processes = []
        try:
            self._start(width, height, maximized)
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def _start(self, width, height, maximized):
        read_end, write_end = os.pipe()
        self._spawn(["Xvfb", "-displayfd", str(write_end), "-screen", "0",
                     "%dx%dx24" % (width, height), "-fbdir", self.folder, "-nolisten", "tcp",
                     "-noreset"], pass_fds=[write_end])
        os.close(write_end)
        number = self._line(read_end, "the X server")
        os.close(read_end)
        keep = ("PATH", "LANG", "LC_ALL", "TZ")
        self.environment = {k: v for k, v in os.environ.items() if k in keep}
        self.environment.update(DISPLAY=":" + number, HOME=self.folder, TMPDIR=self.folder,
                                XDG_RUNTIME_DIR=self.folder)
        bus = self._spawn(["dbus-daemon", "--session", "--nofork", "--print-address=1"],
                          stdout=subprocess.PIPE)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._line(
            bus.stdout.fileno(), "the session bus")
        settings = os.path.join(self.folder, "rc.xml")
        with open(settings, "w") as file:
            file.write(SETTINGS % ("true" if maximized else "false"))
        self._spawn(["openbox", "--sm-disable", "--config-file", settings])
        os.environ.pop("XAUTHORITY", None)
        self.display = display.Display(":" + number)
        self._wait_for_window_manager()
        # Away from the windows: a pointer that they meet would make them draw more.
        self.display.screen().root.warp_pointer(width - 1, height - 1)
        self.display.sync()
        self._map_screen()

    def _spawn(self, command, **options):
        options.setdefault("stdout", subprocess.DEVNULL)
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                   env=getattr(self, "environment", None), **options)
        self.processes.append(process)
        return process

    @staticmethod
    def _line(descriptor, who):
        line = b""
        while not line.endswith(b"\n"):
            if not select.select([descriptor], [], [], PATIENCE)[0]:
                raise TimeoutError(who + " does not start")
            byte = os.read(descriptor, 1)
            if not byte:
                raise RuntimeError(who + " has ended")
            line += byte
        return line.decode().strip()

    def _wait_for_window_manager(self):
        atom = self.display.intern_atom("_NET_SUPPORTING_WM_CHECK")
        end = time.monotonic() + PATIENCE
        while self.display.screen().root.get_full_property(atom, X.AnyPropertyType) is None:
            if time.monotonic() > end:
                raise TimeoutError("the window manager does not start")
            time.sleep(0.01)

    def _map_screen(self):
        with open(os.path.join(self.folder, "Xvfb_screen0"), "r+b") as file:
            self._screen = mmap.mmap(file.fileno(), 0)
        head = struct.unpack(">25I", self._screen[:100])  # of the XWD format
        start = head[0] + head[19] * 12
        self._size = head[12] * head[5]
        self._now = ctypes.addressof(ctypes.c_char.from_buffer(self._screen, start))
        self._seen = ctypes.create_string_buffer(self._size)
        self.changed()

    def changed(self):
        """Whether the screen differs from what it was at the last call."""
        if _memcmp(self._now, self._seen, self._size) == 0:
            return False
        ctypes.memmove(self._seen, self._now, self._size)
        return True

    def launch(self, command):
        """Starts a program; returns it and the seconds from exec to its complete picture."""
        self.settle(time.monotonic())
        start = time.monotonic()
        program = subprocess.Popen(command, stdin=subprocess.DEVNULL, env=self.environment)
        last = self.settle(start, program)
        return program, last - start

    def settle(self, start, program=None):
        """Waits until the screen is at rest; returns when it changed last. A program that is
        named must change it first."""
        last = None if program else start
        while last is None or time.monotonic() - max(last, start) < QUIET:
            if self.changed():
                last = time.monotonic()
            if program and program.poll() is not None:
                raise RuntimeError("%s has ended" % program.args[0])
            if time.monotonic() - start > PATIENCE:
                raise TimeoutError("the screen does not come to rest")
            time.sleep(0.0005)
        return last

    def close(self):
        for process in reversed(self.processes):
            process.terminate()
        for process in self.processes:
            process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)
