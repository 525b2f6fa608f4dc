# SPDX-License-Identifier: MIT

# The clipboard and drags, between programs of the kits and others.

import os
import signal
import socket
import subprocess
import tempfile
import time
import unittest
from urllib.parse import quote

from desktop import PATIENCE, Program, X11Test, wait_until

DRAG = os.environ.get("KORVA_DRAG", os.path.join(
    os.path.dirname(os.path.abspath(__file__)), "../../build/check/release/tests/drag_program"))
# Debian's own Python: another one does not have Debian's modules.
PYTHON = "/usr/bin/python3"
GTK = [PYTHON, "-B", os.path.join(os.path.dirname(os.path.abspath(__file__)), "gtk_peer.py")]
GROUND = (90, 160, 90)  # of the program's window
COPIED = "x-special/gnome-copied-files"

HAS_GTK = subprocess.run(
    [PYTHON, "-c", "import gi; gi.require_version('Gtk', '3.0')"], stderr=subprocess.DEVNULL
).returncode == 0

# A name of everything that a disk can hold, and how it travels.
ODD = b"a b%#?\n\xff\xc3\xa9"
ODD_URI = "a%20b%25%23%3F%0A%FF%C3%A9"


class Peer(Program):
    """A program that says line by line what happens to it."""

    def __init__(self, display, command, title, *arguments):
        descriptor, self.said = tempfile.mkstemp(dir=display.folder)
        os.close(descriptor)
        with open(self.said, "a") as said:
            super().__init__(display, [*command, title, *arguments], title, stdout=said)

    def lines(self):
        """Whole ones."""
        with open(self.said) as said:
            return said.read().split("\n")[:-1]

    def wait_for(self, line, patience=PATIENCE):
        """That line, or one that begins with it; what came before is forgotten."""
        def find():
            return next((each for each in self.lines() if each.startswith(line)), None)
        try:
            return wait_until(find, line, patience)
        except AssertionError as error:
            raise AssertionError(f"{error}; said: {self.lines()} {self.errors()}") from None

    def forget(self):
        os.truncate(self.said, 0)


