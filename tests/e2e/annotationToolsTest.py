"""Each tool of the annotation panel, by pointer: what the program is told, what is drawn, and programs that fail."""

import os
import signal

from annotationCase import END, HINT, MIDDLE, OVERLAY, PEN_COLOUR, START, TOOLS, AnnotationCase
from pipes import send_text
from rootLayoutTest import BARE, MACHINE, REACH, RootCase
from screen import click, colour_at, picture, sensitive, xdotool
from session import PICTURES, lives, main
from waiting import until

# Notes how it was called and every command, and reports back after each but the last.
RECORDER = """#!/bin/bash
unset LD_PRELOAD  # its commands need no other clock
printf '%s|' "$@" >{folder}/arguments
until [ "$command" = Exit ]; do
  command=$(cat "$8"; printf .)
  command=${{command%.}}
  printf '%s|' "$command" >>{folder}/commands
  [ "$command" = Exit ] || printf normal >"$6"
done
"""
NEVER_READS = b"#!/bin/bash\nexec -a /bin/Annotation sleep 10000\n"


class TheScreen(AnnotationCase):
    """What the tools leave on it, with the real overlay."""

    def setUp(self):
        super().setUp()
        self.begin()
        self.blank = {point: colour_at(*point) for point in (MIDDLE, (200, 600), (300, 600))}
        self.assertNotIn(PEN_COLOUR, self.blank.values())
        self.overlay_process = self.open()

    def is_blank(self, *points):
        for point in points:
            until(lambda: colour_at(*point) == self.blank.get(point, self.blank[MIDDLE]),
                  lambda: f"nothing at {point}; there is {colour_at(*point)}")

    def test_takes_each_shape(self):
        self.take("Rectangle")
        self.drag((100, 500), ((200, 600), (100, 550), (200, 550), (150, 500), (150, 600)))
        self.is_blank((150, 550))
        self.take("Ellipse")
        self.drag((300, 500), ((420, 580), (300, 540), (420, 540), (360, 500), (360, 580)))
        self.is_blank((360, 540), (303, 503), (417, 577))
        self.take("Line")
        self.drag((100, 650), ((150, 750), (125, 700)), ((200, 650), (150, 650)))
        self.is_blank((125, 700), (150, 750))
        self.take("Pen")
        self.drag((300, 650), ((350, 750), (325, 700)), ((400, 650), (325, 700), (375, 700)))
        self.is_blank((350, 650))
        picture(PICTURES / "annotationTools.png")
        self.leave()
        self.is_drawn((150, 500), (360, 500), (150, 650), (325, 700))
        self.assertEqual(self.session.warnings(), [])

    def test_is_cleaned_by_the_eraser_and_cleared(self):
        self.take("Pen")
        self.draw()
        self.take("Eraser")
        xdotool("mousemove", MIDDLE[0], MIDDLE[1] - 40, "mousedown", 1)
        xdotool("mousemove", MIDDLE[0], MIDDLE[1] + 40, "mouseup", 1)
        self.is_blank(MIDDLE)
        self.is_drawn((START[0] + 20, START[1]), (END[0] - 20, END[1]))
        self.take("Clear Screen")
        self.is_blank(MIDDLE, (START[0] + 20, START[1]), (END[0] - 20, END[1]))
        self.leave()

    def test_is_cleared_under_the_cursor_too(self):
        self.take("Pen")
        self.draw()
        self.leave()
        self.is_drawn(MIDDLE)
        click(self.tool("Clear Screen"))
        self.is_blank(MIDDLE)
        until(self.all_usable, "there is no tool to leave")
        self.application.gone("label", HINT)

    def test_keeps_what_is_drawn_while_the_panel_is_closed(self):
        self.take("Pen")
        self.draw()
        self.toggle()
        self.application.gone("push button", "Pen")
        self.is_drawn(MIDDLE)
        self.toggle()
        self.assertFalse(sensitive(self.tool("Pen")))
        self.session.log.expect("annotation window is aleardy running")
        self.assertEqual(self.programs(), [self.overlay_process])
        self.leave()
        self.assertEqual(self.closings(), 0)


class TheTools(AnnotationCase):
    def test_stay_grey_until_the_cursor_comes_back(self):
        self.begin()
        self.open()
        for count, name in enumerate(TOOLS, 1):
            self.take(name)
            self.assertEqual([sensitive(self.tool(other)) for other in TOOLS], [False] * count + [True] * (6 - count))
        self.leave()
        self.tool("Pen")  # the panel stays open
        self.assertEqual(self.session.warnings(), [])

    def test_send_one_bare_command_each_and_the_session_sends_the_last(self):
        self.begin(program=None, speed=1)  # the last command waits a second and a half for a reader
        home = self.session.home
        program = home.product / "bin/Annotation"
        program.write_text(RECORDER.format(folder=home.path))
        program.chmod(0o600)
        self.toggle()
        commands = ""
        for name, command in zip(TOOLS, "234867"):
            click(self.tool(name))
            commands += f"{command}|"
            self.recorded("commands", commands)
            until(self.all_usable, f"{name} can be chosen again")
        self.assertEqual(program.stat().st_mode & 0o7777, 0o700)
        self.assertEqual((home.path / "arguments").read_text(), "|".join((
            "-l", f"{home.product}/Logs", "-p", f"{home.pipes}/Status", "-o", str(self.pipes[1]), "-i",
            str(self.pipes[0]), "")))
        self.assertEqual(self.session.quit(), 0)
        self.recorded("commands", f"{commands}Exit|")

    def recorded(self, name, expected):
        file = self.session.home.path / name
        until(lambda: file.exists() and file.read_text() == expected,
              lambda: f"{expected}; there is {file.exists() and file.read_text()!r}")


