"""Signals at every moment of a session's life: from the first instant to well after start-up. A hundred sessions sleep
side by side, each without a bus, so that none takes another for the first."""

import concurrent.futures
import os
import pathlib
import signal
import time
import unittest

from session import PROGRAM, Home, lives, main
from waiting import until

REGISTERED = "registerd for parent kill signal"
AT_ONCE = 24  # sessions; more would only wait for each other while they start
HANG = 30
SOON = 3  # two seconds, and room for a display that is busy with other sessions
EARLY = 5  # seconds that a session may still need before it is told


def waited_for_processor(process):
    """Seconds that a process, which may have ended, was kept from running by others."""
    try:
        return int(pathlib.Path(f"/proc/{process}/schedstat").read_text().split()[1]) / 1e9
    except (OSError, ValueError, IndexError):
        return 0


def group_of(process):
    """Processes that live in the group that this one leads."""
    found = set()
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            words = (folder / "stat").read_text().rpartition(")")[2].split()
        except OSError:  # has just gone
            continue
        if int(words[2]) == process and words[0] not in "ZX":
            found.add(int(folder.name))
    return found


class Run:
    """One session that gets one signal."""

    def __init__(self, kind, number, after):
        self.kind, self.number, self.after = kind, number, after
        self.home = Home(resources=False)
        self.home.install_agent()
        self.registered = False
        self.took = self.waited = None
        self.status = None

    def play(self):
        # The agent is there or never comes, in turns.
        reader = None
        if self.after % 0.1 < 0.05:
            os.mkfifo(self.home.pipes / "myfifo")
            reader = os.open(self.home.pipes / "myfifo", os.O_RDWR | os.O_NONBLOCK)
        try:
            self._play()
        finally:
            if reader is not None:
                os.close(reader)
        return self

    def _play(self):
        # Whoever runs the tests may have these signals ignored.
        arguments = ["env", "--default-signal", PROGRAM, "-u", self.kind, "-p", str(self.home.path)]
        environment = {**os.environ, "HOME": str(self.home.path), "DBUS_SESSION_BUS_ADDRESS": "disabled:",
                       "NO_AT_BRIDGE": "1"}
        with open(self.home.path / "output", "wb") as output:
            self.process = os.posix_spawnp(
                "env", arguments, environment, setpgroup=0,
                file_actions=[(os.POSIX_SPAWN_DUP2, output.fileno(), 1), (os.POSIX_SPAWN_DUP2, output.fileno(), 2)])
        self.followed = os.pidfd_open(self.process)
        try:
            time.sleep(self.after)
            self.registered = REGISTERED in self.home.log.text()
            self._signal()
        finally:
            os.close(self.followed)

    def _signal(self):
        waited = waited_for_processor(self.process)
        began = time.monotonic()
        os.kill(self.process, self.number)
        while os.waitid(os.P_PIDFD, self.followed, os.WEXITED | os.WNOWAIT | os.WNOHANG) is None:
            if time.monotonic() - began > HANG:
                os.killpg(self.process, signal.SIGKILL)
                break
            time.sleep(0.005)
        self.took = time.monotonic() - began
        self.waited = waited_for_processor(self.process) - waited
        self.status = os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])

    def left_over(self):
        agents = {int(start[0]) for start in self.home.agent_starts()}
        return {process for process in group_of(self.process) if lives(process)} - agents

    def __str__(self):
        return (f"{self.kind}, signal {self.number} after {self.after:.2f} s: status {self.status} after "
                f"{self.took:.2f} s, {self.waited:.2f} s of them waiting; log:\n{self.home.log.tail(12)}\n"
                f"output: {(self.home.path / 'output').read_text(errors='replace')[-600:]}")


def moments(step_ms, end_ms=6000):
    return [milliseconds / 1000 for milliseconds in range(0, end_ms + 1, step_ms)]


class ASignal(unittest.TestCase):
    def play(self, runs):
        """All at their moments, as many side by side as the machine takes."""
        for run in runs:
            self.addCleanup(run.home.remove)
        with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
            # Long and short ones mixed, so that starts are spread.
            return list(pool.map(Run.play, sorted(runs, key=lambda run: run.after * 7919 % 1)))

    def leaves_nothing(self, run):
        until(lambda: not run.left_over(), lambda: f"nothing is left of {run}: {run.left_over()}")

    def ended_in_order(self, run):
        self.assertEqual(run.status, 0, str(run))
        self.assertIsNone(run.home.log.has_in_order("Caught sigterm", f"Deleted .desktop file at: {run.home.entry}",
                                                    "freed meamory"), str(run))
        self.assertEqual(run.home.log.messages()[-1], "freed meamory", str(run))
        self.assertFalse(run.home.entry.exists(), str(run))

    def check_default(self, runs):
        for run in self.play(runs):
            with self.subTest(str(run)[:40]):
                self.assertEqual(run.status, -run.number, str(run))
                self.leaves_nothing(run)

    def test_of_the_agents_end_always_ends_the_session_in_order(self):
        late = [10 + turn / 20 for turn in range(12)]  # these are ready on any machine
        runs = self.play([Run("ras", signal.SIGTERM, after) for after in (*moments(50), *late)])
        for run in runs:
            with self.subTest(f"after {run.after:.2f} s"):
                self.leaves_nothing(run)
                if not run.registered:
                    self.assertIn(run.status, (0, -signal.SIGTERM), str(run))
                if run.registered or run.status == 0:
                    self.ended_in_order(run)
                    self.assertLess(run.took - run.waited, SOON if run.registered else EARLY, str(run))
        told = [run for run in runs if run.registered]
        self.assertGreater(len(told), 10, "some were ready")
        self.assertLess(len(told), len(runs) - 10, "some were not")

    def test_ends_a_normal_session_at_once(self):
        self.check_default([Run("normal", number, after) for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)
                            for after in moments(400)])

    def test_from_the_terminal_ends_a_started_session_at_once(self):
        self.check_default([Run("ras", number, after) for number in (signal.SIGINT, signal.SIGHUP)
                            for after in moments(400)])

    def test_from_the_terminal_is_not_lost_while_the_session_starts(self):
        self.check_default([Run("ras", signal.SIGINT, after) for after in moments(10, 200)])


if __name__ == "__main__":
    main()
