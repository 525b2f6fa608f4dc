# SPDX-License-Identifier: MIT

# Starting other programs: by the desktop's database of default applications, by themselves, and
# the desktop's file manager on a session bus of its own.

import contextlib
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "../x11"))
from desktop import KORVA, PATIENCE, Display, Program, wait_until  # noqa: E402

LAUNCH = os.environ.get(
    "KORVA_LAUNCH", os.path.join(HERE, "../../build/check/release/tests/launch_program"))
PYTHON = "/usr/bin/python3"  # Debian's own sees the packages
HAS_GIO = subprocess.call([PYTHON, "-c", "from gi.repository import Gio"],
                          stderr=subprocess.DEVNULL) == 0
FILE_MANAGER = "application/x-vnd.Be-TRAK"
SERVICE = "org.freedesktop.FileManager1"

OK = 0
UNKNOWN_TYPE = 0x80002007
FAILED, NO_LINK, NO_EXECUTABLE = 0x80002005, 0x80002009, 0x8000200a
IN_TRASH, NO_PREFERRED, PROGRAM_MISSING = 0x8000200c, 0x8000200d, 0x8000200e
NOT_FOUND = 0x80006003

ODD_NAMES = [b"plain.note", b"with blank.note", b"100%41.note", b"two\nlines.note", b"\xff\xfe.note",
             b"quote'\"$(x)`.note", b"-rf.note", b"\xc3\xa4#?&.note", b"%f.note"]


class Launcher:
    """The program that launches."""

    def __init__(self, environment, **options):
        self.process = subprocess.Popen([LAUNCH], env=environment, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, **options)

    def ask(self, *words):
        text = " ".join(word.hex() if isinstance(word, bytes) else word for word in words)
        self.process.stdin.write(text.encode() + b"\n")
        self.process.stdin.flush()
        return self.process.stdout.readline().decode().split()

    def launch(self, path):
        return int(self.ask("launch", os.fsencode(path))[0], 16)

    def end(self):
        self.process.stdin.close()
        self.process.stdout.close()
        return self.process.wait(timeout=PATIENCE)

    def kill(self):
        self.process.kill()
        self.end()


class LaunchTest(unittest.TestCase):
    def setUp(self):
        self.root = os.path.realpath(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.root)
        for name in ("data/applications", "config", "runtime", "files", "system", "bin"):
            os.makedirs(os.path.join(self.root, name))
        os.chmod(self.path("runtime"), 0o700)
        self.environment = dict(
            os.environ, HOME=self.root, XDG_DATA_HOME=self.path("data"),
            XDG_CONFIG_HOME=self.path("config"), XDG_RUNTIME_DIR=self.path("runtime"),
            XDG_DATA_DIRS=self.path("system") + ":/usr/share", XDG_CONFIG_DIRS=self.path("system"),
            XDG_CURRENT_DESKTOP="", QT_QPA_PLATFORM="offscreen",
            DBUS_SESSION_BUS_ADDRESS="unix:path=" + self.path("runtime/bus"))
        for name in ("QT_XCB_GL_INTEGRATION", "QT_WAYLAND_CLIENT_BUFFER_INTEGRATION", "DISPLAY"):
            self.environment.pop(name, None)

    def path(self, name):
        return os.path.join(self.root, name)

    def write(self, name, text, mode=0o644):
        path = os.path.join(os.fsencode(self.root), os.fsencode(name))
        with open(path, "wb") as file:
            file.write(text if isinstance(text, bytes) else text.encode())
        os.chmod(path, mode)
        return path

    def script(self, name, commands):
        """A program that writes its arguments, each ended by a zero byte, and "done" at the end."""
        self.write(name, f"""#!/bin/sh
out={self.path("out")}
{commands}
printf '%s\\0' "$@" >"$out"
mv "$out" "{self.path("done")}"
""", 0o755)
        return self.path(name)

    def done(self):
        """What the script wrote; takes it away."""
        wait_until(lambda: os.path.exists(self.path("done")), "the program has run")
        with open(self.path("done"), "rb") as file:
            text = file.read()
        os.remove(self.path("done"))
        return text.split(b"\0")[:-1]

    def make_default(self, mime_type, command, extra=""):
        self.write("data/applications/test.desktop",
                   f"[Desktop Entry]\nType=Application\nName=Test\nExec={command}\n{extra}")
        self.write("config/mimeapps.list",
                   f"[Default Applications]\n{mime_type}=test.desktop\n")

    def add_type(self, mime_type, pattern):
        """A type that no installed program can know."""
        os.makedirs(self.path("data/mime/packages"), exist_ok=True)
        self.write("data/mime/packages/test.xml", f"""<?xml version="1.0"?>
<mime-info xmlns="http://www.freedesktop.org/standards/shared-mime-info">
<mime-type type="{mime_type}"><glob pattern="{pattern}"/></mime-type></mime-info>""")
        subprocess.check_call(["update-mime-database", self.path("data/mime")],
                              env=self.environment)

    def start(self, **options):
        program = Launcher(self.environment, **options)
        self.addCleanup(program.kill)
        return program


