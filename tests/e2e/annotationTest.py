"""Drawing on the screen with the real overlay as the program that the annotation panel starts."""

import os
import pathlib
import shutil
import signal
import time

from screen import click, colour_at, key, sensitive, xdotool
from session import SIMULATOR, Home, SessionCase, main
from waiting import until

OVERLAY = pathlib.Path(SIMULATOR).parents[1] / "annotationOverlay/annotationOverlay"
HINT = "Click the right mouse button to switch to cursor."
PEN_COLOUR = (230, 56, 53)
START, END = (150, 650), (350, 650)  # on the screen, away from the program's window
CLOSED = "monitorData AnnotationClose"


class TheOverlay(SessionCase):
    def begin(self, **options):
        home = Home()
        shutil.copy(OVERLAY, home.product / "bin/Annotation")
        self.session = self.start(home=home, **options).ready()
        self.application = self.session.application
        self.pipes = [home.pipes / name for name in ("AnnotationIn", "AnnotationOut")]

    def open(self):
        """The panel opens, and the overlay is there."""
        click(self.application.find("push button", "Annotation"))
        self.application.find("push button", "Pen")
        return until(self.overlay, "the overlay runs")

    def overlay(self):
        """Process of the overlay that reads its commands, or None."""
        program = str(self.session.home.product / "bin/Annotation").encode()
        for folder in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                runs = (folder / "cmdline").read_bytes().split(b"\0")[0] == program
                if runs and any(os.readlink(file) == str(self.pipes[0]) for file in (folder / "fd").iterdir()):
                    return int(folder.name)
            except OSError:  # has just gone
                continue
        return None

    def gone(self, overlay, seconds=15):
        until(lambda: not pathlib.Path(f"/proc/{overlay}/fd/0").is_symlink(), "the overlay ends", seconds)

    def take_pen(self):
        click(self.application.find("push button", "Pen"))
        until(lambda: not sensitive(self.application.find("push button", "Pen")), "the pen is in use")
        self.application.has_label(HINT)
        self.session.windows.find("Annotation")

    def draw(self):
        xdotool("mousemove", *START, "mousedown", 1, "mousemove", *END, "mouseup", 1)
        middle = (START[0] + END[0]) // 2, START[1]
        until(lambda: colour_at(*middle) == PEN_COLOUR, lambda: f"a line; there is {colour_at(*middle)}")

    def ended(self, closings):
        """The program has heard of the overlay's end: the agent knows, the panel is shut, the pipes are gone."""
        until(lambda: self.closings() >= closings, lambda: f"{CLOSED}; the agent received {self.lines()}")
        self.application.gone("push button", "Pen")
        until(lambda: not any(pipe.exists() for pipe in self.pipes), "the pipes go")
        self.assertEqual(self.closings(), closings)

    def lines(self):
        return self.session.agent.lines()

    def closings(self):
        return self.lines().count(CLOSED)

    def test_draws_until_the_right_button_makes_the_tools_usable_again(self):
        self.begin()
        self.assertNotEqual(colour_at((START[0] + END[0]) // 2, START[1]), PEN_COLOUR)
        self.open()
        self.take_pen()
        self.draw()
        xdotool("mousemove", *END, "click", 3)
        until(lambda: sensitive(self.application.find("push button", "Pen")), "the pen can be chosen again")
        self.application.gone("label", HINT)
        self.take_pen()
        self.assertEqual(self.closings(), 0)
        self.assertEqual(self.session.warnings(), [])

    def test_ends_at_escape_and_can_be_started_again(self):
        self.begin()
        for closings in (1, 2):
            overlay = self.open()
            self.assertTrue(all(pipe.is_fifo() for pipe in self.pipes))
            self.take_pen()
            self.draw()
            self.session.windows.wait_focus("Annotation")
            key("Escape")
            self.gone(overlay)
            self.ended(closings)

    def test_may_be_killed_and_started_again(self):
        self.begin()
        os.kill(self.open(), signal.SIGKILL)
        self.ended(1)
        self.open()
        self.take_pen()

    def test_ends_with_the_session(self):
        self.begin(speed=1)
        overlay = self.open()
        self.take_pen()
        start = time.monotonic()
        self.assertEqual(self.session.quit(), 0)
        self.gone(overlay, seconds=2)
        self.assertLess(time.monotonic() - start, 2)


if __name__ == "__main__":
    main()
