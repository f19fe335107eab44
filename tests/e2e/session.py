"""A session of the real program: its folders, its agent, its process."""

import ctypes
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from contextlib import contextmanager, suppress

import gi

gi.require_version("Atspi", "2.0")

from logFile import LogFile  # noqa: E402
from pipes import PipeReader, send_text  # noqa: E402
from screen import Application, picture, under_wayland, window_tree, windows_shown, xdotool  # noqa: E402
from waiting import TimedOut, until  # noqa: E402

PROGRAM = os.environ["BRINDLE_UI_PROGRAM"]
SIMULATOR = os.environ["AGENT_SIMULATOR_PROGRAM"]
RESOURCES = pathlib.Path(os.environ["RESOURCE_FOLDER"])
SANDBOX = str(pathlib.Path(__file__).parents[1] / "support/sandbox")
PICTURES = pathlib.Path(os.environ.get("PICTURE_FOLDER", tempfile.gettempdir()))
AGENT = "screenshare" if under_wayland() else "main"  # the program that a "normal" session starts
_PING_SEEN = "Received Ping UI, sending alive response"
_ENDS_IN_ORDER = "ENDS_IN_ORDER" in os.environ  # for checkers that speak at the end of a program, of leaks
FAST = 10  # how much faster the program's clock runs where no test says otherwise

# Ends as the first line of "order" says; without one it stays. What it was called with is left in "starts".
_AGENT = """#!/bin/sh
printf '%s\\t' "$$" "$0" "$@" >>"{folder}/starts"
echo >>"{folder}/starts"
read order <"{folder}/order"
case $order in kill) kill -9 $$ ;; esac
exit "$order"
"""

_ANNOTATION = """#!/bin/sh
unset LD_PRELOAD
while [ $# -gt 1 ]; do
  [ "$1" = -i ] && commands=$2
  shift
done
until [ "$command" = Exit ]; do
  command=$(cat "$commands") || exit
done
"""


def faster_clock(times):
    """Environment in which every sleep and timer of a program is so many times shorter."""
    library = next(pathlib.Path("/usr/lib").glob("*/faketime/libfaketimeMT.so.1"))
    # File times stay real, else the font caches of the machine would look stale and be written anew at each start.
    return {"LD_PRELOAD": str(library), "FAKETIME": f"+0 x{times}", "NO_FAKE_STAT": "1"} if times != 1 else {}


def lives(process):
    """False from its end on, even while nobody has asked for its status."""
    try:
        return pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] not in "ZX"
    except OSError:
        return False


def adopt_orphans():
    """Lets this process wait for grandchildren whose parent has gone."""
    set_child_subreaper = 36
    if ctypes.CDLL(None, use_errno=True).prctl(set_child_subreaper, 1, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "prctl")


class Home:
    """A user's folder with an installed program; goes with its test."""

    def __init__(self, resources=True):
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="brindleHome"))
        self.product = self.path / ".brindle/Brindle"
        self.pipes = self.path / ".brindle/temp"
        self.applications = self.path / ".local/share/applications"
        for folder in (self.product / "Logs", self.product / "bin", self.pipes, self.applications):
            folder.mkdir(parents=True)
        if resources:
            (self.product / "Resource").symlink_to(RESOURCES)
        self.log = LogFile(self.product / "Logs/ui.log")
        self.entry = self.applications / "Brindle.desktop"
        self._agent_folder = self.path / "agent"
        self._agent_folder.mkdir()
        os.mkfifo(self._agent_folder / "order")

    def install_agent(self, name=AGENT, text=None):
        program = self.product / "bin" / name
        program.write_text(text or _AGENT.format(folder=self._agent_folder))
        program.chmod(0o755)
        return program

    def has_agent(self):
        return any((self.product / "bin" / name).exists() for name in ("main", "screenshare"))

    def install_annotation(self):
        """A program that stands for the one that draws on the screen; ends when it is told to."""
        program = self.product / "bin/Annotation"
        program.write_text(_ANNOTATION)
        program.chmod(0o755)

    def agent_starts(self):
        """One list of arguments for each start of the agent: process, program, arguments."""
        try:
            lines = (self._agent_folder / "starts").read_text().split("\n")[:-1]
        except FileNotFoundError:
            return []
        return [line.split("\t")[:-1] for line in lines]

    def agent_ends(self, order):
        """Lets the running agent end with an exit status, or by "kill"."""
        send_text(self._agent_folder / "order", f"{order}\n")

    def remove(self):
        _kill_left_over(self.path)
        shutil.rmtree(self.path, ignore_errors=True)


