"""Drawing on the screen with the real overlay as the program that the annotation panel starts."""

import os
import signal
import socket
import struct

from annotationCase import HINT, MIDDLE, PEN_COLOUR, AnnotationCase
from faultServers import hang
from keyboard import key
from screen import colour_at, the_display
from session import Home, main
from waiting import until


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
        self.assertEqual(self.session.quit(), 0)
        self.gone(overlay)

    def test_is_told_to_end_by_a_session_whose_display_hangs(self):
        home = Home()
        home.install_annotation()
        self.use(self.start(home=home).ready())
        self.toggle()
        program, = until(self.programs, "the program runs")
        self.application.find("push button", "Pen")
        server = x_server()
        try:
            hang(self.session, server)
            home.agent_ends(0)
            self.assertEqual(self.session.wait(), 1)
        finally:
            os.kill(server, signal.SIGCONT)
        self.assertEqual(self.session.log.count("the window hangs"), 1)
        self.gone(program)


def x_server():
    """Process of the server that the display is on."""
    connection = the_display().display.socket
    return struct.unpack("3i", connection.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, 12))[0]


if __name__ == "__main__":
    main()
