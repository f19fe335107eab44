"""What the desktop gives goes away: the session bus, the system bus, the X server. And two starts at one instant."""

import os
import signal
import subprocess

from session import Home, SessionCase, main
from waiting import stays, until

NO_BUS = "unix:path=/nonexistent/bus"
DELETED = "Deleted .desktop file at: {}"


class Helper:
    """A server of the test's own that tells where it can be reached."""

    def __init__(self, case, command, environment=None):
        output, writer = os.pipe()
        self.process = subprocess.Popen([word.replace("{}", str(writer)) for word in command], pass_fds=[writer],
                                        env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        os.close(writer)
        case.addCleanup(self.end)
        with os.fdopen(output) as file:
            self.said = file.readline().strip()
        case.assertTrue(self.said, command)

    def end(self, number=signal.SIGKILL):
        if self.process.poll() is None:
            self.process.send_signal(number)
        self.process.wait(20)


def new_bus(case):
    return Helper(case, ["dbus-daemon", "--session", "--nofork", "--print-address={}"])


def new_display(case):
    return Helper(case, ["Xvfb", "-displayfd", "{}", "-screen", "0", "800x600x24", "-nolisten", "tcp"])


class DesktopCase(SessionCase):
    def works(self, session):
        """Seen through the pipes and the log, as there may be no other way to look inside."""
        session.settled()
        session.windows.find("Brindle")

    def ends(self, session, status=0):
        self.assertEqual(session.quit(), status)
        self.assertIsNone(session.log.has_in_order(DELETED.format(session.home.entry), "freed meamory"),
                          session.log.tail())


class ASessionBus(DesktopCase):
    def test_that_is_missing_costs_nothing_in_any_session(self):
        for kind in ("normal", "ras"):
            for address in (NO_BUS, "disabled:", "no address at all"):
                with self.subTest(f"{kind}, {address}"):
                    session = self.start(kind=kind, environment={"DBUS_SESSION_BUS_ADDRESS": address}).ready()
                    self.works(session)
                    self.ends(session)

    def test_that_dies_costs_nothing(self):
        for kind, when in (("normal", "normal session"), ("ras", "registerd for parent kill signal"),
                           ("normal", "User Path Set")):
            with self.subTest(f"{kind}, at {when!r}"):
                bus = new_bus(self)
                session = self.start(kind=kind, environment={"DBUS_SESSION_BUS_ADDRESS": bus.said})
                session.log.expect(when)
                bus.end()
                session.ready()
                self.works(session)
                self.ends(session)

    def test_that_answers_late_makes_the_session_wait(self):
        bus = new_bus(self)
        bus.process.send_signal(signal.SIGSTOP)  # for a while
        session = self.start(environment={"DBUS_SESSION_BUS_ADDRESS": bus.said})
        session.log.expect(f"Created .desktop file at: {session.home.entry}")
        stays(session.alive, "the session waits", seconds=0.5)
        bus.process.send_signal(signal.SIGCONT)
        session.ready()
        self.works(session)
        self.ends(session)


class ASystemBus(DesktopCase):
    def test_that_is_missing_or_dies_never_keeps_a_question_from_the_customer(self):
        bus = new_bus(self)
        for name, address in (("missing", NO_BUS), ("no address", "x"), ("dead", bus.said)):
            with self.subTest(name):
                # The question whether to reboot goes by itself.
                session = self.start(speed=2, environment={"DBUS_SYSTEM_BUS_ADDRESS": address}).ready()
                bus.end()
                session.send("dialogPrompt rebootPc")
                session.application.find("dialog")
                session.send("dialogPrompt configureURS x")
                until(lambda: len(session.application.shown_all("dialog")) == 2, session.application.describe)
                session.settled()
                self.ends(session)


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


class TwoStarts(SessionCase):
    def test_at_the_same_instant_leave_one_session(self):
        for kinds in (("normal", "normal"), ("ras", "ras"), ("normal", "ras")):
            with self.subTest(kinds):
                bus = new_bus(self)
                environment = {"DBUS_SESSION_BUS_ADDRESS": bus.said}
                two = [self.start(kind=kind, environment=environment) for kind in kinds]
                ended = until(lambda: [session for session in two if not session.alive()], "one of them ends")
                self.assertEqual(len(ended), 1)
                self.assertEqual(ended[0].wait(), 0)
                # It has said nothing and touched nothing but the desktop entry, which the first one removes.
                self.assertFalse(any("Application start" in message for message in ended[0].log.messages()))
                first = next(session for session in two if session is not ended[0]).ready()
                first.settled()
                self.assertEqual(first.quit(), 0)
                self.assertEqual(first.log.messages()[-1], "freed meamory")

    def test_of_the_same_user_leave_one_session_and_its_pipes(self):
        bus = new_bus(self)
        home = Home()
        two = [self.start(home=home, agent=False, environment={"DBUS_SESSION_BUS_ADDRESS": bus.said})
               for _ in range(2)]
        until(lambda: any(not session.alive() for session in two), "one of them ends")
        first = next(session for session in two if session.alive()).ready()
        self.assertEqual(first.log.count("normal session"), 1)
        self.assertEqual(len(until(home.agent_starts, "the agent starts")), 1)
        first.settled()
        self.assertEqual(first.quit(), 0)
        self.assertEqual(os.listdir(home.pipes), [])


if __name__ == "__main__":
    main()
