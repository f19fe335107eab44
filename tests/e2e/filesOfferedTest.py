"""Files from the technician: what is offered, where they go, and the answer."""

import os
import pathlib
import subprocess

from keyboard import key
from offerCase import DIALOG, OPENED, REFUSED, OfferCase, SeatCase, accepted
from session import FAST, Home, faster_clock, main
from waiting import until

CHOOSER = "Open File"
NO_RIGHTS = "You don't have enough privilege to access the file"
CHOSEN = "monitorData fileTransferSend"


class ChooserCase(OfferCase):
    def change_path(self, bookmark):
        self.open_chooser()
        self.choose(bookmark)

    def open_chooser(self):
        self.press("Change Path")
        self.session.windows.find(CHOOSER)
        self.session.windows.wait_focus(CHOOSER)

    def choose(self, bookmark):
        """Chooses a folder that stands beside the list."""
        self.application.go_to_place(bookmark)
        self.press("Open")
        self.chooser_is_gone()

    def chooser_is_gone(self):
        until(lambda: not self.session.windows.titled(CHOOSER), "the chooser goes")

    def home_with_folders(self, **modes):
        """A home whose choosers list these folders."""
        home = Home()
        bookmarks = home.path / ".config/gtk-3.0/bookmarks"
        bookmarks.parent.mkdir(parents=True)
        bookmarks.write_text("".join(f"file://{home.path / name}\n" for name in modes))
        for name, mode in modes.items():
            (home.path / name).mkdir()
            (home.path / name).chmod(mode)
        return home


class AnOffer(OfferCase):
    def test_names_its_files(self):
        self.begin()
        offers = {
            "a%20b.txt c.txt": "File Name:  a b.txt, c.txt.",
            "100%25.txt": "File Name:  100%.txt.",
            "%E4%BA%88%E5%AE%9A.txt": "File Name:  予定.txt.",
            "Ü.txt": "File Name:  Ü.txt.",
            "<b>x</b>%26": "File Name:  <b>x</b>&.",
            "%zz.txt": "File Name:  %zz.txt.",
            "a%00.txt": "File Name:  a%00.txt.",
        }
        for fields, text in offers.items():
            with self.subTest(fields):
                self.offer(fields)
                self.application.has_label(text)
        self.session.send("dialogPrompt fileTransferReceive")
        self.application.has_label(".")
        self.assertEqual(len(self.application.shown_all("dialog")), 1)
        self.press("Cancel")
        self.expect(*[OPENED] * (len(offers) + 1), REFUSED)
        self.assertEqual(self.session.warnings(), [])

    def test_with_a_hostile_name_can_be_read_and_refused(self):
        self.begin()
        for number, fields in enumerate((b"\xff\xfe.txt", b"exe%E2%80%AEtxt.doc", b"%0A%0A%0A%0Dx", b"a" * 1_000_000,
                                         b" ".join(b"file%d" % n for n in range(20_000)))):
            with self.subTest(fields[:30]):
                self.before = len(self.session.agent.lines())
                self.offer(fields)
                self.session.log.expect("Download path is /tmp/", number + 1)
                self.application.find("dialog", DIALOG)
                label = next(text for text in self.application.labels() if text.startswith("File Name:  "))
                self.assertFalse(set(label) & set("\u202e\n\r"), label[:100])
                self.press("Cancel")
                self.dialog_is_gone()
                self.expect(OPENED, REFUSED)
        self.assertEqual(self.session.warnings(), [])

    def test_is_accepted_once(self):
        self.begin()
        self.offer("a.txt")
        self.application.has_label("/tmp/")
        self.press("Save")
        self.dialog_is_gone()
        self.session.settled()
        self.expect(OPENED, accepted("/tmp/"))

    def test_is_refused_by_escape_and_by_the_frame(self):
        self.begin()
        self.offer("a.txt")
        self.session.windows.wait_focus(DIALOG)
        key("Escape")
        self.dialog_is_gone()
        self.offer("b.txt")
        self.session.windows.close(self.session.windows.find(DIALOG))
        self.dialog_is_gone()
        self.session.settled()
        self.expect(OPENED, REFUSED, OPENED, REFUSED)

    def test_is_replaced_by_a_newer_one(self):
        self.begin()
        self.offer("a.txt")
        self.application.has_label("File Name:  a.txt.")
        self.offer("b.txt")
        self.application.has_label("File Name:  b.txt.")
        self.application.gone("label", "File Name:  a.txt.")
        self.press("Save")
        self.dialog_is_gone()
        self.session.settled()
        self.expect(OPENED, OPENED, accepted("/tmp/"))

    def test_may_come_twice_in_one_text(self):
        self.begin()
        self.session.send("dialogPrompt fileTransferReceive a.txt\ndialogPrompt fileTransferReceive b.txt")
        self.session.settled()
        until(lambda: len(self.application.shown_all("dialog")) == 1, lambda: self.application.describe())
        self.press("Cancel")
        self.dialog_is_gone()
        self.expect(OPENED, OPENED, REFUSED)
        self.assertEqual(self.session.warnings(), [])

    def test_stands_in_the_corner_of_the_screen(self):
        self.begin()
        self.offer("a.txt")
        window = self.session.windows.find(DIALOG)

        def corner():
            x, y = self.session.windows.position(window)
            width, height = self.session.windows.size(window)
            return x + width, y + height

        until(lambda: all(abs(a - b) <= 8 for a, b in zip(corner(), (1280, 800))), lambda: corner())


