"""Files for the technician, chosen in the real chooser by pointer and keyboard."""

import os
import urllib.parse

from keyboard import key
from screen import click, click_through, xdotool
from session import Home, SessionCase, main
from waiting import until

CHOOSER = "Send File"
TWO_GIB = 2 ** 31


def escaped(path):
    """Reserved characters escaped, UTF-8 kept."""
    return "".join(c if ord(c) > 127 else urllib.parse.quote(c, safe="") for c in str(path))


def one_file(path, receiver):
    return f"dialogResponse FileName {escaped(path)} {receiver}"


def several_files(paths, receiver):
    text = "FileName" + "".join(" " + escaped(path) for path in paths)
    return f"zip_folder {escaped(text)} {receiver}"


class SentFiles(SessionCase):
    FILES = ()  # name and size, each test class its own

    def begin(self, files, kind="ras", **options):
        home = Home()
        self.folder = home.path / "shelf"
        self.folder.mkdir()
        for name, size in files:
            with open(self.folder / name, "wb") as file:
                file.truncate(size)
        bookmarks = home.path / ".config/gtk-3.0/bookmarks"
        bookmarks.parent.mkdir(parents=True)
        bookmarks.write_text(f"file://{self.folder}\n")
        self.session = self.start(home=home, kind=kind, **options).ready().heard()
        self.application = self.session.application
        self.before = len(self.session.agent.lines())

    def ask(self, receiver="7"):
        self.session.send(f"dialogPrompt fileTransfer {receiver}")
        self.chooser_is_there()

    def chooser_is_there(self):
        self.session.windows.find(CHOOSER)
        self.session.windows.wait_focus(CHOOSER)

    def go_to_shelf(self):
        self.application.go_to_place("shelf")

    def select(self, *names):
        """Clicks the rows of these files, the second and later ones with Control held."""
        for number, name in enumerate(names):
            row = self.application.find("table cell", name)
            if number:
                xdotool("keydown", "ctrl")
            try:
                click_through(row)  # Control is held and let go of at once
            finally:
                xdotool("keyup", "ctrl")

    def confirm(self):
        click(self.application.find("push button", "Send "))
        self.chooser_is_gone()

    def chooser_is_gone(self):
        until(lambda: not self.session.windows.titled(CHOOSER), "the chooser goes")

    def expect(self, *lines):
        self.session.agent.expect(*lines, after=self.before)

    def expect_nothing(self):
        """Only that the chooser has gone, and the session goes on."""
        self.session.settled()
        self.expect("dialogResponse delete_dialog fileChooserDialog ")
        self.assertTrue(self.session.alive())
        self.assertEqual(self.session.warnings(), [])


class OneFile(SentFiles):
    def test_is_named_to_the_one_that_asked(self):
        names = ("a b.txt", "100% sure.txt", "Überblick.pdf", "予定表.txt", "a+b&c=d;e.txt", "-rf.txt")
        self.begin([(name, 10) for name in names])
        for number, name in enumerate(names):
            with self.subTest(name):
                self.before = len(self.session.agent.lines())
                self.ask(str(number))
                self.go_to_shelf()
                self.select(name)
                self.confirm()
                self.expect(one_file(self.folder / name, number), "dialogResponse delete_dialog fileChooserDialog ")
        self.assertEqual(self.session.warnings(), [])

    def test_may_be_large(self):
        self.begin([("disk.img", 3 * 2 ** 30)])
        self.ask()
        self.go_to_shelf()
        self.select("disk.img")
        self.confirm()
        self.expect(one_file(self.folder / "disk.img", 7), "dialogResponse delete_dialog fileChooserDialog ")

    def test_may_be_unreadable(self):
        ordinary = ["setpriv", "--bounding-set=-dac_override,-dac_read_search"] if os.geteuid() == 0 else []
        self.begin([("secret.txt", 10)], wrapper=ordinary)
        (self.folder / "secret.txt").chmod(0)
        self.ask()
        self.go_to_shelf()
        self.select("secret.txt")
        self.confirm()
        self.expect(one_file(self.folder / "secret.txt", 7), "dialogResponse delete_dialog fileChooserDialog ")

    def test_may_be_typed(self):
        self.begin([("a b.txt", 10)])
        self.ask()
        self.go_to_shelf()
        key("ctrl+l")
        xdotool("type", str(self.folder / "a b.txt"))
        self.confirm()
        self.expect(one_file(self.folder / "a b.txt", 7), "dialogResponse delete_dialog fileChooserDialog ")

    def test_goes_to_the_agent_when_the_customer_began(self):
        self.begin([("a.txt", 1)], kind="normal")
        self.session.send("sessionStatus Connected")
        click(self.application.find("push button", "File Transfer"))
        click(self.application.find("push button", "Send File"))
        self.chooser_is_there()
        self.before = len(self.session.agent.lines())
        self.go_to_shelf()
        self.select("a.txt")
        self.confirm()
        self.expect(one_file(self.folder / "a.txt", -1), "dialogResponse delete_dialog fileChooserDialog ")


class SeveralFiles(SentFiles):
    def test_are_named_in_one_line(self):
        names = ("a b.txt", "Überblick.pdf", "予定表.txt")
        self.begin([(name, 10) for name in names])
        self.ask()
        self.go_to_shelf()
        self.select(*names)
        self.confirm()
        self.expect(several_files([self.folder / name for name in names], 7),
                    "dialogResponse delete_dialog fileChooserDialog ")

    def test_end_at_the_first_one_that_is_too_large(self):
        self.begin([("1 small", TWO_GIB), ("2 large", TWO_GIB + 1), ("3 small", 10)])
        self.ask()
        self.go_to_shelf()
        self.select("1 small", "2 large", "3 small")
        self.confirm()
        self.expect(several_files([self.folder / "1 small", self.folder / "2 large"], 7),
                    "dialogResponse delete_dialog fileChooserDialog ")


class NoFile(SentFiles):
    def setUp(self):
        super().setUp()
        self.begin([("a.txt", 1)])
        self.ask()

    def test_is_sent_when_the_customer_cancels(self):
        self.go_to_shelf()
        self.select("a.txt")
        click(self.application.find("push button", "Cancel"))
        self.chooser_is_gone()
        self.expect_nothing()

    def test_is_sent_when_the_customer_presses_escape(self):
        self.go_to_shelf()
        self.select("a.txt")
        key("Escape")
        self.chooser_is_gone()
        self.expect_nothing()

    def test_is_sent_when_the_chooser_is_closed(self):
        self.session.windows.close(self.session.windows.find(CHOOSER))
        self.chooser_is_gone()
        self.expect_nothing()

    def test_is_sent_when_nothing_is_selected(self):
        self.application.find("push button", "Send ")
        self.confirm()
        self.expect_nothing()


if __name__ == "__main__":
    main()