class AProgram(AnnotationCase):
    def begin_with(self, text):
        """A session whose annotation program has these bytes; None: there is none."""
        self.begin(program=None)
        self.program = self.session.home.product / "bin/Annotation"
        if text is not None:
            self.program.write_bytes(text)

    def is_tried(self):
        """The panel opens and shuts again, with a word to the agent."""
        closings = self.closings() + 1
        self.toggle()
        self.session.log.expect("started Annotation window", closings)
        self.session.log.expect("Expaning annotation", closings)
        self.ended(closings)

    def works_at_last(self):
        """The next click starts one that draws."""
        closings = self.closings()
        self.program.write_bytes(OVERLAY.read_bytes())
        self.open()
        self.take("Pen")
        self.draw()
        self.assertEqual(self.closings(), closings)
        self.assertEqual(self.session.warnings(), [])

    def test_that_is_missing_is_tried_again(self):
        self.begin_with(None)
        self.is_tried()
        self.is_tried()
        self.works_at_last()

    def test_that_cannot_run_is_tried_again(self):
        self.begin_with(None)
        for text in (b"", b"\x7fELF\x02\x01\x01 and nothing more", b"#!/no/such/shell\n", b"#!/bin/sh\nexit 3\n"):
            with self.subTest(text):
                self.program.write_bytes(text)
                self.is_tried()
        self.works_at_last()

    def test_that_never_reads_is_waited_for_until_it_dies(self):
        self.begin_with(NEVER_READS)
        process = self.blocked()
        os.kill(process, signal.SIGKILL)
        self.session.log.expect("error writing to pipe")
        self.ended(1)
        self.assertEqual(self.session.warnings(), [])

    def test_that_never_reads_does_not_hold_up_the_end(self):
        self.begin_with(NEVER_READS)
        process = self.blocked()
        self.assertEqual(self.session.quit(), 0)
        self.session.log.expect("closing annotation since it is open")
        self.assertTrue(lives(process))

    def blocked(self):
        """The window waits for a program that does not read its command."""
        self.toggle()
        process = until(lambda: next(iter(self.programs()), None), "the program runs")
        self.addCleanup(kill, process)
        click(self.tool("Pen"))
        self.session.log.expect("annotationBrush")
        return process

    def test_may_report_nonsense(self):
        self.begin()
        self.open()
        self.take("Pen")
        for word in (b"", b"\xff\xfe", b"%s%n%99999d", b"<b>", b"abnormal", b"NORMAL", b" normal"):
            before = self.unhandled()
            send_text(self.pipes[1], word)
            until(lambda: self.unhandled() == before + 1, lambda: f"{word} in the log:\n{self.session.log.tail()}")
        self.session.log.expect("unhandled Message %s%n%99999d ")
        self.assertFalse(sensitive(self.tool("Pen")))
        send_text(self.pipes[1], b"normality")
        until(self.all_usable, "the tools can be chosen")
        self.application.gone("label", HINT)
        self.assertEqual(self.closings(), 0)
        self.assertEqual(self.session.warnings(), [])

    def unhandled(self):
        return len([1 for message in self.session.log.messages() if message.startswith("unhandled Message ")])


class EachInstallation(AnnotationCase, RootCase):
    def draws(self, kind, logs, product, resources=None):
        """The overlay of this installation is started with its places, draws, and ends with the session."""
        folder = f"{product}/bin" if product != BARE else f"{BARE}/Brindle/bin"
        copy = f"mkdir -p {folder}; cp {OVERLAY} {folder}/Annotation"
        session = self.start_root(kind, logs, f"{product}/temp", resources or f"{product}/Resource", setup=copy)
        self.use(session)
        overlay = self.open()
        self.take("Pen")
        self.draw()
        self.assertTrue(all(pipe.is_fifo() for pipe in self.pipes))
        words = self.session.children()[overlay]
        self.assertEqual(session.quit(), 0)
        self.gone(overlay)
        log_folder = logs if kind != "UrsUserSession" else os.path.dirname(os.path.dirname(logs))
        self.assertEqual(words, [f"{folder}/Annotation", "-l", log_folder, "-p", f"{product}/temp/Status", "-o",
                                 f"{product}/temp/AnnotationOut", "-i", f"{product}/temp/AnnotationIn"])

    def test_of_a_service_for_one_user(self):
        self.draws("UrsUserSession", f"/var/log/Brindle/{os.getuid()}/Logs", MACHINE)

    def test_of_the_reach_product(self):
        self.draws("oreach", "/var/log/OstrelReach", REACH)

    def test_of_any_other_kind(self):
        self.draws("somethingelse", "/var/log/Brindle", MACHINE)

    def test_of_remote_access_without_a_home(self):
        self.draws("ras", f"{BARE}/Brindle/Logs", BARE, resources="/.brindle/Brindle/Resource")


def kill(process):
    try:
        os.kill(process, signal.SIGKILL)
    except ProcessLookupError:
        pass


if __name__ == "__main__":
    main()
