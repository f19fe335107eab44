"""Drawing on the screen with the real overlay as the program that the annotation panel starts."""

import os
import signal
import time

from annotationCase import HINT, MIDDLE, PEN_COLOUR, AnnotationCase
from screen import colour_at, key
from session import main
from waiting import PATIENCE


class TheOverlay(AnnotationCase):
    def test_draws_until_the_right_button_makes_the_tools_usable_again(self):
        self.begin()
        self.assertNotEqual(colour_at(*MIDDLE), PEN_COLOUR)
        self.open()
        self.take("Pen")
        self.draw()
        self.leave()
        self.take("Pen")
        self.assertEqual(self.closings(), 0)
        self.assertEqual(self.session.warnings(), [])

    def test_ends_at_escape_and_can_be_started_again(self):
        self.begin()
        for closings in (1, 2):
            overlay = self.open()
            self.assertTrue(all(pipe.is_fifo() for pipe in self.pipes))
            self.take("Pen")
            self.draw()
            self.session.windows.wait_focus("Annotation")
            key("Escape")
            self.gone(overlay)
            self.ended(closings)
            self.application.gone("label", HINT)
            self.application.gone("push button", "Pen")  # the buttons move as the panel closes

    def test_may_be_killed_and_started_again(self):
        self.begin()
        os.kill(self.open(), signal.SIGKILL)
        self.ended(1)
        self.open()
        self.take("Pen")

    def test_ends_with_the_session(self):
        self.begin(speed=1)
        overlay = self.open()
        self.take("Pen")
        start = time.monotonic()
        self.assertEqual(self.session.quit(), 0)
        self.gone(overlay, seconds=2)
        self.assertLess(time.monotonic() - start, 2 * PATIENCE)


if __name__ == "__main__":
    main()
