# SPDX-License-Identifier: MIT

# Files that a user drags and pastes from folder to folder: what becomes of them, by the keys and
# buttons held, by the menu and by the answers to questions; and what is left at the program's end.

import os
import signal
import unittest
from urllib.parse import quote

from desktop import BUILT, PATIENCE, wait_until
from peers import COPIED, GTK, HAS_GTK, Peer, PeerTest

TRANSFER = os.environ.get("KORVA_TRANSFER", os.path.join(BUILT, "tests/transfer_program"))
GROUND = (90, 160, 90)  # of the program's windows
QUESTION = r"Delete File\?"  # a pattern
LARGE = 1 << 30  # still being copied when the next thing happens


class Folder:
    """One window of a program, and the folder for which it stands."""

    def __init__(self, peer, title, path):
        self.peer = peer
        self.title = title
        self.path = path

    def frame(self):
        return self.peer.frame(self.title)

    def window(self):
        return self.peer.window(self.title)

    def lines(self):
        start = self.title + ": "
        return [line[len(start):] for line in self.peer.lines() if line.startswith(start)]

    def forget(self):
        self.peer.forget()

    def wait_for(self, line, patience=PATIENCE):
        return self.peer.wait_for(self.title + ": " + line, patience)[len(self.title) + 2:]

    def names(self):
        return sorted(os.listdir(self.path))

    def file(self, name):
        return os.path.join(self.path, name)

    def put(self, name, text):
        with open(self.file(name), "w") as file:
            file.write(text)

    def read(self, name):
        with open(self.file(name)) as file:
            return file.read()

    def clear(self):
        for name in self.names():
            os.unlink(self.file(name))


