"""Hostile prompts: whatever the technician's line holds, the customer meets a clear question or none, and what can't be
read can't be agreed to."""

from typing import NamedTuple

from promptCase import PromptCase, encoded
from screen import Windows, click
from session import main
from waiting import until

RESPONSE = "dialogResponse "
CONSENT = RESPONSE + "concentuser "
SCRIPT = ('The technician is trying to execute the script "%s" on your computer.\n'
          "Clicking on Allow will execute the script on your device.\n\n"
          "Note : Proceed with this action only if you trust the technician.")
SERVICE = (" Your technician has requested for a root-level \n access of your computer. Would you like to accept  \n "
           "the request?")
CONTROL = "%s has requested to control your device.\n Would you like to accept the request?"
JOIN = ("You are about to join a remote support session. The technician would be able to view and access your screen.")
SWAP = " Requesting %s to share screen          "
UNATTENDED = " Would you like the Technician to configure this \n device for Unattended Access?"
LOCK = "Lock screen under wayland will terminate the Session.\n Are you sure want to lock the screen?"
REBOOT = 'Technician wants to reboot your computer. Click\n"Yes" to reboot.'
CALL = "Would you like to accept your technician's voice/ \nvideo chat invite?" + 32 * " "
QUESTION = "May the technician look through your camera?"
Q = encoded(QUESTION)
ESCAPE = "by Escape"


def line_of(words):
    return b"dialogPrompt " + (words if isinstance(words, bytes) else words.encode())


class Row(NamedTuple):
    words: object   # text or bytes behind "dialogPrompt "
    text: str       # what the customer reads
    answer: str     # the button that is pressed, or Escape
    lines: list     # what the agent hears


def consent(verdict, client="", feature=""):
    return [f"{CONSENT}{verdict} {client} {feature} false", gone(feature)]


def gone(kind):
    return f"{RESPONSE}delete_dialog {kind} "


JOINED = [gone("samecon"), RESPONSE + "screenSharingApproved"]
SCRIPT_RUNS = [RESPONSE + "scriptApproved", gone("scriptLauncherDialog")]
WRONG_FIELDS = [
    Row("runAsService a b", SERVICE, "No", [gone("serviceDialog")]),
    Row("launchScript", SCRIPT % "(null)", "Allow", SCRIPT_RUNS),
    Row("launchScript  b", SCRIPT % "", "Deny", [gone("scriptLauncherDialog")]),
    Row("launchScript a b", SCRIPT % "a", "Deny", [gone("scriptLauncherDialog")]),
    Row(f"userConcent {Q}", QUESTION, "Yes", consent("approved")),
    Row(f"userConcent {Q} client7", QUESTION, ESCAPE, consent("disapproved", "client7")),
    Row(f"userConcent {Q} client7 camera b c", QUESTION, "Yes", consent("approved", "client7", "camera")),
    Row("samecon", JOIN, "Join", JOINED),
    Row(f"samecon {Q} b", JOIN, "Join", JOINED),
    Row("initswap", SWAP % "(null)", "Cancel", [RESPONSE + "swapRejected", gone("initswap")]),
    Row("initswap a b", SWAP % "(null)", "Cancel", [RESPONSE + "swapRejected", gone("initswap")]),
    Row("fileTransfer", None, ESCAPE, [gone("fileChooserDialog")]),
    Row("fileTransfer a b", None, ESCAPE, [gone("fileChooserDialog")]),
    Row("command 9 41", CONTROL % "9", "Yes", [RESPONSE + "controlApproved 9"]),
    Row("fileTransferReceive", ".", ESCAPE, ["monitorData fileTransferRecive", RESPONSE + "FTCancel"]),
    Row("acall a", CALL, "Reject", [RESPONSE + "AVReject"]),
    Row("vcall a b", CALL, "Reject", [RESPONSE + "AVReject"]),
    Row("rebootPc a b", REBOOT, "No", [RESPONSE + "rebootCanceled"]),
    Row("configureURS", UNATTENDED, "Yes", [RESPONSE + "ursConfigureApproved "]),
    Row("configureURS a b", UNATTENDED, "Yes", [RESPONSE + "ursConfigureApproved a"]),
    Row("lockuser a b", LOCK, "No", []),
]

