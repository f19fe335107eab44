"""Questions that go by themselves: how long they stay, and what an answer just before and just after comes to."""

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from promptCase import PromptCase  # noqa: E402
from screen import click, place_of, xdotool  # noqa: E402
from session import FAST, Home, faster_clock, main  # noqa: E402
from waiting import until  # noqa: E402

RESPONSE = "dialogResponse "
REBOOT, CALL = "dialogPrompt rebootPc", "dialogPrompt vcall"


class SlowClock:
    """A clock that nearly stands once the program is up, and leaps when a test says so; timers go by it."""

    def __init__(self, home):
        self._file = home.path / "clock"
        self._ahead = 0
        self.environment = {**faster_clock(FAST), "FAKETIME_TIMESTAMP_FILE": str(self._file), "FAKETIME_NO_CACHE": "1"}
        del self.environment["FAKETIME"]
        self._write(FAST)

    def slow_down(self):
        """Time never goes back: what a test machine needs for the start is far less than the leap."""
        self.leap(10_000)

    def leap(self, seconds):
        self._ahead += seconds
        self._write(0.1)

    def _write(self, speed):
        following = self._file.with_suffix(".new")
        following.write_text(f"+{self._ahead} x{speed}\n")
        following.rename(self._file)  # whoever looks sees the old time or the new one


class TimedQuestion(PromptCase):
    def setUp(self):
        super().setUp()
        home = Home()
        self.clock = SlowClock(home)
        self.begin(kind="normal", home=home, speed=1, environment=self.clock.environment)
        self.clock.slow_down()
        self.window = self.application.find("frame", "Brindle")
        self.mark()

    def leap(self, seconds):
        self.clock.leap(seconds)
        self.wake()

    def wake(self):
        """Has the program's main loop look at its clock: the answer takes a turn of it."""
        self.window.get_extents(Atspi.CoordType.SCREEN)

    def ask_again(self, line):
        self.mark()
        return self.ask(line)

    def still_there(self, dialog):
        """The program has looked at its clock since the leap and kept the dialog."""
        self.session.settled()
        for _ in range(3):
            self.wake()
        self.assertIn(dialog.window.id, self.windows.managed())

    def goes_unanswered(self, dialog, after):
        self.leap(after)
        self.gone(dialog)
        self.hears()
        self.assertEqual(self.session.warnings(), [])


class AQuestionWithATime(TimedQuestion):
    # What asks, how long it stays, and the two answers.
    TIMES = ((REBOOT, 10, {"Yes": "rebootInitiated", "No": "rebootCanceled"}),
             (CALL, 180, {"Accept": "AVAccept", "Reject": "AVReject"}))

    def test_goes_unanswered_when_its_time_is_up(self):
        for line, stays_s, _ in self.TIMES:
            with self.subTest(line):
                dialog = self.ask_again(line)
                self.leap(stays_s - 3)
                self.still_there(dialog)
                self.goes_unanswered(dialog, 3)

    def test_takes_an_answer_just_before(self):
        for line, stays_s, answers in self.TIMES:
            for button, word in answers.items():
                with self.subTest(f"{line} {button}"):
                    dialog = self.ask_again(line)
                    self.leap(stays_s - 3)
                    click(dialog.button(button))
                    self.gone(dialog)
                    self.leap(4)
                    self.hears(RESPONSE + word)

    def test_takes_none_just_after(self):
        for line, stays_s, answers in self.TIMES:
            with self.subTest(line):
                dialog = self.ask_again(line)
                x, y = place_of(dialog.button(next(iter(answers))))
                self.goes_unanswered(dialog, stays_s)
                xdotool("mousemove", x, y, "click", 1, "key", "Return")
                self.hears()

    def test_takes_one_answer_or_none_at_that_moment(self):
        for line, stays_s, answers in self.TIMES:
            for button, word in answers.items():
                with self.subTest(f"{line} {button}"):
                    dialog = self.ask_again(line)
                    x, y = place_of(dialog.button(button))
                    self.leap(stays_s - 3)
                    xdotool("mousemove", x, y, "mousedown", 1)
                    self.leap(3)
                    xdotool("mouseup", 1)
                    self.gone(dialog)
                    last = self.ask("dialogPrompt configureURS last")
                    self.windows.close(last.window)
                    end = [RESPONSE + "ursConfigureRejected last"]
                    until(lambda: self.heard()[-1:] == end, self.heard)
                    self.assertIn(self.heard(), (end, [RESPONSE + word, *end]))
        self.assertEqual(self.session.warnings(), [])

    def test_has_all_its_time_when_another_was_answered_just_before(self):
        for line, stays_s, answers in self.TIMES:
            with self.subTest(line):
                first = self.ask_again(line)
                self.leap(stays_s - 2)
                button, word = next(iter(answers.items()))
                click(first.button(button))
                self.gone(first)
                self.hears(RESPONSE + word)
                second = self.ask_again(line)
                self.leap(stays_s - 2)
                self.still_there(second)
                self.goes_unanswered(second, 2)


class ASecondPromptMeanwhile(TimedQuestion):
    def test_of_a_reboot_is_dropped_and_buys_no_time(self):
        dialog = self.ask_again(REBOOT)
        self.leap(6)
        self.asks_nothing(REBOOT)
        self.session.log.expect("dialog box already running")
        self.still_there(dialog)
        self.goes_unanswered(dialog, 4)

    def test_of_a_call_takes_the_place_and_has_all_its_time(self):
        first = self.ask_again(CALL)
        self.leap(100)
        second = self.ask_again("dialogPrompt acall")
        self.gone(first)
        self.hears()
        self.leap(178)
        self.still_there(second)
        self.goes_unanswered(second, 2)

    def test_of_another_kind_goes_its_own_way(self):
        call = self.ask_again(CALL)
        reboot = self.ask_again(REBOOT)
        script = self.ask_again("dialogPrompt launchScript a.sh")
        self.goes_unanswered(reboot, 10)
        self.goes_unanswered(call, 170)
        self.still_there(script)
        click(script.button("Deny"))
        self.hears(RESPONSE + "delete_dialog scriptLauncherDialog ")


if __name__ == "__main__":
    main()
