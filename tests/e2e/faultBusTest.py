"""The session bus goes away, hangs or is missing. And two starts at one instant."""

import os
import pathlib
import signal

from faultAgentTest import DyingCase, start_below_shell
from faultServers import DesktopCase, NO_BUS, new_bus
from faultSignalTest import group_of
from session import Home, SessionCase, main
from waiting import stays, until


def bus_of(home):
    """Process of the bus that was started with this home; none when there is none."""
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            arguments, variables = ((folder / name).read_bytes().split(b"\0") for name in ("cmdline", "environ"))
        except OSError:  # has just gone
            continue
        if b"--session" in arguments and f"HOME={home.path}".encode() in variables:
            return int(folder.name)
    return None


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

    def test_that_a_library_starts_can_be_ended(self):
        session = self.start(kind="ras", environment={"DBUS_SESSION_BUS_ADDRESS": "autolaunch:"}).ready()
        bus = until(lambda: bus_of(session.home), "the bus that the toolkit's libraries have started")
        self.ends(session)
        os.kill(bus, signal.SIGTERM)
        until(lambda: bus_of(session.home) is None, "the bus ends")

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


class ASessionBusThatHangs(DyingCase):
    def options(self):
        """Of a session that waits for a bus, which answers no more."""
        bus = new_bus(self)
        bus.process.send_signal(signal.SIGSTOP)
        return {"environment": {"DBUS_SESSION_BUS_ADDRESS": bus.said}, "agent": False, "pings": False}

    def waits(self, session):
        session.log.expect(f"Created .desktop file at: {session.home.entry}")

    def test_keeps_no_session_from_a_signal(self):
        # An agent may ignore the signal and hand that on.
        for kind, handed_on in (("normal", "--default-signal"), ("ras", "--default-signal"),
                                ("ras", "--ignore-signal=TERM")):
            with self.subTest(f"{kind} {handed_on}"):
                session = self.start(kind=kind, wrapper=["setsid", "env", handed_on], **self.options())
                self.waits(session)
                session.process.send_signal(signal.SIGTERM)
                self.assertEqual(session.wait(), -signal.SIGTERM)
                self.assertEqual(group_of(session.pid), set())

    def test_keeps_no_started_session_from_its_parents_end(self):
        session, program = start_below_shell(self, **self.options())
        self.waits(session)
        session.process.kill()
        session.process.wait()
        self.assertEqual(self.wait_for_orphan(session, program), -signal.SIGTERM)


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
