# SPDX-License-Identifier: MIT

# The ways in which the program ends, and that it then has ended well.

import signal
import unittest

from desktop import X11Test, wait_until


class Ending(X11Test):
    def test_window_manager_closes_it(self):
        korva = self.start(self.new_folder("a/", "b"))
        korva.steady_picture()
        korva.close()
        self.assert_ends_well(korva)

    def test_closing_key_of_the_window_manager_closes_it(self):
        korva = self.start(self.new_folder("a"))
        korva.steady_picture()
        self.display.press("alt+F4")
        self.assert_ends_well(korva)

    def test_signals_that_ask_for_an_end_get_it(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(number.name):
                korva = self.start(self.new_folder("a"))
                korva.window()
                korva.process.send_signal(number)
                self.assert_ends_well(korva)

    def test_signal_at_any_moment_of_the_start_ends_it(self):
        folder = self.new_folder("a")
        for i in range(20):
            korva = self.start(folder)
            delay = i * 0.004
            wait_until(lambda: korva.age() >= delay, "the moment")
            korva.process.send_signal(signal.SIGTERM)
            # Before the program has set itself up the signal kills it: that is no fault.
            self.assertIn(korva.wait_for_end(), (0, -signal.SIGTERM), f"after {delay} s")
            self.assertEqual(korva.errors(), "")

    def test_many_requests_to_end_at_once_do_no_harm(self):
        korva = self.start(self.new_folder("a"))
        window = korva.window()
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT) * 5:
            korva.process.send_signal(number)
        self.display.ask("wmctrl", "-i", "-c", window)
        self.assert_ends_well(korva)

    def test_started_and_closed_again_and_again(self):
        folder = self.new_folder("a/", "b")
        for _ in range(10):
            korva = self.start(folder)
            korva.window()
            korva.close()
            self.assert_ends_well(korva)


if __name__ == "__main__":
    unittest.main()
