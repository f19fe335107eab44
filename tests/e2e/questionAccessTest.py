"""Questions as assistive technology finds them, and the control on which the keyboard begins."""

from typing import NamedTuple

from promptCase import PromptCase, encoded
from screen import Atspi, everything, has_state, shown
from session import main
from waiting import until

CONSENT = f"dialogPrompt userConcent {encoded('May we?')} client7 camera"
REMEMBER = ("check box", "Remember this option")
STATES = (Atspi.StateType.ACTIVE, Atspi.StateType.MODAL, Atspi.StateType.SENSITIVE)


def buttons(*names):
    return [("push button", name) for name in names]


class Question(NamedTuple):
    line: str
    name: str       # under which it is announced
    controls: list  # role and name, in the order of reading
    focus: str      # where keys answer; None: on nothing, since no button refuses
    guarded: bool = False


QUESTIONS = [
    Question("dialogPrompt runAsService", "Brindle", buttons("Yes", "No"), "No", guarded=True),
    Question("dialogPrompt launchScript a.sh", "Allow remote script execution?", buttons("Allow", "Deny"), "Deny"),
    Question(CONSENT, "Brindle", [REMEMBER, *buttons("Yes")], None, guarded=True),
    Question("dialogPrompt initswap Bob", "Requesting (null) to share screen", buttons("Cancel"), "Cancel",
             guarded=True),
    Question("dialogPrompt command 41", "Brindle", buttons("Yes", "No"), "No"),
    Question("dialogPrompt fileTransferReceive a.txt", "Receive File", buttons("Change Path", "Cancel", "Save"),
             "Cancel"),
    Question("dialogPrompt acall", "Video/Voice call", buttons("Accept", "Reject"), "Reject"),
    Question("dialogPrompt vcall", "Video/Voice call", buttons("Accept", "Reject"), "Reject"),
    Question("dialogPrompt rebootPc", "Reboot PC", buttons("Yes", "No"), "No"),
    Question("dialogPrompt configureURS 7", "Brindle", buttons("Yes", "No"), "No"),
    Question("dialogPrompt lockuser", "Lock screen", buttons("Yes", "No"), "No"),
    Question("clipboard", "Clipboard Permission", buttons("Allow always", "Allow once"), None, guarded=True),
    Question(f"dialogPrompt samecon {encoded('Join us?')}", "Brindle", buttons("Join", "Cancel"), "Cancel"),  # ends it
]
CONTROLS = {role for question in QUESTIONS for role, _ in question.controls} | {"toggle button", "text", "link"}


class AQuestion(PromptCase):
    def looks_right(self, question, dialog):
        accessible = dialog.accessible
        self.assertEqual(accessible.get_role_name(), "dialog")
        self.assertEqual(accessible.get_name(), question.name)
        for state in STATES:
            until(lambda: has_state(accessible, state), lambda: f"{state.value_nick} of {question.line}")
        controls = [each for each in everything(accessible) if each.get_role_name() in CONTROLS and shown(each)]
        self.assertEqual([(each.get_role_name(), each.get_name()) for each in controls], question.controls)
        for each in controls:
            self.assertTrue(has_state(each, Atspi.StateType.SENSITIVE), each.get_name())
            self.assertGreater(each.get_action_iface().get_n_actions(), 0, each.get_name())
        return controls

    def every_question(self, kind, begins_on, takes_focus):
        self.begin(kind, speed=1)
        self.add_participants("Ann 41")
        for question in QUESTIONS:
            with self.subTest(question.line):
                dialog = self.ask(question.line)
                controls = self.looks_right(question, dialog)
                until(lambda: dialog.focused() == begins_on(question),
                      lambda: f"{begins_on(question)!r} has the keyboard; it is {dialog.focused()!r}")
                for control in controls:
                    self.assertEqual(has_state(control, Atspi.StateType.FOCUSABLE), takes_focus(question))
                self.press_key(dialog, "Escape")
                self.gone(dialog)
        self.assertEqual(self.session.wait(), 0)
        self.assertEqual(self.session.warnings(), [])

    def test_begins_on_what_refuses_where_keys_answer(self):
        self.every_question("ras", lambda question: question.focus, lambda question: True)

    def test_without_a_refusing_button_begins_on_nothing_and_gives_its_controls_to_tab(self):
        self.begin("ras", speed=1)
        for line, last in ((CONSENT, "Yes"), ("clipboard", "Allow once")):
            with self.subTest(line):
                dialog = self.ask(line)
                self.mark()
                self.press_key(dialog, "space", "Return", "KP_Enter")
                self.session.settled()
                self.assertEqual(self.heard(), [])
                self.assertIsNone(dialog.focused())
                self.goes_to(dialog, last)
                self.press_key(dialog, "Escape")
                self.gone(dialog)
        self.assertEqual(self.session.warnings(), [])

    def goes_to(self, dialog, name):
        for _ in dialog.shown_in("push button") + dialog.shown_in("check box"):
            before = dialog.focused()
            self.press_key(dialog, "Tab")
            until(lambda: dialog.focused() not in (None, before), f"the keyboard leaves {before!r}")
            if dialog.focused() == name:
                return
        self.fail(f"Tab never reaches {name!r}")

    def test_gives_no_control_to_the_keyboard_where_only_the_pointer_answers(self):
        self.every_question("normal", lambda question: None if question.guarded else question.focus,
                            lambda question: not question.guarded)


class TheChooser(PromptCase):
    def test_is_announced_as_one_and_left_by_escape(self):
        self.begin()
        dialog = self.ask("dialogPrompt fileTransfer 41")
        self.assertEqual(dialog.accessible.get_role_name(), "file chooser")
        self.assertEqual(dialog.accessible.get_name(), "Send File")
        self.assertTrue(has_state(dialog.accessible, Atspi.StateType.MODAL))
        for name in ("Cancel", "Send "):
            self.assertIn(name, dialog.buttons())
        until(dialog.focused, "a control with the keyboard")
        self.press_key(dialog, "Escape")
        self.gone(dialog)
        self.hears("dialogResponse delete_dialog fileChooserDialog ")
        self.assertEqual(self.session.warnings(), [])


class AChooserThatAssistiveTechnologyOpens(PromptCase):
    """Pressed without pointer and keys, as a screen reader or a voice control does."""

    def opens_and_closes(self, button, title):
        self.assertTrue(button.get_action_iface().do_action(0))
        cancel = until(lambda: self.cancel_of(title), f"{title!r} in the accessible tree")
        self.assertTrue(cancel.get_action_iface().do_action(0))
        self.application.gone("file chooser", title)
        self.windows.wait_focus("Brindle" if title != "Open File" else "Receive File")

    def cancel_of(self, title):
        chooser = self.application.look("file chooser", title)
        return chooser and next((each for each in everything(chooser)
                                 if each.get_role_name() == "push button" and each.get_name() == "Cancel"), None)

    def test_can_be_found_and_left_by_it(self):
        self.begin()
        self.session.send("chat Ann\nhello")
        save = self.application.find("push button", "Download Chat")
        until(lambda: has_state(save, Atspi.StateType.SENSITIVE), "the transcript can be saved")
        self.opens_and_closes(save, "Save Chat Transcript")
        offer = self.ask("dialogPrompt fileTransferReceive a.txt")
        self.mark()
        self.opens_and_closes(offer.button("Change Path"), "Open File")
        self.hears("monitorData fileTransferSend")
        self.assertEqual(self.session.warnings(), [])


if __name__ == "__main__":
    main()
