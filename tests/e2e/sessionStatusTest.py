"""What each status line of the agent changes in the window and in the log."""

from keyboard import key
from pixels import Pixels
from screen import click, sensitive
from session import RESOURCES, Home, SessionCase, main
from waiting import stays, until

PAUSE, RESUME = "Pause Screen Sharing", "Resume Screen Sharing"


class StatusCase(SessionCase):
    def setUp(self):
        super().setUp()
        self.session = self.start().ready()
        self.application = self.session.application

    def status(self, words):
        self.session.send("sessionStatus " + words)

    def logged(self, *messages):
        for message in messages:
            self.session.log.expect(message)

    def shows_button(self, name):
        self.application.find("push button", name)

    def hides_button(self, name):
        self.application.gone("push button", name)


class TheStatusRow(StatusCase):
    def status_icon(self):
        return next(a for a in self.application.shown_all("icon")
                    if a.get_component_iface().get_extents(0).width == 16)

    def test_shows_a_connected_session(self):
        self.status("CONNECTED")
        self.logged("Session Status Message recived ", " Screen Sharing is Started", "button state 1")
        self.application.has_label("In Session")
        button = self.application.find("push button", PAUSE)
        until(lambda: sensitive(button), "the button can be clicked")

    def test_shows_the_state_in_its_icon(self):
        pixels = Pixels()
        until(lambda: pixels.shows(self.status_icon(), RESOURCES / "offline.png"), "the offline icon")
        self.status("Connected")
        until(lambda: pixels.shows(self.status_icon(), RESOURCES / "online.png"), "the online icon")
        self.status("disconnected")
        until(lambda: pixels.shows(self.status_icon(), RESOURCES / "offline.png"), "the offline icon again")

    def test_keeps_its_text_when_sharing_stops(self):
        self.status("Connected")
        self.application.has_label("In Session")
        self.status("disconnected")
        self.logged(" Screen Sharing is Stopped", "button state 2")
        self.application.has_label("In Session")

    def test_shows_the_first_technician_and_no_later_one(self):
        self.status("TECH-NAME John%20Smith")
        self.logged("Tech name is Null ", "received techincian name John Smith ")
        self.application.has_label("John Smith")
        self.status("tech-name Ann")
        self.session.log.expect("button state 1", times=2)
        self.application.has_label("John Smith")
        self.assertEqual(self.session.log.count("Tech name is Null "), 1)

    def test_refuses_a_name_with_a_raw_blank(self):
        self.status("TECH-NAME John Smith")
        self.logged("Tech name is Null ")
        self.application.has_label("In Session")
        self.status("TECH-NAME Ann")
        self.application.has_label("Ann")

    def test_shows_names_as_they_stand(self):
        self.status("TECH-NAME %3Cb%3E_A%26B%3C/b%3E%25s")
        self.application.has_label("<b>_A&B</b>%s")
        self.assertEqual(self.session.warnings(), [])

    def test_survives_names_that_cannot_be_decoded(self):
        for name in ("%ZZ", "%00", "%"):
            self.status(f"TECH-NAME {name}")
        self.application.has_label("In Session")
        self.status("TECH-NAME %FF%FEx")
        self.session.log.expect("button state 1", times=4)
        self.session.settled()
        self.assertEqual(self.session.warnings(), [])


class Permissions(StatusCase):
    def test_hide_and_show_their_buttons(self):
        rows = (("annotation", "Annotation", "Annotation is disabled", "Annotation is enabled"),
                ("chat", "Chat", "chat is disabled", "chat is enabled"),
                ("filetransfer", "File Transfer", "file transfer is disabled", "file transfer is enabled"))
        for word, button, disabled, enabled in rows:
            with self.subTest(word):
                self.shows_button(button)
                self.status("disable" + word)
                self.logged(disabled)
                self.hides_button(button)
                self.status("ENABLE" + word.upper())
                self.logged(enabled)
                self.shows_button(button)

    def test_of_swap_screen_and_clipboard_change_no_button(self):
        def buttons():
            return [a.get_name() for a in self.application.shown_all("push button")]

        before = buttons()
        self.status("disableswapscreen")
        self.status("disableClipboard")
        self.status("enableswapscreen")
        self.logged("swapScreen is disabled", "Clipboard Has been disabled in agent", "swapScreen is enabled")
        self.assertEqual(buttons(), before)

    def test_show_annotation_again_under_wayland(self):
        self.session.quit()
        home = Home()
        home.install_agent("screenshare")
        session = self.start(home=home, environment={"XDG_SESSION_TYPE": "wayland"}).ready()
        session.application.find("push button", "Chat")
        self.assertIsNone(session.application.look("push button", "Annotation"))
        session.send("sessionStatus Connected")
        session.application.find("push button", "Annotation")

    def test_stay_as_they_are_for_unknown_words(self):
        self.status("foo")
        self.logged("Unhandled message  foo")
        self.status("disablechatty")
        self.logged("Unhandled message  disablechatty")
        self.session.send("sessionStatus")
        self.logged("Unhandled message  ")
        self.shows_button("Chat")


