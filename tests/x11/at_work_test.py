# SPDX-License-Identifier: MIT

# A program that ends while its threads are at work, and one whose output nobody takes.

import fcntl
import os
import pty
import signal
import termios
import unittest

from desktop import AT_WORK, X11Test, Display, wait_until


class AtWork(X11Test):
    def start_work(self, **options):
        folder = self.new_folder()
        self.go, self.notes = (os.path.join(folder, name) for name in ("go", "notes"))
        program = self.start(self.go, self.notes, program=AT_WORK, title="At work", **options)
        program.window()
        return program

    def told(self):
        if not os.path.exists(self.notes):
            return ""
        with open(self.notes) as file:
            return file.read()

    def assert_finishes_its_work(self, program, status=0):
        """Its questions have been answered by none; it goes on until its work is done."""
        wait_until(lambda: self.told() == "asked: -1\n", "an end of the question")
        wait_until(lambda: program.find_window() is None, "the window to go")
        program.process.send_signal(signal.SIGTERM)
        open(self.go, "wb").close()
        self.assertEqual(program.wait_for_end(), status, program.errors())
        self.assertEqual(self.told(), "asked: -1\ndone, asked late: -1\n")

    def test_the_window_goes_at_once_and_the_work_is_finished(self):
        program = self.start_work()
        program.window("Question")
        program.process.send_signal(signal.SIGTERM)
        self.assert_finishes_its_work(program)
        self.assertEqual(program.errors(), "")

    def test_a_lost_display_ends_no_work(self):
        self.display = Display()  # only for this test
        self.addCleanup(self.display.close)
        program = self.start_work()
        program.window("Question")
        self.display.lose()
        self.assert_finishes_its_work(program, 1)

    def test_an_ignored_hang_up_stays_ignored(self):
        program = self.start_work(
            preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        program.window("Question")
        program.process.send_signal(signal.SIGHUP)
        self.display.press("Return")
        wait_until(self.told, "an answer")
        self.assertEqual(self.told(), "asked: 1\n")

    def assert_ends_in_order(self, program):
        """However far it has come with printing, its window is there."""
        program.process.send_signal(signal.SIGTERM)
        self.assert_finishes_its_work(program)

    def test_a_full_pipe_holds_nothing_up(self):
        read, write = os.pipe()
        self.addCleanup(os.close, read)
        self.addCleanup(os.close, write)
        self.assert_ends_in_order(self.start_work(stdout=write))
        self.assertFalse(fcntl.fcntl(write, fcntl.F_GETFL) & os.O_NONBLOCK,
                         "others that write there must not notice")

    def test_a_stopped_terminal_holds_nothing_up(self):
        master, terminal = pty.openpty()
        self.addCleanup(os.close, master)
        self.addCleanup(os.close, terminal)
        termios.tcflow(terminal, termios.TCOOFF)
        self.assert_ends_in_order(self.start_work(stdout=terminal))

    def test_a_terminal_may_not_stop_it_in_the_background(self):
        master, terminal = pty.openpty()
        self.addCleanup(os.close, master)
        self.addCleanup(os.close, terminal)
        modes = termios.tcgetattr(terminal)
        modes[3] |= termios.TOSTOP
        termios.tcsetattr(terminal, termios.TCSANOW, modes)

        def into_the_background():
            os.setsid()
            fcntl.ioctl(terminal, termios.TIOCSCTTY, 0)
            # The terminal's foreground stays with this process, the program is a child of it.
            child = os.fork()
            if child:
                os.closerange(3, 1000)  # subprocess waits for one of them to be closed
                os._exit(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
            os.setpgid(0, 0)
            with open(pid_file, "w") as file:
                file.write(str(os.getpid()))
        pid_file = os.path.join(self.new_folder(), "pid")
        folder = self.new_folder()
        self.go, self.notes = (os.path.join(folder, name) for name in ("go", "notes"))
        starter = self.start(self.go, self.notes, program=AT_WORK, title="At work",
                             stdout=terminal, preexec_fn=into_the_background)
        wait_until(lambda: self.display.ask("xdotool", "search", "--onlyvisible", "--name",
                                            "^At work$"), "a window")
        with open(pid_file) as file:
            os.kill(int(file.read()), signal.SIGTERM)
        wait_until(lambda: self.told() == "asked: -1\n", "an end of the question")
        open(self.go, "wb").close()
        self.assertEqual(starter.wait_for_end(), 0, starter.errors())


if __name__ == "__main__":
    unittest.main()
