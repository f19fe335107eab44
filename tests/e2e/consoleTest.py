"""The technician console in the agent's place: what is clicked there reaches the companion, and what the companion
says is listed there."""

import os
import pathlib
import subprocess
import threading
import unittest

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from keyboard import key  # noqa: E402
from pipes import PipeReader, send_text  # noqa: E402
import screen  # noqa: E402
from screen import Application, Windows, everything, grab_focus, has_state, sensitive, shown, xdotool  # noqa: E402
from session import SIMULATOR, Home, SessionCase, lives, main  # noqa: E402
from waiting import until  # noqa: E402

CONSOLE = str(pathlib.Path(SIMULATOR).parent / "technicianConsole")
TITLE = "Technician console"
# With the real clock: a recorded script waits by it.
AGENT = f"""#!/bin/sh
unset LD_PRELOAD
exec {SIMULATOR} "$@"
"""
CONTROLS = ("push button", "toggle button", "check box", "text", "combo box", "spin button", "table", "list item")


def click(accessible):
    """A real click; the pointer comes from where it raised no tooltip that could lie over the control."""
    xdotool("mousemove", 1279, 0)
    screen.click_through(accessible)  # a request to move the keyboard would overtake it


def focus(accessible, title):
    """Moves the keyboard to a control of the window with this title."""
    grab_focus(accessible)
    Windows().wait_focus(title)
    until(lambda: has_state(accessible, Atspi.StateType.FOCUSED), f"the keyboard is on {accessible.get_name()!r}")


def contents(field):
    return Atspi.Text.get_text(field, 0, -1)


class Console(Application):
    """The console's window, found by the process that it runs in."""

    def open_page(self, name):
        """A real click on the name of a page."""
        click(self.find("label", name))
        return self

    def send(self, title):
        """A real click on the button of a line."""
        button = self.find("push button", f"Send: {title}", only_shown=False)
        focus(button, TITLE)
        until(lambda: shown(button), f"the page scrolls to {title!r}")
        click(button)

    def type_into(self, name, text):
        """Replaces what stands in a field, with the keyboard."""
        field = self.find("text", name, only_shown=False)
        focus(field, TITLE)
        key("ctrl+a")
        xdotool("type", "--delay", "10", text)
        until(lambda: contents(field) == text, lambda: f"{text!r} typed; there is {contents(field)!r}")

    def row(self, line):
        """Time, sender, line and meaning of the first listed line like this."""
        cells = [cell.get_name() for cell in self.shown_all("table cell")]
        rows = [cells[i:i + 4] for i in range(0, len(cells), 4)]
        return next((row for row in rows if len(row) == 4 and row[2] == line), None)

    def lists(self, line):
        return until(lambda: self.row(line), lambda: f"{line!r} in the list; there is {self.describe()}")

    def script(self):
        return contents(self.find("text", "Script"))


class ConsoleCase(SessionCase):
    def start_console(self, **options):
        """The companion has started the console as its agent; both windows are there."""
        home = Home()
        home.install_agent(text=AGENT)
        environment = {"BRINDLE_AGENT_CONSOLE": "1", "BRINDLE_AGENT_RECORD": str(home.path / "record"),
                       **options.pop("environment", {})}
        session = self.start(home=home, agent=False, environment=environment, **options)
        session.log.expect("normal session")
        session.windows.find("Brindle")
        return session, self.console_of(session)

    def console_of(self, session):
        """The console that the companion has started last."""
        session.windows.find(TITLE)
        return Console(until(lambda: next(iter(session.children()), None), "an agent"))