def _kill_left_over(folder):
    """Kills what still runs with a folder of this test in its command line: an agent, or a command that waits for a pipe
    which has gone. Waits for its end: what the program has just forked holds the program's name on the bus."""
    killed = []
    for words in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
        try:
            if str(folder).encode() in words.read_bytes():
                os.kill(int(words.parent.name), signal.SIGKILL)
                killed.append(words.parent.name)
        except OSError:  # has just gone, or is somebody else's
            continue
    until(lambda: not any(map(lives, killed)), f"{killed} end")


class Session:
    """One run of the program with an agent on the other side of its pipes."""

    def __init__(self, home, kind="normal", options=(), speed=FAST, environment=None, wrapper=(), pings=None,
                 agent=True, arguments=None):
        """
        kind: session type; None leaves the option out
        speed: how much faster its clock runs
        wrapper: command that runs the program
        pings: the agent pings; None: where the program wants to be pinged
        agent: read what the program sends
        arguments: the whole command line instead of kind and options
        """
        self.home = home
        self.log = home.log
        self.kind = kind
        self.standard_error = home.path / "stderr"
        self.standard_output = home.path / "stdout"
        kind_options = [] if kind is None else ["-u", kind]
        self.arguments = [PROGRAM, *(arguments if arguments is not None
                                     else [*kind_options, "-p", str(home.path), *options])]
        self.environment = {**os.environ, "HOME": str(home.path), **faster_clock(speed), **(environment or {})}
        self.agent = PipeReader(home.pipes / "myfifo") if agent else None
        with open(self.standard_output, "ab") as output, open(self.standard_error, "ab") as errors:
            self.process = subprocess.Popen([*wrapper, *self.arguments], env=self.environment, stdout=output,
                                            stderr=errors, stdin=subprocess.DEVNULL)
        self._windows = None
        self._application = None
        self._ended = threading.Event()
        self._pinged = pings
        if pings is None:
            self._pinged = kind not in (None, "", "normal")
        if self._pinged:
            threading.Thread(target=self._ping, args=(speed,), daemon=True).start()

    @property
    def pid(self):
        return self.process.pid

    @property
    def windows(self):
        self._windows = self._windows or windows_shown()
        return self._windows

    @property
    def application(self):
        if not self._application:
            self._application = Application(self.pid)
            if not os.environ.get("NOWM"):
                self.windows.wait_placed(self.pid)
        return self._application

    def send(self, text, seconds=15):
        """The agent writes one text; a line needs no newline of its own here."""
        data = text if isinstance(text, bytes) else text.encode()
        send_text(self.home.pipes / "Status", data if data.endswith(b"\n") else data + b"\n", seconds)

    def send_raw(self, data, seconds=15):
        send_text(self.home.pipes / "Status", data, seconds)

    def ready(self):
        """Waits until start-up is over: the window is there and a line from the agent is answered."""
        self.log.expect("normal session" if self.kind in (None, "", "normal") else "Threads created")
        self.settled()
        return self

    def heard(self):
        """Waits until the agent has taken in the first line of a session that it started."""
        if self.kind not in (None, "", "normal"):
            until(self.agent.lines, "the first line of all")
        return self

    def settled(self):
        """Waits until the program has worked through everything that was sent before."""
        if not self._pinged:  # says nothing about technicians
            before = self.log.count(_PING_SEEN)
            self.send("PING UI")
            self.log.expect(_PING_SEEN, before + 1)
            return
        marker = f"settled-{time.monotonic_ns()}"
        self.send(f"sessionStatus {marker}")
        self.log.expect(f"Unhandled message  {marker}")

    def quit(self):
        """The agent ends the session."""
        self.send("exit")
        return self.wait()

    def wait(self, seconds=15):
        """Waits for the end of the process and gives its status."""
        until(lambda: self.process.poll() is not None, lambda: "the program ends; log:\n" + self.log.tail(), seconds)
        self._ended.set()
        return self.process.returncode

    def alive(self):
        return self.process.poll() is None

    def children(self):
        """Processes that the program has started and that live; with the words of their command lines."""
        found = {}
        for folder in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                state, parent = (folder / "stat").read_text().rpartition(")")[2].split()[:2]
                if int(parent) == self.pid and state not in "ZX":
                    found[int(folder.name)] = (folder / "cmdline").read_bytes().decode(errors="replace").split("\0")[:-1]
            except OSError:  # has just gone
                continue
        return found

    def warnings(self):
        """GLib warnings and criticals that the program printed."""
        text = self.standard_error.read_text(errors="replace")
        return [line for line in text.splitlines() if re.search(r"(WARNING|CRITICAL|ERROR) \*\*", line)]

    def clean_up(self):
        if _ENDS_IN_ORDER and self.alive():
            self._end_in_order()
        self._ended.set()
        if self.process.poll() is None:
            self._let_window_appear()
            self.process.kill()
            self.process.wait()
        if self.agent:
            self.agent.stop()
        self.home.remove()

    def _let_window_appear(self):
        """A window that goes while the window manager takes it in may leave a frame behind, and trouble for the next."""
        if self.log.count("Threads created") and self.environment.get("DISPLAY") == os.environ.get("DISPLAY"):
            with suppress(TimedOut):
                until(lambda: self.windows.knows(self.pid), "its window is known", seconds=1)

    def _end_in_order(self):
        """As far as the test has left it a way to do so."""
        try:
            send_text(self.home.pipes / "Status", "exit", seconds=1)
            self.process.wait(30)
        except (OSError, subprocess.TimeoutExpired):
            pass

    def _ping(self, speed):
        while not self._ended.wait(4 / speed):
            try:
                send_text(self.home.pipes / "Status", "PING UI\n", seconds=1)
            except OSError:  # not there yet, or gone
                pass


