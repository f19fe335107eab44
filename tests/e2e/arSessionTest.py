"""The invitation to an AR session: where it reacts, and the window with the page of a web server on this machine."""

import http.server
import os
import threading
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from chatPanel import ChatCase  # noqa: E402
from keyboard import key  # noqa: E402
from screen import children, colour_at, picture, place_of, xdotool  # noqa: E402
from session import PICTURES, SANDBOX, lives, main  # noqa: E402
from waiting import until  # noqa: E402

LINK = "join now."
REACTION = "Clickable word clicked, invoking callback.loading.... "
TITLE = "Brindle - AR Session"
SECOND_WINDOW = "AR Session DIALOG is already initiated."
NO_LIBRARIES = "rm -f /usr/lib/*/libwebkit2gtk* /usr/lib/*/libjavascriptcoregtk*"
ONLY_FALLBACK = "rm -f /usr/lib/*/libwebkit2gtk*"
BROKEN = "/usr/lib/libwebkit2gtk-4.0.so.37"  # sorts before the one that works
GREEN, VIOLET = (18, 200, 97), (140, 60, 220)


class Site(http.server.ThreadingHTTPServer):
    """Each page is one colour, painted by its script: /RED/GREEN/BLUE."""

    def __init__(self):
        super().__init__(("127.0.0.1", 0), Page)
        self.asked = []
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def address(self, colour):
        return f"http://127.0.0.1:{self.server_port}" + "".join(f"/{part}" for part in colour)

    def end(self):
        self.shutdown()
        self.server_close()