class Documents(LaunchTest):
    def setUp(self):
        super().setUp()
        self.add_type("text/x-korva-note", "*.note")

    def test_open_in_the_default_program_whatever_their_name(self):
        self.make_default("text/x-korva-note", self.script("bin/show", "") + " %U")
        program = self.start()
        for name in ODD_NAMES:
            path = self.write(b"files/" + name, b"")
            self.assertEqual(program.launch(path), OK, name)
            self.assertEqual(self.done(), [path])
        self.assertEqual(program.end(), 0)

    def test_open_as_what_a_link_leads_to(self):
        self.make_default("text/x-korva-note", self.script("bin/show", "") + " %f")
        note = self.write("files/a.note", "")
        os.symlink(note, self.path("files/link.png"))
        os.symlink("nowhere", self.path("files/broken"))
        os.symlink("loop", self.path("files/loop"))
        program = self.start()
        self.assertEqual(program.launch(self.path("files/link.png")), OK)
        self.assertEqual(self.done(), [note])
        self.assertEqual(program.launch(self.path("files/broken")), NO_LINK)
        self.assertEqual(program.launch(self.path("files/loop")), NO_LINK)
        self.assertEqual(program.launch(self.path("files/missing")), NOT_FOUND)

    def test_tell_what_is_missing(self):
        note = self.write("files/a.note", "")
        odd = self.write("files/blob", b"\x00\x01\x02\x80")
        os.mkfifo(self.path("files/pipe.note"))
        program = self.start()
        self.assertEqual(program.launch(note), NO_PREFERRED)
        self.assertEqual(program.launch(odd), UNKNOWN_TYPE)
        self.assertEqual(program.launch(self.path("files/pipe.note")), UNKNOWN_TYPE)
        program.end()
        self.make_default("text/x-korva-note", self.path("bin/gone") + " %f")
        self.assertEqual(self.start().launch(note), PROGRAM_MISSING)

    def test_are_not_opened_by_a_program_in_the_trash(self):
        os.makedirs(self.path("data/Trash/files"))
        self.make_default("text/x-korva-note", self.script("data/Trash/files/show", "") + " %f")
        self.assertEqual(self.start().launch(self.write("files/a.note", "")), IN_TRASH)

    def test_open_a_program_that_goes_between_two_launches(self):
        script = self.script("bin/show", "")
        self.make_default("text/x-korva-note", script + " %f")
        note = self.write("files/a.note", "")
        program = self.start()
        self.assertEqual(program.launch(note), OK)
        self.done()
        os.remove(script)
        self.assertEqual(program.launch(note), PROGRAM_MISSING)