class Lines(ConsoleCase):
    def test_a_click_changes_the_companion_and_its_answer_is_listed_with_its_meaning(self):
        session, console = self.start_console()
        console.send("Connected")
        pause = session.application.find("push button", "Pause Screen Sharing")
        until(lambda: sensitive(pause), "the companion is connected")
        click(pause)
        time, sender, _, meaning = console.lists("buttonClicked stop")
        self.assertRegex(time, r"^\d+:\d\d\.\d{3}$")
        self.assertEqual([sender, meaning], ["companion", "The customer pauses sharing"])
        self.assertEqual(console.lists("sessionStatus Connected")[1::2], ["agent", "Connected"])

    def test_a_form_asks_the_customer_and_lists_the_answer(self):
        session, console = self.start_console()
        console.open_page("Questions")
        console.type_into("Control the device?: participant's ID", "4711")
        console.find("label", r"dialogPrompt command 4711\n", only_shown=False)
        console.send("Control the device?")
        click(session.application.find("push button", "Yes"))
        answer = console.lists("dialogResponse controlApproved 4711")
        self.assertEqual(answer[3], "Participant 4711 may control the device")

    def test_several_technicians_chat_and_the_customer_answers(self):
        session, console = self.start_console()
        console.open_page("Chat and AR")
        for name, message in (("John Smith", "exit"), ("Ann Lee", "Who is there?")):
            console.type_into("Chat message: name", name)
            console.type_into("Chat message: message", message)
            key("Return")
            until(lambda: self.conversation(session, message), f"{message!r} in the chat")
        until(lambda: contents(console.find("text", "Chat message: message")) == "", "an empty field")
        for name in ("John Smith", "Ann Lee"):
            until(lambda: self.conversation(session, name), lambda: f"{name!r} in the chat; there is {self.views(session)}")
        focus(session.application.find("text", "Message"), "Brindle")
        xdotool("type", "--delay", "10", "Me & you")
        key("Return")
        self.assertEqual(console.lists("chat Me%20%26%20you%0A")[3], r"The customer writes: Me & you\n")

    def test_what_no_form_knows_is_typed(self):
        session, console = self.start_console()
        console.type_into("Command", "techname Kim Park")
        key("Return")
        session.application.has_label("Kim Park")
        console.type_into("Command", "sessionStatus somethingNew")
        key("Return")
        session.log.expect("Unhandled message  somethingNew")

    @staticmethod
    def views(session):
        return [contents(view) for view in session.application.shown_all("text")]

    def conversation(self, session, text):
        return any(text in view for view in self.views(session))


class Scripts(ConsoleCase):
    def test_what_was_done_is_recorded_and_done_again(self):
        session, console = self.start_console()
        console.open_page("Script")
        click(console.find("toggle button", "Record"))
        console.open_page("Session")
        console.send("Connected")
        console.send("Disconnected")
        session.log.expect(" Screen Sharing is Stopped")
        console.open_page("Script")
        click(console.find("toggle button", "Record"))
        self.assertRegex(console.script(),
                         r"^send sessionStatus Connected\nwait \d+\nsend sessionStatus disconnected\n$")
        click(console.find("push button", "Play"))
        session.log.expect(" Screen Sharing is Stopped", 2)
        session.log.expect(" Screen Sharing is Started", 2)
        console.has_label("Played")

    def test_the_script_of_the_environment_is_played_and_can_be_stopped(self):
        session, console = self.start_console_with("send sessionStatus Connected\nping on\nwait 3600000\nsend exit\n")
        session.log.expect(" Screen Sharing is Started")
        pinging = console.find("toggle button", "Signs of life")
        until(lambda: has_state(pinging, Atspi.StateType.CHECKED), "the switch follows the script")
        console.open_page("Script")
        click(console.find("push button", "Stop"))
        console.has_label("Played")
        self.assertTrue(session.alive())

    def test_a_mistake_in_a_script_is_shown_and_nothing_is_sent(self):
        _, console = self.start_console()
        console.open_page("Script")
        console.type_into("Script", "send sessionStatus Connected")
        key("Return")
        xdotool("type", "--delay", "10", "frobnicate")
        click(console.find("push button", "Play"))
        console.has_label('line 2: there is no command "frobnicate"')
        self.assertIsNone(console.row("sessionStatus Connected"))

    def test_a_script_is_saved_and_opened(self):
        session, console = self.start_console()
        path = session.home.path / "mine.script"
        console.open_page("Script").type_into("Script", "send exit")
        self.choose(session, console, "Save…", "Save the script", path)
        until(lambda: path.exists() and path.read_text() == "send exit", "the script in the file")
        path.write_bytes(b"# \xff\nsend sessionStatus Connected\n")
        self.choose(session, console, "Open…", "Open a script", path)
        until(lambda: console.script() == "# \ufffd\nsend sessionStatus Connected\n", console.script)

    @staticmethod
    def choose(session, console, button, title, path):
        click(console.find("push button", button))
        session.windows.wait_focus(title)
        if button == "Open…":  # a path is typed from its beginning
            xdotool("type", "--delay", "10", "/")
            console.find("text", "")
        key("ctrl+a")
        xdotool("type", "--delay", "10", str(path))
        key("Return")
        session.windows.wait_focus(TITLE)

    def start_console_with(self, script):
        path = pathlib.Path(os.environ["HOME"]) / "session.script"
        path.write_text(script)
        return self.start_console(environment={"BRINDLE_AGENT_SCRIPT": str(path)})


