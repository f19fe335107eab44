"""The conversation in both directions: typed with keys, received through the pipe, read as assistive technology does."""

import os
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from chatPanel import ChatCase  # noqa: E402
from screen import sensitive  # noqa: E402
from session import main  # noqa: E402
from waiting import until  # noqa: E402

PANGRAM = "Zwölf 😀 שלום عليكم 100% %s %n %41"


class ANewConversation(ChatCase):
    def setUp(self):
        super().setUp()
        self.begin()


class TheCustomer(ANewConversation):
    def test_sends_with_both_return_keys(self):
        self.open()
        self.type("Hello 50% & more?", "Return")
        self.sends(b"chat Hello%2050%25%20%26%20more%3F%0A")
        self.type("second", "KP_Enter")
        self.sends(b"chat Hello%2050%25%20%26%20more%3F%0A", b"chat second%0A")
        self.converses("you\nHello 50% & more?\nsecond\n")
        self.assertEqual(self.field(), "")
        self.assertEqual(self.session.warnings(), [])

    def test_sends_nothing_blank(self):
        self.open()
        self.type("", "Return")
        until(lambda: self.field() == "\n", lambda: f"the field keeps its newline, has {self.field()!r}")
        self.type("", "Return")
        until(lambda: self.field() == "\n\n", lambda: f"the field keeps two newlines, has {self.field()!r}")
        self.type("word", "Return")
        self.sends(b"chat %0A%0Aword%0A")
        self.converses("you\n\n\nword\n")

    def test_and_technicians_alternate(self):
        self.open()
        self.receive("one")
        self.receive("two")
        self.converses("\nAnn\none\ntwo\n")
        self.type("three", "Return")
        self.sends(b"chat three%0A")
        self.receive("four")
        self.converses("\nAnn\none\ntwo\nyou\nthree\n\nAnn\nfour\n")
        self.receive("five", name="Bob")
        self.converses("\nAnn\none\ntwo\nyou\nthree\n\nAnn\nfour\n\nBob\nfive\n")


class AReceivedMessage(ANewConversation):
    def test_opens_the_panel_and_makes_the_transcript_available(self):
        self.assertIsNone(self.application.look("text", "Conversation"))
        self.receive("hello")
        self.converses("\nAnn\nhello\n")
        until(lambda: sensitive(self.application.find("push button", "Download Chat")), "the transcript can be saved")

    def test_keeps_line_breaks_and_all_scripts(self):
        self.receive(f"first\nsecond\n{PANGRAM}", name="Ånn %s")
        self.converses(f"\nÅnn %s\nfirst\nsecond\n{PANGRAM}\n")
        self.assertEqual(self.session.warnings(), [])

    def test_may_be_a_megabyte(self):
        words = "word " * 200_000
        self.session.send(f"chat Ann\n{words}", seconds=30)
        view = self.application.find("text", "Conversation", seconds=60)
        until(lambda: Atspi.Text.get_character_count(view) >= 1_000_006,
              lambda: f"{Atspi.Text.get_character_count(view)} characters", seconds=60)
        self.receive("after")
        until(lambda: Atspi.Text.get_text(view, 1_000_006, -1) == "after\n", "the next message", seconds=60)
        until(lambda: Atspi.Text.get_text(view, 0, -1) == f"\nAnn\n{words}\nafter\n", "the whole text", seconds=60)


class ABurstOfMessages(ANewConversation):
    def test_loses_none(self):
        texts = [f"message-{number}" for number in range(2000)]
        with open(self.session.log.path, "rb") as log:
            log.seek(0, os.SEEK_END)
            for text in texts:  # its last line is none of the message and logged
                self.session.send(f"chat Ann\n{text}\nsessionStatus {text}")
                self.logged(log, text)
        self.converses("\nAnn\n" + "".join(f"{text}\n" for text in texts))

    @staticmethod
    def logged(log, text, seconds=15):
        end, seen = time.monotonic() + seconds, b""
        while f"Unhandled message  {text}\n".encode() not in seen:
            seen += log.read()
            if time.monotonic() > end:
                raise AssertionError(f"{text} was not read; the log has {seen[-500:]}")


if __name__ == "__main__":
    main()
