"""The program ends at once, whatever it is asking, and nothing that it had asked for counts as granted."""

import base64
import signal
import time

from keyboard import key
from screen import Atspi, click
from session import FAST, SessionCase, main
from waiting import until

END_SECONDS = 5  # two, and room for a machine that is busy with other tests
UNHURRIED = 1  # the question whether to reboot goes by itself
QUESTION = base64.b64encode(b"May we?").decode()

# What the agent sends, and a text by which the question is recognised.
QUESTIONS = {
    "join": (f"dialogPrompt samecon {QUESTION}", "May we?"),
    "consent": (f"dialogPrompt userConcent {QUESTION} 41 programs", "May we?"),
    "service": ("dialogPrompt runAsService", None),
    "script": ("dialogPrompt launchScript a.sh", None),
    "control": ("dialogPrompt command 41", "Ann has requested to control your device.\n Would you like to accept the request?"),
    "unattended": ("dialogPrompt configureURS 41", None),
    "lock": ("dialogPrompt lockuser", None),
    "offer": ("dialogPrompt fileTransferReceive a.txt", "File Name:  a.txt."),
    "call": ("dialogPrompt vcall", None),
    "clipboard": ("clipboard", None),
    "swap": ("dialogPrompt initswap Ann", None),
    "reboot": ("dialogPrompt rebootPc", None),  # the last, as it goes by itself
}
# Titles of the questions that run a loop of their own, and what their end says.
SEND_FILES = "Send File"
CHANGE_PATH = "Open File"
GRANTED = ("pproved", "Accept", "clipboard 1", "clipboard 2", "FileName", "zip_folder", "Initiated")


class Ending(SessionCase):
    KIND = "ras"
    warned = []

    def begin(self, **options):
        self.session = self.start(kind=self.KIND, **options).ready().heard()
        self.application = self.session.application
        self.session.send("sessionStatus participantsAdd Ann 41 true")
        self.session.settled()

    def ask(self, line):
        before = len(self.application.shown_all("dialog"))
        self.session.send(line)
        until(lambda: len(self.application.shown_all("dialog")) > before,
              lambda: f"the question of {line!r}; there is {self.application.describe()}")

    def ask_for_files(self):
        self.session.send("dialogPrompt fileTransfer 41")
        self.session.windows.find(SEND_FILES)
        self.application.find("file chooser", SEND_FILES)

    def ask_for_folder(self):
        self.ask("dialogPrompt fileTransferReceive a.txt")
        click(self.application.find("push button", "Change Path"))
        self.session.windows.find(CHANGE_PATH)
        self.application.find("file chooser", CHANGE_PATH)

    def make_the_chooser_complain(self):
        """The toolkit shows a message over its chooser, and waits for it in a loop of its own."""
        self.session.windows.wait_focus(CHANGE_PATH)
        before = len(self.session.windows.managed())
        key("slash")  # a path is typed from its beginning
        Atspi.EditableText.set_text_contents(self.application.find("text", ""), "/nonexistent/folder/x")
        key("Return")
        until(lambda: len(self.session.windows.managed()) > before, self.application.describe)
        self.warned = self.session.warnings()  # the toolkit's about its own entry

    def ends(self, status=0):
        """The end comes soon and grants nothing."""
        start = time.monotonic()
        self.assertEqual(self.session.wait(), status)
        self.assertLess(time.monotonic() - start, END_SECONDS)
        granted = [line for line in self.session.agent.lines() if any(word in line for word in GRANTED)]
        self.assertEqual(granted, [])
        self.assertEqual(self.session.warnings(), self.warned)

    def ends_in_order(self):
        self.ends()
        self.assertEqual(self.session.log.messages()[-1], "freed meamory")