class Programs(LaunchTest):
    def test_run_when_marked_executable(self):
        program = self.start()
        for name in ("files/tool", "files/odd 100%\n.sh", "files/tool.py"):
            self.script(name, "pwd -P >" + self.path("folder"))
            self.assertEqual(program.launch(self.path(name)), OK, name)
            self.assertEqual(self.done(), [b""])  # printf runs once without arguments
            with open(self.path("folder"), "rb") as file:
                self.assertEqual(file.read(), os.fsencode(self.path("files")) + b"\n")
        shutil.copy("/bin/true", self.path("files/true"))
        self.assertEqual(program.launch(self.path("files/true")), OK)

    def test_that_cannot_run_say_so(self):
        program = self.start()
        self.write("files/lost", "#!/no/such/interpreter\n", 0o755)
        self.assertEqual(program.launch(self.path("files/lost")), NO_EXECUTABLE)

    def test_are_documents_when_not_marked_or_no_programs(self):
        self.add_type("text/x-korva-note", "*.note")
        self.make_default("text/x-korva-note", self.script("bin/show", "") + " %f")
        program = self.start()
        note = self.write("files/a.note", "mv /nowhere .\n", 0o755)  # as FAT volumes mark all
        self.assertEqual(program.launch(note), OK)
        self.assertEqual(self.done(), [note])
        self.make_default("application/x-shellscript", self.path("bin/show") + " %f")
        script = self.script("files/tool.sh", "echo ran")
        os.chmod(script, 0o644)
        self.assertEqual(self.start().launch(script), OK)
        self.assertEqual(self.done(), [os.fsencode(script)])

    def test_get_nothing_of_ours_but_the_user_s_environment(self):
        secret = 77  # above those that the shell takes for itself
        os.dup2(0, secret)
        self.addCleanup(os.close, secret)
        tool = self.script("files/tool", f"""cp /proc/self/status {self.path("status")}
ls /proc/$$/fd >{self.path("fds")}
env >{self.path("env")}""")
        program = self.start(pass_fds=[secret])
        status, team = program.ask("launch", os.fsencode(tool))
        self.assertEqual((int(status, 16), int(team) > 0), (OK, True))
        self.done()
        with open(self.path("fds"), encoding="ascii") as file:
            self.assertLessEqual({int(fd) for fd in file.read().split()}, {0, 1, 2, 10, 11, 255})
        with open(self.path("status"), encoding="ascii") as file:
            fields = dict(line.split(":", 1) for line in file)
        pipe = 1 << (signal.SIGPIPE - 1)
        self.assertEqual(int(fields["SigBlk"], 16), 0)
        self.assertEqual(int(fields["SigIgn"], 16) & pipe, 0)
        with open(self.path("env"), encoding="utf-8") as file:
            theirs = file.read()
        for name in ("QT_XCB_GL_INTEGRATION", "QT_WAYLAND_CLIENT_BUFFER_INTEGRATION"):
            self.assertNotIn(name, theirs)
        # There is no such bus; we go on without one, they may find another.
        self.assertIn("DBUS_SESSION_BUS_ADDRESS=unix:path=" + self.path("runtime/bus"), theirs)
        children = subprocess.run(["ps", "--ppid", str(program.process.pid), "-o", "stat="],
                                  stdout=subprocess.PIPE, check=False)
        self.assertEqual(children.stdout, b"")  # no zombie either
        self.assertEqual(program.end(), 0)


class DesktopFiles(LaunchTest):
    def test_are_launched_only_when_marked_executable(self):
        show = self.script("bin/show", "")
        self.make_default("application/x-desktop", show + " as-text %f")
        path = self.write("files/thing.desktop", f"""[Desktop Entry]
Type=Application
Name=Thing
Exec={show} launched
""")
        program = self.start()
        self.assertEqual(program.launch(path), OK)
        self.assertEqual(self.done(), [b"as-text", path])
        os.chmod(path, 0o755)
        self.assertEqual(program.launch(path), OK)
        self.assertEqual(self.done(), [b"launched"])

    def test_say_what_is_wrong_with_them(self):
        program = self.start()
        lost = self.write("files/lost.desktop", """[Desktop Entry]
Type=Application
Name=Lost
Exec=/no/such/program
""", 0o755)
        self.assertEqual(program.launch(lost), NO_EXECUTABLE)
        self.assertEqual(program.launch(self.write("files/odd.desktop", "odd", 0o755)), FAILED)


