"""The window and every dialog as assistive technology and the keyboard find them: nothing nameless, nothing out of
reach. Which names and which focus each question has is looked at by questionAccessTest."""

from arSessionTest import TITLE, InvitationCase
from keyboard import key
from promptCase import PromptCase, encoded
from screen import Atspi, click, everything, grab_focus, has_state, shown
from session import Home, main
from waiting import until

CONTROLS = {"push button", "toggle button", "check box", "radio button", "combo box", "entry", "text", "password text",
            "menu item", "check menu item", "spin button", "slider", "link", "icon", "image", "table", "tree table"}
PICTURES = {"icon", "image"}
PROMPTS = ["dialogPrompt runAsService", "dialogPrompt launchScript a.sh",
           f"dialogPrompt userConcent {encoded('May we?')} client7 camera", "dialogPrompt initswap Bob",
           "dialogPrompt command 41", "dialogPrompt fileTransferReceive a.txt", "dialogPrompt acall",
           "dialogPrompt vcall", "dialogPrompt rebootPc", "dialogPrompt configureURS 7", "dialogPrompt lockuser",
           "clipboard", f"dialogPrompt samecon {encoded('Join us?')}"]
PANELS = ("Participant", "Chat", "File Transfer", "Annotation")
TOOLS = {"Pen", "Rectangle", "Ellipse", "Line", "Eraser", "Clear Screen"}
# Nameless parts of the toolkit's own file chooser: pictures of places and of folders in the path.
FOREIGN = {"icon"}


def is_labelled(accessible):
    """By another control that has a name."""
    return any(relation.get_relation_type() == Atspi.RelationType.LABELLED_BY and relation.get_target(0).get_name()
               for relation in accessible.get_relation_set())


def is_on_a_control(accessible):
    parent = accessible.get_parent()
    return parent is not None and parent.get_role_name() in CONTROLS and bool(parent.get_name())


def nameless(root):
    """Roles of the controls and pictures that nothing says what they are; how many there are at all."""
    controls = [each for each in everything(root) if each.get_role_name() in CONTROLS and shown(each)]
    lacking = [each.get_role_name() for each in controls
               if not each.get_name().strip() and not is_labelled(each)
               and not (each.get_role_name() in PICTURES and is_on_a_control(each))]
    return lacking, len(controls)


class AccessCase(PromptCase):
    def says_what_all_is(self, root, at_least=1):
        lacking, count = until(lambda: nameless(root), "a look at all of it")
        self.assertEqual(lacking, [], f"{count} controls")
        self.assertGreaterEqual(count, at_least)

    def begin_with_everything(self, kind="normal"):
        home = Home()
        home.install_annotation()
        self.begin(kind, home=home)
        self.add_participants("Ann%20Lee 41")
        self.session.send("chat Bob\nhello")
        self.session.send("sessionStatus Connected")
        # The message opens its panel, which moves all others.
        self.application.find("text", "Message")
        self.application.find("push button", "Pause Screen Sharing")
        for panel, role, sign in (("Participant", "label", "Ann Lee"), ("File Transfer", "push button", "Send File"),
                                  ("Annotation", "push button", "Pen")):
            click(self.application.find("push button", panel))
            self.application.find(role, sign)

    def focused(self):
        """Name of the control that has the keyboard."""
        return next((each.get_name() for each in everything(self.application.root)
                     if has_state(each, Atspi.StateType.FOCUSED)), None)


class TheWindow(AccessCase):
    def test_says_what_everything_is_with_all_panels_open(self):
        self.begin_with_everything()
        self.says_what_all_is(self.application.root, at_least=20)
        self.session.send("sessionStatus ondemandstart")
        self.session.send("blockinput")
        self.session.settled()
        self.says_what_all_is(self.application.root, at_least=20)

    def test_says_what_the_entries_of_its_menus_are(self):
        self.begin_with_everything()
        for button, entries in (("More", {"Go to Website"}), ("More: Ann Lee", {"Swap Screen", "Revoke Control"})):
            click(self.application.find("push button", button))
            self.application.find("menu item")
            self.assertEqual({each.get_name() for each in self.application.shown_all("menu item")}, entries)
            key("Escape")
            self.application.gone("menu item")


