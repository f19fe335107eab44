"""The chat panel as the customer uses it, and the technician at the other end."""

import os
import pathlib

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from keyboard import key  # noqa: E402
from pipes import unread_bytes  # noqa: E402
from screen import click, click_through, xdotool  # noqa: E402
from session import SessionCase  # noqa: E402
from waiting import until  # noqa: E402


def escaped(text):
    data = text if isinstance(text, bytes) else text.encode()
    return "".join(f"%{byte:02X}" for byte in data)


class ChatCase(SessionCase):
    def begin(self, **options):
        self.use(self.start(**options).ready())

    def use(self, session):
        self.session = session
        self.application = session.application

    def open(self):
        click(self.application.find("push button", "Chat"))
        self.application.find("text", "Message")

    def receive(self, text, name="Ann"):
        self.receive_raw(f"{name}\n{escaped(text)}")

    def receive_raw(self, words):
        """Name and message as they stand on the wire."""
        self.session.send_raw(b"chat " + (words if isinstance(words, bytes) else words.encode()) + b"\n")
        self.session.settled()  # texts written back to back may be read as one

    def send_alone(self, text):
        """A text without a newline at its end. Nothing is written before the program has read it to its end, or it
        would be taken for a part of it."""
        with open(self.session.home.pipes / "Status", "wb", buffering=0) as pipe:
            pipe.write(text.encode())
            until(lambda: not unread_bytes(pipe), "the program reads the text")
            reading = self.read_ends()  # until the pipe is closed
        until(lambda: len(self.read_ends()) == 1 and self.read_ends() != reading, "the program waits for the next text")

    def read_ends(self):
        """Descriptors at which the program reads what the agent writes; each text has one of its own."""
        found = []
        for file in pathlib.Path(f"/proc/{self.session.pid}/fd").iterdir():
            try:
                if os.readlink(file).endswith("/Status"):
                    found.append(file.name)
            except FileNotFoundError:  # closed meanwhile
                pass
        return found

    def type(self, text, *keys):
        """Types into the message field with the keyboard and ends with other keys."""
        self.take_field()
        xdotool("type", text)
        until(lambda: self.field().endswith(text), lambda: f"{text!r} typed; there is {self.field()!r}")
        for name in keys:
            key(name)

    def take_field(self):
        """Puts the caret behind what stands in the message field."""
        click_through(self.application.find("text", "Message"))
        self.session.windows.wait_focus("Brindle")
        key("ctrl+End")  # the pointer may have put the caret before a newline

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