@unittest.skipUnless(HAS_GIO, "needs python3-gi")
class BusTest(LaunchTest):
    def start_bus(self, activatable=()):
        services = self.path("services")
        os.makedirs(services, exist_ok=True)
        for name, command in activatable:
            self.write(f"services/{name}.service", f"[D-BUS Service]\nName={name}\nExec={command}\n")
        config = self.write("bus.conf", f"""<busconfig><type>session</type>
<listen>{self.environment["DBUS_SESSION_BUS_ADDRESS"]}</listen><servicedir>{services}</servicedir>
<policy context="default"><allow send_destination="*" eavesdrop="true"/>
<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>""")
        bus = subprocess.Popen(["dbus-daemon", b"--config-file=" + config, "--print-address",
                                "--nofork"], env=self.environment, stdout=subprocess.PIPE,
                               stderr=subprocess.DEVNULL)
        self.addCleanup(bus.stdout.close)
        self.addCleanup(bus.wait)
        self.addCleanup(lambda: (bus.send_signal(signal.SIGCONT), bus.kill()))
        bus.stdout.readline()
        return bus

    def start_service(self, *words):
        service = subprocess.Popen([PYTHON, os.path.join(HERE, "file_manager.py"),
                                    self.path("shown"), *words], env=self.environment,
                                   stdout=subprocess.PIPE)
        self.addCleanup(service.stdout.close)
        self.addCleanup(service.wait)
        self.addCleanup(service.kill)
        service.stdout.readline()
        return service

    def shown(self, count=1):
        def read():
            with contextlib.suppress(FileNotFoundError), open(self.path("shown"), "rb") as file:
                return file.read()
            return b""
        wait_until(lambda: read().count(b"-- ShowFolders") >= count, "the folders are shown")
        return [line for line in read().split(b"\n")[:-1] if not line.startswith(b"-- ")]


class FileManager(BusTest):
    def find(self, program, signature=FILE_MANAGER):
        """On a busy machine the bus may take longer than the program waits."""
        wait_until(lambda: program.ask("running", signature) == ["1"], "the file manager is found")

    def show(self, program, *paths):
        wait_until(lambda: program.ask("show", *paths) == ["0"], "the file manager is sent folders")

    def test_is_sent_folders_byte_by_byte_encoded(self):
        self.start_bus()
        self.start_service()
        names = [b"plain", b"a b%41", b"two\nlines", b"\xff\xc3\xa4#?", b"link"]
        for name in names[:-1]:
            os.mkdir(os.path.join(os.fsencode(self.root), name))
        os.symlink("plain", self.path("link"))
        program = self.start()
        self.find(program, FILE_MANAGER.upper())
        self.show(program, *(os.fsencode(self.root) + b"/" + name for name in names))
        root = b"file://" + os.fsencode(self.root)
        self.assertEqual(self.shown(), [root + name for name in (
            b"/plain", b"/a%20b%2541", b"/two%0Alines", b"/%FF%C3%A4%23%3F", b"/link")])

    def test_opens_files_in_their_program(self):
        self.start_bus()
        self.start_service()
        tool = self.script("files/tool", "")
        os.mkdir(self.path("folder"))
        self.show(self.start(), os.fsencode(tool), os.fsencode(self.path("folder")))
        self.done()
        self.assertEqual(self.shown(), [b"file://" + os.fsencode(self.path("folder"))])

    def test_is_started_by_the_first_folders(self):
        service = os.path.join(HERE, "file_manager.py")
        self.start_bus([(SERVICE, f"{PYTHON} {service} {self.path('shown')}")])
        program = self.start()
        self.find(program)
        self.assertFalse(os.path.exists(self.path("shown")))
        self.show(program, os.fsencode(self.root))
        self.assertEqual(self.shown(), [b"file://" + os.fsencode(self.root)])

    def test_is_missing_without_name_or_bus(self):
        program = self.start()
        self.assertEqual(program.ask("running", FILE_MANAGER), ["0"])
        program.end()
        bus = self.start_bus()
        program = self.start()
        self.assertEqual(program.ask("running", FILE_MANAGER), ["0"])
        self.assertEqual(program.ask("running", "application/x-vnd.nobody"), ["0"])
        self.assertNotEqual(program.ask("show", os.fsencode(self.root)), ["0"])
        # The end of the bus is not ours, and the next one is found.
        bus.kill()
        bus.wait()
        self.assertEqual(program.ask("running", FILE_MANAGER), ["0"])
        os.remove(self.path("runtime/bus"))
        self.start_bus()
        self.start_service()
        self.find(program)
        self.assertEqual(program.end(), 0)

    def test_is_never_waited_for(self):
        bus = self.start_bus()
        service = self.start_service("hang")
        program = self.start()
        self.find(program)

        def took(*words, times=1):
            start = time.monotonic()
            for _ in range(times):
                answer = program.ask(*words)
            return answer, time.monotonic() - start

        # Whoever waited for an answer would wait for 25 s.
        self.assertLess(took("show", os.fsencode(self.root), times=50)[1], 10)
        service.kill()
        bus.send_signal(signal.SIGSTOP)
        answer, seconds = took("running", FILE_MANAGER)
        self.assertEqual(answer, ["0"])
        self.assertLess(seconds, 10)
        # Once is enough: a hundred times 150 ms would be more.
        answer, seconds = took("running", FILE_MANAGER, times=100)
        self.assertEqual(answer, ["0"])
        self.assertLess(seconds, 10)
        bus.send_signal(signal.SIGCONT)
        self.start_service()
        self.find(program)
        bus.send_signal(signal.SIGSTOP)
        self.assertEqual(program.end(), 0)

    def test_that_accepts_and_says_nothing_lets_the_program_end(self):
        with socket.socket(socket.AF_UNIX) as silent:
            silent.bind(self.path("runtime/bus"))
            silent.listen(5)
            program = self.start()
            self.assertEqual(program.ask("running", FILE_MANAGER), ["0"])
            self.assertEqual(program.end(), 0)


