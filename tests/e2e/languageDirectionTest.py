"""The side on which the window begins: the desktop's language decides it, through the toolkit."""

import base64
import json

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from screen import click  # noqa: E402
from session import RESOURCES, SANDBOX, SessionCase, main  # noqa: E402
from waiting import until  # noqa: E402

LOCALES = {"ar": "ar_EG.UTF-8", "he": "he_IL.UTF-8", "de": "de_DE.UTF-8", "fr": "fr_FR.UTF-8"}


def texts_of(language):
    packed = (RESOURCES / "locale" / language / "resource.json").read_bytes()
    return {entry["Key"]: entry["Value"] for entry in json.loads(base64.b64decode(packed))}


class TheSide(SessionCase):
    def start_in(self, language, desktop):
        """A session with the texts of a system's language on a desktop whose toolkit speaks another, or the same."""
        setup = f"mkdir -p /etc/default; echo LANG={LOCALES[language]} >/etc/default/locale"
        # The toolkit's own texts are looked up for any locale but "C".
        environment = {"LC_ALL": "C.UTF-8", "LANGUAGE": desktop}
        return self.start(wrapper=[SANDBOX, setup], environment=environment).ready()

    @staticmethod
    def left_of(accessible):
        return until(lambda: Atspi.Component.get_extents(accessible, Atspi.CoordType.WINDOW), "its place").x

    def expect(self, session, texts, begins_right):
        find = session.application.find
        first, last = find("push button", texts["Participant"]), find("push button", texts["More"])
        until(lambda: self.left_of(first) != self.left_of(last), "the window is laid out")
        self.assertEqual(self.left_of(first) > self.left_of(last), begins_right)

        session.send("dialogPrompt command p7")
        accept, refuse = find("push button", texts["Yes"]), find("push button", texts["No"])
        until(lambda: self.left_of(accept) != self.left_of(refuse), "the question is laid out")
        self.assertEqual(self.left_of(accept) > self.left_of(refuse), begins_right)
        click(refuse)
        session.application.gone("push button", texts["No"])
        self.assertEqual(session.warnings(), [])
        session.quit()

    def test_is_the_right_one_in_arabic_and_hebrew(self):
        for language in ("ar", "he"):
            self.expect(self.start_in(language, language), texts_of(language), True)

    def test_is_the_left_one_in_german(self):
        self.expect(self.start_in("de", "de"), texts_of("de"), False)

    def test_is_that_of_the_desktop_when_the_texts_are_not(self):
        self.expect(self.start_in("he", "fr"), texts_of("he"), False)
        self.expect(self.start_in("fr", "he"), texts_of("fr"), True)


if __name__ == "__main__":
    main()
