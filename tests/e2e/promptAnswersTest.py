"""Every prompt with every answer: what the customer reads, what the agent hears in which order, what is logged."""

from typing import NamedTuple

from promptCase import PromptCase, encoded
from screen import click
from session import main
from waiting import until

ESCAPE, FRAME = "by Escape", "by the frame"
CLOSED = (ESCAPE, FRAME)
RESPONSE = "dialogResponse "


class Row(NamedTuple):
    word: str
    arguments: str
    title: str
    texts: list
    buttons: list
    logged: list    # when it is asked
    answers: dict   # a button, or a way to close it: what the agent hears, what is logged
    kind: str = ""  # under which its place is reported


def closed(lines, logged):
    return dict.fromkeys(CLOSED, (lines, logged))


def refused(button, lines, logged):
    return {button: (lines, logged), **closed(lines, logged)}


SERVICE_GONE = RESPONSE + "delete_dialog serviceDialog "
SCRIPT_GONE = RESPONSE + "delete_dialog scriptLauncherDialog "
CAMERA_GONE = RESPONSE + "delete_dialog camera "
CHOOSER_GONE = RESPONSE + "delete_dialog fileChooserDialog "
CONCENT = RESPONSE + "concentuser "
CALL_TEXT = ("Would you like to accept your technician's voice/ \nvideo chat invite?"
             "                                ")
CALL_ANSWERS = {
    "Accept": ([RESPONSE + "AVAccept"], ["User accepted video call"]),
    **refused("Reject", [RESPONSE + "AVReject"], ["User rejected video call"]),
}
QUESTION = "May the technician look through your camera?"

ROWS = [
    Row("runAsService", "", "Brindle",
        [" Your technician has requested for a root-level \n access of your computer. Would you like to accept  \n "
         "the request?"],
        ["Yes", "No"], ["Technician has requset to run as service"],
        {"Yes": ([RESPONSE + "rasApproved", SERVICE_GONE], ["User Has approved to run as service"]),
         **refused("No", [SERVICE_GONE], ["User Has not approved to run as service"])},
        "serviceDialog"),
    Row("launchScript", " deploy.sh", "Allow remote script execution?",
        ['The technician is trying to execute the script "deploy.sh" on your computer.\n'
         "Clicking on Allow will execute the script on your device.\n\n"
         "Note : Proceed with this action only if you trust the technician."],
        ["Allow", "Deny"], ["Prompt script launcher dialog"],
        {"Allow": ([RESPONSE + "scriptApproved", SCRIPT_GONE], ["User Has approved to execute script"]),
         **refused("Deny", [SCRIPT_GONE], ["User Has not approved to execute script"])},
        "scriptLauncherDialog"),
    Row("userConcent", f" {encoded(QUESTION)} client7 camera", "Brindle", [QUESTION], ["Yes"],
        ["Prompt user concent dialog", encoded(QUESTION), "client7", "camera", "Received User Concent"],
        {"Yes": ([CONCENT + "approved client7 camera false", CAMERA_GONE], []),
         **closed([CONCENT + "disapproved client7 camera false", CAMERA_GONE], ["User Disapproved"])},
        "camera"),
    Row("initswap", " Bob", "Requesting (null) to share screen", [" Requesting (null) to share screen          "],
        ["Cancel"], ["Prompt swap dialog"],
        refused("Cancel", [RESPONSE + "swapRejected", RESPONSE + "delete_dialog initswap "], []),
        "initswap"),
    Row("command", " 41", "Brindle",
        ["Ann has requested to control your device.\n Would you like to accept the request?"], ["Yes", "No"],
        ["Starting DialogDemo", "parse confromation text"],
        {"Yes": ([RESPONSE + "controlApproved 41"], ["Demo Session has been approved"]),
         **refused("No", [RESPONSE + "controlRefused"], [" Demo Session has not been approved"])}),
    Row("acall", "", "Video/Voice call", [CALL_TEXT], ["Accept", "Reject"],
        ["Technician has requset to start audio call", "audio call Dialog Prompted", "Prompting dialog box"],
        CALL_ANSWERS),
    Row("vcall", "", "Video/Voice call", [CALL_TEXT], ["Accept", "Reject"],
        ["Technician has requset to start video service", "video call Dialog Prompted", "Prompting dialog box"],
        CALL_ANSWERS),
    Row("rebootPc", "", "Reboot PC", ['Technician wants to reboot your computer. Click\n"Yes" to reboot.'],
        ["Yes", "No"], ["Prompting reboot dialog box"],
        {"Yes": ([RESPONSE + "rebootInitiated"], []), **refused("No", [RESPONSE + "rebootCanceled"], [])}),
    Row("configureURS", " 7f:x", "Brindle",
        [" Would you like the Technician to configure this \n device for Unattended Access?"], ["Yes", "No"],
        ["Prompting urs configure dialog box"],
        {"Yes": ([RESPONSE + "ursConfigureApproved 7f:x"], [" User has approved installation"]),
         **refused("No", [RESPONSE + "ursConfigureRejected 7f:x"], [" User has canceled intallation"])}),
    Row("lockuser", "", "Lock screen",
        ["Lock screen under wayland will terminate the Session.\n Are you sure want to lock the screen?"],
        ["Yes", "No"], ["Technician has requset to run as service", "LOCKSCREEN CLOSED"],
        {"Yes": (["buttonClicked exit"], ["LockScreen accepted", ""]), "No": ([], ["LOCKSCREEN CLOSED"]),
         **closed([], [])}),
]
JOIN = Row("samecon", f" {encoded('Join <b>Bob</b> &amp; Ann?')}", "Brindle", ["Join Bob & Ann?"],
           ["Join", "Cancel"], ["Prompt confirmation dialog"],
           {"Join": ([RESPONSE + "delete_dialog samecon ", RESPONSE + "screenSharingApproved"],
                     ["user accepted session"])})