class Transfer(PeerTest):
    def open(self, *places):
        """A program with a window at each of these distances from the left."""
        folders, arguments = [], []
        for place in places:
            title = f"folder {place}"
            path = self.new_folder()
            folders.append(Folder(None, title, path))
            arguments += [title, str(place), path]
        peer = Peer(self.display, [TRANSFER], arguments[0], *arguments[1:])
        self.addCleanup(peer.end)
        for folder in folders:
            folder.peer = peer
            folder.frame()
        return folders

    def drag(self, start, end, button=1, keys=()):
        """To the drop; the keys are held from before it until the caller's end."""
        start.forget()
        end.forget()
        self.press_on(start, button)
        self.move_onto(end, "enter")
        for key in keys:
            self.display.do("xdotool", "keydown", key)
        # The desktop tells of keys with the next move.
        left, top, *_ = end.frame()
        self.move_to(left + 90, top + 90)
        self.move_to(left + 100, top + 100)
        self.let_go()

    def release(self, keys):
        for key in keys:
            self.display.do("xdotool", "keyup", key)

    def outcome(self, start, end):
        """As the disk shows it once the transfer has ended; afterwards all is as before."""
        if not end.names():
            return "nothing"
        self.assertEqual(end.names(), ["a"])
        if not start.names():
            wait_until(lambda: end.read("a") == "one", "the moved file")
            os.rename(end.file("a"), start.file("a"))
            return "moved"
        is_link = os.path.islink(end.file("a"))
        wait_until(lambda: end.read("a") == "one", "the copied file")
        os.unlink(end.file("a"))
        return "linked" if is_link else "copied"

    def check_keys(self, start, end):
        start.put("a", "one")
        for keys, expected in (((), "moved"), (("Super_L",), "copied"), (("Shift_L",), "linked"),
                               (("Alt_L",), "moved"), (("Super_L", "Shift_L"), "copied")):
            self.drag(start, end, keys=keys)
            end.wait_for("dropped 1")
            self.release(keys)
            wait_until(end.names, "a transfer")
            self.assertEqual(self.outcome(start, end), expected, keys)

    def test_keys_decide_what_a_drag_between_windows_does(self):
        self.check_keys(*self.open(100, 400))

    def test_keys_decide_what_a_drag_between_programs_does(self):
        self.check_keys(*self.open(100), *self.open(400))

    def test_menu_asks_where_the_drop_was(self):
        start, end = self.open(100, 400)
        start.put("a", "one")
        for button, keys in ((3, ()), (1, ("Control_L",))):
            for row, expected in enumerate(("linked", "moved", "copied", "nothing")):
                self.drag(start, end, button, keys)
                menu = end.peer.frame("File")
                self.release(keys)
                left, top, *_ = end.frame()
                self.assertEqual(menu[:2], (left + 100, top + 100))
                self.display.press(*["Down"] * (row + 1), "Return")
                end.wait_for("dropped " + ("0" if expected == "nothing" else "1"))
                if expected != "nothing":
                    wait_until(end.names, "a transfer")
                self.assertEqual(self.outcome(start, end), expected)
        self.drag(start, end, 3)
        menu = end.peer.frame("File")
        self.display.click(menu[0] + 40, menu[1] + 30)  # the second row
        end.wait_for("dropped 1")
        wait_until(end.names, "a transfer")
        self.assertEqual(self.outcome(start, end), "moved")

    def drag_from_another_program(self, left):
        """Three files, by the secondary button; returns their folder."""
        source = self.new_folder("a", "b", "c")
        other = self.start_peer(
            GTK, "other", left, *("file://" + quote(os.path.join(source, name)) for name in "abc"))
        self.press_on(other, 3)
        other.wait_for("begin")
        return source

    @unittest.skipUnless(HAS_GTK, "needs python3-gi and gir1.2-gtk-3.0")
    def test_menu_asks_for_each_file_that_another_program_drags(self):
        end, = self.open(400)
        source = self.drag_from_another_program(100)
        self.move_onto(end.peer, end.title + ": enter")
        self.let_go()
        last = None
        for keys in (("Down", "Return"), ("Escape",), ("Down", "Down", "Down", "Return")):
            menu = wait_until(lambda: end.peer.find_window("File") not in (None, last) and
                              end.peer.find_window("File"), "another menu")
            self.display.press(*keys)
            last = menu
        end.wait_for("dropped 2")
        wait_until(lambda: end.names() == ["a", "c"], "a link and a copy")
        self.assertEqual(os.readlink(end.file("a")), os.path.join(source, "a"))
        self.assertFalse(os.path.islink(end.file("c")))
        self.assertEqual(sorted(os.listdir(source)), ["a", "b", "c"])

    @unittest.skipUnless(HAS_GTK, "needs python3-gi and gir1.2-gtk-3.0")
    def test_menus_are_cancelled_at_the_end(self):
        for ending in ("close", "signal"):
            with self.subTest(ending):
                target = self.new_folder()
                korva = self.start(target)
                korva.steady_picture()
                left, top, *_ = korva.frame()
                self.drag_from_another_program(left + 600)
                for x in range(350, 370):
                    self.move_to(left + x, top + 300)
                self.let_go()
                korva.window("File")
                if ending == "close":
                    korva.close()
                else:
                    korva.process.send_signal(signal.SIGTERM)
                self.assert_ends_well(korva)
                self.assertEqual(os.listdir(target), [])

    def test_question_is_answered_while_the_window_lives(self):
        start, end = self.open(100, 400)
        end.put("a", "old")
        for answer in (("Return",), ("Tab", "space")):
            start.put("a", "new")
            self.drag(start, end)
            end.wait_for("dropped 1")
            self.display.put_pointer_away()
            end.peer.window(QUESTION)
            # Half of it leaves the screen and comes back, which nobody but the program can repaint.
            picture = end.peer.wait_for_picture(
                lambda now: now.colours() == {GROUND}, "a painted window", start.title)
            place = [str(each) for each in start.frame()[:2]]
            self.display.do("xdotool", "windowmove", "--sync", start.window(), "-100", "500")
            self.display.do("xdotool", "windowmove", "--sync", start.window(), "100", "500")
            end.peer.wait_for_picture(lambda now: now == picture, "the same picture", start.title)
            self.display.do("xdotool", "windowmove", start.window(), *place)
            self.assertEqual((start.read("a"), end.read("a")), ("new", "old"))
            self.display.do("xdotool", "windowfocus", "--sync", end.peer.window(QUESTION))
            self.display.press(*answer)
            wait_until(lambda: end.peer.find_window(QUESTION) is None, "the question to go")
            if answer == ("Return",):
                self.assertEqual((start.read("a"), end.read("a")), ("new", "old"))
        wait_until(lambda: end.read("a") == "new", "the replaced file")
        self.assertEqual(start.names(), [])

    def test_what_runs_is_finished_and_what_is_asked_is_refused(self):
        large = os.path.join(self.new_folder("large"), "large")
        with open(large, "wb") as file:
            file.seek(LARGE - 3)
            file.write(b"end")
        for ending in ("close", "signal"):
            with self.subTest(ending):
                start, end = self.open(100, 400)
                start.put("a", "new")
                end.put("a", "old")
                # By keys: a drag would last longer than the copy.
                self.xclip(COPIED, "copy\nfile://" + quote(large))
                self.key(end, "ctrl+v", "pasted 1")
                self.xclip(COPIED, "cut\nfile://" + quote(start.file("a")))
                self.key(end, "ctrl+v", "pasted 1")
                end.peer.window(QUESTION)
                if ending == "close":
                    end.peer.close(start.title)
                else:
                    end.peer.process.send_signal(signal.SIGTERM)
                for title in (start.title, end.title, QUESTION):
                    wait_until(lambda: end.peer.find_window(title) is None, f"{title} to go")
                self.assertEqual(end.peer.wait_for_end(60), 0, end.peer.errors())
                self.assertEqual((start.read("a"), end.read("a")), ("new", "old"))
                with open(end.file("large"), "rb") as file:
                    file.seek(LARGE - 3)
                    self.assertEqual(file.read(), b"end")
                end.clear()

    def test_thousands_of_files_are_copied_though_the_program_ends(self):
        names = sorted(f"a file of some name {i}" for i in range(10000))
        source = self.new_folder(*names)
        self.xclip("text/uri-list", "\r\n".join(
            "file://" + quote(os.path.join(source, name)) for name in names))
        target = self.new_folder()
        korva = self.start(target)
        korva.steady_picture()
        self.focus(korva)
        self.display.press("ctrl+v")
        wait_until(lambda: os.listdir(target), "the first copy")
        korva.process.send_signal(signal.SIGTERM)
        wait_until(lambda: korva.find_window() is None, "the window to go")
        self.assertEqual(korva.wait_for_end(120), 0, korva.errors())
        self.assertEqual(sorted(os.listdir(target)), names)

    def test_what_is_cut_is_pasted_once(self):
        start, end = self.open(100, 400)
        start.put("a", "one")
        self.key(start, "ctrl+c", "clipboard")
        for _ in range(2):
            self.key(end, "ctrl+v", "pasted 1")
            wait_until(end.names, "a copy")
            self.assertEqual(self.outcome(start, end), "copied")
        self.key(start, "ctrl+x", "clipboard")
        self.key(end, "ctrl+v", "pasted 1")
        wait_until(lambda: not start.names(), "a move")
        self.assertEqual(self.outcome(start, end), "moved")
        self.assertEqual(self.clipboard("TARGETS"), "")
        self.key(end, "ctrl+v", "pasted 0")
        self.assertEqual(self.outcome(start, end), "nothing")
        # Another program's: both files, once.
        start.put("b c", "two")
        uris = "\n".join("file://" + quote(start.file(name)) for name in ("a", "b c"))
        self.xclip(COPIED, "cut\n" + uris)
        self.key(end, "ctrl+v", "pasted 2")
        wait_until(lambda: end.names() == ["a", "b c"], "both files")
        self.assertEqual(start.names(), [])
        self.assertEqual(self.clipboard("TARGETS"), "")

    def test_what_means_nothing_touches_nothing(self):
        start, end = self.open(100, 400)
        os.makedirs(end.file("sub/deep"))
        end.put("sub/deep/a", "one")
        path = quote(end.path)
        uris = ["http://example.com/a", f"file://{path}/missing", f"file://{path}/%zz",
                f"file://{path}/sub%00", "file://elsewhere/etc", "rubbish", f"file://{path}",
                f"file://{quote(os.path.dirname(end.path))}", f"file://{path}/sub"]
        for action in ("cut", "copy"):
            self.xclip(COPIED, "\n".join([action, *uris]))
            self.key(end, "ctrl+v", "pasted ")
        self.xclip("text/plain", "words")
        self.key(end, "ctrl+v", "pasted 0")
        # Into its own sub-folder.
        folder = Folder(None, "", end.file("sub/deep"))
        peer = Peer(self.display, [TRANSFER], "deep", "700", folder.path)
        self.addCleanup(peer.end)
        peer.window()
        self.xclip(COPIED, f"cut\nfile://{path}/sub\nfile://{path}/sub/deep\nfile://{path}/sub/deep/a")
        self.key(peer, "ctrl+v", "deep: pasted ")
        self.key(peer, "p", "deep: alive")
        self.key(end, "p", "alive")
        for each in (peer, end.peer):
            each.close()
            self.assert_ends_well(each)
        self.assertEqual(end.read("sub/deep/a"), "one")
        self.assertEqual(os.listdir(end.path).count("sub"), 1)
        self.assertEqual(folder.names(), ["a"])
        self.assertEqual(start.names(), [])

if __name__ == "__main__":
    unittest.main()