class Window(BusTest):
    NAME, TOP, ROW = 203, 56, 19  # of the first row on the right

    def setUp(self):
        super().setUp()
        self.start_bus()
        self.start_service()
        self.display = Display()
        self.addCleanup(self.display.close)
        for name in ("top/a b", "top/b", "top/c"):
            os.makedirs(self.path(name))
        self.script("top/tool", "")
        environment = {name: value for name, value in self.environment.items()
                       if name not in ("QT_QPA_PLATFORM", "LD_PRELOAD")}
        self.korva = Program(self.display, [KORVA, self.path("top")],
                             env={**environment, "QT_QPA_PLATFORM": "xcb"})
        self.addCleanup(self.korva.end)
        self.picture = self.korva.steady_picture()

    def uri(self, name):
        return b"file://" + os.fsencode(self.path("top")) + name

    def test_opens_several_selected_folders_in_the_file_manager(self):
        self.korva.click(self.NAME, self.TOP)
        self.display.press("ctrl+a", "Return")
        self.assertEqual(self.shown(3), [self.uri(b"/a%20b"), self.uri(b"/b"), self.uri(b"/c")])
        self.done()  # the file among them is opened as ever
        self.display.press("Home")
        self.korva.click(self.NAME, 400)
        self.assertEqual(self.korva.steady_picture(), self.picture)  # which shows the same folder

    def test_opens_a_row_in_the_file_manager_by_a_double_click_with_another_button(self):
        left, top, *_ = self.korva.frame()
        place = (str(left + self.NAME), str(top + self.TOP + self.ROW))

        def opened():
            # So quick that the first click has not opened the menu yet: xdotool's own clicks rest.
            self.display.do("xdotool", "mousemove", *place, *("mousedown", "2", "mouseup", "2") * 2)
            self.display.press("Escape", "Escape")
            with contextlib.suppress(AssertionError):
                return wait_until(lambda: os.path.exists(self.path("shown")), "a folder", 2)
        wait_until(opened, "a double click is seen as one")
        self.assertEqual(self.shown()[0], self.uri(b"/b"))


if __name__ == "__main__":
    unittest.main()
