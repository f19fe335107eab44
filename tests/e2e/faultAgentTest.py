"""The agent dies while the program is busy with something: a question is open, files are chosen, a line is being written,
start-up is not over. The session ends in order each time."""

import os
import time

from screen import Application, click
from session import Home, SessionCase, adopt_orphans, main
from transcriptTest import StoppedClock
from waiting import stays, until

WITHIN = 5  # two, and room for a machine that is busy with other tests
FIVE_MINUTES_IN_TWENTY_SECONDS = 15  # how much faster the program's clock runs
SILENT = "UI thread is not alive, exiting"
QUESTIONS = ("rebootPc", "configureURS x", "samecon", "fileTransferReceive a 1", "acall", "launchScript x", "lockuser",
             "command 42", "runAsService", "userConcent aGVsbG8= 1 feature", "initswap Ann")


def start_below_shell(case, kind="ras", first=":", before="wait", **options):
    """A shell stands for the agent that starts the program; gives the session of the shell and the program.

    first: what the program's process does before it becomes the program
    before: what the shell does before it ends
    """
    home = options.pop("home", None) or Home()
    wrapper = ["/bin/sh", "-c", f'{{ {first}; exec "$0" "$@"; }} & echo $! >"{home.path}/pid"; {before}']
    session = case.start(home=home, kind=kind, wrapper=wrapper, **options)
    program = until(lambda: (home.path / "pid").exists() and (home.path / "pid").read_text().strip(),
                    "the shell starts the program")
    return session, int(program)