class Participants(StatusCase):
    NOTICE = "No participant has joined"

    def setUp(self):
        super().setUp()
        click(self.application.find("push button", "Participant"))
        self.application.has_label(self.NOTICE)

    def add(self, name, identifier, flag="true"):
        self.status(f"participantsAdd {name} {identifier} {flag}")
        self.application.has_label(name.replace("%20", " "))

    def names(self):
        fixed = {"Participants", "Connecting...", "In Session", self.NOTICE}
        return [name for name in self.application.labels() if name not in fixed]

    def revoke_of(self, name):
        """Whether the control of a participant can be revoked, as the open menu says."""
        click(self.application.find("push button", f"More: {name}"))
        self.application.find("menu item", "Swap Screen")
        answer = sensitive(self.application.find("menu item", "Revoke Control"))
        key("Escape")
        self.application.gone("menu item", "Revoke Control")
        return answer

    def test_stand_newest_first_and_leave(self):
        self.add("Ann%20Lee", "42")
        self.application.gone("label", self.NOTICE)
        self.add("Bob", "43")
        places = [self.application.find("label", name).get_component_iface().get_extents(0).y
                  for name in ("Bob", "Ann Lee")]
        self.assertLess(places[0], places[1])
        self.logged("received participants", "no of participants :2 ", "participants present")
        self.status("participantsDelete Bob 43")
        self.application.gone("label", "Bob")
        self.logged("received participants delete", "found container", "clearing data", "data cleared")
        self.status("participantsDelete Ann%20Lee 42")
        self.application.gone("label", "Ann Lee")
        self.application.has_label(self.NOTICE)
        self.assertEqual(self.session.warnings(), [])

    def test_leave_by_an_identifier_in_any_case(self):
        self.add("Ann", "AbC")
        self.status("participantsDelete Ann aBc")
        self.application.gone("label", "Ann")

    def test_are_modified_by_the_exact_identifier_only(self):
        self.add("Ann", "AbC")
        self.status("participantsModify abc false")
        self.logged("received participants modify", "Participant box not found for ID: abc")
        self.status("participantsModify AbC false")
        self.logged("participant box found", "found both widgets")

    def test_may_have_their_control_revoked_as_the_flag_says(self):
        # At joining and at a change the word has opposite senses.
        self.add("Ann", "1", "false")
        self.add("Bob", "2", "true")
        self.assertTrue(self.revoke_of("Ann"))
        self.assertFalse(self.revoke_of("Bob"))
        for times, words in enumerate(("participantsModify 1 false", "participantsModify 2 true"), start=1):
            self.status(words)
            self.session.log.expect("found both widgets", times=times)
        self.assertFalse(self.revoke_of("Ann"))
        self.assertTrue(self.revoke_of("Bob"))

    def test_are_named_in_the_lines_of_their_menu(self):
        self.add("Ann%20Lee", "id-7", "false")
        for item, line in (("Swap Screen", "swapScreen id-7"), ("Revoke Control", "revokeControl id-7")):
            before = len(self.session.agent.lines())
            click(self.application.find("push button", "More: Ann Lee"))
            click(self.application.find("menu item", item))
            self.application.gone("menu item", item)
            self.session.agent.expect(f"buttonClicked {line}", after=before)

    def test_have_no_menu_while_swap_screen_is_forbidden(self):
        self.status("disableswapscreen")
        self.add("Ann", "1")
        self.assertIsNone(self.application.look("push button", "More: Ann"))
        self.status("participantsModify 1 false")
        until(lambda: "Could not find cursorImage or blockAccess for participant: 1\n"
              in self.session.standard_output.read_text(), "the words on standard output")

    def test_whose_menu_is_open_may_leave(self):
        self.add("Ann", "1")
        click(self.application.find("push button", "More: Ann"))
        self.application.find("menu item", "Swap Screen")
        self.status("participantsDelete Ann 1")
        self.application.gone("label", "Ann")
        self.application.gone("menu item", "Swap Screen")
        self.session.settled()
        self.assertEqual(self.session.warnings(), [])

    def test_with_the_name_of_a_widget_type_hurt_nobody(self):
        # One after the other: the last line that waits to be shown replaces the one before it.
        self.status("participantsDelete x GtkLabel")
        self.session.log.expect("data cleared")
        self.status("participantsModify GtkBox false")
        self.session.log.expect("Participant box not found for ID: GtkBox")
        self.status("participantsDelete x gtklabel")
        self.session.log.expect("data cleared", times=2)
        self.add("Ann", "1")
        self.status("participantsDelete Ann 1")
        self.application.has_label(self.NOTICE)
        self.assertEqual(self.session.warnings(), [])

    def test_without_their_fields_build_no_row(self):
        for words in ("participantsAdd", "participantsAdd Ann", "participantsDelete", "participantsModify",
                      "participantsAdd  "):
            self.status(words)
        self.session.settled()
        stays(lambda: self.names() == [], lambda: self.names(), seconds=0.3)
        self.assertEqual(self.session.warnings(), [])

    def test_that_come_in_one_text_leave_the_window_working(self):
        self.session.send("".join(f"sessionStatus participantsAdd N{i} {i} true\n" for i in range(40)))
        self.session.settled()
        until(lambda: "N39" in self.names(), lambda: self.names())
        self.assertEqual(self.session.warnings(), [])


class TheAgent(StatusCase):
    def test_ends_the_session_with_a_status(self):
        self.status("EXIT")
        self.assertEqual(self.session.wait(), 0)
        self.logged("Exit received closing Ui")
        self.assertEqual(self.session.log.messages()[-1], "freed meamory")


if __name__ == "__main__":
    main()
