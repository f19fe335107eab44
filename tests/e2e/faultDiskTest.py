"""Disks that are full or can't be written: log and desktop entry. What can't be kept is lost and nothing else is; the
chat transcript on a full disk is told where transcripts are."""

import os
import pathlib

from faultRights import WITHOUT_PRIVILEGE
from logFile import LogFile
from session import PROGRAM, SANDBOX, Home, SessionCase, main
from waiting import until


class DiskCase(SessionCase):
    def start_on(self, home, place, size, **options):
        """The folder is a disk of its own, seen by the program alone; this looks at it through the program's eyes."""
        self.session = self.start(home=home, wrapper=[SANDBOX, f"mount -t tmpfs -o size={size} none {place}"],
                                  **options)
        descriptor = until(lambda: self.open_inside(place), "the program has its disk")
        self.addCleanup(os.close, descriptor)
        return pathlib.Path(f"/proc/self/fd/{descriptor}")

    def open_inside(self, place):
        """A handle of the folder on the program's disk, which stays when the program has ended."""
        try:
            process = f"/proc/{self.session.pid}"
            if not os.path.samefile(f"{process}/exe", f"{process}/root{PROGRAM}"):
                return None
            return os.open(f"{process}/root{place}", os.O_RDONLY | os.O_DIRECTORY)
        except OSError:
            return None

    def answers(self):
        """Seen in the window alone, whatever the log can take."""
        session = self.session
        application = session.application
        session.send("sessionStatus TECH-NAME Ann%20Lee")
        application.has_label("Ann Lee")
        session.send("sessionStatus Connected")
        application.find("push button", "Pause Screen Sharing")

    def ends(self):
        self.session.home.agent_ends(0)
        self.assertEqual(self.session.wait(), 0)
        self.assertEqual(self.session.warnings(), [])


class AFullDiskForTheLog(DiskCase):
    def test_costs_lines_and_nothing_else_and_goes_on_when_there_is_room(self):
        home = Home()
        folder = self.start_on(home, home.product / "Logs", "64k")
        log = LogFile(folder / "ui.log")
        log.expect("normal session")
        (folder / "filler").write_bytes(b"")
        with open(folder / "filler", "ab", buffering=0) as filler:
            self.fill(filler)
        until(lambda: self.grows_no_more(log), "the disk is full")
        before = log.path.stat().st_size
        for number in range(500):
            self.session.send(f"sessionStatus lost-{number}")
        self.answers()
        self.assertLess(log.path.stat().st_size, before + 4096)
        (folder / "filler").unlink()
        self.session.send("sessionStatus found-again")
        log.expect("Unhandled message  found-again")
        self.ends()
        self.assertEqual(log.messages()[-1], "freed meamory")

    @staticmethod
    def fill(file):
        try:
            while True:
                file.write(b"x" * 4096)
        except OSError:
            pass

    def grows_no_more(self, log):
        """The last page of the log is full as well."""
        before = log.path.stat().st_size
        self.session.send("sessionStatus " + "x" * 4096)
        return log.path.stat().st_size == before and before % os.sysconf("SC_PAGESIZE") == 0

    def test_from_the_start_on_costs_the_log_and_nothing_else(self):
        home = Home()
        (home.product / "Logs/ui.log").symlink_to("/dev/full")
        self.session = self.start(home=home)
        self.answers()
        self.ends()

    def test_when_a_full_log_is_moved_away_keeps_what_was_logged_before(self):
        home = Home()
        home.log.path.write_bytes(b"x" * 2_000_000)
        logs = home.product / "Logs"
        copy = home.path / "copy"
        setup = f"cp {home.log.path} {copy}; mount -t tmpfs -o size=1960k none {logs}; cp {copy} {logs}/ui.log"
        self.session = self.start(home=home, wrapper=[SANDBOX, setup])
        folder = until(lambda: self.open_inside(logs), "the program has its disk")
        self.addCleanup(os.close, folder)
        self.answers()
        self.assertEqual(os.stat("ui.log_1970-1-1_1", dir_fd=folder).st_size, 2_000_000)
        self.ends()


class ALogFolderThatTakesNothing(DiskCase):
    def start_without_privilege(self, home, **options):
        self.session = self.start(home=home, wrapper=WITHOUT_PRIVILEGE, **options)

    def test_because_of_its_rights_costs_the_log(self):
        home = Home()
        logs = home.product / "Logs"
        logs.chmod(0o555)
        self.addCleanup(logs.chmod, 0o755)
        self.start_without_privilege(home)
        self.answers()
        self.ends()
        self.assertEqual(os.listdir(logs), [])

    def test_because_it_may_not_be_entered_costs_the_log(self):
        home = Home()
        logs = home.product / "Logs"
        logs.chmod(0)
        self.addCleanup(logs.chmod, 0o755)
        self.start_without_privilege(home)
        self.answers()
        self.ends()

    def test_because_the_log_belongs_to_somebody_else_keeps_it_as_it_is(self):
        home = Home()
        home.log.path.write_text("kept")
        home.log.path.chmod(0)
        self.start_without_privilege(home)
        self.answers()
        self.ends()
        home.log.path.chmod(0o600)
        self.assertEqual(home.log.text(), "kept")

    def test_because_its_disk_is_read_only_costs_the_log(self):
        home = Home()
        logs = home.product / "Logs"
        self.session = self.start(home=home, wrapper=[
            SANDBOX, f"mount -t tmpfs none {logs} && mount -o remount,ro {logs}"])
        self.answers()
        self.assertEqual(os.listdir(f"/proc/{self.session.pid}/root{logs}"), [])
        self.ends()

    def test_because_a_file_or_a_folder_is_in_its_place_costs_the_log(self):
        for what in ("a file for the folder", "a folder for the log"):
            with self.subTest(what):
                home = Home()
                if what.startswith("a file"):
                    (home.product / "Logs").rmdir()
                    (home.product / "Logs").write_text("kept")
                else:
                    home.log.path.mkdir()
                self.session = self.start(home=home)
                self.answers()
                self.ends()


class ADesktopEntry(DiskCase):
    def fails(self, home, wrapper=()):
        self.session = self.start(home=home, wrapper=wrapper).ready()
        self.assertEqual(self.session.log.count(f"Could not create desktop file: {home.entry}"), 1,
                         self.session.log.text())
        self.assertEqual(self.session.log.count(f"Created .desktop file at: {home.entry}"), 0)
        self.answers()
        self.ends()
        self.assertEqual(self.session.log.messages()[-1], "freed meamory")

    def test_on_a_full_disk_is_reported(self):
        home = Home()
        place = home.applications
        # The name finds room, what is to stand in the file does not.
        self.fails(home, [SANDBOX, f"mount -t tmpfs -o size=8k none {place}; touch {place}/Brindle.desktop; "
                                   f"cat /dev/zero >{place}/filler 2>/dev/null"])

    def test_on_a_read_only_disk_is_reported_twice(self):
        home = Home()
        self.fails(home, [SANDBOX, f"mount -t tmpfs none {home.applications} && mount -o remount,ro "
                                   f"{home.applications}"])
        self.assertEqual(self.session.log.count(f"Could not delete desktop file: {home.entry}"), 1)

    def test_without_its_folder_is_reported_twice(self):
        home = Home()
        home.applications.rmdir()
        self.fails(home)
        self.assertEqual(self.session.log.count(f"Could not delete desktop file: {home.entry}"), 1)
        self.assertFalse(home.applications.exists())


if __name__ == "__main__":
    main()
