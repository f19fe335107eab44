"""The agent's end of the pipes goes wrong: it dies in the middle of a text, closes early, or the pipes themselves are
deleted, replaced or closed to the program."""

import fcntl
import os
import signal
import subprocess
import sys
import termios
import time

from faultRights import WITHOUT_PRIVILEGE
from pipes import PipeReader
from screen import click, sensitive
from session import Home, SessionCase, main
from waiting import until

ENDS_WITHIN = 5  # two, and room for a machine that is busy with other tests
OPENED = "file opened properly "
RECEPTION_ENDED = "Closing thread"
STOP, START = "buttonClicked stop", "buttonClicked start"


class PipeCase(SessionCase):
    def begin(self, **options):
        self.session = self.start(**options).ready()
        self.status_pipe = self.session.home.pipes / "Status"
        self.agent_pipe = self.session.home.pipes / "myfifo"
        return self.session

    def write_and_die(self, text):
        """An agent that is killed while it has the pipe open."""
        file = self.session.home.path / "text"
        file.write_text(text)
        with open(self.status_pipe, "wb") as pipe:
            subprocess.run(["/bin/sh", "-c", f'cat "{file}"; kill -9 $$'], stdout=pipe, timeout=30, check=False)

    def click(self, name):
        """Pauses or resumes sharing; the agent's word is needed before the button takes a click."""
        self.session.send("sessionStatus " + ("Connected" if name.startswith("Pause") else "disconnected"))
        button = self.session.application.find("push button", name)
        until(lambda: sensitive(button), f"{name} can be clicked")
        click(button)

    def pause(self):
        self.click("Pause Screen Sharing")

    def resume(self):
        self.click("Resume Screen Sharing")

    def ends_with_the_agent(self):
        began = time.monotonic()
        self.session.home.agent_ends(0)
        self.assertEqual(self.session.wait(), 0)
        self.assertLess(time.monotonic() - began, ENDS_WITHIN)
        self.assertEqual(self.session.log.messages()[-1], "freed meamory")
        self.assertEqual(self.session.warnings(), [])


    def last_words(self, text, act):
        """The agent has the pipe open while something happens to its name, and then writes."""
        opened = self.session.log.count(OPENED)
        descriptor = os.open(self.status_pipe, os.O_WRONLY)
        try:
            os.write(descriptor, b" ")  # read, and with it the program's end of the pipe stays the one it is
            self.session.log.expect(OPENED, opened + 1)
            act()
            os.write(descriptor, text.encode())
        finally:
            os.close(descriptor)


