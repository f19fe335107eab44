"""The question at the window's close button, answered by pointer and by keyboard."""

from keyboard import key
from screen import Atspi, click, everything, has_state
from session import SessionCase, main
from waiting import until

QUESTION = "Do you want to leave this Session?" + 30 * " "


class LeavingTheSession(SessionCase):
    def setUp(self):
        super().setUp()
        self.session = self.start().ready()
        self.application = self.session.application

    def close_window(self):
        windows = self.session.windows
        windows.close(windows.find("Brindle"))

    def ask(self):
        self.close_window()
        dialog = self.application.find("dialog", "Brindle")
        self.application.find("label", QUESTION)
        return dialog

    def ended_without_a_line(self):
        self.assertEqual(self.session.wait(), 0)
        self.assertEqual(self.session.agent.lines(), [])
        self.session.log.expect(" User has Closed Session")
        self.assertEqual(self.session.log.messages()[-1], "freed meamory")
        self.assertEqual(self.session.warnings(), [])

    def still_there(self):
        self.session.log.expect(" User has canceled close")
        self.application.gone("dialog", "Brindle")
        self.session.settled()
        self.assertEqual(self.session.agent.lines(), [])
        self.assertTrue(self.session.alive())

    def test_ends_it_silently_before_a_technician_came(self):
        self.ask()
        click(self.application.find("push button", "Yes"))
        self.ended_without_a_line()

    def test_tells_the_agent_once_the_session_was_reported(self):
        self.session.send("sessionStatus Connected")
        self.application.has_label("In Session")
        self.ask()
        click(self.application.find("push button", "Yes"))
        self.assertEqual(self.session.wait(), 0)
        self.session.agent.expect("buttonClicked exit")
        self.assertEqual(self.session.log.messages()[-1], "freed meamory")

    def test_is_refused_by_pointer(self):
        self.ask()
        click(self.application.find("push button", "No"))
        self.still_there()

    def test_is_confirmed_by_keyboard(self):
        self.ask()
        self.to_button("Yes")
        key("Return")
        self.ended_without_a_line()

    def test_is_refused_by_keyboard(self):
        self.ask()
        self.to_button("No")
        key("space")
        self.still_there()

    def test_is_refused_by_escape(self):
        self.ask()
        self.session.windows.wait_focus("Brindle")
        key("Escape")
        self.still_there()

    def test_is_asked_again_at_a_second_close(self):
        self.ask()
        click(self.application.find("push button", "No"))
        self.still_there()
        self.ask()
        click(self.application.find("push button", "Yes"))
        self.ended_without_a_line()

    def test_comes_by_the_keys_that_close_a_window(self):
        self.session.windows.wait_focus("Brindle")
        key("alt+F4")
        self.application.find("label", QUESTION)
        self.assertTrue(self.session.alive())

    def test_may_be_decided_by_the_agent_meanwhile(self):
        self.ask()
        self.assertEqual(self.session.quit(), 0)
        self.assertEqual(self.session.agent.lines(), [])
        self.assertEqual(self.session.log.messages()[-1], "freed meamory")

    def to_button(self, name):
        """Walks to a button with the Tab key, as a customer without a pointer does."""
        self.session.windows.wait_focus("Brindle")
        button = self.application.find("push button", name)
        dialog = self.application.find("dialog", "Brindle")
        until(lambda: has_state(dialog, Atspi.StateType.ACTIVE), "the question has the keyboard")
        while not has_state(button, Atspi.StateType.FOCUSED):
            before = self.focused(dialog)
            key("Tab")
            until(lambda: self.focused(dialog) not in (None, before), f"the keyboard leaves {before!r}")

    def focused(self, dialog):
        """Name of the button that has the keyboard, or None."""
        return next((each.get_name() for each in everything(dialog)
                     if each != dialog and has_state(each, Atspi.StateType.FOCUSED)), None)


if __name__ == "__main__":
    main()
