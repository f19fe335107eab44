"""The X server goes away."""

import contextlib
import os
import re
import signal
import subprocess

from faultServers import DELETED, DesktopCase, NO_BUS, hang, new_display
from faultSignalTest import group_of
from session import Home, main
from waiting import until


def fill_pipe(case, path):
    """A pipe that an agent has open, does not read, and that takes nothing more."""
    os.mkfifo(path)
    pipe = os.open(path, os.O_RDWR | os.O_NONBLOCK)
    case.addCleanup(os.close, pipe)
    with contextlib.suppress(BlockingIOError):
        while True:
            os.write(pipe, b"x" * 4096)


class OwnDisplayCase(DesktopCase):
    def start_on(self, display, **options):
        environment = {"DISPLAY": f":{display.said}", "NO_AT_BRIDGE": "1", "DBUS_SESSION_BUS_ADDRESS": NO_BUS}
        return self.start(environment=environment, wrapper=["setsid", "env", "-u", "XAUTHORITY"], **options)

    def ready(self, session):
        session.ready()
        if session.kind == "normal":
            until(session.home.agent_starts, "the agent starts")
        return session

    def says_why(self, session, reason):
        self.assertEqual(session.wait(60), 1)  # it counts its looks, which come late on a busy machine
        self.assertIsNone(session.log.has_in_order(reason, DELETED.format(session.home.entry)), session.log.tail())
        self.assertEqual(session.log.count(reason), 1)
        self.assertFalse(session.home.entry.exists())

    def says_why_and_leaves_nothing(self, session, reason="the display has gone"):
        self.says_why(session, reason)
        # Nobody ends the agent of a "normal" session: it goes on.
        agents = {int(start[0]) for start in session.home.agent_starts()}
        self.assertEqual(len(agents), 1 if session.kind == "normal" else 0)
        self.assertEqual(group_of(session.pid), agents)


class AnXServer(OwnDisplayCase):
    def test_that_goes_away_ends_the_program_with_a_word(self):
        for kind, when in (("ras", "session is of Type ras "), ("normal", "normal session")):
            for number in (signal.SIGTERM, signal.SIGKILL):
                with self.subTest(f"{kind}, {when!r}, {number!r}"):
                    display = new_display(self)
                    session = self.ready(self.start_on(display, kind=kind))
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

    def test_that_hangs_keeps_no_start_from_a_signal(self):
        for kind in ("normal", "ras"):
            with self.subTest(kind):
                display = new_display(self)
                display.process.send_signal(signal.SIGSTOP)
                session = self.start_on(display, kind=kind, agent=False, pings=False)
                session.log.expect(f"Created .desktop file at: {session.home.entry}")
                session.process.send_signal(signal.SIGTERM)
                self.assertEqual(session.wait(), -signal.SIGTERM)
                self.assertEqual(group_of(session.pid), set())

    def test_that_hangs_later_keeps_no_started_session_from_a_signal(self):
        def stop_in_the_pause(display):
            session = self.start_on(display, speed=3, kind="ras")
            session.log.expect("User Path Set")
            display.process.send_signal(signal.SIGSTOP)
            return session

        def stop_later(display):
            return hang(self.start_on(display, kind="ras").ready(), display.process.pid)

        for stop in (stop_in_the_pause, stop_later):
            with self.subTest(stop.__name__):
                session = stop(new_display(self))
                session.process.send_signal(signal.SIGTERM)
                self.says_why_and_leaves_nothing(session, "the window hangs")

    def test_that_hangs_keeps_no_session_from_its_agent(self):
        for how, end in (("ends", lambda session: session.home.agent_ends(0)),
                         ("says so", lambda session: session.send("exit"))):
            with self.subTest(how):
                display = new_display(self)
                session = hang(self.ready(self.start_on(display)), display.process.pid)
                end(session)
                self.says_why(session, "the window hangs")
                self.assertEqual(os.listdir(session.home.pipes), [])

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


class AnXServerThatGoesAway(OwnDisplayCase):
    def begin(self, kind="ras", **options):
        self.display = new_display(self)
        self.session = self.start_on(self.display, kind=kind, **options)
        return self.session

    def ends_with_it(self):
        self.display.end()
        self.says_why_and_leaves_nothing(self.session)

    def shows(self, title):
        """Waits for a window on the display that is to go away."""
        search = ["xdotool", "search", "--onlyvisible", "--name", f"^{re.escape(title)}$"]
        environment = {**os.environ, "DISPLAY": f":{self.display.said}"}
        until(lambda: subprocess.run(search, env=environment, capture_output=True, timeout=20).stdout,
              f"a window titled {title!r}")

    def test_while_nobody_reads_ends_the_program(self):
        self.begin(agent=False, pings=False).log.expect("registerd for parent kill signal")
        self.ends_with_it()

    def test_while_the_pipe_is_full_ends_the_program(self):
        home = Home()
        fill_pipe(self, home.pipes / "myfifo")
        self.begin(home=home, agent=False, pings=False).log.expect("registerd for parent kill signal")
        self.ends_with_it()

    def test_while_a_question_is_open_ends_the_program(self):
        for kind in ("ras", "normal"):
            with self.subTest(kind):
                self.ready(self.begin(kind)).send("dialogPrompt launchScript a.sh")
                self.shows("Allow remote script execution?")
                self.ends_with_it()

    def test_while_files_are_chosen_ends_the_program(self):
        for kind in ("ras", "normal"):
            with self.subTest(kind):
                self.ready(self.begin(kind)).send("dialogPrompt fileTransfer 41")
                self.shows("Send File")
                self.ends_with_it()


if __name__ == "__main__":
    main()
