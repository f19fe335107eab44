"""The conversation is saved through the real button and folder question: every byte of the file, and what the customer
sees when it can't be written."""

import os
import re

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from chatPanel import ChatCase  # noqa: E402
from keyboard import key  # noqa: E402
from rootLayoutTest import MACHINE, REACH, RootCase  # noqa: E402
from screen import click, has_state, place_of, sensitive, xdotool  # noqa: E402
from session import FAST, SANDBOX, Home, faster_clock, main  # noqa: E402
from waiting import until  # noqa: E402

QUESTION = "Save Chat Transcript"
FILE = "Brindle_Chat_Log_.txt"
NO_RIGHTS = "You don't have enough privilege to access the file"
SLOW_DISK = os.environ["SLOW_DISK"]  # to be loaded into the program
STARS = ("*" * 93 + "\n") * 2


def header(date, session_key, kind):
    return (STARS + " " * 31 + "Brindle Chat Log" + " " * 39 + "\n" + STARS
            + " " * 26 + f"\tDate:(dd/mm/yyyy) {date}" + " " * 48 + "\n"
            + " " * 26 + f"\tsessionkey: {session_key}" + " " * 54 + "\n"
            + " " * 26 + f"\tType: {kind}" + " " * 60 + "\n" + STARS)


class StoppedClock:
    """A clock that a test sets and that never goes by itself; timers run all the same."""

    def __init__(self, home):
        self._file = home.path / "clock"
        self.environment = {**faster_clock(FAST), "FAKETIME_TIMESTAMP_FILE": str(self._file), "FAKETIME_NO_CACHE": "1",
                            "FAKETIME_DONT_FAKE_MONOTONIC": "1"}
        del self.environment["FAKETIME"]

    def set(self, moment):
        following = self._file.with_suffix(".new")
        following.write_text(f"{moment}\n")
        following.rename(self._file)  # whoever looks sees the old moment or the new one


class TranscriptCase(ChatCase):
    def folder(self, name="saved", mode=0o755):
        path = self.session.home.path / name
        path.mkdir()
        path.chmod(mode)
        return path

    def ask(self):
        """The customer clicks the save button; the question is there and takes keys."""
        button = self.application.find("push button", "Download Chat")
        until(lambda: sensitive(button), "the transcript can be saved")
        click(button)
        self.session.windows.find(QUESTION)
        self.session.windows.wait_focus(QUESTION)

    def save(self, folder):
        self.begin_to_save(folder)
        self.answered()

    def begin_to_save(self, folder):
        self.ask()
        self.go_home()  # a path typed into the list of recent folders opens none
        key("ctrl+l")
        until(lambda: self.entry() is not None, "a field for the path")
        key("ctrl+a")
        xdotool("type", folder)
        until(lambda: (self.entry() or "").rstrip("/") == str(folder), lambda: f"{folder}; there is {self.entry()!r}")
        key("Return")

    def go_home(self):
        self.application.go_to_place("Home", self.session.home.path.name)

    def entry(self):
        """What stands in the question's field for a path, once that takes keys; else None."""
        for field in self.application.shown_all("text"):
            if all(has_state(field, state) for state in
                   (Atspi.StateType.EDITABLE, Atspi.StateType.FOCUSED, Atspi.StateType.SINGLE_LINE)):
                return Atspi.Text.get_text(field, 0, -1)
        return None

    def answered(self):
        until(lambda: not self.session.windows.titled(QUESTION), "the question goes")
        # What is asked now is answered when the click on the button has been worked off.
        self.application.find("push button", "Download Chat")

    def names_key(self, path, session_key, kind):
        """The file is this header, with any date, and one message."""
        text = path.read_text()
        date, time = re.search(r"yyyy\) (\d+/\d+/\d{4}) ", text), re.search(r"Ann \((\d+:\d+:\d+)\)", text)
        self.assertTrue(date and time, text)
        self.assertEqual(text, header(date[1], session_key, kind) + f"\nAnn ({time[1]}) \n \t\t\t hello")


