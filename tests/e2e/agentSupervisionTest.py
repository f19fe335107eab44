"""The agent that a normal session starts, and the parent of every other session."""

import os
import signal
import time

from session import Home, SessionCase, adopt_orphans, main
from waiting import until

RECORDING_AGENT = """#!/bin/sh
LD_PRELOAD= date +%s.%N >>"{folder}/times"
{end}
"""


def agent_times(home):
    try:
        return [float(line) for line in (home.path / "times").read_text().split()]
    except FileNotFoundError:
        return []


def supervision_lines(session):
    return [message for message in session.log.messages() if message.startswith(("child p", "retry count"))]


class TheAgent(SessionCase):
    def test_that_ends_well_ends_the_session_after_one_start(self):
        session = self.start().ready()
        until(session.home.agent_starts, "the agent starts")
        session.home.agent_ends(0)
        self.assertEqual(session.wait(), 0)
        self.assertEqual(len(session.home.agent_starts()), 1)
        self.assertEqual(supervision_lines(session), ["child program exited with status 0"])
        self.assertEqual(session.log.messages()[-1], "freed meamory")

    def test_that_ends_well_at_once_ends_the_session_too(self):
        home = Home()
        home.install_agent(text="#!/bin/sh\nexit 0\n")
        session = self.start(home=home)
        self.assertEqual(session.wait(), 0)
        self.assertEqual(session.log.messages()[-1], "freed meamory")

    def test_that_fails_is_started_three_times_with_a_pause_after_each(self):
        home = Home()
        home.install_agent(text=RECORDING_AGENT.format(folder=home.path, end="exit 2"))
        session = self.start(home=home, speed=5)
        self.assertEqual(session.wait(), 0)
        ended = time.time()
        failed = "child program exited with status 2"
        self.assertEqual(supervision_lines(session), [failed, "retry count 3", failed, "retry count 2",
                                                      failed, "retry count 1"])
        times = agent_times(home)
        self.assertEqual(len(times), 3)
        pauses = [later - earlier for earlier, later in zip(times, [*times[1:], ended])]
        for pause in pauses:
            self.assertGreaterEqual(pause * 5, 1, pauses)

    def test_that_is_killed_is_started_three_times_without_a_pause(self):
        home = Home()
        home.install_agent(text=RECORDING_AGENT.format(folder=home.path, end="kill -9 $$"))
        session = self.start(home=home, speed=1)
        self.assertEqual(session.wait(), 0)
        killed = "child program terminated with signal: 9"
        self.assertEqual(supervision_lines(session), [killed, "retry count 3", killed, "retry count 2",
                                                      killed, "retry count 1"])
        times = agent_times(home)
        self.assertEqual(len(times), 3)
        # A busy machine pauses, too, but not twice.
        self.assertLess(min(times[1] - times[0], times[2] - times[1]), 0.9)

    def test_that_is_killed_after_its_last_word_is_not_started_again(self):
        home = Home()
        home.install_agent(text=RECORDING_AGENT.format(
            folder=home.path, end=f"""echo exit >"{home.pipes}/Status"
# A line of the end, which goes on for a tenth of a second.
until grep -q "closing thread" "{home.product}/Logs"/*; do :; done
kill -9 $$"""))
        session = self.start(home=home, speed=1)
        self.assertEqual(session.wait(), 0)
        self.assertEqual(len(agent_times(home)), 1)

    def test_that_recovers_keeps_the_session(self):
        session = self.start().ready()
        until(session.home.agent_starts, "the agent starts")
        session.home.agent_ends(7)
        until(lambda: len(session.home.agent_starts()) == 2, "the agent starts again")
        session.settled()
        session.home.agent_ends(0)
        self.assertEqual(session.wait(), 0)
        self.assertEqual(supervision_lines(session), ["child program exited with status 7", "retry count 3",
                                                      "child program exited with status 0"])

    def test_that_is_missing_counts_as_failing(self):
        session = self.start(install_agent=False)
        self.assertEqual(session.wait(), 0)
        failed = "child program exited with status 1"
        self.assertEqual(supervision_lines(session), [failed, "retry count 3", failed, "retry count 2",
                                                      failed, "retry count 1"])
        self.assertEqual(session.standard_error.read_text().count("execv: No such file or directory"), 3)
        self.assertEqual(session.log.messages()[-1], "freed meamory")

    def test_gets_its_fifteen_arguments(self):
        options = ["-s", "ann@example.org", "-v", "12 x%s", "-t", "true", "-r", "1", "-n", "%n%s"]
        session = self.start(options=options)
        start = until(session.home.agent_starts, "the agent starts")[0]
        program = str(session.home.product / "bin/main")
        home = str(session.home.path)
        self.assertEqual(start[1:], [
            program, "-productType", "true", "-isRolechange", "1", "-email", "ann@example.org", "-version", "12 x%s",
            "-isDemoSession", "true", "-applicationPath", home, "-productName", "%n%s"])
        session.log.expect(f"execl args: {program} -productType true -isRolechange 1 -email ann@example.org -version "
                           f"12 x%s -isDemoSession true -applicationPath {home} -productName %n%s")
        self.assertIsNone(session.log.has_in_order("Macro defined SPAWNPROCESS", "%n%s", program))

    def test_gets_all_its_arguments_when_options_are_missing(self):
        session = self.start()
        start = until(session.home.agent_starts, "the agent starts")[0]
        self.assertEqual(start[2:], ["-productType", "true", "-isRolechange", "0", "-email", "Guest", "-version", "",
                                     "-isDemoSession", "", "-applicationPath", str(session.home.path), "-productName",
                                     "Brindle"])

    def test_is_the_other_program_under_wayland(self):
        home = Home()
        home.install_agent("screenshare")
        session = self.start(home=home, environment={"XDG_SESSION_TYPE": "Wayland"})
        start = until(home.agent_starts, "the agent starts")[0]
        self.assertEqual(start[1], str(home.product / "bin/screenshare"))
        session.log.expect("Wayland")
        home.agent_ends(0)
        self.assertEqual(session.wait(), 0)

    def test_starts_with_ordinary_signals(self):
        session = self.start()
        start = until(session.home.agent_starts, "the agent starts")[0]
        with open(f"/proc/{start[0]}/status", encoding="ascii") as file:
            status = dict(line.rstrip("\n").split(":\t", 1) for line in file if ":\t" in line)
        ignored = int(status["SigIgn"], 16)
        self.assertEqual(ignored & (1 << (signal.SIGPIPE - 1)), 0)
        self.assertEqual(int(status["SigBlk"], 16), 0)


