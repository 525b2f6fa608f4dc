# SPDX-License-Identifier: MIT

# The program on Wayland. The compositor draws into a window of a virtual X server, where its
# pixels can be read and input comes from.

import contextlib
import glob
import os
import shutil
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../x11"))

from desktop import KORVA, Display, Picture, Program, wait_until

ABOUT = os.environ.get("KORVA_ABOUT", "build/check/tests/about_program")
SOCKET = "wayland-test"
# Nothing but the programs' windows, and nothing that moves.
SETTINGS = """
[core]
idle-time=0
[shell]
panel-position=none
background-color=0xff204060
locking=false
animation=none
startup-animation=none
close-animation=none
focus-animation=none
"""


def missing():
    if shutil.which("weston") is None:
        return "there is no weston"
    plugin = "qt6/plugins/platforms/libqwayland*.so"
    if not glob.glob("/usr/lib*/" + plugin) and not glob.glob("/usr/lib/*/" + plugin):
        return "there is no Wayland plugin for Qt 6"
    return None


def find(part, whole):
    """Left and top of a picture in another one, or None."""
    rows = [part.data[4 * part.width * y:4 * part.width * (y + 1)] for y in range(part.height)]
    length = 4 * whole.width
    for top in range(whole.height - part.height + 1):
        start = whole.data.find(rows[0], length * top, length * (top + 1))
        if start < 0 or start % 4 != 0:
            continue
        if all(whole.data.startswith(row, start + length * y) for y, row in enumerate(rows)):
            return start % length // 4, top
    return None


STRIPE = Picture(bytes((184, 184, 184, 0)) * 30 * 20, 30, 20)


@unittest.skipIf(missing(), missing())
class Wayland(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.display = Display()
        cls.addClassCleanup(cls.display.close)

    def setUp(self):
        settings = os.path.join(self.display.folder, "weston.ini")
        with open(settings, "w") as file:
            file.write(SETTINGS)
        with open(os.path.join(self.display.folder, "weston.log"), "wb") as log:
            self.compositor = subprocess.Popen(
                ["weston", "--backend=x11-backend.so", "--use-pixman", "--width=1000",
                 "--height=750", "--socket=" + SOCKET, "--config=" + settings],
                env=self.display.env, stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        self.addCleanup(self.lose_compositor)
        wait_until(lambda: "Weston" in self.display.ask("xwininfo", "-root", "-tree"),
                   "the compositor's window")
        wait_until(lambda: os.path.exists(os.path.join(self.display.folder, SOCKET)), "its socket")
        self.folder = os.path.join(self.display.home, "shown")
        os.makedirs(os.path.join(self.folder, "sub folder"), exist_ok=True)

    def lose_compositor(self):
        self.compositor.kill()
        self.compositor.wait()
        for name in (SOCKET, SOCKET + ".lock"):
            with contextlib.suppress(FileNotFoundError):
                os.unlink(os.path.join(self.display.folder, name))

    def start(self, program=KORVA, **env):
        env = {"WAYLAND_DISPLAY": SOCKET, "QT_QPA_PLATFORM": "wayland", **env}
        started = Program(self.display, [program, self.folder], env=env)
        self.addCleanup(started.end)
        return started

    def on_x11(self, **env):
        """What the program shows on the X server itself."""
        korva = Program(self.display, [KORVA, self.folder], env=env)
        try:
            picture = korva.steady_picture()
        finally:
            korva.end()
        return picture

    def wait_for(self, part, what, program):
        """Where the screen shows this picture."""
        def look():
            if program.process.poll() is not None:
                raise AssertionError(f"ended with {program.process.returncode}: {program.errors()}")
            return find(part, self.display.picture())
        try:
            return wait_until(look, what)
        except AssertionError:
            self.display.picture().save_failure()
            raise

    def assert_shows_the_same(self, **env):
        expected = self.on_x11(QT_SCALE_FACTOR=env.get("QT_SCALE_FACTOR", "1"))
        korva = self.start(**env)
        self.wait_for(expected, "the picture that X11 shows", korva)
        return korva

    def test_shows_what_it_shows_on_x11_and_ends_with_its_window(self):
        korva = self.assert_shows_the_same()
        self.display.press("alt+w")
        self.assertEqual(korva.wait_for_end(), 0, korva.errors())
        self.assertEqual(korva.errors(), "")

    def test_shows_the_same_in_a_frame_of_its_own(self):
        # Without OpenGL there is no frame; the picture has to be there all the same.
        self.assert_shows_the_same(QT_WAYLAND_CLIENT_BUFFER_INTEGRATION="wayland-egl")

    def test_shows_the_same_at_a_scale_of_one_and_a_half(self):
        self.assert_shows_the_same(QT_SCALE_FACTOR="1.5")

    def test_takes_the_pointer_and_keys(self):
        korva = self.start()
        row = self.on_x11().part(180, 30, 300, 41)  # the only row of the right pane
        x, y = self.wait_for(row, "the row", korva)
        self.display.do("xdotool", "mousemove", str(x + 60), str(y + 6), "click", "1")
        wait_until(lambda: (184, 184, 184) in self.display.picture().part(
            x, y, x + 120, y + 11).colours(), "the row selected")

    def test_keys_answer_the_alert_and_then_close_the_window(self):
        korva = self.start(ABOUT)
        # The stripe left of its text, below the icon.
        wait_until(lambda: find(STRIPE, self.display.picture()), "the alert")
        self.display.press("Return")
        wait_until(lambda: not find(STRIPE, self.display.picture()), "no alert")
        self.display.press("alt+w")
        self.assertEqual(korva.wait_for_end(), 0, korva.errors())

    def test_ends_when_the_compositor_goes_away(self):
        korva = self.start()
        self.wait_for(self.on_x11().part(0, 0, 200, 100), "the picture", korva)
        self.lose_compositor()
        self.assertEqual(korva.wait_for_end(2), 1, korva.errors())


if __name__ == "__main__":
    unittest.main()