DENIED = [RESPONSE + "delete_dialog samecon ", RESPONSE + "screenSharingDenied"]
SPELLINGS = (str, str.upper, str.lower, str.swapcase)


class Answers(PromptCase):
    def answer(self, row, how, spelling=str):
        """Asks, looks at the dialog, and answers it; gives what was sent."""
        self.mark()
        line = f"dialogPrompt {spelling(row.word)}{row.arguments}"
        dialog = self.ask(line)
        self.assertEqual(dialog.accessible.get_role_name(), "dialog")
        self.assertEqual(dialog.accessible.get_name(), row.title)
        self.assertEqual(dialog.labels(), row.texts)
        self.assertEqual(dialog.buttons(), row.buttons)
        if how == ESCAPE:
            self.press_key(dialog, "Escape")
        elif how == FRAME:
            self.windows.close(dialog.window)
        else:
            click(dialog.button(how))
        return dialog, line

    def expect(self, row, line, lines, logged):
        self.hears(*lines)
        self.assertEqual(self.reported_kinds(), {row.kind} - {""})
        seen = [text for text in self.logged() if text != "iterating list"]
        self.assertEqual(seen, ["Dialog Prompt Message recived ", line + "s", *row.logged, *logged])

    def goes_on_well(self, row, how, lines, logged, spelling):
        dialog, line = self.answer(row, how, spelling)
        self.gone(dialog)
        self.expect(row, line, lines, logged)


class EveryPrompt(Answers):
    rows = ROWS

    def test_is_asked_once_and_answered_once(self):
        self.begin(speed=1)  # the question whether to reboot goes by itself
        self.add_participants("Ann 41", "Tom 42")
        for row in self.rows:
            for number, (how, (lines, logged)) in enumerate(row.answers.items()):
                with self.subTest(f"{row.word} {how}"):
                    self.goes_on_well(row, how, lines, logged, SPELLINGS[number])
        self.assertEqual(self.session.warnings(), [])
        self.assertEqual(self.session.quit(), 0)


