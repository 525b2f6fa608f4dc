# SPDX-License-Identifier: MIT

# A virtual display with a window manager, programs on it, and what is to be seen there.
#
# The server keeps its pixels in a file that is mapped into memory: a look at the screen costs
# no round trip, and shows what a user would see at that moment.

import contextlib
import os
import re
import select
import shutil
import signal
import struct
import subprocess
import tempfile
import time
import unittest

PATIENCE = 20  # seconds; far more than anything takes
# What is tested: as ./check has built it when nothing else is said.
BUILT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../build/check/release")
KORVA = os.environ.get("KORVA", os.path.join(BUILT, "korva"))
ABOUT = os.environ.get("KORVA_ABOUT", os.path.join(BUILT, "tests/about_program"))
AT_WORK = os.environ.get("KORVA_AT_WORK", os.path.join(BUILT, "tests/at_work_program"))

SCREEN = (1100, 900)

# Programs start with what a terminal gives them, also when the tests run under nohup or behind &.
signal.signal(signal.SIGHUP, signal.SIG_DFL)
signal.signal(signal.SIGINT, signal.default_int_handler)

# Where the window stands when nothing says otherwise: position and size of its content.
FRAME = (50, 75, 501, 476)


def wait_until(condition, what, patience=PATIENCE):
    """What `condition` returns as soon as that is true; fails when it does not become so."""
    end = time.monotonic() + patience
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise AssertionError(f"not within {patience} s: {what}")
        time.sleep(0.005)


class Picture:
    """The pixels of a part of the screen."""

    def __init__(self, data, width, height):
        self.data = data  # blue, green, red, unused
        self.width = width
        self.height = height

    def __eq__(self, other):
        return (self.width, self.height, self.data) == (other.width, other.height, other.data)

    def at(self, x, y):
        start = 4 * (y * self.width + x)
        blue, green, red = self.data[start:start + 3]
        return red, green, blue

    def part(self, left, top, right, bottom):
        """Edges are inclusive."""
        rows = [self.data[4 * (y * self.width + left):4 * (y * self.width + right + 1)]
                for y in range(top, bottom + 1)]
        return Picture(b"".join(rows), right - left + 1, bottom - top + 1)

    def colours(self):
        return {self.at(x, y) for y in range(self.height) for x in range(self.width)}

    def save(self, path):
        with open(path, "wb") as file:
            file.write(b"P6 %d %d 255\n" % (self.width, self.height))
            file.write(b"".join(bytes(self.at(x, y))
                                for y in range(self.height) for x in range(self.width)))

    def save_failure(self):
        """For whoever looks into a failure, in the folder that KORVA_PICTURES names."""
        if "KORVA_PICTURES" in os.environ:
            descriptor, path = tempfile.mkstemp(".ppm", "failure-", os.environ["KORVA_PICTURES"])
            os.close(descriptor)
            self.save(path)
            print("saved", path, flush=True)


