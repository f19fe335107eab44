"""Plays one session from the first window to the end and records what the agent received and what was logged. Run as a
program it writes the recording to a file: once under X11, once under Wayland, the two are compared."""

import json
import re
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from keyboard import key  # noqa: E402
from promptCase import POSITION, encoded  # noqa: E402
from screen import click, grab_focus, has_state, sensitive, under_wayland, xdotool  # noqa: E402
from session import Home, Session  # noqa: E402
from waiting import until  # noqa: E402

# Signs of life, and how far a thread comes that nobody waits for at the end.
_NOISE = re.compile("Received Ping UI|settled-|Session Status Message recived |file opened properly|"
                    "TRACE_CALL handleSessionStatusMessage|INFO infiniteChecker |"
                    "INFO messageParser closing thread")
_REPORT = tuple(f"TRACE_CALL {name} " for name in ("get_window_coordinates", "encodeDialogeResponseMessage", "pipewriter"))
_LINES = ("sessionStatus Connected", "sessionStatus disconnected", "sessionStatus disablechat",
          "sessionStatus enablechat", "sessionStatus disablefiletransfer", "sessionStatus enablefiletransfer",
          "sessionStatus disableannotation", "sessionStatus enableannotation", "sessionStatus disableswapscreen",
          "sessionStatus enableswapscreen", "sessionStatus disableClipboard", "sessionStatus enableClipboard",
          "sessionStatus unknown", "ONDEMAND START", "ONDEMAND STOP", "not32", "swapscreen accepted",
          "nobody knows this", "sessionStatus TECH-NAME Ann%20Lee", "sessionStatus participantsAdd Ann%20Lee 41 true")
# The technician's line, the button that answers it, and the one under Wayland where that is another.
_QUESTIONS = (
    (f"dialogPrompt samecon {encoded('Join?')}", "Join", None),
    (f"dialogPrompt userConcent {encoded('May I?')} client7 camera", "Yes", None),
    ("dialogPrompt command 41", "Yes", None),
    ("dialogPrompt runAsService", "Yes", "OK"),
    ("dialogPrompt launchScript deploy.sh", "Allow", None),
    ("dialogPrompt configureURS 41", "No", None),
    ("dialogPrompt rebootPc", "No", None),
    ("dialogPrompt lockuser", "No", None),
    ("dialogPrompt acall", "Reject", None),
    ("dialogPrompt vcall", "Accept", None),
    ("dialogPrompt initswap Ann", "Cancel", None),
    ("dialogPrompt fileTransfer 41", "Cancel", None),
    ("dialogPrompt fileTransferReceive manual.pdf", "Save", None),
    ("clipboard", "Allow once", None),
)
_NOTICE = "Your computer does not support Annotation."  # of "not32", for three seconds
_IN_PANEL = {"Participant": ("push button", "More: Ann Lee"), "Chat": ("text", "Message")}


class Recording:
    def __init__(self, session):
        self.session = session
        self.application = session.application
        self.buttons = {}

    def look(self, moment):
        """Which buttons the window shows at a moment."""
        self.buttons[moment] = [button.get_name() for button in self.application.shown_all("push button")]

    def send(self, line):
        self.session.send(line)
        self.session.settled()

    def press(self, name, role="push button"):
        button = self.application.find(role, name)
        until(lambda: sensitive(button), f"{name} can be pressed")
        click(button)

    def ask(self, line, button):
        windows = self.session.windows
        before = windows.active()
        self.session.send(line)
        until(lambda: windows.active() not in (None, before), f"the keyboard for {line}")
        click(self.application.find("push button", button))
        self.application.gone("push button", button)
        self.session.settled()

    def heard(self):
        """What the agent received; of reports where a dialog is, the kinds of dialogs."""
        lines = self.session.agent.lines()
        kinds = {line.rsplit(" ", 4)[0] for line in lines if line.startswith(POSITION)}
        return [line for line in lines if not line.startswith(POSITION)], sorted(kinds)

    def logged(self):
        """Lines of the log in no order, as several threads write it; without reports where a dialog is."""
        lines, report = [], []
        for line in map(" ".join, self.session.log.lines()):
            if line in report:
                report.remove(line)
            elif line == _REPORT[0]:
                report = list(_REPORT[1:])
            elif not _NOISE.search(line):
                lines.append(re.sub("0x[0-9a-f]+", "POINTER", line.replace(str(self.session.home.path), "HOME")))
        return sorted(lines)


def _talk(recording):
    recording.send("chat Ann\nHello%20there")
    field = recording.application.find(*_IN_PANEL["Chat"])
    recording.session.windows.wait_focus("Brindle")
    grab_focus(field)
    until(lambda: has_state(field, Atspi.StateType.FOCUSED), "the keyboard in the message field")
    xdotool("type", "Good morning")
    key("Return")
    until(lambda: any(b"morning" in text for text in recording.session.agent.texts), "the customer's message")


def _play(session):
    recording = Recording(session)
    recording.look("start")
    for line in _LINES:
        recording.send(line)
    recording.application.has_label("Ann Lee")
    recording.application.gone("label", _NOTICE)  # everything below it moves up
    session.settled()
    recording.look("connected")
    recording.press("More")
    recording.press("Go to Website", "menu item")
    recording.application.gone("menu item", "Go to Website")
    recording.press("Participant")
    recording.application.find(*_IN_PANEL["Participant"])
    _talk(recording)
    for panel in ("Participant", "Chat"):
        recording.press(panel)
        recording.application.gone(*_IN_PANEL[panel])
    for line, button, under_sway in _QUESTIONS:
        recording.ask(line, under_sway if under_sway and under_wayland() else button)
    recording.press("Pause Screen Sharing")
    recording.application.has_label("Sharing has been disabled!")
    session.send("exit")
    status = session.wait()
    heard, reported = recording.heard()
    return {"status": status, "heard": heard, "reported": reported, "logged": recording.logged(),
            "buttons": recording.buttons, "warnings": session.warnings()}


def record():
    home = Home()
    home.install_agent()
    session = Session(home, speed=1)  # the question whether to reboot goes by itself
    try:
        return _play(session.ready())
    finally:
        session.clean_up()


if __name__ == "__main__":
    with open(sys.argv[1], "w", encoding="utf-8") as file:
        json.dump(record(), file)
