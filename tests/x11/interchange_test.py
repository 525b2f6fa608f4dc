# SPDX-License-Identifier: MIT

# The clipboard and drags, between programs of the kits and others.

import os
import signal
import socket
import subprocess
import time
import unittest
from urllib.parse import quote

from desktop import wait_until
from peers import COPIED, GTK, HAS_GTK, PeerTest

DRAG = os.environ.get("KORVA_DRAG", os.path.join(
    os.path.dirname(os.path.abspath(__file__)), "../../build/check/release/tests/drag_program"))
SLOW_OWNER = os.path.join(os.path.dirname(DRAG), "slow_owner_program")
GROUND = (90, 160, 90)  # of the program's window

# A name of everything that a disk can hold, and how it travels.
ODD = b"a b%#?\n\xff\xc3\xa9"
ODD_URI = "a%20b%25%23%3F%0A%FF%C3%A9"


class Interchange(PeerTest):
    def setUp(self):
        self.folder = self.new_folder("plain", "second")
        self.odd = os.path.join(self.folder.encode(), ODD)
        with open(self.odd, "wb"):
            pass
        self.uri = "file://" + quote(self.folder) + "/"
        super().setUp()

    def open(self, name, left, *paths):
        """A window of a program of the kits, in which `paths` can be dragged."""
        return self.start_peer([DRAG], name, left, *paths)

    def open_gtk(self, name, left, *uris):
        return self.start_peer(GTK, name, left, *uris)

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

    def test_window_lives_although_the_owner_of_the_clipboard_is_slow(self):
        peer = self.open("one", 100)
        owner = subprocess.Popen([SLOW_OWNER], env=self.display.env, stdout=subprocess.PIPE)
        self.addCleanup(lambda: (owner.kill(), owner.communicate()))
        self.assertEqual(owner.stdout.readline(), b"held\n")
        self.key(peer, "ctrl+v", "pasting")
        start = time.monotonic()
        self.assertEqual(peer.wait_for("paste "), "paste nothing")
        # Each of its formats would take four seconds.
        self.assertLess(time.monotonic() - start, 6)

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
            # The last step is not told before the one before it has been answered.
            self.assertRegex(line, rf" held={bits} at=6[01],70$")
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