class Display:
    """An X server with a window manager, both with a home folder of their own.

    Without one the keys go to whatever window is under the pointer.
    """

    def __init__(self, size=None, manager=True):
        self.size = size or SCREEN
        self._closing = contextlib.ExitStack()
        with contextlib.ExitStack() as stack:
            self.folder = tempfile.mkdtemp(prefix="korva-x11-")
            stack.callback(shutil.rmtree, self.folder, ignore_errors=True)
            self.home = os.path.join(self.folder, "home")
            os.mkdir(self.home)
            self.server = self._start_server(stack)
            self.env = {
                "PATH": os.environ["PATH"], "HOME": self.home, "DISPLAY": self.name,
                "LC_ALL": "C.UTF-8", "XDG_RUNTIME_DIR": self.folder,
                "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent",
            }
            for variable in ("ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "KIT_DEBUG"):
                if variable in os.environ:
                    self.env[variable] = os.environ[variable]
            if manager:
                self._start_manager(stack)
            self.put_pointer_away()
            self._closing = stack.pop_all()

    @staticmethod
    def _start(command, stack, **options):
        process = subprocess.Popen(command, **options)

        def end():
            process.kill()
            process.wait()
        stack.callback(end)
        return process

    def _start_manager(self, stack):
        manager = self._start(["openbox", "--sm-disable"], stack, env=self.env,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until(lambda: "window id" in self.ask("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"),
                   "a window manager")
        assert manager.poll() is None

    def _start_server(self, stack):
        read, write = os.pipe()
        with open(os.path.join(self.folder, "server.log"), "wb") as log, os.fdopen(read) as answer:
            server = self._start(
                ["Xvfb", "-displayfd", str(write), "-screen", "0", "%dx%dx24" % self.size, "-nolisten",
                 "tcp", "-noreset", "-fbdir", self.folder],
                stack, pass_fds=[write], stdout=log, stderr=log)
            os.close(write)
            if not select.select([answer], [], [], PATIENCE)[0]:
                raise AssertionError("the X server does not start")
            self.name = ":" + answer.readline().strip()
        if self.name == ":":
            with open(os.path.join(self.folder, "server.log")) as log:
                raise AssertionError("the X server did not start: " + log.read())
        return server

    def close(self):
        self._closing.close()

    def lose(self):
        """The server goes away without a word."""
        self.server.kill()
        self.server.wait()

    def ask(self, *command):
        """What a tool prints; nothing when it fails."""
        result = subprocess.run(command, env=self.env, stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL, timeout=PATIENCE)
        return result.stdout.decode(errors="replace") if result.returncode == 0 else ""

    def do(self, *command):
        subprocess.run(command, env=self.env, check=True, stdout=subprocess.DEVNULL,
                       timeout=PATIENCE)

    def click(self, x, y, button=1, times=1):
        self.do("xdotool", "mousemove", str(x), str(y),
                "click", "--repeat", str(times), "--delay", "30", str(button))
        self.put_pointer_away()

    def put_pointer_away(self):
        """Else it is part of the pictures."""
        self.do("xdotool", "mousemove", str(self.size[0] - 1), str(self.size[1] - 1))

    def press(self, *keys):
        self.do("xdotool", "key", *keys)

    def picture(self):
        """The whole screen."""
        with open(os.path.join(self.folder, "Xvfb_screen0"), "rb") as file:
            data = file.read()
        header = struct.unpack(">25I", data[:100])
        width, height, line_size, colours = header[4], header[5], header[12], header[19]
        pixels = header[0] + 12 * colours  # the colour map comes between
        assert header[11] == 32 and line_size == 4 * width
        return Picture(data[pixels:pixels + height * line_size], width, height)


class Program:
    """A running program, and its window of a given title."""

    def __init__(self, display, command, title="Korva", **options):
        self.display = display
        self.title = title
        self.started = time.monotonic()
        # Not a pipe: whoever starts many programs would have to read all of them.
        self._errors = tempfile.TemporaryFile()
        options.setdefault("stdout", subprocess.DEVNULL)
        env = {**display.env, **options.pop("env", {})}
        self.process = subprocess.Popen(command, env=env, stdin=subprocess.DEVNULL,
                                        stderr=self._errors, **options)

    def age(self):
        """Seconds since the start."""
        return time.monotonic() - self.started

    def errors(self):
        self._errors.seek(0)
        return self._errors.read().decode(errors="replace")

    def window(self, title=None):
        """The number of the window; fails when none comes up."""
        def find():
            if self.process.poll() is not None:
                raise AssertionError(
                    f"ended with {self.process.returncode}, no window: {self.errors()}")
            return self.find_window(title)
        return wait_until(find, f"a window '{title or self.title}'")

    def find_window(self, title=None):
        found = self.display.ask("xdotool", "search", "--all", "--onlyvisible", "--pid",
                                 str(self.process.pid), "--name", f"^{title or self.title}$").split()
        return found[0] if found else None

    def frame(self, title=None):
        """Position on the screen and size of the window's content."""
        text = self.display.ask("xwininfo", "-id", self.window(title))
        numbers = [re.search(label + r":\s*(-?\d+)", text) for label in
                   ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")]
        return tuple(int(number.group(1)) for number in numbers)

    def picture(self, title=None):
        """What the screen shows where the window's content is."""
        x, y, width, height = self.frame(title)
        return self.display.picture().part(x, y, x + width - 1, y + height - 1)

    def steady_picture(self, title=None, rest=0.3):
        """The picture when it has not changed for a while."""
        last = [None, 0.0]

        def is_steady():
            now = self.picture(title)
            if last[0] is None or now != last[0]:
                last[:] = now, time.monotonic()
            return time.monotonic() - last[1] > rest
        wait_until(is_steady, "a picture that does not change")
        return last[0]

    def wait_for_picture(self, condition, what, title=None):
        """The first picture for which the condition is true."""
        found = []

        def look():
            found[:] = [self.picture(title)]
            return condition(found[0])
        try:
            wait_until(look, what)
        except AssertionError:
            found[0].save_failure()
            raise
        return found[0]

    def resize(self, width, height):
        self.display.do("xdotool", "windowsize", self.window(), str(width), str(height))

    def wait_for_size(self, width, height):
        wait_until(lambda: self.frame()[2:] == (width, height), f"a size of {width}x{height}")

    def click(self, x, y, button=1, times=1, title=None):
        """At a place of the content."""
        left, top, *_ = self.frame(title)
        self.display.click(left + x, top + y, button, times)

    def close(self, title=None):
        """As the close box does it."""
        self.display.do("wmctrl", "-i", "-c", self.window(title))

    def wait_for_end(self, patience=PATIENCE):
        """The exit status; negative numbers are signals."""
        try:
            return self.process.wait(patience)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"still running after {patience} s") from None

    def end(self):
        """Ends it the hard way when a test has left it running."""
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self._errors.close()


class X11Test(unittest.TestCase):
    """One display for each class; programs end with their test."""

    @classmethod
    def setUpClass(cls):
        cls.display = Display()
        cls.addClassCleanup(cls.display.close)

    def start(self, *arguments, program=KORVA, title="Korva", **options):
        started = Program(self.display, [program, *arguments], title, **options)
        self.addCleanup(started.end)
        return started

    def new_folder(self, *names):
        """A folder with these entries; a name that ends in a slash is a folder."""
        folder = tempfile.mkdtemp(dir=self.display.folder)
        for name in names:
            path = os.path.join(folder, name)
            os.makedirs(path if name.endswith("/") else os.path.dirname(path), exist_ok=True)
            if not name.endswith("/"):
                with open(path, "wb"):
                    pass
        return folder

    def assert_ends_well(self, program):
        self.assertEqual(program.wait_for_end(), 0, program.errors())
        self.assertEqual(program.errors(), "")