class AnAgentThatDiesWhileItWrites(PipeCase):
    def test_half_a_word_is_no_word_and_never_joined_with_the_next_text(self):
        session = self.begin()
        self.write_and_die("sessionStatus whole-line\nex")
        session.log.expect("Unhandled message  whole-line")
        session.send("it")  # together they would end the session
        session.settled()
        session.send("sessionStatus another-line")
        session.log.expect("Unhandled message  another-line")
        self.assertEqual(session.log.count("closing agent"), 0)
        self.pause()
        session.agent.expect(STOP)
        self.ends_with_the_agent()

    def test_what_it_got_rid_of_before_a_stuck_write_counts(self):
        session = self.begin()
        os.kill(session.pid, signal.SIGSTOP)  # the pipe fills
        flood = "sessionStatus one-of-many\n" * 20_000
        file = session.home.path / "flood"
        file.write_text(flood)
        writer = subprocess.Popen(["dd", f"if={file}", f"of={self.status_pipe}", "bs=1M"], stderr=subprocess.DEVNULL)
        self.addCleanup(writer.wait)
        self.addCleanup(writer.kill)
        until(lambda: self.is_stuck(writer.pid), "the agent is stuck in its write")
        writer.kill()
        writer.wait()
        os.kill(session.pid, signal.SIGCONT)
        # What the pipe holds is what the agent got rid of.
        until(lambda: session.log.count("Unhandled message  one-of-many") >= 65536 // 26, session.log.tail)
        session.settled()
        self.assertLess(session.log.count("Unhandled message  one-of-many"), 20_000)
        self.ends_with_the_agent()

    @staticmethod
    def is_stuck(process):
        with open(f"/proc/{process}/wchan", encoding="ascii") as file:
            return "pipe" in file.read()


class AnAgentThatClosesEarly(PipeCase):
    """It opens the pipe for reading and goes away before it has read what the program writes."""

    LONG = "word" * 100_000  # more than a pipe holds

    def begin_with_full_pipe(self, **options):
        """The program is in the middle of a long line that nobody reads on."""
        session = self.begin(agent=False, pings=False, **options)
        self.reader = os.open(self.agent_pipe, os.O_RDONLY | os.O_NONBLOCK)
        session.send(f"dialogPrompt configureURS {self.LONG}")
        click(session.application.find("push button", "Yes"))
        until(self.room_is_gone, "the pipe is full")
        return session

    def room_is_gone(self):
        waiting = fcntl.ioctl(self.reader, termios.FIONREAD, bytes(4))
        return int.from_bytes(waiting, sys.byteorder) > 60_000

    def test_costs_one_line_and_a_logged_message(self):
        session = self.begin_with_full_pipe()
        os.close(self.reader)
        session.log.expect(f"Error opening file {self.agent_pipe}: Broken pipe")
        agent = PipeReader(self.agent_pipe)
        self.addCleanup(agent.stop)
        self.pause()
        agent.expect(STOP)
        self.ends_with_the_agent()

    def test_and_dies_while_the_program_is_stuck_in_a_write(self):
        self.begin_with_full_pipe()
        self.addCleanup(os.close, self.reader)
        self.ends_with_the_agent()

    def test_and_dies_while_the_program_waits_for_it_to_read(self):
        session = self.begin(agent=False)
        self.pause()
        until(lambda: session.log.messages()[-1] == " Stop button has been pressed ", session.log.tail)
        self.ends_with_the_agent()

    def test_again_and_again_never_ends_the_session(self):
        session = self.begin(agent=False)
        for turn in range(6):
            reader = os.open(self.agent_pipe, os.O_RDONLY | os.O_NONBLOCK)
            (self.resume if turn % 2 else self.pause)()
            session.log.expect(" Start Button has been pressed" if turn % 2 else " Stop button has been pressed ",
                               turn // 2 + 1)
            os.close(reader)
        session.settled()
        self.ends_with_the_agent()


class APipeThatChanges(PipeCase):
    def replace_by_file(self, path, text=""):
        """At once, so that the program never finds nothing."""
        file = path.with_name("other")
        file.write_text(text)
        file.rename(path)

    def test_from_the_agent_is_deleted_what_comes_through_still_counts(self):
        session = self.begin()
        self.last_words("sessionStatus TECH-NAME Ann%20Lee\n", self.status_pipe.unlink)
        session.log.expect("received techincian name Ann Lee ")
        session.log.expect("error reading pipe No such file or directory")
        session.log.expect(RECEPTION_ENDED)
        self.assertTrue(session.alive())
        self.ends_with_the_agent()

    def test_from_the_agent_is_replaced_by_a_file_it_is_read_once(self):
        session = self.begin()
        self.last_words("sessionStatus first-of-all\n",
                        lambda: self.replace_by_file(self.status_pipe, "sessionStatus in-the-file\n"))
        session.log.expect("Unhandled message  first-of-all")
        session.log.expect("Unhandled message  in-the-file")
        session.log.expect(RECEPTION_ENDED)
        self.assertEqual(session.log.count("error reading pipe Illegal seek"), 1)
        self.assertEqual(session.log.count("Unhandled message  in-the-file"), 1)
        self.ends_with_the_agent()

    def test_to_the_agent_is_deleted_the_line_is_lost_and_logged_and_a_new_pipe_serves_again(self):
        session = self.begin()
        session.agent.stop()
        self.agent_pipe.unlink()
        self.pause()
        session.log.expect("error opening file No such file or directory")
        os.mkfifo(self.agent_pipe)
        agent = PipeReader(self.agent_pipe)
        self.addCleanup(agent.stop)
        self.resume()
        agent.expect(START)
        self.ends_with_the_agent()

    def test_to_the_agent_is_replaced_by_a_file_the_session_goes_on(self):
        session = self.begin()
        session.agent.stop()
        self.replace_by_file(self.agent_pipe, "older and longer than the line\n")
        self.pause()
        until(lambda: self.agent_pipe.read_text() == STOP + "\n", self.agent_pipe.read_text)
        self.resume()
        until(lambda: self.agent_pipe.read_text() == START + "\n", self.agent_pipe.read_text)
        self.ends_with_the_agent()

    def test_to_the_agent_becomes_a_folder_the_session_goes_on(self):
        session = self.begin()
        session.agent.stop()
        self.agent_pipe.unlink()
        self.agent_pipe.mkdir()
        self.pause()
        session.log.expect("error opening file Is a directory")
        session.settled()
        self.ends_with_the_agent()


class APipeWithoutRights(PipeCase):
    def begin(self, **options):
        return super().begin(wrapper=WITHOUT_PRIVILEGE, **options)

    def test_to_the_agent_costs_a_logged_line_each_time_until_there_are_rights(self):
        session = self.begin()
        self.agent_pipe.chmod(0)
        self.pause()
        session.log.expect("error opening file Permission denied")
        self.agent_pipe.chmod(0o600)
        self.resume()
        session.agent.expect(START)
        self.ends_with_the_agent()

    def test_from_the_agent_ends_reception_and_nothing_else(self):
        session = self.begin()
        # What is open stays open.
        self.last_words("sessionStatus TECH-NAME Ann%20Lee\n", lambda: self.status_pipe.chmod(0))
        session.log.expect("received techincian name Ann Lee ")
        session.log.expect("error reading pipe Permission denied")
        session.log.expect(RECEPTION_ENDED)
        self.assertTrue(session.alive())
        self.ends_with_the_agent()

    def test_of_an_earlier_agent_are_used_by_a_started_session_as_they_are(self):
        home = Home()
        for name in ("myfifo", "Status"):
            os.mkfifo(home.pipes / name)
            (home.pipes / name).chmod(0)
        # Slow enough to be looked at before it misses the pings.
        self.session = session = self.start(home=home, kind="ras", speed=2, wrapper=WITHOUT_PRIVILEGE, pings=False,
                                            agent=False)
        session.log.expect("error opening file Permission denied")  # the request for the session's details
        session.log.expect("error reading pipe Permission denied")
        session.application.find("push button", "Chat")
        session.log.expect("UI thread is not alive, exiting")  # no ping can come
        self.assertEqual(session.wait(), 0)
        self.assertEqual(session.log.messages()[-1], "freed meamory")


if __name__ == "__main__":
    main()