class TheConversation(TranscriptCase):
    def setUp(self):
        super().setUp()
        home = Home()
        self.clock = StoppedClock(home)
        self.clock.set("2024-03-07 09:05:02")
        self.begin(home=home, speed=1, environment=self.clock.environment)

    def answer(self, text):
        count = len(self.sent())
        self.type(text, "Return")
        until(lambda: len(self.sent()) > count, lambda: f"{text!r} is sent; the agent received {self.sent()}")

    def hear(self, text, name="Ann"):
        """A message that has been shown also has its time."""
        self.receive(text, name)
        until(lambda: self.conversation().endswith(f"{text}\n"), lambda: f"{text!r}; there is {self.conversation()!r}")

    def hold(self):
        """Seconds, minutes and hours go by between the messages of both sides."""
        self.hear("one")
        self.hear("two %s %n %41")
        self.answer("Yes, 100% <b>&")
        self.answer("second")
        self.clock.set("2024-03-07 09:06:59")
        self.answer("third")
        self.hear("three\nlines\n")
        self.hear("Zwölf 😀 שלום", name="Bob & Co")
        self.clock.set("2024-03-07 09:07:00")
        self.hear("later", name="Bob & Co")
        self.clock.set("2024-03-07 10:07:30")
        self.hear("an hour later", name="Bob & Co")

    HELD = ("\nAnn (9:5:2) \n \t\t\t one"
            "\n  \t\t\t two %s %n %41"
            "\nyou (9:5:2) \n \t\t\t Yes, 100% <b>&\n"
            "\n  \t\t\t second\n"
            "\nyou (9:6:59) \n \t\t\t third\n"
            "\nAnn (9:6:59) \n \t\t\t three\nlines\n"
            "\nBob & Co (9:6:59) \n \t\t\t Zwölf 😀 שלום"
            "\nBob & Co (9:7:0) \n \t\t\t later"
            "\n  \t\t\t an hour later")  # in the minute of the same number

    def test_is_saved_byte_for_byte_and_replaces_the_one_before(self):
        folder = self.folder()
        self.send_alone("sessionKey 0123456789")
        self.hold()
        self.save(folder)
        expected = header("7/3/2024", "", "normal") + self.HELD
        self.assertEqual((folder / FILE).read_bytes().decode(), expected)
        self.receive_raw(b"Bob & Co\n%FF%C3%28")
        self.receive_raw("Bob & Co\n%ZZ")
        self.send_alone("chat Bob & Co")
        self.clock_moves_on_after("Bob & Co")
        self.save(folder)
        self.assertEqual((folder / FILE).read_bytes(), (header("31/12/2024", "", "normal") + self.HELD).encode()
                         + b"\n  \t\t\t \xff\xc3(" + b"\n  \t\t\t (null)" * 2
                         + b"\n  \t\t\t end\nBob & Co (23:59:9) \n \t\t\t new year")
        self.assertEqual(os.listdir(folder), [FILE])
        self.assertEqual(self.session.warnings(), [])

    def clock_moves_on_after(self, name):
        """Messages without a text are not shown; one that is says that they have their time."""
        self.hear("end", name=name)
        self.clock.set("2024-12-31 23:59:09")
        self.hear("new year", name=name)


class TheSessionKey(TranscriptCase, RootCase):
    """In sessions that want to be pinged: every wait of a test does that, and nobody else, as the key stands alone."""

    UNDISTURBED = {"pings": False, "speed": 1}

    def save_one(self):
        self.receive("hello")
        folder = self.folder()
        self.save(folder)
        return folder / FILE

    def begin_service(self, kind, logs, product):
        self.use(self.start_root(kind, logs, f"{product}/temp", f"{product}/Resource", **self.UNDISTURBED))

    def test_is_left_out_of_remote_access(self):
        self.begin(kind="ras", **self.UNDISTURBED)
        self.send_alone("sessionKey 0123456789")
        self.names_key(self.save_one(), "", "ras")

    def test_is_written_for_services(self):
        self.begin_service("UrsUserSession", f"/var/log/Brindle/{os.getuid()}/Logs", MACHINE)
        self.send_alone("sessionKey 0123456789")
        self.names_key(self.save_one(), "0123456789", "UrsUserSession")

    def test_may_be_missing(self):
        self.begin_service("oreach", "/var/log/OstrelReach", REACH)
        self.names_key(self.save_one(), "", "oreach")


