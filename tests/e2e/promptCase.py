"""Questions of the technician as the customer meets them: asked through the pipe, found on the screen, answered."""

import base64
from typing import NamedTuple

import gi

gi.require_version("Atspi", "2.0")

from gi.repository import Atspi  # noqa: E402

from keyboard import key  # noqa: E402
from screen import children, everything, has_state, sensitive, shown  # noqa: E402
from session import SessionCase  # noqa: E402
from waiting import until  # noqa: E402

POSITION = "dialogResponse dialog_position "
_NOISE = ("Received Ping UI", "Checking ss is alive", "Unhandled message  settled-", "Session Status Message recived ",
          "file opened properly ")


def encoded(text):
    """As a message travels in a prompt."""
    return base64.b64encode(text if isinstance(text, bytes) else text.encode()).decode()


class Dialog(NamedTuple):
    accessible: object
    window: object  # as the X server knows it

    def shown_in(self, role):
        return [each for each in everything(self.accessible) if each.get_role_name() == role and shown(each)]

    def labels(self):
        return [label.get_name() for label in self.shown_in("label") if label.get_name()]

    def buttons(self):
        return [button.get_name() for button in self.shown_in("push button")]

    def button(self, name):
        return next(button for button in self.shown_in("push button") if button.get_name() == name)

    def check_box(self, name):
        return next(box for box in self.shown_in("check box") if box.get_name() == name)

    def is_checked(self, name):
        return has_state(self.check_box(name), Atspi.StateType.CHECKED)

    def focused(self):
        """Name of the control that has the keyboard, or None."""
        return next((each.get_name() for each in everything(self.accessible)
                     if each != self.accessible and has_state(each, Atspi.StateType.FOCUSED)), None)

    def can_press(self, name):
        return sensitive(self.button(name))


class PromptCase(SessionCase):
    """One session at a time; what the agent hears and what is logged is looked at from a mark on."""

    def begin(self, kind="ras", **options):
        self.session = self.start(kind=kind, **options).ready().heard()
        self.application = self.session.application
        self.windows = self.session.windows
        until(self.windows.managed, "the window manager lists the main window")
        self.mark()

    def add_participants(self, *names_and_identifiers):
        for number, words in enumerate(names_and_identifiers, 1):
            self.session.send(f"sessionStatus participantsAdd {words} true")
            self.session.log.expect("participants present", number)  # a row is made from one line at a time

    def mark(self):
        self.session.settled()
        self._heard = len(self.session.agent.lines())
        self._logged = len(self.session.log.messages())

    def heard(self):
        """What the agent received since the mark, without reports of places."""
        return [line for line in self._lines() if not line.startswith(POSITION)]

    def reported_kinds(self):
        """Of which kinds of dialogs a place was reported since the mark."""
        return {line.removeprefix(POSITION).rsplit(" ", 4)[0] for line in self._lines() if line.startswith(POSITION)}

    def logged(self):
        """What was logged since the mark, without signs of life."""
        return [text for text in self.session.log.messages()[self._logged:] if not text.startswith(_NOISE)]

    def hears(self, *lines):
        """Exactly these lines have come since the mark, and no more follow."""
        until(lambda: len(self.heard()) >= len(lines), lambda: f"{lines}; the agent received {self.heard()}")
        self.session.settled()
        self.assertEqual(self.heard(), list(lines))

    def dialogs(self):
        return self.application.shown_all("dialog")

    def ask(self, line):
        """The technician asks; gives the dialog that appears, once it has the keyboard."""
        windows, dialogs = set(self.windows.managed()), self._hashes()
        self.session.send(line)
        new = until(lambda: set(self.windows.managed()) - windows, lambda: f"a window for {line[:200]!r}")
        self.assertEqual(len(new), 1)
        identifier = new.pop()
        until(lambda: self.windows.active() == identifier, f"the keyboard for {line[:200]!r}")
        accessible = until(lambda: next((d for d in self._asked() if hash(d) not in dialogs), None),
                           lambda: f"the dialog of {line[:200]!r}; there is {self.application.describe()}")
        return Dialog(accessible, self.windows.numbered(identifier))

    def asks_nothing(self, line):
        """The technician's line brings no dialog."""
        before = self.windows.managed()
        self.session.send(line)
        self.session.settled()
        self.assertEqual(self.windows.managed(), before)

    def gone(self, dialog):
        until(lambda: dialog.window.id not in self.windows.managed(),
              lambda: f"the dialog goes; there is {self.application.describe()}")

    def press_key(self, dialog, *names):
        until(lambda: self.windows.active() == dialog.window.id, "the dialog has the keyboard")
        key(*names)

    def _lines(self):
        return self.session.agent.lines()[self._heard:]

    def _asked(self):
        return [each for each in children(self.application.root)
                if each.get_role_name() in ("dialog", "file chooser") and shown(each)]

    def _hashes(self):
        return {hash(each) for each in self._asked()}
