# SPDX-License-Identifier: MIT

# Programs that say what happens to them, and a user who drags, copies and pastes between them.

import os
import signal
import subprocess
import tempfile

from desktop import PATIENCE, Program, X11Test, wait_until

COPIED = "x-special/gnome-copied-files"
# Debian's own Python: another one does not have Debian's modules.
PYTHON = "/usr/bin/python3"
GTK = [PYTHON, "-B", os.path.join(os.path.dirname(os.path.abspath(__file__)), "gtk_peer.py")]
HAS_GTK = subprocess.run(
    [PYTHON, "-c", "import gi; gi.require_version('Gtk', '3.0')"], stderr=subprocess.DEVNULL
).returncode == 0


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


class PeerTest(X11Test):
    def setUp(self):
        self.addCleanup(self.display.do, "xdotool", "mouseup", "1", "mouseup", "3")

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
