"""The annotation panel with a program that draws, and what is drawn on the screen."""

import os
import pathlib
import shutil

from Xlib import error

from pipes import unread_bytes
from screen import click, colour_at, sensitive, the_display, xdotool
from session import SIMULATOR, Home, SessionCase, lives
from waiting import until

OVERLAY = pathlib.Path(SIMULATOR).parents[1] / "annotationOverlay/annotationOverlay"
TOOLS = ("Pen", "Rectangle", "Ellipse", "Line", "Eraser", "Clear Screen")
HINT = "Click the right mouse button to switch to cursor."
PEN_COLOUR = (230, 56, 53)
CLOSED = "monitorData AnnotationClose"
PIPES = ("AnnotationIn", "AnnotationOut")
START, END = (150, 650), (350, 650)  # on the screen, away from the program's window
MIDDLE = (250, 650)


class AnnotationCase(SessionCase):
    def begin(self, program=OVERLAY, **options):
        """A session whose annotation program is a copy of this one; None: there is none."""
        home = Home()
        if program:
            shutil.copy(program, home.product / "bin/Annotation")
        self.use(self.start(home=home, **options).ready())

    def use(self, session):
        self.session = session
        self.application = session.application
        self.pipes = [session.home.pipes / name for name in PIPES]

    def toggle(self):
        click(self.application.find("push button", "Annotation"))

    def open(self):
        """The panel opens, and the overlay is there."""
        self.toggle()
        self.application.find("push button", "Pen")
        return until(self.overlay, "the overlay runs")

    def programs(self):
        """Processes of the annotation program."""
        return [process for process, words in self.session.children().items()
                if any(word.endswith("/bin/Annotation") for word in words[:3])]  # a script comes behind its shell

    def overlay(self):
        """Process of the overlay once it reads its commands, or None."""
        return next((process for process in self.programs() if holds_open(process, PIPES[0])), None)

    def gone(self, overlay, seconds=15):
        until(lambda: not lives(overlay), "the overlay ends", seconds)

    def tool(self, name):
        return self.application.find("push button", name)

    def take(self, name):
        """Chooses a tool, and waits until the overlay has the pointer."""
        click(self.tool(name))
        until(lambda: not sensitive(self.tool(name)), f"{name} is in use")
        self.application.has_label(HINT)
        until(lambda: is_window_at("Annotation", *START), "the overlay takes the pointer")
        until(self.has_read, "the overlay takes in its command")

    def has_read(self):
        """The overlay, which obeys what it reads before it looks at the pointer, has read all that was written."""
        pipe = os.open(self.pipes[0], os.O_RDONLY | os.O_NONBLOCK)
        try:
            return not unread_bytes(pipe)
        finally:
            os.close(pipe)

    def leave(self):
        """The right button gives the cursor back."""
        xdotool("mousemove", *START, "click", 3)
        until(self.all_usable, lambda: f"the tools can be chosen; there is {self.application.describe()}")
        self.application.gone("label", HINT)

    def all_usable(self):
        return all(sensitive(self.tool(name)) for name in TOOLS)

    def drag(self, start, *steps):
        """Drags the pointer; each step is a point, and where there is ink once the overlay has seen it there."""
        xdotool("mousemove", *start, "mousedown", 1)
        try:
            for point, *traces in steps:
                xdotool("mousemove", *point)
                self.is_drawn(*traces)
        finally:
            xdotool("mouseup", 1)

    def draw(self):
        self.drag(START, (END, MIDDLE))

    def is_drawn(self, *points):
        for point in points:
            until(lambda: colour_at(*point) == PEN_COLOUR, lambda: f"ink at {point}; there is {colour_at(*point)}")

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


def holds_open(process, name):
    try:
        return any(os.readlink(file).endswith(f"/{name}") for file in pathlib.Path(f"/proc/{process}/fd").iterdir())
    except OSError:  # has just gone
        return False


def is_window_at(title, x, y):
    """The pointer would meet a window of this title there."""
    root = the_display().screen().root
    name = the_display().intern_atom("_NET_WM_NAME")
    try:
        window = root.translate_coords(root, x, y).child
        while window:
            if window.get_full_text_property(name) in (title, title.encode()):
                return True
            window = window.translate_coords(root, x, y).child
    except error.XError:  # it has just gone
        pass
    return False
