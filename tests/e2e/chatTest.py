"""The conversation in both directions: typed with keys, received through the pipe, read as assistive technology does."""

import os
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from screen import click, key, sensitive, xdotool  # noqa: E402
from session import SessionCase, main  # noqa: E402
from waiting import until  # noqa: E402

PANGRAM = "Zwölf 😀 שלום عليكم 100% %s %n %41"


def escaped(text):
    return "".join(f"%{byte:02X}" for byte in text.encode())


class ChatCase(SessionCase):
    def setUp(self):
        super().setUp()
        self.session = self.start().ready()
        self.application = self.session.application

    def open(self):
        click(self.application.find("push button", "Chat"))
        self.application.find("text", "Message")

    def receive(self, text, name="Ann"):
        self.session.send(f"chat {name}\n{escaped(text)}")
        self.session.settled()  # texts written back to back may be read as one

    def type(self, text, *keys):
        """Types into the message field with the keyboard and ends with other keys."""
        click(self.application.find("text", "Message"))
        self.session.windows.wait_focus("Brindle")
        key("ctrl+End")  # the pointer may have put the caret before a newline
        xdotool("type", text)
        until(lambda: self.field().endswith(text), lambda: f"{text!r} typed; there is {self.field()!r}")
        for name in keys:
            key(name)

    def field(self):
        return self.text_of("Message")

    def conversation(self):
        return self.text_of("Conversation")

    def text_of(self, name):
        return Atspi.Text.get_text(self.application.find("text", name), 0, -1)

    def converses(self, text):
        until(lambda: self.conversation() == text, lambda: f"{text[:300]!r}, not {self.conversation()[:300]!r}")

    def sent(self):
        return [text for text in self.session.agent.texts if text.startswith(b"chat")]

    def sends(self, *texts):
        until(lambda: len(self.sent()) >= len(texts), lambda: f"{texts}; the agent received {self.sent()}")
        self.assertEqual(self.sent(), list(texts))


class TheCustomer(ChatCase):
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


class AReceivedMessage(ChatCase):
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
        self.assertTrue(Atspi.Text.get_text(view, 0, -1) == f"\nAnn\n{words}\nafter\n")


class ABurstOfMessages(ChatCase):
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