class TheAgentEndsTheSession(Ending):
    def test_while_a_question_is_open(self):
        for name, (line, text) in QUESTIONS.items():
            with self.subTest(name):
                self.begin(speed=UNHURRIED if name == "reboot" else FAST)
                self.ask(line)
                if text:
                    self.application.has_label(text)
                self.session.send("exit")
                self.ends_in_order()

    def test_while_every_question_is_open(self):
        self.begin(speed=UNHURRIED)
        for line, _ in QUESTIONS.values():
            self.ask(line)
        self.session.send("exit")
        self.ends_in_order()

    def test_while_files_are_chosen(self):
        self.begin()
        self.ask_for_files()
        self.session.send("exit")
        self.ends_in_order()

    def test_while_a_folder_is_chosen(self):
        self.begin()
        self.ask_for_folder()
        self.session.send("exit")
        self.ends_in_order()

    def test_while_the_chooser_complains(self):
        self.begin()
        self.ask_for_folder()
        self.make_the_chooser_complain()
        self.session.send("exit")
        self.ends_in_order()

    def test_while_one_chooser_covers_the_other(self):
        self.begin()
        self.ask_for_folder()
        self.ask_for_files()
        self.session.send("exit")
        self.ends_in_order()

    def test_in_the_text_that_asks(self):
        self.begin()
        self.session.send("\n".join([*(line for line, _ in QUESTIONS.values()), "exit"]))
        self.ends_in_order()


class TheSystemEndsTheSession(Ending):
    def terminate(self):
        self.session.process.send_signal(signal.SIGTERM)
        self.ends_in_order()

    def test_while_questions_are_open(self):
        self.begin(speed=UNHURRIED)
        for name in ("join", "offer", "reboot"):
            self.ask(QUESTIONS[name][0])
        self.terminate()

    def test_while_files_are_chosen(self):
        self.begin()
        self.ask_for_files()
        self.terminate()

    def test_while_a_folder_is_chosen(self):
        self.begin()
        self.ask_for_folder()
        self.terminate()

    def test_while_the_chooser_complains(self):
        self.begin()
        self.ask_for_folder()
        self.make_the_chooser_complain()
        self.terminate()


class AnAgentThatFellSilent(Ending):
    def falls_silent(self):
        self.session._ended.set()  # it pings no more
        self.session.log.expect("UI thread is not alive, exiting")
        self.ends_in_order()

    def test_ends_it_while_files_are_chosen(self):
        self.begin()
        self.ask_for_files()
        self.falls_silent()

    def test_ends_it_while_a_question_is_open(self):
        self.begin()
        self.ask(QUESTIONS["service"][0])
        self.falls_silent()


class TheCustomerLeaves(Ending):
    KIND = "normal"

    def test_while_files_are_chosen(self):
        """The chooser holds the window's close button back; it is answered first."""
        self.begin()
        self.ask_for_files()
        self.session.windows.wait_focus(SEND_FILES)
        key("Escape")
        until(lambda: not self.session.windows.titled(SEND_FILES), "the chooser goes")
        self.session.settled()
        self.session.windows.close(self.session.windows.find("Brindle"))
        click(self.application.find("push button", "Yes"))
        self.ends_in_order()


class QuestionsBesideAChooser(Ending):
    def test_are_asked_and_answered(self):
        self.begin()
        self.ask_for_files()
        before = len(self.session.agent.lines())
        self.ask("dialogPrompt configureURS 7")
        click(self.application.find("push button", "No"))
        self.session.agent.expect("dialogResponse ursConfigureRejected 7", after=before)
        self.session.send("dialogPrompt fileTransfer 9")
        self.session.log.expect("window already active")
        self.session.send("exit")
        self.ends_in_order()

    def test_come_in_their_order_in_a_burst(self):
        self.begin()
        windows = self.session.windows
        main_window = windows.find("Brindle").id

        def asks(left):
            """Whether so many questions are on the screen, one of which has the keyboard."""
            questions = set(windows.managed()) - {main_window}
            return len(questions) == left and windows.active() in questions

        self.session.send("\n".join(f"dialogPrompt configureURS {number}" for number in range(20)))
        until(lambda: len(self.application.shown_all("dialog")) == 20, lambda: self.application.describe())
        before = len(self.session.agent.lines())
        for number in range(20):
            until(lambda: asks(20 - number), lambda: f"{windows.active()} has the keyboard, of {windows.managed()}")
            key("Escape")
            until(lambda: len(self.session.agent.lines()) > before + number, "an answer")
        answers = self.session.agent.lines()[before:]
        self.assertEqual(sorted(answers, key=lambda line: int(line.split()[-1])),
                         [f"dialogResponse ursConfigureRejected {number}" for number in range(20)])
        self.assertEqual(self.session.quit(), 0)


if __name__ == "__main__":
    main()
