# SPDX-License-Identifier: MIT

# scripts/picture, which ./run shows the program with where there is no display.

import os
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

PICTURE = os.path.join(os.path.dirname(__file__), "..", "..", "scripts", "picture")
KORVA = os.environ.get("KORVA", os.path.join(os.path.dirname(os.path.abspath(__file__)),
                                             "../../build/check/release/korva"))
PATIENCE = 60  # seconds


class PictureScript(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="korva-picture-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.file = os.path.join(self.folder, "new", "picture.png")

    def start(self, *command):
        # What it starts inherits the mark, by which it is found again.
        environment = {"PATH": os.environ["PATH"], "HOME": self.folder, "TMPDIR": self.folder}
        return subprocess.Popen([PICTURE, self.file, *command], env=environment, text=True,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)

    def left_running(self):
        mark = b"TMPDIR=" + self.folder.encode()
        found = []
        for number in filter(str.isdigit, os.listdir("/proc")):
            try:
                with open(f"/proc/{number}/environ", "rb") as file:
                    if mark in file.read().split(b"\0"):
                        with open(f"/proc/{number}/cmdline", "rb") as line:
                            found.append(line.read())
            except OSError:
                pass  # ended meanwhile, or not ours
        return found

    def assert_nothing_left(self):
        self.assertEqual(self.left_running(), [])
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith("tmp.")], [])

    def test_complete_picture_is_saved(self):
        script = self.start(KORVA, "/usr")
        out, errors = script.communicate(timeout=PATIENCE)
        self.assertEqual(script.returncode, 0, errors)
        self.assertIn(self.file, out)
        pixels = subprocess.run(["convert", self.file, "-depth", "8", "rgb:-"],
                                stdout=subprocess.PIPE, check=True).stdout
        self.assertEqual(len(pixels), 3 * 800 * 640)
        root_bar = 3 * (800 * (75 + 2) + 50 + 490)
        self.assertEqual(pixels[root_bar:root_bar + 3], bytes((232, 232, 232)))
        self.assert_nothing_left()

    def test_program_that_fails_is_reported_with_its_words(self):
        script = self.start("/bin/sh", "-c", "echo something odd >&2; exit 3")
        _, errors = script.communicate(timeout=PATIENCE)
        self.assertEqual(script.returncode, 1)
        self.assertIn("something odd", errors)
        self.assertFalse(os.path.exists(self.file))
        self.assert_nothing_left()

    def test_interruption_leaves_nothing_running(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number.name):
                # Shows no window: the script waits for one.
                script = self.start("/bin/sleep", "1000")
                end = time.monotonic() + PATIENCE
                while not any(b"1000" in line.split(b"\0")[1:2] for line in self.left_running()):
                    self.assertLess(time.monotonic(), end, "the program is not started")
                    time.sleep(0.01)
                script.send_signal(number)
                script.communicate(timeout=PATIENCE)
                self.assertEqual(script.returncode, 128 + number)
                self.assert_nothing_left()


if __name__ == "__main__":
    unittest.main()