class TheAgent(ConsoleCase):
    def test_a_failing_agent_is_started_again_with_a_new_console(self):
        session, console = self.start_console()
        console.open_page("Agent")
        focus(console.find("spin button", "Exit status"), TITLE)
        key("ctrl+a")
        xdotool("type", "3")
        key("Tab")
        click(console.find("push button", "End the agent"))
        until(lambda: not lives(console.pid), "the agent ends")
        self.assertIn("exit 3", (session.home.path / "record").read_text())
        self.console_of(session).find("push button", "Send: Connected")

    def test_an_agent_that_ends_well_ends_the_companion(self):
        session, console = self.start_console()
        console.open_page("Agent")
        click(console.find("push button", "End the agent"))
        self.assertEqual(session.wait(), 0)

    def test_closing_the_console_ends_the_agent_well(self):
        session, _ = self.start_console()
        session.windows.close(session.windows.find(TITLE))
        self.assertEqual(session.wait(), 0)

    def test_the_console_goes_with_the_companion(self):
        session, console = self.start_console()
        console.send("End the companion")
        self.assertEqual(session.wait(), 0)
        until(lambda: not lives(console.pid), "the console ends")


class ByHand(unittest.TestCase):
    """The console without a companion."""

    def setUp(self):
        home = Home()
        self.addCleanup(home.remove)
        self.pipes, self.record = home.pipes, home.path / "record"
        self.process = subprocess.Popen([CONSOLE, "--pipes", str(self.pipes), "--create-pipes", "--send-timeout",
                                         "2000", "--record", str(self.record)])
        self.addCleanup(self.process.wait)
        self.addCleanup(self.process.kill)
        self.console = Console(self.process.pid)
        Windows().wait_focus(TITLE)

    def test_a_companion_that_reads_nothing_does_not_hold_the_window(self):
        self.console.send("Connected")
        self.console.open_page("Permissions").find("push button", "Send: Forbid chat")
        pipe = self.pipes / "Status"
        until(lambda: any("not sent" in cell.get_name() for cell in self.console.shown_all("table cell")),
              "the list says that nothing was sent")
        reader = PipeReader(pipe)
        self.addCleanup(reader.stop)
        self.console.send("Forbid chat")
        reader.expect("sessionStatus disablechat")

    def test_the_switch_pings(self):
        reader = PipeReader(self.pipes / "Status")
        self.addCleanup(reader.stop)
        click(self.console.find("toggle button", "Signs of life"))
        reader.expect("PING UI")
        self.assertIsNone(self.console.row("PING UI"))
        click(self.console.find("check box", "Signs of life too"))
        self.console.lists("PING UI")

    def test_a_switch_obeys_while_lines_pour_in(self):
        reader = PipeReader(self.pipes / "Status")
        self.addCleanup(reader.stop)
        switch = self.console.find("toggle button", "Signs of life")
        ended = threading.Event()
        pouring = threading.Thread(target=self.pour, args=(ended,))
        self.addCleanup(pouring.join)
        self.addCleanup(ended.set)
        pouring.start()
        until(lambda: "< buttonClicked stop" in self.record.read_text(), "lines pour in")
        click(switch)
        reader.expect("PING UI")

    def pour(self, ended):
        while not ended.wait(0.02):  # several while a switch moves
            send_text(self.pipes / "myfifo", "buttonClicked stop\n", seconds=5)

    def test_every_control_on_every_page_has_a_name(self):
        for page in ("Session", "Participants", "Questions", "Files and calls", "Swap of screens", "Chat and AR",
                     "Permissions", "Script", "Agent"):
            self.console.open_page(page)
            nameless = [a.get_role_name() for a in everything(self.console.root)
                        if shown(a) and a.get_role_name() in CONTROLS and not self.name_of(a)]
            self.assertEqual(nameless, [], page)

    @staticmethod
    def name_of(accessible):
        if accessible.get_role_name() == "list item":  # named by the label in it
            return any(a.get_name() for a in everything(accessible))
        return accessible.get_name()


if __name__ == "__main__":
    main()
