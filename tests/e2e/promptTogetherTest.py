"""Many questions at once: each is asked once, keeps its own answer, and outlives the window that a swap takes away."""

from promptCase import PromptCase, encoded
from screen import click
from session import main
from waiting import until

RESPONSE = "dialogResponse "
CONSENT = f"dialogPrompt userConcent {encoded('May we?')} c1 camera"
# Each may be open once only.
SINGLE = {
    "dialogPrompt runAsService": "window already active",
    "dialogPrompt launchScript a.sh": "window already active",
    CONSENT: "window already active",
    f"dialogPrompt samecon {encoded('Join?')}": None,
    "dialogPrompt initswap Bob": None,
    "dialogPrompt command 41": None,
    "clipboard": "dialog box already running",
    # The last, as it goes by itself.
    "dialogPrompt rebootPc": "dialog box already running",
}
WORDS = ("runAsService", "launchScript", "userConcent", "initswap", "command", "fileTransferReceive", "acall", "vcall",
         "cancelavcall", "rebootPc", "configureURS", "lockuser")
HOSTILE = (b"%n%s%d%99999c<b>&_", b"\xff\xfe\xc3(", bytes(range(1, 256)).replace(b"\n", b""), b"a\0b",
           "\u202egpj.sh".encode(), b"x" * 1_000_000, b"a " * 5000, b"..%2f%00%0a%zz")
GRANTED = ("Approved", " approved", "Initiated", "Accept", "clipboard 1", "clipboard 2", "buttonClicked")


class Together(PromptCase):
    def opens(self, count):
        until(lambda: len(self.dialogs()) >= count, lambda: f"{count} dialogs; there is {self.application.describe()}")
        self.session.settled()
        self.assertEqual(len(self.dialogs()), count)


class SeveralQuestions(Together):
    def setUp(self):
        super().setUp()
        self.begin()
        self.add_participants("Ann 41", "Tom 42")
        self.mark()

    def test_are_answered_one_by_one_with_their_own_answers(self):
        consents = {f"feature{number}": self.ask(
            f"dialogPrompt userConcent {encoded(f'Question {number}?')} client{number} feature{number}")
            for number in range(5)}
        self.assertEqual([d.labels() for d in consents.values()], [[f"Question {n}?"] for n in range(5)])
        expected = []
        for number in (4, 3, 2, 1, 0):  # the newest lies on top
            feature = f"feature{number}"
            click(consents[feature].button("Yes"))
            self.gone(consents[feature])
            expected += [f"{RESPONSE}concentuser approved client{number} {feature} false",
                         f"{RESPONSE}delete_dialog {feature} "]
        self.hears(*expected)

    def test_that_may_stack_keep_the_words_they_were_asked_with(self):
        self.session.send("\n".join(f"dialogPrompt configureURS {number}" for number in range(10)))
        self.opens(10)
        for accessible in self.dialogs():
            self.press_accessible(accessible, "No")
        until(lambda: len(self.heard()) >= 10, lambda: self.heard())
        self.assertEqual(sorted(self.heard()), [f"{RESPONSE}ursConfigureRejected {number}" for number in range(10)])

    def test_for_control_go_to_the_one_who_was_named(self):
        """Another answer lets the next one ask while the first question is open."""
        ann = self.ask("dialogPrompt command 41")
        script = self.ask("dialogPrompt launchScript a.sh")
        self.asks_nothing("dialogPrompt command 42")
        click(script.button("Deny"))
        self.gone(script)
        self.hears(RESPONSE + "delete_dialog scriptLauncherDialog ")
        tom = self.ask("dialogPrompt command 42")
        self.mark()
        for dialog, name, identifier in ((tom, "Tom", 42), (ann, "Ann", 41)):
            self.assertIn(f"{name} has requested", dialog.labels()[0])
            self.press_accessible(dialog.accessible, "Yes")
            self.gone(dialog)
        self.hears(RESPONSE + "controlApproved 42", RESPONSE + "controlApproved 41")

    def test_for_control_can_be_clicked_above_another_one(self):
        clipboard = self.ask("clipboard")
        control = self.ask("dialogPrompt command 41")
        click(control.button("No"))
        self.gone(control)
        self.hears(RESPONSE + "controlRefused")
        click(clipboard.button("Allow once"))
        self.gone(clipboard)
        self.hears(RESPONSE + "controlRefused", "clipboard 2", "clipboard 3",
                   RESPONSE + "delete_dialog clipboardDialog ")

    def test_for_calls_leave_the_newest(self):
        self.session.send("dialogPrompt acall\ndialogPrompt vcall\ndialogPrompt acall")
        self.session.log.expect("Prompting dialog box", 3)  # an older one may be on the screen until then
        self.opens(1)
        self.press_accessible(self.dialogs()[0], "Accept")
        self.hears(RESPONSE + "AVAccept")
        self.session.send("dialogPrompt acall\ndialogPrompt cancelavcall")
        self.session.settled()
        until(lambda: not self.dialogs(), lambda: self.application.describe())
        self.hears(RESPONSE + "AVAccept")

    def press_accessible(self, dialog, name):
        button = next(a for a in self.application.shown_all("push button")
                      if a.get_name() == name and self.is_in(a, dialog))
        self.assertTrue(button.get_action_iface().do_action(0))

    @staticmethod
    def is_in(accessible, dialog):
        while accessible and accessible != dialog:
            accessible = accessible.get_parent()
        return accessible is not None