class TheFolder(ChooserCase):
    def test_is_the_one_that_the_customer_chooses(self):
        self.begin(home=self.home_with_folders(good=0o755))
        folder = self.session.home.path / "good"
        self.offer("a.txt")
        self.change_path("good")
        self.application.has_label(str(folder))
        self.press("Save")
        self.dialog_is_gone()
        self.expect(OPENED, CHOSEN, accepted(folder))

    def test_must_be_usable(self):
        """Root loses what lifts it above the rights of files."""
        ordinary = ["setpriv", "--bounding-set=-dac_override,-dac_read_search"] if os.geteuid() == 0 else []
        home = self.home_with_folders(closed=0o555, good=0o755)
        self.begin(home=home, wrapper=ordinary, speed=1)  # the notice stays three seconds
        self.offer("a.txt")
        self.change_path("closed")
        self.session.log.expect("You Dont Have access")
        self.application.has_label(NO_RIGHTS)
        self.application.has_label("/tmp/")
        self.application.gone("label", NO_RIGHTS)  # the buttons below it have moved back
        self.change_path("good")
        self.application.has_label(str(home.path / "good"))
        self.press("Save")
        self.expect(OPENED, CHOSEN, CHOSEN, accepted(home.path / "good"))
        self.assertEqual(self.session.warnings(), [])

    def test_stays_when_the_choice_is_cancelled(self):
        self.begin()
        self.offer("a.txt")
        self.open_chooser()
        key("Escape")
        self.chooser_is_gone()
        self.application.has_label("/tmp/")
        self.press("Save")
        self.expect(OPENED, CHOSEN, accepted("/tmp/"))

    def test_of_an_offer_that_was_replaced_meanwhile_is_dropped(self):
        """The newer offer comes above the chooser, and is answered first."""
        self.begin(home=self.home_with_folders(good=0o755))
        self.offer("a.txt")
        self.open_chooser()
        self.offer("b.txt")
        self.application.has_label("File Name:  b.txt.")
        self.press("Save")
        self.expect(OPENED, OPENED, accepted("/tmp/"))
        self.choose("good")
        self.expect(OPENED, OPENED, accepted("/tmp/"), CHOSEN)
        self.assertEqual(self.session.warnings(), [])


class TheDownloadsFolder(SeatCase):
    """Of the user at the seat."""

    def seen_by_program(self, path):
        return pathlib.Path(f"/proc/{self.session.pid}/root{path}")

    def test_is_made_for_its_user(self):
        self.begin_at_seat()
        self.offer("a.txt")
        self.application.has_label("/home/ann/Downloads")
        self.session.log.expect("Active user is ann")
        status = self.seen_by_program("/home/ann/Downloads").stat()
        self.assertEqual((status.st_uid, status.st_gid, oct(status.st_mode & 0o777)), (2000, 2000, oct(0o755)))
        self.press("Save")
        self.expect(OPENED, accepted("/home/ann/Downloads"))

    def test_is_nobodys_at_a_text_console(self):
        self.begin_at_seat("tty")
        self.offer("a.txt")
        self.application.has_label("/tmp/")
        self.session.log.expect("Active user is NULL")
        self.session.log.expect("Active session is not graphical (TTY). Exiting.")


class MissingLibraries(OfferCase):
    """Without the bus functions nobody can be asked: the program ends and says so."""

    SHIM = r"""
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdlib.h>
#include <string.h>
static int is(const char *name, const char *variable)
{
    const char *missing = getenv(variable);
    return name && missing && strcmp(name, missing) == 0;
}
void *dlsym(void *library, const char *name)
{
    static void *(*real)(void *, const char *);
    if (!real)
        real = (void *(*)(void *, const char *))dlvsym(RTLD_NEXT, "dlsym", "GLIBC_2.34");
    return real(library, is(name, "MISSING_FUNCTION") ? "this_function_is_missing" : name);
}
void *dlopen(const char *name, int flags)
{
    void *(*real)(const char *, int) = (void *(*)(const char *, int))dlsym(RTLD_NEXT, "dlopen");
    return real(is(name, "MISSING_LIBRARY") ? "/missing.so" : name, flags);
}
"""

    def begin_without(self, **missing):
        home = Home()
        source, library = home.path / "shim.c", home.path / "shim.so"
        source.write_text(self.SHIM)
        subprocess.run(["cc", "-shared", "-fPIC", "-o", library, source], check=True)
        preload = faster_clock(FAST)["LD_PRELOAD"] + f" {library}"
        self.begin(home=home, environment={**missing, "LD_PRELOAD": preload})

    def test_end_the_program(self):
        self.begin_without(MISSING_LIBRARY="libgio-2.0.so.0")
        self.offer("a.txt")
        self.assertEqual(self.session.wait(), 2)
        self.assertIn("dlopen libgio-2.0.so.0 failed: /missing.so", self.session.log.text())

    def test_or_their_functions_end_the_program(self):
        self.begin_without(MISSING_FUNCTION="g_dbus_connection_call_sync")
        self.offer("a.txt")
        self.assertEqual(self.session.wait(), 2)
        self.assertIn("dlsym failed for g_dbus_connection_call_sync: ", self.session.log.text())


if __name__ == "__main__":
    main()
