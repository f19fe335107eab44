"""A screen of 1024 x 768: the window with all it can show and every question, in short and long words and in both directions,
is on it or can be scrolled, and every button can be reached."""

import base64
import json
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from promptCase import encoded  # noqa: E402
from screen import children, everything, press, shown, the_display  # noqa: E402
from session import RESOURCES, SANDBOX, Home, SessionCase, main  # noqa: E402
from waiting import until  # noqa: E402

LANGUAGES = {"en": "en_GB.UTF-8", "de": "de_DE.UTF-8", "he": "he_IL.UTF-8"}
SENTENCE = "The technician would like to see what this computer is made of, how it is set up and what it does. "
NAME = "Maximiliana-Alexandrina von der Hohenwaldau"
FILE = "a%20picture%20of%20the%20message%20that%20the%20calendar%20shows%20in%20the%20morning.pdf"
QUESTIONS = (
    f"dialogPrompt samecon {encoded(SENTENCE * 30)}",
    f"dialogPrompt userConcent {encoded(SENTENCE * 30)} client7 camera",
    "dialogPrompt command 41",
    "dialogPrompt runAsService",
    f"dialogPrompt launchScript {'x' * 200}.sh",
    "dialogPrompt configureURS 41",
    "dialogPrompt rebootPc",
    "dialogPrompt lockuser",
    "dialogPrompt vcall",
    "dialogPrompt initswap Ann",
    "dialogPrompt fileTransferReceive " + " ".join([FILE] * 40),
    "dialogPrompt fileTransfer 41",
    "clipboard",
)
CONTROLS = {"push button", "check box", "text", "toggle button"}


class Texts(dict):
    """The texts of a language; English ones are their own."""

    def __init__(self, language):
        super().__init__()
        if language != "en":
            packed = (RESOURCES / "locale" / language / "resource.json").read_bytes()
            self.update((entry["Key"], entry["Value"]) for entry in json.loads(base64.b64decode(packed)))

    def __missing__(self, text):
        return text


