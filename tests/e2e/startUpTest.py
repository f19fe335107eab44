"""Start-up and shut-down as the agent, the desktop and the log see them."""

import os
import stat
import subprocess
import time

from session import PROGRAM, SessionCase, main
from waiting import until

APPLICATION_START = "*" + "-" * 40 + "Application start" + "-" * 57 + "*"
ENTRY = ("[Desktop Entry]\nVersion=1.0\nName={name}\nIcon={icon}\nTerminal=false\nType=Application\n"
         "Categories=Utility;\n")


def is_fifo(path):
    try:
        return stat.S_ISFIFO(os.stat(path).st_mode)
    except FileNotFoundError:
        return False


class ANormalSession(SessionCase):
    def test_start_and_end_write_their_lines_in_order(self):
        session = self.start(speed=1).ready()  # its threads have the whole tenth of a second to end in
        home = session.home
        self.assertEqual(session.quit(), 0)
        missing = session.log.has_in_order(
            f"Created .desktop file at: {home.entry}", APPLICATION_START,
            f"pipe created {home.pipes}/Status", f"pipe created {home.pipes}/myfifo", "User Path Set",
            "loading resources", "Window title: Brindle", "GTK initilized", "css styling has been added",
            "Threads created", "normal session", "closing agent", "closing thread",
            f"Deleted .desktop file at: {home.entry}", "freed meamory")
        self.assertIsNone(missing, session.log.text())
        self.assertEqual(session.log.messages()[-1], "freed meamory")
        self.assertEqual(session.log.count("unlinking pipes"), 0)
        self.assertEqual(session.log.count(APPLICATION_START), 1)
        self.assertEqual(session.warnings(), [])

    def test_pipes_and_desktop_entry_live_as_long_as_the_session(self):
        session = self.start().ready()
        home = session.home
        self.assertTrue(is_fifo(home.pipes / "Status"))
        self.assertTrue(is_fifo(home.pipes / "myfifo"))
        icon = f"{home.path}/.brindle/Brindle/Resource/logo.png"
        self.assertEqual(home.entry.read_text(), ENTRY.format(name="Brindle", icon=icon))
        subprocess.run(["desktop-file-validate", home.entry], check=True, timeout=20)
        session.quit()
        self.assertEqual(list(home.pipes.iterdir()), [])
        self.assertFalse(home.entry.exists())

    def test_what_an_earlier_run_left_in_the_pipe_folder_is_replaced(self):
        from session import Home
        home = Home()
        (home.pipes / "Status").write_text("not a pipe")
        (home.pipes / "myfifo").write_text("not a pipe")
        session = self.start(home=home, agent=False)
        session.ready()
        self.assertTrue(is_fifo(home.pipes / "Status"))
        self.assertTrue(is_fifo(home.pipes / "myfifo"))

    def test_nothing_is_sent_before_the_customer_acts(self):
        session = self.start().ready()
        session.quit()
        self.assertEqual(session.agent.lines(), [])

    def test_an_empty_session_type_is_a_normal_session(self):
        session = self.start(kind="")
        session.log.expect("normal session")
        self.assertEqual(session.quit(), 0)

    def test_a_missing_session_type_is_a_normal_session_for_a_guest(self):
        session = self.start(kind=None)
        until(session.home.agent_starts, "the agent starts")
        arguments = session.home.agent_starts()[0]
        self.assertEqual(arguments[arguments.index("-email") + 1], "Guest")
        self.assertEqual(session.quit(), 0)

    def test_cloud_products_have_their_own_title(self):
        session = self.start(options=["-n", "REACH_CLOUD"]).ready()
        self.assertEqual(session.log.count("Window title: Ostrel Reach  "), 1)
        session.windows.find("Ostrel Reach  ")


