# SPDX-License-Identifier: MIT

# A display server that goes away: nothing can be shown any more, so the program ends.

import unittest

from desktop import ABOUT, KORVA, Display, Program


class LostDisplay(unittest.TestCase):
    def setUp(self):
        self.display = Display()
        self.addCleanup(self.display.close)

    def start(self, program):
        started = Program(self.display, [program, self.display.home])
        self.addCleanup(started.end)
        return started

    def assert_ends_by_itself(self, program):
        self.assertEqual(program.wait_for_end(2), 1, program.errors())

    def test_at_rest(self):
        korva = self.start(KORVA)
        korva.steady_picture()
        self.display.lose()
        self.assert_ends_by_itself(korva)

    def test_while_it_is_resized(self):
        korva = self.start(KORVA)
        korva.window()
        for i in range(20):
            korva.resize(400 + 10 * i, 400)
        self.display.lose()
        self.assert_ends_by_itself(korva)

    def test_with_an_alert_open(self):
        korva = self.start(ABOUT)
        korva.window("About")
        self.display.lose()
        self.assert_ends_by_itself(korva)


if __name__ == "__main__":
    unittest.main()
