"""What only a Wayland session has: a compositor that comes, goes or is missing, and the ends of a session under one."""

import os
import signal
import subprocess
import tempfile

from session import Home, SessionCase, main
from waiting import until


class OwnCompositor:
    """One without a screen, for a test that ends it."""

    def __init__(self, case):
        folder = tempfile.TemporaryDirectory(prefix="compositor", ignore_cleanup_errors=True)
        case.addCleanup(folder.cleanup)
        self.folder = folder.name
        another = ["unshare", "--user", "--map-user=1000", "--map-group=1000"] if os.getuid() == 0 else []
        environment = {**os.environ, "XDG_RUNTIME_DIR": self.folder, "WLR_BACKENDS": "headless",
                       "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}
        self.process = subprocess.Popen([*another, "sway", "-c", "/dev/null"], env=environment,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        case.addCleanup(self.end, signal.SIGKILL)
        self.display = until(self._display, "a compositor")

    def end(self, number):
        if self.process.poll() is None:
            self.process.send_signal(number)
        self.process.wait(20)

    def _display(self):
        return next((f"{self.folder}/{name}" for name in os.listdir(self.folder)
                     if name.startswith("wayland-") and not name.endswith(".lock")), None)


class ACompositor(SessionCase):
    def start_on(self, display, **options):
        return self.start(environment={"WAYLAND_DISPLAY": display, "NO_AT_BRIDGE": "1",
                                       "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent"}, **options)

    def says_why_and_leaves_nothing(self, session):
        self.assertEqual(session.wait(), 1)
        self.assertEqual(session.log.count("the display has gone"), 1)
        self.assertFalse(session.home.entry.exists())

    def test_that_goes_away_ends_the_program_with_a_word(self):
        for kind, pipes in (("normal", []), ("ras", ["Status", "myfifo"])):
            for number in (signal.SIGTERM, signal.SIGKILL):
                with self.subTest(f"{kind}, {number!r}"):
                    compositor = OwnCompositor(self)
                    session = self.start_on(compositor.display, kind=kind).ready()
                    compositor.end(number)
                    self.says_why_and_leaves_nothing(session)
                    self.assertEqual(sorted(os.listdir(session.home.pipes)), pipes)

    def test_that_goes_away_leaves_nothing_that_hurts_the_next_start(self):
        home = Home()
        compositor = OwnCompositor(self)
        self.start_on(compositor.display, home=home, kind="ras").ready()
        compositor.end(signal.SIGKILL)
        self.says_why_and_leaves_nothing(self.sessions[-1])
        again = self.start(home=home, kind="ras").ready()
        again.windows.find("Brindle")
        self.assertEqual(again.quit(), 0)

    def test_that_is_not_there_ends_the_program_with_a_word(self):
        session = self.start_on("/nonexistent/wayland-0")
        self.assertEqual(session.wait(), 1)
        self.assertIn("cannot open display", session.standard_error.read_text(errors="replace"))


class TheEnd(SessionCase):
    def ends_well(self, kind, ask):
        session = self.start(kind=kind).ready()
        session.windows.find("Brindle")
        ask(session)
        self.assertEqual(session.wait(), 0)
        self.assertEqual(session.log.messages()[-1], "freed meamory")
        self.assertFalse(session.home.entry.exists())
        self.assertEqual(session.warnings(), [])

    def test_comes_when_the_agent_asks_for_it(self):
        for kind in ("normal", "ras"):
            self.ends_well(kind, lambda session: session.send("exit"))

    def test_comes_when_the_agent_that_began_has_gone(self):
        self.ends_well("ras", lambda session: session.process.terminate())


class TheWindow(SessionCase):
    def test_lies_on_the_screen_whatever_place_it_asks_for(self):
        session = self.start().ready()
        windows = session.windows
        window = windows.find("Brindle")
        x, y = windows.position(window)
        width, height = windows.size(window)
        self.assertEqual(width, 350)
        self.assertTrue(0 <= x <= 1280 - width and 0 <= y <= 800 - height, (x, y, width, height))

    def test_gets_its_annotation_button_with_the_connection(self):
        session = self.start().ready()
        session.application.find("push button", "Chat")
        self.assertIsNone(session.application.look("push button", "Annotation"))
        session.send("sessionStatus Connected")
        session.application.find("push button", "Annotation")

    def test_starts_the_agent_that_knows_wayland(self):
        session = self.start()
        start = until(session.home.agent_starts, "the agent starts")[0]
        self.assertEqual(start[1], str(session.home.product / "bin/screenshare"))


if __name__ == "__main__":
    main()