MEGABYTE = 1_000_000
# What is sent as a question, and nobody can read it.
UNREADABLE = {
    "no base64": "!!!",
    "padding": "====",
    "nothing": "",
    "blanks": encoded("  \t\r\n "),
    "a NUL byte first": encoded(b"\0May we?"),
    "characters without width": encoded("\u200b\u2060\ufeff\u00ad"),
    "turns of direction": encoded("\u202a\u202e\u2066\u2069\u200f"),
    "characters that look like blanks": encoded("\u2800\u3164\u00a0"),
    "a megabyte": encoded("x" * MEGABYTE),
    "a megabyte of words": encoded("May we? " * (MEGABYTE // 8)),
    "a megabyte of markup": encoded("<b>" * (MEGABYTE // 3)),
    "a question under a megabyte of line breaks": encoded("\n" * MEGABYTE + "May we?"),
}
BEYOND_READING = [
    ("launchScript " + "x" * MEGABYTE, "Allow", "Deny", [gone("scriptLauncherDialog")]),
    ("launchScript " + "\u00fc" * MEGABYTE, "Allow", "Deny", [gone("scriptLauncherDialog")]),
    ("command " + "x" * MEGABYTE, "Yes", "No", [RESPONSE + "controlRefused"]),
    ("command", "Yes", "No", [RESPONSE + "controlRefused"]),
    ("command  41", "Yes", "No", [RESPONSE + "controlRefused"]),
    (b"command \xff", "Yes", "No", [RESPONSE + "controlRefused"]),
    ("command \u3164", "Yes", "No", [RESPONSE + "controlRefused"]),
    ("command \u2800", "Yes", "No", [RESPONSE + "controlRefused"]),  # listed by a name that shows nothing
    ("launchScript  b", "Allow", "Deny", [gone("scriptLauncherDialog")]),
    ("launchScript \u3164", "Allow", "Deny", [gone("scriptLauncherDialog")]),
    ("launchScript \u200b\u2060", "Allow", "Deny", [gone("scriptLauncherDialog")]),
]
ODD_WORDS = [
    Row("userConcent " + encoded(b"caf\xe9 \xff?"), "caf\ufffd \ufffd?", ESCAPE, consent("disapproved")),
    Row("userConcent " + encoded("<b>Yes</b> & _no %n%s"), "<b>Yes</b> & _no %n%s", ESCAPE, consent("disapproved")),
    Row("userConcent " + encoded("May we?\0 No."), "May we?", "Yes", consent("approved")),
    Row("userConcent " + encoded("May\nwe?\r\n"), "May\nwe?\r\n", "Yes", consent("approved")),
    Row(f"userConcent {Q} %n%s %s%n<b>", QUESTION, "Yes", consent("approved", "%n%s", "%s%n<b>")),
    Row(f"userConcent {Q} ".encode() + b"\xff \xc3(", QUESTION, "Yes", consent("approved", "\udcff", "\udcc3(")),
    Row("samecon " + encoded("<b>Join x & y"), "<b>Join x & y", "Join", JOINED),
    Row("samecon " + encoded(b"<i>Join \xff</i>"), "Join \ufffd", "Join", JOINED),
    Row("samecon " + encoded('<a href="file:///etc">Join</a> <span size="1" alpha="1%">us</span>'), "Join us", "Join",
        JOINED),
    Row("launchScript %n%s<b>_", SCRIPT % "%n%s<b>_", "Allow", SCRIPT_RUNS),
    Row(b"launchScript \xff\xc3(", SCRIPT % "\ufffd\ufffd(", "Deny", [gone("scriptLauncherDialog")]),
    Row("launchScript a\u202egpj.sh", SCRIPT % "a\ufffdgpj.sh", "Deny", [gone("scriptLauncherDialog")]),
    Row(b"launchScript a\rb\0c", SCRIPT % "a\ufffdb\ufffdc", "Deny", [gone("scriptLauncherDialog")]),
    Row("command gtklabel", CONTROL % "gtklabel", "Yes", [RESPONSE + "controlApproved gtklabel"]),
    Row("command %n%s", CONTROL % "%n%s", "Yes", [RESPONSE + "controlApproved %n%s"]),
    Row("command 51", CONTROL % "Ann\ufffdTom\ufffd", "Yes", [RESPONSE + "controlApproved 51"]),
    Row("command 52", CONTROL % "52", "Yes", [RESPONSE + "controlApproved 52"]),
    Row("command 53", CONTROL % "53", "No", [RESPONSE + "controlRefused"]),
    Row("command 54", CONTROL % "54", "Yes", [RESPONSE + "controlApproved 54"]),
    Row("initswap b", SWAP % "Bob\ufffd\ufffd%n", "Cancel", [RESPONSE + "swapRejected", gone("initswap")]),
    Row(b"configureURS %n\xff", UNATTENDED, "Yes", [RESPONSE + "ursConfigureApproved %n\udcff"]),
]
NOTHING = ["", " ", "nonsense", " samecon", "same", "samecon2", "runAsService\tb", "command_", "%n%s", b"\xff\xfe",
           b"\0", "x" * MEGABYTE, f"userConcent {Q} client7 test", f"userConcent {Q} client7 TEST", "cancelavcall a"]


class Hostile(PromptCase):
    """Texts of a megabyte go to "normal" sessions: elsewhere a sign of life could get between their pieces."""

    def prompt(self, words):
        self.mark()
        return self.ask(line_of(words))

    def answer(self, dialog, how):
        if how == ESCAPE:
            self.press_key(dialog, "Escape")
        else:
            click(dialog.button(how))
        self.gone(dialog)

    def goes_through(self, rows):
        for row in rows:
            with self.subTest(str(row.words)[:80]):
                dialog = self.prompt(row.words)
                if row.text is not None:
                    self.assertIn(row.text, dialog.labels())
                self.answer(dialog, row.answer)
                self.hears(*row.lines)


class FieldsThatAreMissingOrTooMany(Hostile):
    def test_give_the_question_that_the_word_asks(self):
        self.begin(speed=1)
        self.goes_through(WRONG_FIELDS)
        self.assertEqual(self.session.warnings(), [])
        self.assertEqual(self.session.quit(), 0)


class OddWords(Hostile):
    def test_are_shown_as_words(self):
        self.begin(speed=2)
        self.session.send("sessionStatus TECH-NAME Bob%0A%E2%80%AE%25n")
        self.add_participants("Ann%0ATom%E2%80%AE 51", "%FF 52", "%zz 53", "%E3%85%A4%20%E2%80%8B 54")
        self.goes_through(ODD_WORDS)
        self.assertEqual(self.session.warnings(), [])
        self.assertEqual(self.session.quit(), 0)

    def test_that_name_no_question_ask_none(self):
        self.begin("normal")
        before = self.windows.managed()
        for words in NOTHING:
            with self.subTest(str(words)[:80]):
                self.asks_nothing(line_of(words))
        self.asks_nothing("dialogPrompt")
        self.asks_nothing("dialogPromptsamecon")
        self.hears()
        dialog = self.prompt("lockuser")  # questions come in their order, so that an earlier one would be here by now
        self.assertEqual(self.windows.managed(), [*before, dialog.window.id])
        self.assertEqual(self.session.warnings(), [])
        self.assertEqual(self.session.quit(), 0)


class WhatCanNotBeRead(Hostile):
    def resists(self, dialog, button):
        """Neither the pointer nor assistive technology agrees."""
        self.assertFalse(dialog.can_press(button))
        click(dialog.button(button))
        dialog.button(button).get_action_iface().do_action(0)
        self.session.settled()
        self.assertIn(dialog.window.id, self.windows.managed())

    def test_is_not_agreed_to(self):
        self.begin("normal")
        for name, field in UNREADABLE.items():
            with self.subTest(name):
                dialog = self.prompt(f"userConcent {field} client7 camera")
                self.resists(dialog, "Yes")
                self.press_key(dialog, "Return", "KP_Enter", "alt+y")
                self.session.settled()
                self.assertIn(dialog.window.id, self.windows.managed())
                self.answer(dialog, ESCAPE)
                self.hears(*consent("disapproved", "client7", "camera"))
        self.add_participants("%20 \u2800")
        for words, agreeing, refusing, lines in BEYOND_READING:
            with self.subTest(words[:30]):
                dialog = self.prompt(words)
                self.resists(dialog, agreeing)
                self.answer(dialog, refusing)
                self.hears(*lines)
        self.assertEqual(self.session.warnings(), [])
        self.assertEqual(self.session.quit(), 0)

    def test_is_not_joined(self):
        self.windows = Windows()
        for name in ("no base64", "a megabyte of markup", "turns of direction"):
            with self.subTest(name):
                until(lambda: not self.windows.managed(), "the window of the session before goes")
                self.begin("normal")
                dialog = self.prompt("samecon " + UNREADABLE[name])
                self.resists(dialog, "Join")
                click(dialog.button("Cancel"))
                self.assertEqual(self.session.wait(), 0)
                said = [gone("samecon"), RESPONSE + "screenSharingDenied"]
                until(lambda: len(self.heard()) >= len(said), "the last lines")
                self.assertEqual(self.heard(), said)
                self.assertEqual(self.session.warnings(), [])


if __name__ == "__main__":
    main()