class Page(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        self.server.asked.append(self.path)
        colour = ", ".join(self.path.split("/")[1:])
        page = f"<body><script>document.body.style.background = 'rgb({colour})'</script></body>".encode()
        self.send_response(200)
        self.send_header("Content-Type", "text/html")
        self.send_header("Content-Length", str(len(page)))
        self.end_headers()
        self.wfile.write(page)

    def log_message(self, *_):
        pass


class InvitationCase(ChatCase):
    """An invitation does not open the chat; the customer has done so before."""

    def begin(self, **options):
        super().begin(**options)
        self.open()

    def invite(self, *words):
        """The agent invites; gives the place of the link's first character in the conversation."""
        count = self.conversation().count(LINK)
        self.session.send(b" ".join([b"AR_SESSION", *(os.fsencode(word) for word in words)]))
        until(lambda: self.conversation().count(LINK) > count, lambda: f"an invitation, not {self.conversation()!r}")
        until(self.is_at_its_end, "the conversation scrolls to its end")
        return self.conversation().rindex(LINK)

    def is_at_its_end(self):
        bars = [bar for bar in children(self.application.find("text", "Conversation").get_parent())
                if bar.get_role() == Atspi.Role.SCROLL_BAR]
        return bars and all(Atspi.Value.get_current_value(bar) == Atspi.Value.get_maximum_value(bar) for bar in bars)

    def click_on(self, offset, *arguments):
        """Clicks on the left part of a character of the conversation; gives how often the link has reacted."""
        reactions, presses = self.reactions(), self.presses()
        until(lambda: self.points_at(offset), f"character {offset} is in sight")
        xdotool("click", *(arguments or (1,)))
        until(lambda: self.presses() > presses, "the conversation hears of the click")
        self.converses(self.conversation())  # and has worked it off when it answers
        return self.reactions() - reactions

    def points_at(self, offset):
        place = self.place_of_character(offset)
        if place:
            xdotool("mousemove", *place)
            time.sleep(0.1)  # in which a scroll that is due is done
        return place and place == self.place_of_character(offset)

    def place_of_character(self, offset):
        view = self.application.find("text", "Conversation")
        place_of(view)  # its window stands still
        around = view.get_extents(Atspi.CoordType.SCREEN)
        place = Atspi.Text.get_character_extents(view, offset, Atspi.CoordType.SCREEN)
        is_shown = place.height > 0 and around.y <= place.y <= around.y + around.height - place.height
        return (place.x + 1, place.y + place.height // 2) if is_shown else None

    def reactions(self):
        return len([1 for message in self.session.log.messages() if message.startswith(REACTION)])

    def presses(self):
        return len([1 for line in self.session.log.lines()
                    if line.level == "TRACE_CALL" and line.function == "on_text_view_button_press"])


class TheLink(InvitationCase):
    """Without a library a reaction leaves nothing behind but its lines in the log."""

    def setUp(self):
        super().setUp()
        self.begin(wrapper=[SANDBOX, NO_LIBRARIES])

    def reacts(self, *expected):
        """Characters and whether the link reacts there."""
        for offset, reaction in expected:
            with self.subTest(self.conversation()[offset:offset + 10]):
                self.assertEqual(self.click_on(offset), reaction)

    def test_reacts_from_its_first_letter_to_behind_its_last(self):
        start = self.invite("http://one/", "Ann")
        self.converses(" Ann has initiated an AR \n assistance session. join now.\n"
                       " To suspend screen sharing, click pause.\n")
        self.reacts((start - 1, 0), (start, 1), (start + 4, 1), (start + 8, 1), (start + 9, 1), (start + 10, 0))

    def test_reacts_in_the_last_invitation_only(self):
        first = self.invite("http://one/", "Ann")
        second = self.invite("http://two/", "Bob")
        self.reacts((first + 2, 0), (second + 2, 1))
        self.assertEqual(self.session.log.count(f"{REACTION}http://two/"), 1)
        self.assertEqual(self.session.log.count("Loading webview URL: http://two/"), 1)

    def test_reacts_to_each_press_of_the_first_button_alone(self):
        start = self.invite("http://one/", "Ann")
        self.assertEqual(self.click_on(start + 2, 2), 0)
        self.assertEqual(self.click_on(start + 2, 3), 0)
        self.application.find("menu item", "Copy")  # the right button's
        key("Escape")
        self.application.gone("menu item", "Copy")
        reactions = self.reactions()
        self.click_on(start + 2, "--repeat", 2, "--delay", 20, 1)
        until(lambda: self.reactions() == reactions + 2, lambda: f"{self.reactions() - reactions} reactions, not 2")

    def test_stands_behind_its_letters_after_a_name_of_many_bytes(self):
        start = self.invite("http://one/", "Jörg日")
        surplus = len("Jörg日".encode()) - len("Jörg日")
        self.reacts((start, 0), (start + surplus - 1, 0), (start + surplus, 1), (start + surplus + 9, 1),
                    (start + surplus + 10, 0))

    def test_takes_names_and_addresses_as_words(self):
        for words, name in (((), "The Technician"), (("http://one/",), "The Technician"),
                            (("", ""), "The Technician"), (("%s%n%99999d", "%s%n<b>&"), "%s%n<b>&"),
                            (("\udcff\udcfe", "A\udcffnn"), "A\ufffdnn"),
                            (("http://one/", "Ann", "of", "Ostrel"), "Ann"),
                            (("x" * 100_000, "Ann%20B"), "Ann%20B")):
            with self.subTest(str(words)[:50]):
                before = len(self.conversation())
                start = self.invite(*words)
                self.assertTrue(self.conversation()[before:].startswith(f" {name} has"), self.conversation()[before:])
                self.assertEqual(self.click_on(start + 2), 1)
        self.assertEqual(self.session.warnings(), [])


class TheLibrary(InvitationCase):
    def opens_nothing(self, setup, *messages):
        self.begin(wrapper=[SANDBOX, setup])
        start = self.invite("http://one/", "Ann")
        for times in (1, 2):
            self.assertEqual(self.click_on(start + 2), 1)
            for message in messages:
                self.assertEqual(len([1 for said in self.session.log.messages() if said.startswith(message)]), times)
        self.assertEqual(self.session.windows.titled(TITLE), [])
        self.assertEqual(self.session.log.count(SECOND_WINDOW), 0)
        self.assertEqual(self.session.warnings(), [])
        self.assertEqual(self.session.quit(), 0)

    def test_may_be_missing(self):
        self.opens_nothing(NO_LIBRARIES, "No WebKit/WebCore library found.")

    def test_has_no_view_when_it_is_the_fallback(self):
        self.opens_nothing(ONLY_FALLBACK, "Failed to resolve required symbols from WebKit library. Missing:",
                           " - webkit_web_view_new", " - webkit_web_view_load_uri")

    def test_may_be_broken(self):
        self.opens_nothing(f"echo broken >{BROKEN}", f"Failed to load WebKit library '{BROKEN}': ")


class TheWindow(InvitationCase):
    """With the library that is installed."""

    def setUp(self):
        super().setUp()
        self.site = Site()
        self.addCleanup(self.site.end)
        self.begin(speed=1)  # the library's processes would have the faster clock too, for their own time-outs

    def join(self, start):
        self.assertEqual(self.click_on(start + 2), 1)
        return self.session.windows.find(TITLE)

    def shows(self, window, colour):
        """The page fills the window to its corners."""
        windows = self.session.windows
        points = [(2, 2), (317, 2), (160, 110), (2, 216), (317, 216)]

        def seen():
            x, y = windows.position(window)
            return [colour_at(x + right, y + down) for right, down in points]
        until(lambda: set(seen()) == {colour}, lambda: f"the page in {colour}; there is {seen()}, asked for were "
              f"{self.site.asked}, helpers are {self.helpers()}", seconds=60)

    def close(self, window):
        self.session.windows.close(window)
        until(lambda: not self.session.windows.titled(TITLE), "the window goes")

    def helpers(self):
        """Processes of the library."""
        return [process for process, words in self.session.children().items() if "WebKit" in "".join(words[:1])]

    def test_shows_the_page_small_and_above_all_others(self):
        window = self.join(self.invite(self.site.address(GREEN), "Ann"))
        self.shows(window, GREEN)
        picture(PICTURES / "arSession.png")
        self.assertEqual(self.session.windows.size(window), (320, 219))
        atom = self.session.windows.display.intern_atom
        states = window.get_full_property(atom("_NET_WM_STATE"), 0).value
        self.assertTrue({atom("_NET_WM_STATE_ABOVE"), atom("_NET_WM_STATE_SKIP_TASKBAR")} <= set(states))
        self.assertIsNone(self.session.log.has_in_order("Hello, Webview!", "Cleared webview cache"))
        self.assertIn("Using webkit library: /", self.session.log.text())
        self.assertEqual(self.session.warnings(), [])

    def test_opens_once_and_again_after_it_was_closed(self):
        start = self.invite(self.site.address(GREEN), "Ann")
        self.click_on(start + 2, "--repeat", 2, "--delay", 20, 1)
        window = self.session.windows.find(TITLE)
        self.session.log.expect(SECOND_WINDOW)
        self.shows(window, GREEN)
        self.assertEqual(self.click_on(start + 2), 1)
        self.assertEqual(self.session.log.count(SECOND_WINDOW), 2)
        self.assertEqual(len(self.session.windows.titled(TITLE)), 1)
        for _ in range(2):
            self.close(window)
            window = self.join(start)
            self.shows(window, GREEN)
        self.assertEqual(self.session.log.count(SECOND_WINDOW), 2)
        self.assertEqual(self.session.warnings(), [])

    def test_keeps_its_page_until_it_is_closed(self):
        window = self.join(self.invite(self.site.address(GREEN), "Ann"))
        self.shows(window, GREEN)
        second = self.invite(self.site.address(VIOLET), "Bob")
        self.assertEqual(self.click_on(second + 2), 1)
        self.assertEqual(self.session.log.count(SECOND_WINDOW), 1)
        self.shows(window, GREEN)
        self.close(window)
        self.shows(self.join(second), VIOLET)

    def test_opens_for_whatever_address(self):
        for address in ("", "%s%n", "http://[", "javascript:alert(1)", "\udcff\udcfe", self.site.address(GREEN)):
            with self.subTest(address):
                window = self.join(self.invite(address, "Ann"))
                if address == self.site.address(GREEN):
                    self.shows(window, GREEN)
                self.close(window)
        self.assertEqual(self.session.warnings(), [])

    def test_goes_with_the_session(self):
        self.shows(self.join(self.invite(self.site.address(GREEN), "Ann")), GREEN)
        helpers = self.helpers()
        self.assertTrue(helpers)
        self.assertEqual(self.session.quit(), 0)
        until(lambda: not any(map(lives, helpers)), "the library's processes end")
        self.assertEqual(self.session.warnings(), [])


if __name__ == "__main__":
    main()
