"""Each word that the agent may send, through the real pipe: what the log, the window or the end of the program shows."""

import re

from keyboard import key
from screen import Atspi, click, shown, xdotool
from session import SessionCase, main
from waiting import stays, until


class EachWord(SessionCase):
    """All in one session: no word here changes what the next one does."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.session = cls.start_shared().ready()
        cls.application = cls.session.application
        until(cls.session.home.agent_starts, "the agent starts")  # and what starts it has logged so

    def setUp(self):
        super().setUp()
        # Texts that follow each other at once may arrive as one, and some words count only at the start of a text.
        self.session.settled()

    def tearDown(self):
        self.assertEqual(self.session.warnings(), [])

    def send(self, text, *messages):
        before = [self.session.log.count(message) for message in messages]
        self.session.send(text)
        for message, times in zip(messages, before):
            self.session.log.expect(message, times + 1)

    def test_dialogPrompt_is_handed_on(self):
        self.send("dialogPrompt unknownkind", "Dialog Prompt Message recived ")

    def test_sessionStatus_is_handed_on(self):
        self.send("sessionStatus unknownword", "Session Status Message recived ", "Unhandled message  unknownword")

    def test_initSwap_is_handed_on(self):
        self.send("initSwap unknownoutcome", "Swap screen status message recived")

    def test_chat_of_several_lines_reaches_the_conversation_whole(self):
        self.session.send_raw(b"chat Ann Lee\nHello%2C%20how%20are%20you%3F")
        self.application.find("text")
        until(lambda: "Hello, how are you?" in self.conversation(), self.conversation)
        self.assertIn("Ann Lee", self.conversation())

    def test_lines_after_a_chat_line_count_as_well(self):
        self.send("chat Bob\nsessionStatus%20afterchat\nsessionStatus afterchat\n", "Unhandled message  afterchat")

    def test_clipboard_asks_for_permission(self):
        before = len(self.session.agent.lines())
        self.send("clipboard")
        self.application.find("dialog", "Clipboard Permission")
        click(self.application.find("push button", "Allow once"))
        self.application.gone("dialog", "Clipboard Permission")
        until(lambda: "clipboard 3" in self.session.agent.lines()[before:], lambda: self.session.agent.lines())
        answers = [line for line in self.session.agent.lines()[before:] if line.startswith("clipboard")]
        self.assertEqual(answers, ["clipboard 2", "clipboard 3"])

    def test_connectionLost_shows_the_offline_state(self):
        self.send("CONNECTIONLOST", "connection Lost")

    def test_blockInput_stays_until_unblockInput(self):
        self.send("BlockInput", "blockInput")
        self.application.has_label("Press Esc key to enable input device")
        stays(lambda: self.application.look("label", "Press Esc key to enable input device"), "the notice stays", 0.6)
        self.send("unblockinput", "UnblockInput", "Hiding info bar")
        self.application.gone("label", "Press Esc key to enable input device")

    def test_ondemand_shows_and_hides_the_recording(self):
        def pictures():
            return len(self.application.shown_all("icon"))

        before = pictures()
        self.send("ONDEMAND START")
        until(lambda: pictures() == before + 1, "the recording picture")
        self.send("ONDEMAND STOP")
        until(lambda: pictures() == before, "no recording picture")

    def test_ping_counts_only_in_capitals(self):
        seen = "Received Ping UI, sending alive response"
        before = self.session.log.count(seen)
        self.session.send("ping ui\nPing UI\nPING UI now\n  PING UI  \n")
        self.session.log.expect(seen, before + 2)
        self.session.send("sessionStatus pingsdone")
        self.session.log.expect("Unhandled message  pingsdone")
        self.assertEqual(self.session.log.count(seen), before + 2)

    def test_ar_session_is_logged_with_the_place_of_the_window(self):
        self.session.send("AR_SESSION")
        position = r"AR Session initiate message received at position x:\d+ y:\d+ : AR_SESSION"
        until(lambda: any(re.fullmatch(position, message) for message in self.session.log.messages()),
              self.session.log.tail)

    def test_anything_else_changes_and_logs_nothing(self):
        self.session.settled()
        lines, sent = len(self.session.log.messages()), len(self.session.agent.lines())
        self.session.send("Exit now\nexit now\nexited\n hello\n\n \nEXIT%0A\nsettled?\nDIALOGPROMPT x\nSESSIONSTATUS x\n")
        self.session.settled()
        new = [m for m in self.session.log.messages()[lines:]
               if m not in ("file opened properly ", "Received Ping UI, sending alive response", "Checking ss is alive")]
        self.assertEqual(new, [])
        self.assertEqual(len(self.session.agent.lines()), sent)
        self.assertTrue(self.session.alive())

    def test_one_text_is_worked_through_line_by_line_in_order(self):
        self.session.send_raw(b"sessionStatus first-of-text\n\tdialogPrompt second-of-text  \r\nsessionStatus third-of-text")
        self.session.log.expect("Unhandled message  third-of-text")
        self.assertIsNone(self.session.log.has_in_order(
            "Unhandled message  first-of-text", "Dialog Prompt Message recived ", "Unhandled message  third-of-text"))

    def conversation(self):
        texts = self.application.shown_all("text")
        return "\n".join(Atspi.Text.get_text(text, 0, Atspi.Text.get_character_count(text)) for text in texts)


class TheNotice(SessionCase):
    """At its own speed, so that the three seconds of a notice can be seen."""

    def test_about_annotation_comes_and_goes_by_itself(self):
        notice = "Your computer does not support Annotation."
        session = self.start(speed=1).ready()
        session.send("NOT32")
        session.log.expect("Cannot start annotation as this system doenn't support 32 bit")
        session.application.has_label(notice)
        session.application.gone("label", notice)
        session.log.expect("Hiding info bar")

    def test_about_the_connection_shows_where_a_notice_is_open(self):
        session = self.start(speed=1).ready()
        session.send("blockInput")
        session.application.has_label("Press Esc key to enable input device")
        session.send("connectionLost")
        session.application.has_label("Connection down. Retrying...")
        session.application.gone("label", "Connection down. Retrying...")
        session.send("connectionLost")
        session.log.expect("connection Lost", times=2)
        session.settled()
        self.assertIsNone(session.application.look("label", "Connection down. Retrying..."))


class TheEnd(SessionCase):
    def test_comes_with_exit_in_any_case(self):
        for word in ("exit", "EXIT", "  Exit \r"):
            with self.subTest(word):
                session = self.start().ready()
                session.send(word)
                self.assertEqual(session.wait(), 0)
                self.assertEqual(session.log.count("closing agent"), 1)
                self.assertEqual(session.log.messages()[-1], "freed meamory")

    def test_comes_with_exit_in_the_middle_of_a_text(self):
        session = self.start().ready()
        session.send("sessionStatus before\nexit\nexit\nsessionStatus Connected\n")
        self.assertEqual(session.wait(), 0)
        self.assertEqual(session.log.count("Unhandled message  before"), 1)
        self.assertEqual(session.warnings(), [])

    def test_comes_also_while_a_menu_is_open(self):
        session = self.start().ready()
        click(session.application.find("push button", "More"))
        item = session.application.find("menu item", "Go to Website")
        self.assertTrue(shown(item))
        self.assertEqual(session.quit(), 0)

    def test_comes_also_while_a_file_chooser_is_open(self):
        session = self.start().ready()
        application = session.application
        click(application.find("push button", "File Transfer"))
        click(application.find("push button", "Send File"))
        until(lambda: application.look("file chooser") or application.look("dialog"), application.describe)
        self.assertEqual(session.quit(), 0)
        self.assertEqual(session.log.messages()[-1], "freed meamory")

    def test_of_the_parser_comes_with_its_own_word_too(self):
        session = self.start().ready()
        session.send_raw(b"application-stop")
        session.log.expect("closing thread")
        until(lambda: not (session.home.pipes / "Status").exists(), "the agent's pipe is gone")
        self.assertTrue(session.alive())
        session.windows.wait_focus("Brindle")
        xdotool("mousemove", 5, 5)
        key("alt+F4")
        click(session.application.find("push button", "Yes"))
        self.assertEqual(session.wait(), 0)


if __name__ == "__main__":
    main()