class DyingCase(SessionCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        adopt_orphans()

    def ended_in_order(self, session):
        self.assertEqual(session.log.messages()[-1], "freed meamory", session.log.tail())
        self.assertFalse(session.home.entry.exists())
        self.assertEqual(session.warnings(), [])

    def was_told(self, session):
        """It ended because its parent did, not because no ping came."""
        self.assertEqual(session.log.count("Caught sigterm"), 1)
        self.assertEqual(session.log.count(SILENT), 0)

    def parent_dies(self, session):
        session.process.kill()
        session.process.wait()

    def wait_for_orphan(self, session, program, seconds=15):
        """Status of the program, whose parent has gone."""
        def ended():
            try:
                process, status = os.waitpid(program, os.WNOHANG)
            except ChildProcessError:  # still its parent's, or its parent is being buried
                return None
            return [os.waitstatus_to_exitcode(status)] if process else None
        return until(ended, lambda: "the program ends; log:\n" + session.log.tail(), seconds)[0]


class WhileAQuestionIsOpen(DyingCase):
    def ask(self, session):
        """Every question at once."""
        session.send("sessionStatus Connected")
        for question in QUESTIONS:
            session.send(f"dialogPrompt {question}")
        session.settled()
        until(lambda: len(session.application.shown_all("dialog")) >= 5, session.application.describe)

    def test_an_agent_that_ends_ends_the_session(self):
        session = self.start().ready()
        self.ask(session)
        began = time.monotonic()
        session.home.agent_ends(0)
        self.assertEqual(session.wait(), 0)
        self.assertLess(time.monotonic() - began, WITHIN)
        self.ended_in_order(session)

    def test_an_agent_that_is_killed_comes_back_and_the_question_is_still_there(self):
        session = self.start().ready()
        session.send("sessionStatus Connected")
        session.send("dialogPrompt configureURS x")
        button = session.application.find("push button", "Yes")
        session.home.agent_ends("kill")
        until(lambda: len(session.home.agent_starts()) == 2, "the agent starts again")
        click(button)
        until(lambda: "dialogResponse ursConfigureApproved x" in session.agent.lines(), session.agent.lines)
        session.home.agent_ends(0)
        self.assertEqual(session.wait(), 0)
        self.ended_in_order(session)

    def test_an_agent_that_cannot_be_kept_alive_ends_the_session(self):
        session = self.start().ready()
        self.ask(session)
        for turn in range(3):
            until(lambda: len(session.home.agent_starts()) == turn + 1, "the agent starts")
            session.home.agent_ends("kill")
        self.assertEqual(session.wait(), 0)
        self.ended_in_order(session)

    def test_a_parent_that_dies_ends_the_session(self):
        session, program = start_below_shell(self)
        session.ready()
        session.send("sessionStatus Connected")
        session.send("dialogPrompt configureURS x")
        session.log.expect("Prompting urs configure dialog box")
        self.parent_dies(session)
        self.assertEqual(self.wait_for_orphan(session, program), 0)
        self.was_told(session)
        self.ended_in_order(session)


class WhileFilesAreChosen(DyingCase):
    def choose_files(self, session, application):
        session.send("dialogPrompt fileTransfer 41")
        session.windows.find("Send File")
        application.find("file chooser", "Send File")

    def choose_folder(self, session, application):
        session.send("dialogPrompt fileTransferReceive a.txt")
        click(application.find("push button", "Change Path"))
        session.windows.find("Open File")
        application.find("file chooser", "Open File")

    def begin(self, session, choose, program):
        session.ready()
        session.send("sessionStatus participantsAdd Ann 41 true")
        choose(session, Application(program))

    def granted_nothing(self, session):
        self.assertEqual([line for line in session.agent.lines()
                          if any(word in line for word in ("Accept", "FileName", "zip_folder"))], [])

    def test_an_agent_that_ends_ends_the_session(self):
        for choose in (self.choose_files, self.choose_folder):
            with self.subTest(choose.__name__):
                session = self.start()
                self.begin(session, choose, session.pid)
                began = time.monotonic()
                session.home.agent_ends(0)
                self.assertEqual(session.wait(), 0)
                self.assertLess(time.monotonic() - began, WITHIN)
                self.granted_nothing(session)
                self.ended_in_order(session)

    def test_a_parent_that_dies_ends_the_session(self):
        for choose in (self.choose_files, self.choose_folder):
            with self.subTest(choose.__name__):
                session, program = start_below_shell(self)
                self.begin(session, choose, program)
                self.parent_dies(session)
                self.assertEqual(self.wait_for_orphan(session, program), 0)
                self.was_told(session)
                self.granted_nothing(session)
                self.ended_in_order(session)


class WhileItWrites(DyingCase):
    def test_a_parent_that_dies_before_it_read_a_line_ends_the_session(self):
        # The very first line waits for a reader that never comes.
        session, program = start_below_shell(self, agent=False, pings=False)
        session.log.expect("registerd for parent kill signal")
        self.parent_dies(session)
        self.assertEqual(self.wait_for_orphan(session, program), 0)
        self.was_told(session)
        self.ended_in_order(session)


class WhileItStarts(DyingCase):
    def test_a_parent_that_dies_ends_the_session(self):
        for moment in ("User Path Set", "loading resources", "GTK initilized", "Threads created"):
            with self.subTest(moment):
                session, program = start_below_shell(self, pings=False)
                session.log.expect(moment)
                self.parent_dies(session)
                self.assertEqual(self.wait_for_orphan(session, program), 0)
                self.was_told(session)
                self.ended_in_order(session)

    def test_a_parent_that_nobody_could_know_is_missed_by_its_pings(self):
        # It has gone before the program runs; another process is the parent from the first moment.
        alone = "while kill -0 $$ 2>/dev/null; do sleep 0.01; done"
        for reader in (True, False):
            with self.subTest(reader=reader):
                session, program = start_below_shell(self, first=alone, before="exit", agent=reader, pings=False,
                                                     speed=FIVE_MINUTES_IN_TWENTY_SECONDS)
                session.process.wait()
                self.assertEqual(self.wait_for_orphan(session, program, 60), 0)
                self.assertEqual(session.log.count(SILENT), 1)
                self.assertEqual(session.log.count("Caught sigterm"), 0)
                self.ended_in_order(session)


class AClockThatJumps(DyingCase):
    def follow(self, session, clock, moments):
        for moment, words in moments:
            clock.set(moment)
            session.send(f"sessionStatus {words}")
            session.log.expect(f"Unhandled message  {words}")
            day = moment.split()[0]
            stamp = "/".join(str(int(part)) for part in day.split("-"))
            self.assertIn(stamp, session.log.text(), f"the log tells the time of {words}")

    MOMENTS = (("2035-01-01 00:00:00", "years-ahead"), ("1999-12-31 23:59:59", "years-back"),
               ("2037-06-01 12:00:00", "and-ahead-again"))

    def begin(self, **options):
        home = Home()
        clock = StoppedClock(home)
        clock.set("2024-03-07 09:05:02")
        session = self.start(home=home, speed=1, environment=clock.environment, **options)
        return session, clock

    def test_in_a_session_changes_the_stamps_and_nothing_else(self):
        session, clock = self.begin(kind="ras")
        session.ready()
        self.follow(session, clock, self.MOMENTS)
        session.send("sessionStatus Connected")
        session.application.has_label("In Session")
        self.assertEqual(session.quit(), 0)
        self.assertEqual(session.log.count("UI thread is not alive, exiting"), 0)
        self.ended_in_order(session)

    def test_during_the_start_neither_shortens_nor_lengthens_it(self):
        session, clock = self.begin()
        session.log.expect("User Path Set")
        began = time.monotonic()
        for moment, _ in self.MOMENTS:
            clock.set(moment)
            stays(lambda: session.log.count("loading resources") == 0, "the delay goes on", seconds=0.3)
        session.log.expect("loading resources")
        self.assertTrue(2 < time.monotonic() - began < 8)
        session.ready()
        self.assertEqual(session.quit(), 0)
        self.ended_in_order(session)


if __name__ == "__main__":
    main()