class DoubledPrompts(Together):
    def opens(self, count):
        """Counted without a walk through all of them, as one goes by itself."""
        until(lambda: len(self.windows.managed()) > count,
              lambda: f"{count} dialogs; there is {self.application.describe()}")
        self.session.settled()
        self.assertEqual(len(self.windows.managed()), count + 1)  # with the main window

    def test_are_asked_once_each_in_a_burst_of_doubled_prompts(self):
        self.begin(speed=1)  # the question whether to reboot goes by itself
        self.session.send("\n".join(line for line in SINGLE for _ in range(3)))
        self.opens(len(SINGLE))
        self.assertEqual(self.heard(), [])
        for text in set(SINGLE.values()) - {None}:
            self.assertIn(text, self.logged())
        self.session.send("\n".join(SINGLE))
        self.opens(len(SINGLE))
        self.assertEqual(self.heard(), [])
        self.assertEqual(self.session.quit(), 0)

class PromptsOfAnyBytes(Together):
    """In a "normal" session: elsewhere a sign of life could get between the pieces of a megabyte."""

    def test_open_nothing_that_counts_as_granted(self):
        self.begin(kind="normal")
        for number, word in enumerate(WORDS, 1):
            for field in HOSTILE:
                self.session.send(b"dialogPrompt " + word.encode() + b" " + field + b" " + field[:100])
            self.session.send(f"sessionStatus participantsAdd Ann {number} true")
            self.session.log.expect("participants present", number)  # what came before has been asked by then
            self.close_all()
        question = self.ask("dialogPrompt configureURS the-last")
        self.windows.close(question.window)
        until(lambda: self.session.agent.lines()[-1:] == ["dialogResponse ursConfigureRejected the-last"],
              lambda: self.session.agent.lines()[-3:])
        self.assertEqual([line for line in self.heard() if any(word in line for word in GRANTED)], [])
        self.assertEqual(self.session.warnings(), [])
        self.assertEqual(self.session.quit(), 0)

    def close_all(self):
        def none_left():
            for window in self.windows.managed()[1:]:
                self.windows.close(self.windows.numbered(window))
            return not self._asked()  # unlike `dialogs` it doesn't take a changing tree for an empty one
        until(none_left, lambda: f"no dialog is left; there is {self.application.describe()}", seconds=60)


