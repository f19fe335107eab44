"""Chat texts of any kind, from the agent and from the customer's clipboard: shown and sent as they are, none lost."""

import subprocess

from chatPanel import ChatCase, escaped
from keyboard import key
from session import main
from waiting import until

NAMES = ("%s%n%99999d", "<b>Ann</b>&amp;", "you", "\u202eAnn", "Zoë 👩‍💻 שלום", "a\tb", "PING UI", "x" * 400)
MESSAGES = ("%s%n%99999d %41 100%", "<b>bold</b> &amp; <a href='http://x'>link</a>", "\u202eright to left",
            "👩‍💻👍🏽 שלום עליكم Z̷a̷l̷g̷o̷", "\n\n\n", "\r\n\t ", "a\u2028b\u2029c", "line\n" * 3_000, "exit", "x")
UNREADABLE = ("%", "%4", "%ZZ", "%00", "a%00b", "%C3%2")


class FromTheAgent(ChatCase):
    def setUp(self):
        super().setUp()
        self.begin()
        self.expected = ""

    def shows(self, more):
        self.expected += more
        self.converses(self.expected)

    def goes_on(self):
        """Both directions work as before."""
        self.receive("still here", name="The last one")
        self.shows("\nThe last one\nstill here\n")
        self.type("me too", "Return")
        self.sends(b"chat me%20too%0A")
        self.shows("you\nme too\n")
        self.assertEqual(self.session.warnings(), [])
        self.assertEqual(self.session.quit(), 0)

    def test_come_names_of_any_kind(self):
        for name in NAMES:
            self.receive("hello", name=name)
            self.shows(f"\n{name}\nhello\n")
        self.receive_raw(b"A\xff\xfeB\nhello")
        self.shows("\nA\ufffd\ufffdB\nhello\n")
        self.goes_on()

    def test_come_messages_of_any_kind(self):
        self.shows_name_once("Ann")
        for message in MESSAGES:
            self.receive(message)
            self.shows(f"{message}\n")
        self.receive(b"A\xff\xfe\xc3(B")
        self.shows("A\ufffd\ufffd\ufffd(B\n")
        self.receive_raw("Ann\nbefore\nafter a second line end")
        self.shows("before\n")
        self.goes_on()

    def shows_name_once(self, name):
        self.receive("first", name=name)
        self.shows(f"\n{name}\nfirst\n")

    def test_come_messages_without_words(self):
        self.shows_name_once("Ann")
        for message in UNREADABLE:
            self.receive_raw(f"Ann\n{message}")
        for text in ("chat Ann", "chat", "chat ", "chat \n", "chat\n\n", "chat  \t \n \n"):
            self.send_alone(text)
        self.session.settled()
        self.shows_name_once("Bob")  # nothing in between
        self.receive_raw("Bob\n")
        self.shows("\n")  # no words, but a message
        self.goes_on()

    def test_comes_a_name_of_a_megabyte(self):
        self.session.send(f"chat {'n' * 1_000_000}\nhello", seconds=60)
        until(lambda: self.conversation().endswith("\nhello\n"), "the message", seconds=60)
        self.assertLess(len(self.conversation()), 20_000)
        self.expected = self.conversation()
        self.goes_on()

    def test_comes_the_word_that_ends_reception(self):
        self.shows_name_once("Ann")
        self.send_alone("chat application-stop")
        self.receive("unheard")
        self.type("me too", "Return")
        self.sends(b"chat me%20too%0A")
        self.shows("you\nme too\n")
        self.assertEqual(self.session.quit(), 0)

    def test_comes_a_line_that_ends_the_session(self):
        self.session.send("chat Ann\nexit")
        self.assertEqual(self.session.wait(), 0)
        self.assertEqual(self.session.warnings(), [])

    def test_comes_the_end_behind_a_flood(self):
        for number in range(500):
            self.session.send(f"chat Ann {number}\n{escaped('word ' * 200)}")
        self.assertEqual(self.session.quit(), 0)
        self.assertEqual(self.session.warnings(), [])


class FromTheCustomer(ChatCase):
    def setUp(self):
        super().setUp()
        self.begin()
        self.open()

    def paste(self, text):
        """Puts a text into the clipboard of the desktop and from there into the message field."""
        copier = subprocess.Popen(["xclip", "-selection", "clipboard", "-quiet", "-i"], stdin=subprocess.PIPE,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            copier.stdin.write(text.encode())
            copier.stdin.close()
            until(lambda: clipboard() == text.encode(), "the clipboard has the text", seconds=60)
            self.take_field()
            key("ctrl+v")
            until(lambda: self.field() == text, lambda: f"{text[:99]!r} pasted; there is {self.field()[:99]!r}", 60)
        finally:
            copier.kill()
            copier.wait()

    def sends_pasted(self, text):
        before = len(self.sent())
        self.paste(text)
        key("Return")
        until(lambda: len(self.sent()) > before, "the message is sent", seconds=60)
        return self.sent()[before].decode()

    def test_goes_every_character(self):
        expected = "you\n"
        for text, wire in (("👩‍💻👍🏽 שלום عليكم", "👩‍💻👍🏽%20שלום%20عليكم"),
                           ("100% %s %n %41", "100%25%20%25s%20%25n%20%2541"),
                           ("<b>&amp;</b>", "%3Cb%3E%26amp%3B%3C%2Fb%3E"), ("two\nlines\n", "two%0Alines%0A"),
                           ("\t\u202eodd\u2028", "%09\u202eodd\u2028"), ("exit", "exit"), (" " * 2, "%20%20")):
            with self.subTest(text):
                self.assertEqual(self.sends_pasted(text), f"chat {wire}%0A")
                expected += f"{text}\n"
                self.converses(expected)
        self.assertEqual(self.field(), "")
        self.assertEqual(self.session.warnings(), [])

    def test_goes_a_megabyte_whole(self):
        text = "wörd " * 200_000
        self.assertTrue(self.sends_pasted(text) == f"chat {'wörd%20' * 200_000}%0A")
        self.type("after", "Return")
        until(lambda: self.sent()[-1] == b"chat after%0A", "the next message", seconds=60)
        self.assertTrue(self.conversation() == f"you\n{text}\nafter\n")
        self.assertEqual(self.session.warnings(), [])

    def test_goes_while_messages_come(self):
        for number in range(50):
            self.session.send(f"chat Ann {number}\nhello")
            if number % 10 == 0:
                self.type(f"answer {number}", "Return")
        self.session.settled()
        until(lambda: len(self.sent()) == 5, lambda: f"five answers; the agent received {self.sent()}")
        self.receive("last")
        until(lambda: self.conversation().endswith("\nlast\n"), "the last message")
        for number in range(0, 50, 10):
            self.assertIn(f"answer {number}\n", self.conversation())
        self.assertEqual(self.sent(), [f"chat answer%20{number}%0A".encode() for number in range(0, 50, 10)])


def clipboard():
    reader = ["xclip", "-selection", "clipboard", "-o"]
    return subprocess.run(reader, check=False, capture_output=True, timeout=60).stdout


if __name__ == "__main__":
    main()
