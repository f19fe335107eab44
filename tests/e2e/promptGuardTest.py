"""Questions that only a pointer or assistive technology can answer in a "normal" session, and any key elsewhere."""

from promptCase import PromptCase, encoded
from screen import click
from session import main
from waiting import until

RESPONSE = "dialogResponse "
CONSENT = f"dialogPrompt userConcent {encoded('May we?')} c1 camera"
SERVICE, SWAP, CLIPBOARD = "dialogPrompt runAsService", "dialogPrompt initswap Bob", "clipboard"
SCRIPT_GONE = RESPONSE + "delete_dialog scriptLauncherDialog "

# The agreeing button; what the agent hears of it; what it hears of a refusal.
GUARDED = {
    CONSENT: ("Yes", [RESPONSE + "concentuser approved c1 camera false", RESPONSE + "delete_dialog camera "],
              [RESPONSE + "concentuser disapproved c1 camera false", RESPONSE + "delete_dialog camera "]),
    SERVICE: ("Yes", [RESPONSE + "rasApproved", RESPONSE + "delete_dialog serviceDialog "],
              [RESPONSE + "delete_dialog serviceDialog "]),
    SWAP: ("Cancel", [RESPONSE + "swapRejected", RESPONSE + "delete_dialog initswap "],
           [RESPONSE + "swapRejected", RESPONSE + "delete_dialog initswap "]),
    CLIPBOARD: ("Allow always", ["clipboard 1", "clipboard 3", RESPONSE + "delete_dialog clipboardDialog "],
                ["clipboard 3", RESPONSE + "delete_dialog clipboardDialog "]),
}
# Whatever presses a button somewhere, moves to one, or is a mnemonic of one.
KEYS = ("Return KP_Enter ISO_Enter space KP_Space Tab space Tab Return shift+Tab space KP_Tab KP_Space Left space Right "
        "space Up space Down space KP_Left KP_Space Home space End KP_Enter alt+y alt+a alt+o alt+c alt+underscore y a "
        "F10 Return Menu Return ctrl+Tab space ctrl+Return shift+Return alt+Return ctrl+space F6 space Select "
        "Execute").split()


class InANormalSession(PromptCase):
    def setUp(self):
        super().setUp()
        self.begin(kind="normal")

    def ask_guarded(self, line):
        self.mark()
        return self.ask(line)

    def press_every_key(self, dialog):
        self.press_key(dialog, *KEYS)
        self.session.settled()

    def test_no_key_answers_and_escape_refuses(self):
        for line, (_, _, refused) in GUARDED.items():
            with self.subTest(line):
                dialog = self.ask_guarded(line)
                self.press_every_key(dialog)
                self.assertIsNone(dialog.focused())
                self.assertIn(dialog.window.id, self.windows.managed())
                self.assertEqual(self.heard(), [])
                self.press_key(dialog, "Escape")
                self.gone(dialog)
                self.hears(*refused)
        self.assertEqual(self.session.warnings(), [])

    def test_the_pointer_answers(self):
        for line, (button, agreed, _) in GUARDED.items():
            with self.subTest(line):
                dialog = self.ask_guarded(line)
                click(dialog.button(button))
                self.gone(dialog)
                self.hears(*agreed)

    def test_assistive_technology_answers(self):
        for line, (button, agreed, _) in GUARDED.items():
            with self.subTest(line):
                dialog = self.ask_guarded(line)
                self.assertTrue(dialog.button(button).get_action_iface().do_action(0))
                self.gone(dialog)
                self.hears(*agreed)

    def test_the_option_to_remember_is_the_pointers_too(self):
        dialog = self.ask_guarded(CONSENT)
        option = "Remember this option"
        self.press_every_key(dialog)
        self.assertFalse(dialog.is_checked(option))
        click(dialog.check_box(option))
        until(lambda: dialog.is_checked(option), "the option is on")
        self.press_key(dialog, "Return", "space")
        click(dialog.button("Yes"))
        self.gone(dialog)
        self.hears(RESPONSE + "concentuser approved c1 camera true", RESPONSE + "delete_dialog camera ")

    def test_questions_without_a_guard_take_keys_but_begin_with_the_refusal(self):
        for line, refused, agreed in (
                ("dialogPrompt launchScript a.sh", [SCRIPT_GONE], [RESPONSE + "scriptApproved", SCRIPT_GONE]),
                ("dialogPrompt acall", [RESPONSE + "AVReject"], [RESPONSE + "AVAccept"]),
                ("dialogPrompt configureURS 7", [RESPONSE + "ursConfigureRejected 7"],
                 [RESPONSE + "ursConfigureApproved 7"])):
            for keys, heard in ((("Return",), refused), (("Tab", "Return"), agreed), (("Left", "space"), agreed)):
                with self.subTest(f"{line} {keys}"):
                    dialog = self.ask_guarded(line)
                    self.press_key(dialog, *keys)
                    self.gone(dialog)
                    self.hears(*heard)


class InAnotherSession(PromptCase):
    KEYS = ("Return", "KP_Enter", "ISO_Enter", "space", "KP_Space")

    def test_keys_answer(self):
        self.begin(kind="ras")
        for line, (button, agreed, _) in GUARDED.items():
            for name in self.KEYS:
                with self.subTest(f"{line} {name}"):
                    self.mark()
                    dialog = self.ask(line)
                    self.reach(dialog, button)
                    self.press_key(dialog, name)
                    self.gone(dialog)
                    self.hears(*agreed)

    def reach(self, dialog, name):
        """Goes by Tab from control to control."""
        for _ in range(4):
            before = dialog.focused()
            if before == name:
                return
            self.press_key(dialog, "Tab")
            until(lambda: dialog.focused() not in (None, before), f"the keyboard leaves {before!r}")
        self.fail(f"Tab never reaches {name!r}")


if __name__ == "__main__":
    main()
