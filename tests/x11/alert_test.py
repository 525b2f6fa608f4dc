# SPDX-License-Identifier: MIT

# The About alert, which waits for an answer while the window behind it stays alive.

import signal
import unittest

from desktop import ABOUT, X11Test, wait_until

WHITE = (255, 255, 255)


class Alert(X11Test):
    def setUp(self):
        self.korva = self.start(self.new_folder("folder/", "file"), program=ABOUT)
        self.alert = self.korva.window("About")

    def assert_alert_closes(self):
        wait_until(lambda: self.korva.find_window("About") is None, "the end of the alert")

    def assert_works(self):
        """A click on the folder on the left empties the right pane."""
        self.korva.click(75, 73)
        self.korva.wait_for_picture(
            lambda now: now.part(180, 50, 480, 455).colours() == {WHITE}, "an empty right pane")

    def test_enter_answers_it(self):
        self.korva.steady_picture("About")
        self.display.press("Return")
        self.assert_alert_closes()
        self.assert_works()

    def test_click_on_thanks_answers_it(self):
        picture = self.korva.steady_picture("About")
        self.korva.click(picture.width - 40, picture.height - 20, title="About")
        self.assert_alert_closes()
        self.assert_works()

    def test_closing_it_answers_it(self):
        self.korva.close("About")
        self.assert_alert_closes()
        self.assert_works()

    def test_window_behind_follows_resizes_but_takes_no_clicks(self):
        self.korva.resize(800, 700)
        self.korva.wait_for_size(800, 700)
        # Right of the alert and below it, which keeps its place in the middle.
        self.korva.wait_for_picture(
            lambda now: now.at(770, 660) == WHITE, "rows in the new corner")
        before = self.korva.steady_picture()
        self.korva.click(75, 73)
        self.korva.click(215, 58)
        self.display.press("Down")
        after = self.korva.steady_picture()
        rows = (2, 29, 140, 400)
        self.assertEqual(after.part(*rows), before.part(*rows))
        items = (180, 29, 260, 100)
        self.assertEqual(after.part(*items), before.part(*items))
        self.assertIsNotNone(self.korva.find_window("About"))

    def test_stays_above_the_window_that_it_blocks(self):
        before = self.korva.steady_picture("About")
        self.display.do("xdotool", "windowraise", self.korva.window())
        self.korva.click(30, 300)  # which raises a window too
        self.assertEqual(self.korva.steady_picture("About").part(40, 10, 250, 110),
                         before.part(40, 10, 250, 110))

    def test_window_behind_repaints_what_the_alert_uncovers(self):
        self.display.do("xdotool", "windowmove", self.alert, "700", "600")
        wait_until(lambda: self.korva.frame("About")[0] > 600, "the alert at its new place")
        self.korva.wait_for_picture(
            lambda now: now.part(180, 95, 480, 400).colours() == {WHITE}, "nothing of the alert")

    def test_program_ends_with_the_alert_open(self):
        self.korva.process.send_signal(signal.SIGTERM)
        self.assert_ends_well(self.korva)

    def test_window_behind_can_be_closed_after_the_answer_only(self):
        self.korva.close()
        self.korva.steady_picture("About")
        self.display.press("Return")
        self.assert_alert_closes()
        self.korva.close()
        self.assert_ends_well(self.korva)


if __name__ == "__main__":
    unittest.main()
