# SPDX-License-Identifier: MIT

# Folders that cannot be shown, and surroundings that are not as they should be: the window comes
# up all the same, soon and with nothing on the error output but that it cannot follow a folder.

import os
import resource
import shutil
import socket
import subprocess
import unittest

from desktop import KORVA, X11Test

WHITE = (255, 255, 255)
TREE = (2, 66, 150, 458)  # below the root's row
ITEMS = (176, 47, 480, 458)
PATH = (45, 2, 490, 24)  # in the root bar


class BadInput(X11Test):
    def assert_window_and_good_end(self, korva, unwatched=None):
        """`unwatched`: why the folder cannot be followed."""
        picture = korva.steady_picture()
        korva.close()
        self.assertEqual(korva.wait_for_end(), 0)
        warning = f"Warning: Cannot initate node watcher: .* : {unwatched}\n" if unwatched else ""
        self.assertRegex(korva.errors(), f"\\A{warning}\\Z")
        return picture

    def show(self, *arguments, unwatched=None, **options):
        return self.assert_window_and_good_end(self.start(*arguments, **options), unwatched)

    def assert_panes_empty(self, picture):
        self.assertEqual(picture.part(*TREE).colours(), {WHITE})
        self.assertEqual(picture.part(*ITEMS).colours(), {WHITE})

    def test_home_is_shown_where_nothing_else_can_be(self):
        home = self.new_folder("of the home/", "file of the home",
                               ".local/share/Trash/files/", ".local/share/Trash/info/")
        env = {"HOME": home}
        expected = self.show(env=env)
        self.assertNotEqual(expected.part(*ITEMS).colours(), {WHITE})
        folder = self.new_folder()
        loop = os.path.join(folder, "loop")
        os.symlink(loop, loop)
        dangling = os.path.join(folder, "dangling")
        os.symlink("nowhere", dangling)
        for path in (folder + "/none/there", loop + "/in it", dangling + "/in it", "",
                     "x" * 5000, "/" + "x" * 300 + "/y", folder.encode() + b"/\xff\xfe/\x80"):
            with self.subTest(path[:100]):
                self.assertEqual(self.show(path, env=env), expected)

    def test_file_or_unreadable_folder_gives_empty_panes(self):
        folder = self.new_folder("file", "closed/inside")
        self.assert_panes_empty(self.show(os.path.join(folder, "file"),
                                           unwatched="Not a directory"))
        closed = os.path.join(folder, "closed")
        if os.geteuid() == 0:
            # Root may read anything: somebody else looks.
            for path in (self.display.folder, folder):
                os.chmod(path, 0o755)
            shutil.chown(closed, "root")
            os.chmod(closed, 0o700)
            korva = self.start(closed, user="nobody", group="nogroup", extra_groups=[],
                               env={"HOME": folder, "XDG_RUNTIME_DIR": "/nonexistent"})
        else:
            os.chmod(closed, 0)
            self.addCleanup(os.chmod, closed, 0o700)
            korva = self.start(closed)
        self.assert_panes_empty(self.assert_window_and_good_end(korva, "Permission denied"))

    def test_links_lead_nowhere_or_in_circles(self):
        folder = self.new_folder("real/", "file")
        os.symlink(".", os.path.join(folder, "here"))
        os.symlink("loop", os.path.join(folder, "loop"))
        os.symlink("nowhere", os.path.join(folder, "dangling"))
        picture = self.show(folder)
        self.assertNotEqual(picture.part(*ITEMS).colours(), {WHITE})
        for name, why in (("loop", "Too many levels of symbolic links"),
                          ("dangling", "No such file or directory")):
            with self.subTest(name):
                self.show(os.path.join(folder, name), unwatched=why)

    def test_names_that_are_no_text_are_shown(self):
        folder = self.new_folder().encode()
        names = [b"\xff\xfe", b"new\nline", b"tab\tand\x01", b"\xe2\x80\xaeturned", b"-rf", b" ",
                 b"\xed\xa0\x80", b"x" * 255, "\U0001f600".encode() * 60, b"a\xcc\x81" * 80]
        root = os.path.join(folder, b"odd\xff root")
        for name in names:
            os.makedirs(os.path.join(root, name))
        picture = self.show(root)
        for area in (TREE, ITEMS, PATH):
            self.assertGreater(len(picture.part(*area).colours()), 1)

    def test_relative_root_is_of_the_current_folder(self):
        folder = self.new_folder("inner/one/", "inner/two")
        expected = self.show(os.path.join(folder, "inner"))
        self.assertEqual(self.show("inner", cwd=folder), expected)

    def test_session_bus_that_hangs_does_not_delay_the_window(self):
        path = os.path.join(self.new_folder(), "bus")
        with socket.socket(socket.AF_UNIX) as bus:
            bus.bind(path)
            bus.listen()
            korva = self.start(self.new_folder("a"),
                               env={"DBUS_SESSION_BUS_ADDRESS": "unix:path=" + path})
            korva.window()
            # Asked without care, it would be waited for for 25 seconds and more.
            self.assertLess(korva.age(), 5)
            self.assert_window_and_good_end(korva)

    def test_no_fonts_at_all(self):
        settings = os.path.join(self.new_folder(), "fonts.conf")
        with open(settings, "w") as file:
            file.write("<?xml version='1.0'?><!DOCTYPE fontconfig SYSTEM 'fonts.dtd'><fontconfig/>")
        picture = self.show(self.new_folder("a/", "b"), env={"FONTCONFIG_FILE": settings})
        self.assertEqual(picture.at(2, 2), (232, 232, 232))

    def test_home_that_cannot_be_written_or_is_not_there(self):
        folder = self.new_folder("a")
        for home in ("/proc/sys", "/proc/none", ""):
            with self.subTest(home):
                self.show(folder, env={"HOME": home})
                self.show(env={"HOME": home},
                          unwatched="Invalid argument" if home == "/proc/none" else None)

    def test_output_that_nobody_takes(self):
        folder = self.new_folder("a")
        read, write = os.pipe()
        os.close(read)
        self.addCleanup(os.close, write)
        self.show(folder, stdout=write)
        closed = self.start("-c", 'exec "$0" "$1" >&-', KORVA, folder,
                            program="/bin/sh")
        self.assert_window_and_good_end(closed)

    def test_few_descriptors_and_many_arguments(self):
        def few():
            resource.setrlimit(resource.RLIMIT_NOFILE, (40, 40))
        folder = self.new_folder(*(f"sub{i}/" for i in range(100)))
        self.show(folder, preexec_fn=few)
        self.show(folder, "-display", ":99", "--style", "x", "")


class NoDisplay(unittest.TestCase):
    """What to know about the display goes to the error output, in one line."""

    def complaint(self, **env):
        folder = os.environ.get("TMPDIR", "/tmp")
        result = subprocess.run(
            [KORVA], env={"PATH": os.environ["PATH"], "HOME": folder,
                          "XDG_RUNTIME_DIR": folder, **env},
            stdin=subprocess.DEVNULL, capture_output=True, timeout=20, text=True)
        self.assertEqual(result.returncode, 1)  # negative would be a signal
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertTrue(result.stderr.startswith("korva: cannot open "), result.stderr)
        return result.stderr

    def test_none(self):
        self.assertIn("DISPLAY", self.complaint())

    def test_one_that_cannot_be_opened(self):
        self.assertIn(":4711", self.complaint(DISPLAY=":4711"))
        self.assertIn("nonsense", self.complaint(DISPLAY="nonsense"))
        self.assertIn("no-such", self.complaint(WAYLAND_DISPLAY="no-such"))
        self.assertIn("no-such", self.complaint(QT_QPA_PLATFORM="no-such"))


if __name__ == "__main__":
    unittest.main()
