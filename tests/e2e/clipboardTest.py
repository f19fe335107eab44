"""The technician asks for the clipboard: the dialog, its answers, and what the agent hears of them."""

from screen import click
from session import SessionCase, main
from waiting import until

TITLE = "Clipboard Permission"
QUESTION = "Do you want your Technician to access your system Clipboard"


class ThePermission(SessionCase):
    def setUp(self):
        super().setUp()
        self.session = self.start().ready()
        self.application = self.session.application

    def answers(self):
        return [line for line in self.session.agent.lines() if line.startswith("clipboard")]

    def hears(self, *lines):
        until(lambda: len(self.answers()) >= len(lines), lambda: f"{lines}; the agent received {self.answers()}")
        self.session.settled()
        self.assertEqual(self.answers(), list(lines))

    def ask(self):
        self.session.send("clipboard")
        self.application.has_label(QUESTION)

    def answer(self, button):
        self.ask()
        click(self.application.find("push button", button))
        self.application.gone("label", QUESTION)

    def test_may_be_given_for_good(self):
        self.answer("Allow always")
        self.hears("clipboard 1", "clipboard 3")

    def test_may_be_given_once_and_asked_again(self):
        self.answer("Allow once")
        self.hears("clipboard 2", "clipboard 3")
        self.answer("Allow always")
        self.hears("clipboard 2", "clipboard 3", "clipboard 1", "clipboard 3")
        self.assertEqual(self.session.warnings(), [])

    def test_is_refused_by_closing_the_dialog(self):
        self.ask()
        windows = self.session.windows
        windows.close(windows.find(TITLE))
        self.application.gone("label", QUESTION)
        self.hears("clipboard 3")

    def test_is_asked_for_in_one_dialog_at_a_time(self):
        self.ask()
        self.session.send("clipboard")
        self.session.log.expect("dialog box already running")
        self.assertEqual(self.application.labels().count(QUESTION), 1)
        click(self.application.find("push button", "Allow once"))
        self.application.gone("label", QUESTION)
        self.hears("clipboard 2", "clipboard 3")

    def test_is_asked_for_by_the_agent_even_when_the_customers_clipboard_is_not_watched(self):
        self.session.send("sessionStatus disableClipboard")
        self.session.settled()
        self.answer("Allow once")
        self.hears("clipboard 2", "clipboard 3")


if __name__ == "__main__":
    main()
