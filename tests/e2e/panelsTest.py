"""The four panels under a real pointer: toolbar buttons, headers, and what a panel holds."""

from keyboard import key
from screen import click, grab_focus
from session import WholeWindowCase, main
from waiting import until

NOTICE = " Multiple technicians are present! Request the\n technician to intiate file transfer"


class PanelCase(WholeWindowCase):
    def toolbar(self, name):
        click(self.application.find("push button", name))

    def height(self):
        windows = self.session.windows
        return windows.size(windows.find("Brindle"))[1]


class ThePanels(PanelCase):
    ROWS = (("Participant", "Participants", ("label", "No participant has joined")),
            ("Chat", "Chat", ("push button", "Download Chat")),
            ("File Transfer", "File Transfer", ("push button", "Send File")),
            ("Annotation", "Annotation", ("push button", "Pen")))

    def test_open_and_close_from_the_toolbar(self):
        closed = self.height()
        for button, title, content in self.ROWS:
            with self.subTest(title):
                self.toolbar(button)
                self.application.find("label", title)
                self.application.find(*content)
                until(lambda: self.height() > closed, "the window grows")
                self.toolbar(button)
                self.application.gone("label", title)
                self.application.gone(*content)
                until(lambda: self.height() == closed, lambda: f"height {self.height()}, was {closed}")
        self.assertEqual(self.session.warnings(), [])

    def test_fold_at_a_click_on_their_header(self):
        for button, title, content in self.ROWS:
            if title == "Chat":
                continue  # its content has no name; see the next test
            with self.subTest(title):
                self.toolbar(button)
                self.application.find(*content)
                click(self.application.find("label", title))
                self.application.gone(*content)
                self.application.find("label", title)
                click(self.application.find("label", title))
                self.application.find(*content)
                self.toolbar(button)
                self.application.gone("label", title)

    def test_of_the_chat_folds_but_keeps_its_button(self):
        self.toolbar("Chat")
        self.application.find("push button", "Download Chat")
        until(lambda: len(self.texts()) == 2, "conversation and message field")
        click(self.application.find("label", "Chat"))
        until(lambda: not self.texts(), "the chat folds")
        self.application.find("push button", "Download Chat")

    def test_fold_at_any_button_of_the_pointer(self):
        self.toolbar("Participant")
        click(self.application.find("label", "Participants"), button=3)
        self.application.gone("label", "No participant has joined")

    def test_open_by_keyboard(self):
        self.session.windows.wait_focus("Brindle")
        grab_focus(self.application.find("push button", "Annotation"))
        key("space")
        self.application.find("push button", "Pen")

    def test_can_be_open_together(self):
        for button, _, _ in self.ROWS:
            self.toolbar(button)
        for _, title, content in self.ROWS:
            self.application.find("label", title)
            self.application.find(*content)

    def texts(self):
        return self.application.shown_all("text")


class TheFileTransferPanel(PanelCase):
    def test_leaves_sending_to_the_technicians_when_there_are_two(self):
        self.toolbar("File Transfer")
        self.application.find("push button", "Send File")
        self.assertIsNone(self.application.look("label", NOTICE))
        self.toolbar("File Transfer")
        for name, identifier in (("Ann", 1), ("Bob", 2)):
            self.session.send(f"sessionStatus participantsAdd {name} {identifier} true")
            self.session.log.expect(f"no of participants :{identifier} ")
        self.toolbar("File Transfer")
        self.application.has_label(NOTICE)
        self.assertIsNone(self.application.look("push button", "Send File"))
        self.session.send("sessionStatus participantsDelete Ann 1")
        self.session.log.expect("found container")
        click(self.application.find("label", "File Transfer"))
        self.application.gone("label", NOTICE)
        click(self.application.find("label", "File Transfer"))
        self.application.find("push button", "Send File")
        self.application.gone("label", NOTICE)


class TheWindow(PanelCase):
    def test_shows_only_toolbar_and_status_at_first(self):
        shown_labels = self.application.labels()
        self.assertEqual(shown_labels, ["Connecting..."])

    def test_keeps_its_width_with_an_endless_name(self):
        windows = self.session.windows
        self.session.send("sessionStatus TECH-NAME " + "W" * 3000)
        self.application.has_label("W" * 3000)
        self.assertEqual(windows.size(windows.find("Brindle"))[0], 350)

    def test_stays_above_and_cannot_be_resized(self):
        window = self.session.windows.find("Brindle")
        states = window.get_full_property(self.session.windows.display.intern_atom("_NET_WM_STATE"), 0).value
        self.assertIn(self.session.windows.display.intern_atom("_NET_WM_STATE_ABOVE"), states)
        hints = window.get_wm_normal_hints()
        self.assertEqual((hints.min_width, hints.min_height), (hints.max_width, hints.max_height))


if __name__ == "__main__":
    main()