class AnAgentStartedSession(SessionCase):
    def test_asks_for_the_session_details_first_and_hides_the_settings(self):
        session = self.start(kind="ras", options=["-n", "FLEET"]).ready()
        self.assertEqual(until(session.agent.lines, "the first line of all")[0], "SendSessionDetails")
        session.log.expect("Checking ss is alive")
        missing = session.log.has_in_order(APPLICATION_START, "User Path Set", "Threads created",
                                           "session is of Type ras ", "registerd for parent kill signal",
                                           "Checking ss is alive")
        self.assertIsNone(missing, session.log.text())
        pipes = session.home.pipes
        self.assertEqual(session.log.count(f"productName: FLEET, ui pipe {pipes}/myfifo, st pipe {pipes}/Status"), 1)
        session.application.find("push button", "Chat")
        self.assertIsNone(session.application.look("push button", "More"))
        self.assertEqual(session.home.agent_starts(), [])

    def test_uses_the_pipes_that_the_agent_has_made_and_leaves_its_own(self):
        from session import Home
        home = Home()
        os.mkfifo(home.pipes / "Status")
        os.mkfifo(home.pipes / "myfifo")
        before = os.stat(home.pipes / "myfifo").st_ino
        session = self.start(home=home, kind="ras", speed=1).ready()  # time enough to remove its pipe at the end
        problem = "error creating pipe {}/{}"
        self.assertEqual(session.log.count(problem.format(home.pipes, "Status")), 1)
        self.assertEqual(session.log.count(problem.format(home.pipes, "myfifo")), 1)
        self.assertEqual(session.quit(), 0)
        self.assertEqual(os.stat(home.pipes / "myfifo").st_ino, before)
        self.assertFalse((home.pipes / "Status").exists())
        self.assertFalse(home.entry.exists())

    def test_ends_also_while_it_waits_for_an_agent_that_never_reads(self):
        session = self.start(kind="ras", agent=False, pings=False)
        session.log.expect("session is of Type ras ")
        session.send("exit")
        began = time.monotonic()
        self.assertEqual(session.wait(), 0)
        self.assertLess(time.monotonic() - began, 5)  # two, and room for a machine that is busy with other tests


class ASecondStart(SessionCase):
    """The first one's four seconds are eight, in which a busy machine has started the second one."""

    def second(self, home):
        began = time.monotonic()
        status = subprocess.run([PROGRAM, "-u", "normal", "-p", home.path], env={**os.environ, "HOME": str(home.path)},
                                timeout=30, capture_output=True).returncode
        return status, time.monotonic() - began

    def test_ends_at_once_and_leaves_the_first_alone_during_its_delay_and_later(self):
        first = self.start(speed=0.5)
        home = first.home
        first.log.expect(APPLICATION_START)
        first.log.expect("User Path Set")
        began = time.monotonic()
        status, took = self.second(home)
        self.assertEqual(status, 0)
        self.assertLess(took, 7)
        self.assertEqual(first.log.count("loading resources"), 0, "the second start came after the delay")
        first.log.expect("loading resources")
        self.assertGreater(time.monotonic() - began, 6)
        first.ready()
        status, took = self.second(home)
        self.assertEqual(status, 0)
        self.assertLess(took, 7)
        self.assertEqual(first.log.count(APPLICATION_START), 1)
        self.assertEqual(first.log.count(f"Created .desktop file at: {home.entry}"), 3)
        self.assertTrue(home.entry.exists())
        self.assertTrue(is_fifo(home.pipes / "myfifo"))
        first.settled()
        self.assertEqual(first.quit(), 0)


class TheFixedDelay(SessionCase):
    def moments(self, log, message, last):
        """When the log was last seen without a message, and when with it."""
        looks = [last]

        def is_there():
            looks.append(time.monotonic())
            return log.count(message)

        until(is_there, log.tail)
        return looks[-2], time.monotonic()

    def test_is_four_seconds(self):
        started = time.monotonic()
        session = self.start(speed=1)
        before, begun = self.moments(session.log, "User Path Set", started)
        waiting, over = self.moments(session.log, "loading resources", begun)
        self.assertGreater(over - before, 3.8)
        self.assertLess(waiting - begun, 5.5)


class MissingThings(SessionCase):
    def test_without_pictures_and_style_sheet_the_window_comes_all_the_same(self):
        session = self.start(resources=False).ready()
        session.application.find("push button", "Chat")
        self.assertEqual(session.log.count("css styling has been added"), 1)
        self.assertNotIn("error loding css", session.log.text())
        self.assertEqual(session.quit(), 0)
        self.assertEqual(session.warnings(), [])

    def test_without_a_log_folder_the_session_runs_silently(self):
        from session import Home
        home = Home()
        (home.product / "Logs").rmdir()
        session = self.start(home=home)
        session.application.find("push button", "Chat")
        self.assertEqual(session.quit(), 0)
        self.assertFalse((home.product / "Logs").exists())

    def test_without_a_pipe_folder_the_window_comes_and_the_agent_may_end_it(self):
        from session import Home
        home = Home()
        home.pipes.rmdir()
        session = self.start(home=home, agent=False)
        session.log.expect(f"error creating pipe {home.pipes}/myfifo")
        session.log.expect("Closing thread")
        session.application.find("push button", "Chat")
        home.agent_ends(0)
        self.assertEqual(session.wait(), 0)


if __name__ == "__main__":
    main()