class Interchange(X11Test):
    def setUp(self):
        self.folder = self.new_folder("plain", "second")
        self.odd = os.path.join(self.folder.encode(), ODD)
        with open(self.odd, "wb"):
            pass
        self.uri = "file://" + quote(self.folder) + "/"
        self.addCleanup(self.display.do, "xdotool", "mouseup", "1", "mouseup", "3")

    def open(self, name, left, *paths):
        """A window of a program of the kits, in which `paths` can be dragged."""
        return self.start_peer([DRAG], name, left, *paths)

    def open_gtk(self, name, left, *uris):
        return self.start_peer(GTK, name, left, *uris)

    def start_peer(self, command, name, left, *arguments):
        peer = Peer(self.display, command, name, str(left), "100", *arguments)
        self.addCleanup(peer.end)
        peer.frame()  # is there
        return peer

    def focus(self, peer):
        self.display.do("xdotool", "windowfocus", "--sync", peer.window())

    def key(self, peer, key, answer=None):
        self.focus(peer)
        peer.forget()
        self.display.press(key)
        return peer.wait_for(answer) if answer else None

    # Drags, step by step: what is dragged over must have time to see it.

    def press_on(self, peer, button=1):
        left, top, *_ = peer.frame()
        self.button = button
        self.move_to(left + 20, top + 20)
        self.display.do("xdotool", "mousedown", str(button))
        for step in range(4):
            self.move_to(left + 24 + 4 * step, top + 24)

    def move_to(self, x, y):
        self.display.do("xdotool", "mousemove", str(x), str(y))

    def move_onto(self, peer, sign, x=100, y=100):
        """Moves about until the program says that it sees the drag."""
        left, top, *_ = peer.frame()
        steps = [0]

        def seen():
            steps[0] += 1
            self.move_to(left + x + steps[0] % 2, top + y)
            return any(line.startswith(sign) for line in peer.lines())
        wait_until(seen, f"{sign}; said: {peer.lines()}")
        self.move_to(left + x, top + y)

    def let_go(self):
        self.display.do("xdotool", "mouseup", str(self.button))

    # The clipboard.

    def xclip(self, target, text):
        """Another program that holds these bytes."""
        held = subprocess.Popen(["xclip", "-quiet", "-selection", "clipboard", "-t", target, "-i"],
                                env=self.display.env, stdin=subprocess.PIPE,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

        def end():
            held.send_signal(signal.SIGCONT)
            held.kill()
            held.wait()
        self.addCleanup(end)
        held.stdin.write(text.encode())
        held.stdin.close()
        wait_until(lambda: self.clipboard(target) == text, "the clipboard of xclip")
        return held

    def clipboard(self, target):
        return self.display.ask("xclip", "-selection", "clipboard", "-o", "-t", target)

    def test_ours_on_the_clipboard_is_read_by_others(self):
        peer = self.open("one", 100, self.odd)
        self.key(peer, "ctrl+c", "Copy")
        self.assertEqual(self.clipboard("text/uri-list"), self.uri + ODD_URI + "\r\n")
        self.assertEqual(self.clipboard(COPIED), "copy\n" + self.uri + ODD_URI)
        self.assertNotIn("x-kde", self.clipboard("TARGETS"))
        self.key(peer, "ctrl+x", "Cut")
        self.assertEqual(self.clipboard(COPIED), "cut\n" + self.uri + ODD_URI)
        self.assertEqual(self.clipboard("application/x-kde-cutselection"), "1")
        self.assertIn(self.folder, self.clipboard("UTF8_STRING"))
        self.assertIn("paste DATA " + self.uri + ODD_URI + " Cut Korva",
                      self.key(peer, "ctrl+v", "paste "))

    def test_theirs_is_pasted_and_our_cut_forgotten(self):
        peer = self.open("one", 100, self.odd)
        self.key(peer, "ctrl+x", "Cut")
        self.xclip(COPIED, "cut\n" + self.uri + ODD_URI)
        self.assertEqual(self.key(peer, "ctrl+v", "paste "), "paste DATA " + self.uri + ODD_URI + " Cut")
        self.xclip("text/uri-list", "http://example.com/\r\n" + self.uri + "plain\r\nfile:///%zz\r\n")
        self.assertEqual(self.key(peer, "ctrl+v", "paste "), "paste DATA " + self.uri + "plain Copy")
        self.xclip("UTF8_STRING", "words")
        self.assertEqual(self.key(peer, "ctrl+v", "paste "), "paste MIME text=file://words")
        self.xclip("image/png", "pixels")
        self.assertEqual(self.key(peer, "ctrl+v", "paste "), "paste nothing")
        # More than one message of the display server holds.
        self.xclip("text/uri-list", (self.uri + "plain\r\n") * 20000)
        self.assertEqual(self.key(peer, "ctrl+v", "paste ").count("/plain"), 20000)
        self.key(peer, "ctrl+a", "Clear")
        self.assertEqual(self.clipboard("TARGETS"), "")
        self.assertEqual(self.key(peer, "ctrl+v", "paste "), "paste nothing")

    def test_every_field_reaches_another_process(self):
        one = self.open("one", 100, self.odd)
        two = self.open("two", 500)
        self.key(one, "ctrl+x", "Cut")
        line = self.key(two, "ctrl+v", "paste ")
        self.assertIn("DATA " + self.uri + ODD_URI + " Cut Korva", line)
        self.assertIn("text=", line)
        # The other one empties it, as after a paste: the cut is gone here too.
        self.key(two, "ctrl+a", "Clear")
        self.assertEqual(self.key(one, "ctrl+v", "paste "), "paste nothing")
        self.assertEqual(self.key(two, "ctrl+v", "paste "), "paste nothing")

    def test_window_lives_while_the_owner_of_the_clipboard_hangs(self):
        peer = self.open("one", 100)
        self.display.put_pointer_away()
        picture = peer.wait_for_picture(lambda now: now.colours() == {GROUND}, "a painted window")
        left, top, *_ = peer.frame()
        held = self.xclip("text/uri-list", self.uri + "plain\r\n")
        held.send_signal(signal.SIGSTOP)
        self.focus(peer)
        self.display.press("ctrl+v")
        peer.wait_for("pasting")
        start = time.monotonic()
        # Half of it leaves the screen and comes back, which nobody but the program can repaint.
        self.display.do("xdotool", "windowmove", "--sync", peer.window(), "-100", "300")
        self.display.do("xdotool", "windowmove", "--sync", peer.window(), "300", "300")
        peer.wait_for_picture(lambda now: now == picture, "the same picture")
        self.assertLess(time.monotonic() - start, 0.9)
        self.assertFalse([line for line in peer.lines() if line.startswith("paste ")])
        self.assertEqual(peer.wait_for("paste "), "paste nothing")
        self.assertLess(time.monotonic() - start, 2.5)
        # It is not waited for again.
        start = time.monotonic()
        self.assertEqual(self.key(peer, "ctrl+v", "paste "), "paste nothing")
        self.key(peer, "p", "alive")
        self.assertLess(time.monotonic() - start, 0.9)
        held.send_signal(signal.SIGCONT)
        wait_until(lambda: self.key(peer, "ctrl+v", "paste ") == "paste DATA " + self.uri + "plain Copy",
                   "the contents of an owner that answers again")

    def test_drag_to_another_process(self):
        one = self.open("one", 100, self.odd, os.path.join(self.folder, "plain"))
        two = self.open("two", 500)
        refs = self.uri + ODD_URI + " " + self.uri + "plain"
        for button, bits in ((1, 1), (3, 2)):
            one.forget()
            two.forget()
            self.press_on(one, button)
            one.wait_for("enter DATA " + refs)
            self.move_onto(two, "enter DATA " + refs, 60, 70)
            self.assertNotIn("release", one.lines())
            self.let_go()
            line = two.wait_for("drop ")
            self.assertIn(f"drop DATA {refs} Korva buttons={bits} pane=I text=", line)
            self.assertTrue(line.endswith(f" held={bits} at=60,70"), line)
            one.wait_for("release")
            self.assertEqual(one.lines().count("release"), 1)

    def test_drag_within_a_window(self):
        one = self.open("one", 100, self.odd)
        self.press_on(one)
        self.move_onto(one, "enter DATA", 150, 160)
        self.let_go()
        self.assertTrue(one.wait_for("drop ").endswith(" held=1 at=150,160"))
        one.wait_for("release")

    def test_drag_ends_with_escape_and_with_its_window(self):
        one = self.open("one", 100, self.odd)
        two = self.open("two", 500)
        self.press_on(one)
        self.move_onto(two, "enter ")
        self.focus(one)
        self.display.press("Escape")
        one.wait_for("release")
        two.wait_for("exit")
        self.let_go()
        self.press_on(one)
        self.move_onto(two, "enter ")
        one.close()
        self.assert_ends_well(one)
        self.let_go()
        self.assertFalse([line for line in two.lines() if line.startswith("drop")])
        # The pointer is free again.
        self.press_on(two)
        two.wait_for("press")
        self.let_go()

    @unittest.skipUnless(HAS_GTK, "needs python3-gi and gir1.2-gtk-3.0")
    def test_drag_to_a_program_that_is_not_ours(self):
        one = self.open("one", 100, self.odd, os.path.join(self.folder, "plain"))
        other = self.open_gtk("other", 500)
        self.press_on(one)
        self.move_onto(other, "motion")
        self.let_go()
        self.assertEqual(other.wait_for("received"),
                         f"received {self.uri}{ODD_URI} {self.uri}plain")
        one.wait_for("release")

    @unittest.skipUnless(HAS_GTK, "needs python3-gi and gir1.2-gtk-3.0")
    def test_drag_from_a_program_that_is_not_ours(self):
        host = socket.gethostname()
        other = self.open_gtk("other", 500, self.uri + ODD_URI, "http://example.com/",
                              f"file://{host}{self.folder}/plain", "file:///a%00b")
        one = self.open("one", 100)
        for button, bits in ((1, 1), (3, 2)):
            other.forget()
            one.forget()
            self.press_on(other, button)
            other.wait_for("begin")
            refs = f"DATA {self.uri}{ODD_URI} {self.uri}plain"
            self.move_onto(one, "enter " + refs, 30, 40)
            self.let_go()
            self.assertEqual(one.wait_for("drop "), f"drop {refs} held={bits} at=30,40")
            self.assertIn("copy", other.wait_for("end"))
            self.assertNotIn("delete", other.lines())


if __name__ == "__main__":
    unittest.main()
