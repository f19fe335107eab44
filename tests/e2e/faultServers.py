"""Servers of a test's own: buses and displays that may hang or die."""

import contextlib
import os
import signal
import subprocess

from session import SessionCase
from waiting import TimedOut, until

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


def hang(session, display):
    """The process of the display stops, and a question to be shown there keeps the window; gives the session."""
    os.kill(display, signal.SIGSTOP)
    session.send("dialogPrompt launchScript a.sh")
    with contextlib.suppress(TimedOut):  # in the middle of drawing the window hangs before it comes to the question
        until(lambda: any(line.function == "show_dialog_script_launcher" for line in session.log.lines()),
              "the question is on its way", seconds=3)
    return session


class DesktopCase(SessionCase):
    def works(self, session):
        """Seen through the pipes and the log, as there may be no other way to look inside."""
        session.settled()
        session.windows.find("Brindle")

    def ends(self, session, status=0):
        self.assertEqual(session.quit(), status)
        self.assertIsNone(session.log.has_in_order(DELETED.format(session.home.entry), "freed meamory"),
                          session.log.tail())