class ASwapOfScreens(PromptCase):
    TITLE = "Brindle"
    LATER = ["sessionStatus Connected", "sessionStatus disconnected", "sessionStatus disableChat",
             "sessionStatus enableFileTransfer", "sessionStatus TECH-NAME Bob", "sessionStatus participantsAdd Tom 42 true",
             "sessionStatus participantsModify 41 false", "sessionStatus participantsDelete Ann 41",
             "sessionStatus disableSwapScreen", "not32", "blockInput", "unblockInput", "connectionLost",
             "ONDEMAND START", "ONDEMAND STOP", "initSwap swapRejected", "initSwap toManyUsers", "initSwap APPROVED",
             "initSwap foo", "PING UI", "chat hello 12 Bob x", "sessionKey 12345"]

    def approve(self, before=()):
        for line in before:
            self.ask(line)
        self.session.send("dialogPrompt initswap Bob")
        self.application.find("push button", "Cancel")
        self.session.send("initSwap Approved")
        self.session.log.expect(" Swap Screen has been approved")
        until(lambda: not self.application.look("frame", self.TITLE), "the window goes")
        self.application.gone("push button", "Cancel")
        until(lambda: len(self.windows.managed()) == len(before), "no window but the questions before is left")

    def test_takes_the_window_and_leaves_the_program(self):
        self.begin()
        self.add_participants("Ann 41")
        self.approve()
        self.mark()
        self.session.send("\n".join(self.LATER))
        self.session.settled()
        for line in self.LATER:
            self.session.send(line)
        self.session.settled()
        self.hears()
        self.assertEqual(self.session.quit(), 0)
        self.assertEqual(self.session.warnings(), [])
        self.assertEqual(self.session.log.messages()[-1], "freed meamory")

    def test_leaves_open_questions_to_be_answered(self):
        self.begin(speed=2)
        self.add_participants("Ann 41")
        self.approve(before=(CONSENT, "dialogPrompt runAsService", "dialogPrompt configureURS 7", "clipboard",
                             "dialogPrompt command 41", "dialogPrompt acall"))
        left = len(self.windows.managed())
        self.assertEqual(left, 6)
        while left:
            top = self.windows.active()
            self.windows.close(self.windows.numbered(top))
            until(lambda: top not in self.windows.managed(), "the dialog on top goes")
            left -= 1
            until(lambda: not left or self.windows.active() in self.windows.managed(), "the next one is active")
        self.session.settled()
        self.assertFalse([line for line in self.heard() if "pproved" in line and "disapproved" not in line])
        self.assertEqual(self.session.quit(), 0)
        self.assertEqual(self.session.warnings(), [])

    def test_is_followed_by_questions_as_before(self):
        self.begin(speed=1)
        self.approve()
        for line, button, heard in (
                (CONSENT, "Yes", [RESPONSE + "concentuser approved c1 camera false",
                                  RESPONSE + "delete_dialog camera "]),
                ("dialogPrompt runAsService", "Yes", [RESPONSE + "rasApproved",
                                                      RESPONSE + "delete_dialog serviceDialog "]),
                ("dialogPrompt launchScript a.sh", "Deny", [RESPONSE + "delete_dialog scriptLauncherDialog "]),
                ("dialogPrompt command 41", "Yes", [RESPONSE + "controlApproved 41"]),
                ("dialogPrompt rebootPc", "No", [RESPONSE + "rebootCanceled"]),
                ("clipboard", "Allow once", ["clipboard 2", "clipboard 3",
                                             RESPONSE + "delete_dialog clipboardDialog "])):
            with self.subTest(line):
                self.mark()
                dialog = self.ask(line)
                click(dialog.button(button))
                self.gone(dialog)
                self.hears(*heard)
        self.mark()
        self.asks_nothing("dialogPrompt initswap Bob")  # its kind stays taken
        self.assertEqual(self.session.quit(), 0)
        self.assertEqual(self.session.warnings(), [])

    def test_ends_with_the_program_in_the_same_text(self):
        self.begin()
        self.ask("dialogPrompt initswap Bob")
        self.session.send("\n".join(["initSwap approved", *self.LATER, CONSENT, "dialogPrompt runAsService",
                                     "dialogPrompt command 41", "exit"]))
        self.assertEqual(self.session.wait(), 0)
        self.assertEqual(self.session.warnings(), [])

    def test_that_was_rejected_leaves_everything_but_the_waiting(self):
        self.begin(speed=1)  # a notice stays three seconds
        dialog = self.ask("dialogPrompt initswap Bob")
        self.mark()
        self.session.send("initSwap toManyUsers")
        self.application.has_label("Swap screen cannot be initiated as there is more than one technician")
        self.assertIn(dialog.window.id, self.windows.managed())
        self.session.send("initSwap SWAPREJECTED")
        self.gone(dialog)
        self.application.has_label("Technician has rejected screen sharing request.")
        self.session.send("initSwap swapRejected\ninitSwap foo bar")
        self.session.log.expect("unhandled message initSwap foo bar")
        self.hears()
        self.assertEqual(self.session.warnings(), [])
        self.assertEqual(self.session.quit(), 0)


if __name__ == "__main__":
    main()