class SmallScreen(SessionCase):
    scale = 1

    def begin(self, language):
        setup = f"mkdir -p /etc/default; echo LANG={LANGUAGES[language]} >/etc/default/locale"
        home = Home()
        home.install_annotation()
        # At its own speed: the question whether to reboot goes by itself.
        self.session = self.start(home=home, kind="ras", speed=1, wrapper=[SANDBOX, setup], environment={
            "LC_ALL": "C.UTF-8", "LANGUAGE": language, "GDK_SCALE": str(self.scale)}).ready()
        self.application = self.session.application
        self.texts = Texts(language)
        self.session.send(f"sessionStatus TECH-NAME {NAME.replace(' ', '%20')}")
        self.application.has_label(NAME)

    def screen_size(self):
        screen = the_display().screen()
        return screen.width_in_pixels // self.scale, screen.height_in_pixels // self.scale

    def is_inside(self, accessible):
        extents = accessible.get_extents(Atspi.CoordType.SCREEN)
        width, height = self.screen_size()
        rounding = self.scale - 1  # a frame has an odd number of pixels
        return extents.x >= 0 and extents.y >= 0 and extents.x + extents.width <= width + rounding and \
            extents.y + extents.height <= height + rounding

    def press(self, name):
        def place():
            extents = button.get_extents(Atspi.CoordType.SCREEN)
            return extents.x, extents.y, extents.width, extents.height
        button = self.application.find("push button", self.texts[name])

        def steady():
            before = place()
            time.sleep(0.1)  # in which a layout that is due is done
            return before if place() == before else None
        seen = until(steady, f"{name} has its place")
        press(*(self.scale * (seen[side] + seen[side + 2] // 2) for side in (0, 1)))

    def outside(self, window):
        """The controls of a window that are not on the screen and can't be scrolled there."""
        return [each.get_name() for each in everything(window) if shown(each) and each.get_role_name() in CONTROLS
                and not self.is_inside(each) and not self.scrolls(each)]

    def scrolls(self, accessible):
        """Stands in a part that scrolls and is on the screen itself."""
        while accessible and accessible.get_role_name() != "application":
            accessible = accessible.get_parent()
            if accessible and accessible.get_role_name() == "scroll pane":
                return self.is_inside(accessible)
        return False

    def fits(self, window):
        """Window and controls come to lie on the screen; the window manager and the toolkit take their time."""
        until(lambda: self.is_inside(window) and not self.outside(window), lambda: self.misses(window))

    def can_be_used(self, window):
        until(lambda: not self.outside(window), lambda: self.misses(window))

    def misses(self, window):
        extents = window.get_extents(Atspi.CoordType.SCREEN)
        return f"{self.outside(window)} on the screen; {window.get_name()!r} is {extents.width} x {extents.height}"


    def add_participants(self, count):
        for number in range(count):
            self.session.send(f"sessionStatus participantsAdd {NAME.replace(' ', '%20')}%20{number} 4{number} true")
            self.session.log.expect("participants present", number + 1)

    def open_one_by_one(self):
        """Each panel comes into view as it opens; toolbar and status row stay."""
        frame = self.application.find("frame")
        for panel, content in (("Participant", ("label", self.texts["Participants"])),
                               ("File Transfer", ("label", self.texts["File Transfer"])),
                               ("Annotation", ("push button", self.texts["Clear Screen"]))):
            self.press(panel)
            self.application.find(*content)
            self.fits(frame)
        self.chat()
        self.fits(frame)
        for control in ("Participant", "Pause Screen Sharing"):
            self.application.find("push button", self.texts[control])

    def chat(self):
        self.session.send("chat Ann\n" + (SENTENCE * 20).replace(" ", "%20"))  # opens its panel
        self.session.settled()
        self.application.find("text", self.texts["Message"])


class TheWindow(SmallScreen):
    def test_fits_with_every_panel_open(self):
        for language in LANGUAGES:
            with self.subTest(language):
                self.begin(language)
                self.add_participants(3)
                for panel, title in (("Participant", "Participants"), ("File Transfer", "File Transfer"),
                                     ("Annotation", "Annotation")):
                    self.press(panel)
                    self.application.find("label", self.texts[title])
                self.chat()
                self.fits(self.application.find("frame"))
                self.session.quit()

    def test_fits_with_many_participants(self):
        self.begin("en")
        self.add_participants(16)
        self.press("Participant")
        self.application.find("push button", f"More: {NAME} 15")
        self.fits(self.application.find("frame"))

    def test_fits_with_many_participants_and_every_panel_open(self):
        self.begin("en")
        self.add_participants(16)
        self.open_one_by_one()


class EveryQuestion(SmallScreen):
    languages = LANGUAGES
    questions = QUESTIONS

    def test_fits_with_every_button(self):
        for language in self.languages:
            self.begin(language)
            self.session.send("sessionStatus participantsAdd Ann 41 true")
            self.session.log.expect("participants present")
            for line in self.questions:
                with self.subTest(f"{language}: {line[:40]}"):
                    self.asks_visibly(line)
            self.session.quit()

    def looks_well(self, dialog):
        self.fits(dialog)

    def asks_visibly(self, line):
        windows = self.session.windows
        window = until(windows.active, "the main window has the keyboard")
        self.session.send(line)
        question = until(lambda: next((each for each in [windows.active()] if each not in (None, window)), None),
                         lambda: f"the keyboard for the question: {self.dialogs()}")
        dialog = until(self.dialogs, self.application.describe)[0]
        self.looks_well(dialog)
        if " samecon " in line:  # whose refusal ends the session
            self.press("Join")
        else:
            windows.close(windows.numbered(question))
        until(lambda: not self.dialogs() and windows.active() == window,
              lambda: f"{question} goes; there are {self.dialogs()}, {windows.active()} is active, not {window}")

    def dialogs(self):
        return [each for each in children(self.application.root)
                if each.get_role_name() in ("dialog", "file chooser") and shown(each)]


class EveryQuestionAtTwiceTheSize(EveryQuestion):
    scale = 2
    languages = ("de",)
    questions = [line for line in QUESTIONS if " fileTransfer " not in line]  # the toolkit's chooser needs 547 x 326

    def looks_well(self, dialog):
        """The frame of the longest ones may reach below the screen, which has the room of 512 x 384."""
        self.can_be_used(dialog)


class TheWindowAtTwiceTheSize(SmallScreen):
    scale = 2

    def test_fits_with_each_panel(self):
        self.begin("de")
        self.session.send("sessionStatus participantsAdd Ann 41 true")
        for panel, content in (("Participant", ("label", "Ann")),
                               ("Chat", ("text", self.texts["Message"])),
                               ("File Transfer", ("push button", self.texts["Send File"])),
                               ("Annotation", ("push button", self.texts["Pen"]))):
            with self.subTest(panel):
                self.press(panel)
                self.application.find(*content)
                self.fits(self.application.find("frame"))
                self.press(panel)
                self.application.gone(*content)

    def test_fits_with_many_participants_and_every_panel_open(self):
        self.begin("de")
        self.add_participants(12)
        self.open_one_by_one()

    def test_is_as_small_as_before_once_the_panels_are_closed(self):
        self.begin("de")
        frame = self.application.find("frame")
        before = frame.get_extents(Atspi.CoordType.SCREEN).height
        self.add_participants(12)
        self.press("Participant")
        self.application.find("label", self.texts["Participants"])
        until(lambda: frame.get_extents(Atspi.CoordType.SCREEN).height > before, lambda: self.misses(frame))
        self.fits(frame)
        self.press("Participant")
        until(lambda: frame.get_extents(Atspi.CoordType.SCREEN).height == before, lambda: self.misses(frame))


if __name__ == "__main__":
    main()
