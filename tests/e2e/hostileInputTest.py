"""Floods and broken lines from the agent: nothing is lost, and afterwards the session answers as before."""

import os
import random
import time

from pipes import send_text
from screen import click, sensitive
from session import SessionCase, main
from waiting import until

PAUSE = "Pause Screen Sharing"


class TheSession(SessionCase):
    def setUp(self):
        super().setUp()
        self.session = self.start().ready()

    def answers_as_before(self):
        """A status line still reaches the window and a click still reaches the agent."""
        session = self.session
        before = len(session.agent.lines())
        session.send("sessionStatus Connected", seconds=60)
        button = session.application.find("push button", PAUSE, seconds=60)
        until(lambda: sensitive(button), "the button can be clicked", seconds=60)
        click(button)
        session.agent.expect("buttonClicked stop", after=before)
        self.assertEqual(session.warnings(), [])
        self.assertEqual(session.quit(), 0)

    def test_takes_twenty_thousand_texts_in_a_row(self):
        count = 20_000
        pipe = self.session.home.pipes / "Status"
        for number in range(count):
            send_text(pipe, f"sessionStatus n{number}\n")
        expected = [f"Unhandled message  n{number}" for number in range(count)]
        self.session.log.expect(expected[-1], seconds=60)
        seen = [message for message in self.session.log.messages() if message.startswith("Unhandled message  n")]
        self.assertEqual(len(seen), count)
        self.assertEqual(seen, expected)
        self.answers_as_before()

    def test_takes_a_text_of_many_lines(self):
        self.session.send("".join(f"sessionStatus m{number}\n" for number in range(30_000)))
        self.session.log.expect("Unhandled message  m29999", seconds=60)
        self.answers_as_before()

    def test_takes_lines_of_a_megabyte(self):
        long = "x" * 1_000_000
        for line in (long, f"sessionStatus {long}", f"sessionStatus TECH-NAME {long}", f"dialogPrompt {long}",
                     f"sessionStatus participantsAdd {long} 1 false", f"sessionKey {long}", f"initSwap {long}",
                     f"dialogPrompt samecon{long}", f"sessionStatus participantsDelete a {long}"):
            self.session.send(line)
        self.session.settled()
        self.answers_as_before()

    def test_takes_bytes_that_are_no_text(self):
        everything = bytes(range(1, 256)).replace(b"\n", b"")
        words = (b"", b"sessionStatus ", b"sessionStatus TECH-NAME ", b"sessionStatus participantsAdd ", b"dialogPrompt ",
                 b"initSwap ", b"sessionKey ", b"PING UI", b"blockInput", b"unblockInput ")
        for word in words:
            self.session.send(word + everything)
            self.session.send(word + b"\xff\xfe\xc3( 1 false")
            self.session.send(word + b"before\0after 1 true")
        self.session.settled()
        self.answers_as_before()

    def test_takes_formats_and_markup_as_words(self):
        nasty = "%n%s%d%99999c<b>&_"
        for line in (nasty, f"sessionStatus {nasty}", f"sessionStatus TECH-NAME {nasty}",
                     f"sessionStatus participantsAdd {nasty} {nasty} {nasty}",
                     f"sessionStatus participantsModify {nasty} {nasty}", f"dialogPrompt {nasty} {nasty}",
                     f"sessionKey {nasty}", f"initSwap {nasty}"):
            self.session.send(line)
        self.session.log.expect(f"Unhandled message  {nasty}")
        self.session.settled()
        self.answers_as_before()

    def test_takes_texts_without_words(self):
        pipe = self.session.home.pipes / "Status"
        for text in (b"", b"\n", b" ", b"\0\n", b"\n\n\n", b"\r\n", b"\t \n"):
            send_text(pipe, text)
        os.close(os.open(pipe, os.O_WRONLY))
        self.session.settled()
        self.answers_as_before()

    def test_takes_random_bytes(self):
        chance = random.Random(20240307)  # the same in every run
        for _ in range(300):
            line = chance.randbytes(chance.randrange(400)).replace(b"exit", b"EXI_")
            self.session.send(chance.choice((b"", b"sessionStatus ", b"dialogPrompt ", b"initSwap ")) + line + b"\n")
        self.session.settled()
        self.answers_as_before()

    def test_ends_in_a_flood(self):
        self.session.send("sessionStatus Connected\n" * 5_000 + "exit\n" + "sessionStatus disconnected\n" * 20_000)
        self.session.log.expect("closing agent")
        began = time.monotonic()
        self.assertEqual(self.session.wait(), 0)
        self.assertLess(time.monotonic() - began, 8)
        self.assertEqual(self.session.warnings(), [])


if __name__ == "__main__":
    main()