class TheKeyboard(AccessCase):
    """Tab goes on, Shift and Tab back; Control and Tab leave the message, in which Tab is a character."""

    def walk(self, keys, wanted):
        """Goes round the window until all of these had the keyboard; gives what had it."""
        seen = []
        for _ in range(3 * len(wanted)):
            before = self.focused()
            key(*keys)
            until(lambda: self.focused() not in (None, before), lambda: f"{keys} leaves {before!r}; seen {seen}")
            seen.append(self.focused())
            if wanted <= set(seen):
                break
        return seen

    def test_reaches_everything_in_the_window(self):
        self.begin_with_everything()
        self.windows.wait_focus("Brindle")
        wanted = {each.get_name() for each in everything(self.application.root)
                  if each.get_role_name() in CONTROLS and shown(each) and has_state(each, Atspi.StateType.SENSITIVE)
                  and has_state(each, Atspi.StateType.FOCUSABLE)}
        self.assertLessEqual({*PANELS, *TOOLS, "More", "More: Ann Lee", "Conversation", "Message", "Send File",
                              "Download Chat", "Pause Screen Sharing"}, wanted)
        for keys in (["ctrl+Tab"], ["ctrl+shift+Tab"]):
            with self.subTest(keys):
                self.assertLessEqual(wanted, set(self.walk(keys, wanted)))

    def test_opens_and_closes_a_panel_and_a_menu(self):
        self.begin_with_everything()
        self.windows.wait_focus("Brindle")
        grab_focus(self.application.find("push button", "File Transfer"))
        until(lambda: self.focused() == "File Transfer", "the button has the keyboard")
        key("space")
        self.application.gone("push button", "Send File")
        key("space")
        self.application.find("push button", "Send File")
        grab_focus(self.application.find("push button", "More"))
        until(lambda: self.focused() == "More", "the button has the keyboard")
        key("space")
        self.application.find("menu item", "Go to Website")
        key("Escape")
        self.application.gone("menu item")


class EveryDialog(AccessCase):
    def test_says_what_everything_in_it_is(self):
        self.begin("ras", speed=1)
        self.add_participants("Ann 41")
        for line in PROMPTS:
            with self.subTest(line):
                dialog = self.ask(line)
                self.says_what_all_is(dialog.accessible)
                self.assertNotEqual(dialog.accessible.get_name().strip(), "")
                self.press_key(dialog, "Escape")
                self.gone(dialog)
        self.assertEqual(self.session.wait(), 0)

    def test_goes_round_by_tab_and_back(self):
        self.begin("ras", speed=1)
        dialog = self.ask("dialogPrompt configureURS 7")
        for keys, way in ((["Tab"], ["Yes", "No"]), (["shift+Tab"], ["Yes", "No"])):
            for name in way:
                self.press_key(dialog, *keys)
                until(lambda: dialog.focused() == name, lambda: f"{keys}: {name!r}, is {dialog.focused()!r}")

    def test_says_what_everything_is_in_the_question_to_leave(self):
        self.begin("normal")
        self.session.send("sessionStatus Connected")
        self.windows.close(self.windows.find("Brindle"))
        dialog = self.application.find("dialog", "Brindle")
        self.says_what_all_is(dialog, at_least=2)
        key("Escape")
        self.application.gone("dialog")


class EveryChooser(AccessCase):
    """Our own buttons; what else is nameless is the toolkit's."""

    def has_names(self, chooser, *names):
        self.assertNotEqual(chooser.get_name(), "")
        buttons = until(lambda: [each.get_name() for each in everything(chooser)
                                 if each.get_role_name() == "push button" and shown(each)], "its buttons")
        for name in names:
            self.assertIn(name, buttons)
        lacking, _ = until(lambda: nameless(chooser), "a look at all of it")
        self.assertLessEqual(set(lacking), FOREIGN)

    def test_names_its_buttons(self):
        self.begin("normal")
        self.session.send("chat Ann\nhello")
        save = self.application.find("push button", "Download Chat")
        until(lambda: has_state(save, Atspi.StateType.SENSITIVE), "the transcript can be saved")
        click(save)
        self.has_names(self.application.find("file chooser", "Save Chat Transcript"), "Cancel")
        self.windows.wait_focus("Save Chat Transcript")
        key("Escape")
        self.application.gone("file chooser")
        dialog = self.ask("dialogPrompt fileTransfer 41")
        self.has_names(dialog.accessible, "Cancel", "Send ")
        self.press_key(dialog, "Escape")
        self.gone(dialog)


class TheSharedView(InvitationCase):
    def test_is_announced_by_its_title(self):
        self.begin()
        start = self.invite("http://127.0.0.1:9/", "Ann")  # nobody answers there
        self.assertEqual(self.click_on(start + 2), 1)
        window = self.application.find("dialog", TITLE)
        # A walk through a page that is being replaced fails and is made again.
        own, = until(lambda: ([each.get_role_name() for each in everything(window)
                               if each.get_role_name() in CONTROLS and shown(each)],), "a look at all of it")
        self.assertEqual(own, [])  # what else is in it is the page


if __name__ == "__main__":
    main()