class TheFile(TranscriptCase):
    """One message; what happens to the file is seen in a second folder, where it can be written."""

    def begin(self, **options):
        super().begin(**options)
        self.receive("hello")

    def can_still_be_saved(self):
        folder = self.folder("elsewhere")
        self.save(folder)
        self.names_key(folder / FILE, "", "normal")
        self.assertEqual(self.session.warnings(), [])

    def is_told_of_missing_rights(self):
        """Once the notice has gone, the controls below it have moved back and can be aimed at."""
        self.application.has_label(NO_RIGHTS)
        self.application.gone("label", NO_RIGHTS)

    def test_is_cut_to_its_new_length(self):
        self.begin()
        folder = self.folder()
        (folder / FILE).write_bytes(b"x" * 100_000)
        self.save(folder)
        self.names_key(folder / FILE, "", "normal")

    def test_is_not_written_without_rights(self):
        # root loses what lifts it above the rights of files
        ordinary = ["setpriv", "--bounding-set=-dac_override,-dac_read_search"] if os.geteuid() == 0 else []
        self.begin(wrapper=ordinary, speed=1)  # a notice stays three seconds
        for name, mode in (("r", 0o555), ("w", 0o333)):
            with self.subTest(oct(mode)):
                before = self.session.log.count("You Dont Have access")
                folder = self.folder(name, mode)
                self.addCleanup(folder.chmod, 0o755)
                self.save(folder)
                self.session.log.expect("You Dont Have access", before + 1)
                self.is_told_of_missing_rights()
                folder.chmod(0o755)
                self.assertEqual(os.listdir(folder), [])
        self.can_still_be_saved()

    def test_is_not_written_where_the_folder_has_gone(self):
        home = Home()
        bookmarks, folder = home.path / ".config/gtk-3.0/bookmarks", home.path / "saved"
        bookmarks.parent.mkdir(parents=True)
        bookmarks.write_text(f"file://{folder}\n")
        folder.mkdir()
        self.begin(home=home, speed=1)
        self.ask()
        self.application.go_to_place("saved")
        place = place_of(self.application.find("push button", "Open"))
        folder.rmdir()
        xdotool("mousemove", *place, "click", 1)
        self.answered()
        self.session.log.expect("You Dont Have access")
        self.is_told_of_missing_rights()
        self.assertFalse(folder.exists())
        self.can_still_be_saved()

    def test_is_cut_off_by_a_full_disk(self):
        home = Home()
        folder = home.path / "full"
        folder.mkdir()
        self.begin(home=home, wrapper=[SANDBOX, f"mount -t tmpfs -o size=16k none {folder}"])
        lines = ["word" * 20] * 500
        self.session.send("chat Ann\n" + "%0A".join(lines))
        self.session.settled()
        self.save(folder)
        self.session.log.expect("error writing chat transcript No space left on device")
        elsewhere = self.folder("elsewhere")
        self.save(elsewhere)
        whole = (elsewhere / FILE).read_bytes()
        self.assertTrue(whole.endswith("\n".join(lines).encode()))
        with open(f"/proc/{self.session.pid}/root{folder / FILE}", "rb") as file:  # as the program sees it
            written = file.read()
        self.assertGreater(len(written), 4000)
        self.assertEqual(written, whole[:len(written)])
        self.assertEqual(self.session.warnings(), [])

    def test_on_a_slow_disk_is_whole_before_the_session_ends(self):
        fast = faster_clock(FAST)
        self.begin(environment={**fast, "LD_PRELOAD": f"{SLOW_DISK} {fast['LD_PRELOAD']}"})
        folder = self.folder()
        (folder / FILE).write_text("the one before")
        self.begin_to_save(folder)
        until(lambda: (folder / FILE).stat().st_size == 0, "the file is opened")
        self.session.home.agent_ends(0)
        self.assertEqual(self.session.wait(), 0)
        self.names_key(folder / FILE, "", "normal")


class TheQuestion(TranscriptCase):
    def setUp(self):
        super().setUp()
        self.begin()
        self.receive("hello")

    def test_saves_nothing_when_it_is_refused(self):
        before = os.listdir()
        self.ask()
        click(self.application.find("push button", "Cancel"))
        self.answered()
        self.ask()
        self.session.windows.close(self.session.windows.find(QUESTION))
        self.answered()
        self.assertEqual(os.listdir(), before)
        self.assertEqual([str(path) for path in self.session.home.path.rglob(FILE)], [])
        folder = self.folder()
        self.save(folder)
        self.names_key(folder / FILE, "", "normal")

    def test_goes_with_the_session(self):
        self.ask()
        self.receive("meanwhile")
        until(lambda: self.conversation().endswith("meanwhile\n"), "the conversation goes on")
        self.assertEqual(self.session.quit(), 0)
        self.assertEqual(self.session.warnings(), [])


if __name__ == "__main__":
    main()