class TheQuestionToJoin(Answers):
    def join(self):
        self.goes_on_well(JOIN, "Join", *JOIN.answers["Join"], str.upper)

    def test_is_answered_as_often_as_it_is_asked(self):
        self.begin()
        self.join()
        self.join()
        self.assertEqual(self.session.quit(), 0)

    def test_ends_the_program_when_it_is_refused(self):
        for how in ("Cancel", *CLOSED):
            with self.subTest(how):
                self.begin()
                _, line = self.answer(JOIN, how, str.lower)
                self.assertEqual(self.session.wait(), 0)
                until(lambda: len(self.heard()) >= len(DENIED), "the last lines")
                self.assertEqual(self.heard(), DENIED)
                logged = self.logged()
                self.assertEqual(logged[:4], ["Dialog Prompt Message recived ", line + "s", *JOIN.logged,
                                              "User has reJected session"])
                self.assertEqual(self.session.warnings(), [])

    def test_uses_a_message_once_and_its_own_words_without_one(self):
        own = ("You are about to join a remote support session. The technician would be able to view and access your "
               "screen.")
        self.begin()
        self.join()
        for arguments in ("", f" {encoded('No.')} surplus"):
            self.goes_on_well(JOIN._replace(arguments=arguments, texts=[own]), "Join", *JOIN.answers["Join"], str)

    def test_says_other_words_in_a_demonstration(self):
        self.begin(options=("-t", "true"))
        words = "You are about to join a Screen sharing session"
        self.goes_on_well(JOIN._replace(arguments="", texts=[words]), "Join", *JOIN.answers["Join"], str)


class TheConsentThatIsRemembered(Answers):
    def test_is_told_with_either_answer(self):
        self.begin()
        row = next(row for row in ROWS if row.word == "userConcent")
        for answer, word in (("Yes", "approved"), (FRAME, "disapproved")):
            self.mark()
            dialog = self.ask(f"dialogPrompt {row.word}{row.arguments}")
            click(dialog.check_box("Remember this option"))
            until(lambda: dialog.is_checked("Remember this option"), "the option is on")
            if answer == FRAME:
                self.windows.close(dialog.window)
            else:
                click(dialog.button(answer))
            self.gone(dialog)
            self.hears(f"{CONCENT}{word} client7 camera true", CAMERA_GONE)
            self.assertIn("Selected rember me", self.logged())


class PromptsThatAskNothing(Answers):
    def test_leave_no_trace_but_their_line(self):
        self.begin()
        for words in ("cancelAVcall", "CANCELAVCALL"):
            self.mark()
            self.asks_nothing(f"dialogPrompt {words}")
            self.assertEqual(self.logged(), ["Dialog Prompt Message recived ", f"dialogPrompt {words}s",
                                             "Audio viode call got cancelled"])
        for words in ("", " ", " unknownWord", " runAsServices", " lock user"):
            self.mark()
            self.asks_nothing(f"dialogPrompt{words}")
            self.assertEqual(self.logged(), ["Dialog Prompt Message recived ", f"dialogPrompt{words}".strip() + "s"])
            self.hears()

    def test_take_a_call_back(self):
        self.begin()
        dialog = self.ask("dialogPrompt vcall")
        self.session.send("dialogPrompt CancelAVCall")
        self.gone(dialog)
        self.hears()
        self.assertIn("Closing AV dialog box ", self.logged())


class PromptsForFiles(Answers):
    """Choosing and saving have tests of their own; here are the words and the refusals."""

    def test_close_the_chooser_unanswered(self):
        self.begin()
        for spelling, close in ((str.upper, self._press_escape), (str.lower, self._close_frame),
                                (str, lambda dialog: click(dialog.button("Cancel")))):
            self.mark()
            line = f"dialogPrompt {spelling('fileTransfer')} 9"
            dialog = self.ask(line)
            self.assertEqual(dialog.accessible.get_name(), "Send File")
            close(dialog)
            self.gone(dialog)
            self.hears(CHOOSER_GONE)
            self.assertEqual(self.logged()[:3], ["Dialog Prompt Message recived ", line + "s", "Prompt FT dialog 9"])

    def test_refuse_what_is_offered(self):
        self.begin()
        for spelling, close in ((str.upper, self._press_escape), (str.lower, self._close_frame),
                                (str, lambda dialog: click(dialog.button("Cancel")))):
            self.mark()
            line = f"dialogPrompt {spelling('fileTransferReceive')} a%20b.txt c.txt"
            dialog = self.ask(line)
            self.assertEqual(dialog.accessible.get_name(), "Receive File")
            self.assertIn("File Name:  a b.txt, c.txt.", dialog.labels())
            self.assertEqual(dialog.buttons(), ["Change Path", "Cancel", "Save"])
            close(dialog)
            self.gone(dialog)
            self.hears("monitorData fileTransferRecive", RESPONSE + "FTCancel")
            self.assertIn(f"receive files {line}", self.logged())

    def _press_escape(self, dialog):
        self.press_key(dialog, "Escape")

    def _close_frame(self, dialog):
        self.windows.close(dialog.window)


if __name__ == "__main__":
    main()
