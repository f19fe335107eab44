"""The X server goes away."""

import os
import signal

from faultServers import DELETED, DesktopCase, NO_BUS, new_display
from session import Home, main


class AnXServer(DesktopCase):
    def start_on(self, display, **options):
        environment = {"DISPLAY": f":{display.said}", "NO_AT_BRIDGE": "1", "DBUS_SESSION_BUS_ADDRESS": NO_BUS}
        return self.start(environment=environment, wrapper=["env", "-u", "XAUTHORITY"], **options)

    def says_why_and_leaves_nothing(self, session):
        self.assertEqual(session.wait(), 1)
        self.assertIsNone(session.log.has_in_order("the display has gone", DELETED.format(session.home.entry)),
                          session.log.tail())
        self.assertFalse(session.home.entry.exists())
        agents = [int(start[0]) for start in session.home.agent_starts()]
        self.assertEqual([child for child in session.children() if child not in agents], [])

    def test_that_goes_away_ends_the_program_with_a_word(self):
        for kind, when in (("ras", "session is of Type ras "), ("normal", "normal session")):
            for number in (signal.SIGTERM, signal.SIGKILL):
                with self.subTest(f"{kind}, {when!r}, {number!r}"):
                    display = new_display(self)
                    session = self.start_on(display, kind=kind).ready()
                    display.end(number)
                    self.says_why_and_leaves_nothing(session)
                    self.assertEqual(sorted(os.listdir(session.home.pipes)),
                                     [] if kind == "normal" else ["Status", "myfifo"])

    def test_that_goes_away_while_the_program_starts_ends_it_too(self):
        display = new_display(self)
        session = self.start_on(display, speed=1, kind="ras")
        session.log.expect("User Path Set")
        display.end()
        self.says_why_and_leaves_nothing(session)

    def test_that_is_not_there_ends_the_program_with_a_word(self):
        session = self.start(environment={"DISPLAY": ":65000"})
        self.assertEqual(session.wait(), 1)
        self.assertIn("cannot open display", session.standard_error.read_text(errors="replace"))

    def test_that_went_away_leaves_nothing_that_hurts_the_next_start(self):
        home = Home()
        display = new_display(self)
        session = self.start_on(display, home=home, kind="ras").ready()
        display.end()
        session.wait()
        again = self.start(home=home, kind="ras").ready()
        self.works(again)
        self.ends(again)
        self.assertFalse(home.entry.exists())


if __name__ == "__main__":
    main()