class TheParent(SessionCase):
    """A shell stands for the agent that starts the program; its death reaches the program as a signal."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        adopt_orphans()

    def start_below_shell(self):
        home = Home()
        wrapper = ["/bin/sh", "-c", f'"$0" "$@" & echo $! >"{home.path}/pid"; wait']
        session = self.start(home=home, kind="ras", wrapper=wrapper)
        session.log.expect("*" + "-" * 40 + "Application start" + "-" * 57 + "*")
        pid = home.path / "pid"
        return session, int(until(lambda: pid.exists() and pid.read_text().strip(), "the shell tells the process"))

    def expect_full_shut_down(self, session, program):
        status = until(lambda: os.waitpid(program, os.WNOHANG)[1:] if self.ended(program) else None,
                       lambda: "the program ends; log:\n" + session.log.tail())
        self.assertEqual(status[0], 0)
        missing = session.log.has_in_order("Caught sigterm", f"Deleted .desktop file at: {session.home.entry}",
                                           "freed meamory")
        self.assertIsNone(missing, session.log.text())
        self.assertFalse(session.home.entry.exists())

    @staticmethod
    def ended(program):
        with open(f"/proc/{program}/stat", encoding="ascii") as file:
            return file.read().rsplit(")", 1)[1].split()[0] == "Z"

    def test_that_dies_ends_the_session_in_order(self):
        session, program = self.start_below_shell()
        session.ready()
        session.process.kill()
        session.process.wait()
        self.expect_full_shut_down(session, program)

    def test_that_dies_during_start_up_ends_the_session_as_well(self):
        session, program = self.start_below_shell()
        session.process.kill()
        session.process.wait()
        self.expect_full_shut_down(session, program)

    def test_may_end_the_session_with_a_signal(self):
        session = self.start(kind="ras").ready()
        session.process.send_signal(signal.SIGTERM)
        self.assertEqual(session.wait(), 0)
        self.assertEqual(session.log.count("Caught sigterm"), 1)
        self.assertEqual(session.log.messages()[-1], "freed meamory")


if __name__ == "__main__":
    main()