class SessionCase(unittest.TestCase):
    """Starts sessions and shows what they left behind when a test fails."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.class_sessions = []

    @classmethod
    def tearDownClass(cls):
        for session in cls.class_sessions:
            session.clean_up()

    def setUp(self):
        self.sessions = []
        self._is_shown = False
        self.addCleanup(self._finish)

    @classmethod
    def start_shared(cls, **options):
        """A session that all tests of the class look at."""
        session = _start(**options)
        cls.class_sessions.append(session)
        return session

    def start(self, **options):
        session = _start(**options)
        self.sessions.append(session)
        return session

    def new_home(self, **options):
        home = Home(**options)
        self.addCleanup(home.remove)
        return home

    @contextmanager
    def subTest(self, *words, **values):
        """As the library's; its first failure is shown as it happens, as the rest goes on with the same sessions."""
        with super().subTest(*words, **values):
            try:
                yield
            except Exception:
                self._show()
                raise

    def _finish(self):
        result = self._outcome.result
        if any(test is self for test, _ in result.failures + result.errors):
            self._show()
        for session in self.sessions:
            session.clean_up()

    def _show(self):
        """Pictures and logs for whoever looks into a failure, once for each test."""
        sessions = self.sessions + self.class_sessions
        if self._is_shown or not sessions:
            return
        self._is_shown = True
        path = PICTURES / f"{self.id()}.png"
        picture(path)
        print(f"--- {self.id()}: picture in {path}\n{window_tree()}", file=sys.stderr)
        for session in sessions:
            print(f"status {session.process.poll()}, log:\n{session.log.tail(60)}\n"
                  f"stderr:\n{session.standard_error.read_text(errors='replace')[-3000:]}", file=sys.stderr)
            if session.agent:
                print(f"the agent received: {session.agent.lines()}", file=sys.stderr)


class WholeWindowCase(SessionCase):
    """A session whose window has all four panels, that of annotation, too."""

    def setUp(self):
        super().setUp()
        home = Home()
        home.install_annotation()
        self.session = self.start(home=home).ready()
        self.application = self.session.application


def _start(home=None, resources=True, install_agent=True, **options):
    if under_wayland():
        # A tooltip that comes as a dialog does ends the program: sway takes it away too early.
        xdotool("mousemove", 1, 1)
    home = home or Home(resources=resources)
    if install_agent and not home.has_agent():
        home.install_agent()
    return Session(home, **options)


def main():
    unittest.main(verbosity=2, warnings="ignore")
