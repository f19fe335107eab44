"""An agent-started session lives as long as its agent pings."""

import threading
import time

from session import FAST, SessionCase, main
from waiting import stays, until

CHECK = "Checking ss is alive"


class TheProgram(SessionCase):
    def first_look(self, session):
        """A moment just before the program's first look: when its line was last missing in the log."""
        moments = [time.monotonic()]

        def has_looked():
            moments.append(time.monotonic())
            return session.log.count(CHECK)

        until(has_looked, session.log.tail)
        return moments[-2]

    def ends_after(self, session, began):
        """Seconds of the program's own clock from this moment to its end."""
        self.assertEqual(session.wait(), 0)
        return (time.monotonic() - began) * FAST

    def expect_ended_for_silence(self, session, seconds):
        # The lower bound is the design's; above there is room for a busy machine.
        self.assertTrue(14 < seconds < 45, f"ended after {seconds:.1f} s")
        missing = session.log.has_in_order("UI thread is not alive, exiting",
                                           f"Deleted .desktop file at: {session.home.entry}", "freed meamory")
        self.assertIsNone(missing, session.log.text())

    def test_lives_while_it_is_pinged(self):
        session = self.start(kind="ras").ready()
        session.log.expect(CHECK, times=4)
        self.assertTrue(session.alive())
        self.assertEqual(session.log.count("UI thread is not alive, exiting"), 0)
        self.assertEqual(session.quit(), 0)

    def test_waits_for_a_late_reader_whatever_was_pinged_before(self):
        session = self.start(kind="ras", agent=False, pings=False)
        session.log.expect("registerd for parent kill signal")
        session.send("PING UI")
        stays(session.alive, "the session waits", seconds=70 / FAST)
        began = time.monotonic()
        with open(session.home.pipes / "myfifo") as pipe:
            self.assertEqual(pipe.readline(), "SendSessionDetails\n")
        self.expect_ended_for_silence(session, self.ends_after(session, began))

    def test_ends_without_a_ping(self):
        session = self.start(kind="ras", pings=False)
        self.expect_ended_for_silence(session, self.ends_after(session, self.first_look(session)))

    def test_ends_when_only_words_like_a_ping_come(self):
        session = self.start(kind="ras", pings=False)
        began = self.first_look(session)
        ended = threading.Event()

        def whisper():
            while not ended.wait(0.2):
                try:
                    session.send("ping ui", seconds=1)
                except OSError:
                    return

        thread = threading.Thread(target=whisper)
        thread.start()
        seconds = self.ends_after(session, began)
        ended.set()
        thread.join()
        self.expect_ended_for_silence(session, seconds)

    def test_ends_when_the_pings_stop(self):
        session = self.start(kind="ras", pings=False)
        began = self.first_look(session)
        stays(session.alive, "the session lives on", seconds=0.2)  # the look comes behind its line
        session.send("PING UI")
        seconds = self.ends_after(session, began)
        self.assertTrue(28 < seconds < 60, f"ended after {seconds:.1f} s")

    def test_never_asks_for_pings_in_a_normal_session(self):
        session = self.start().ready()
        stays(session.alive, "the session is there", seconds=2)
        self.assertEqual(session.log.count(CHECK), 0)


if __name__ == "__main__":
    main()
