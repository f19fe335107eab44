"""Prompts with missing, surplus and broken fields: a clear dialog or none, and no consent to what can't be read."""

from promptCase import PromptCase, encoded
from session import main
from waiting import until

MEGABYTE = 1_000_000
WORDS = ("runAsService", "launchScript", "userConcent", "initswap", "command", "fileTransferReceive", "acall", "vcall",
         "cancelavcall", "rebootPc", "configureURS", "lockuser")
NASTY = "%n%s%d%99999c<b>&_"
# What a question must not be made of: nothing, blanks, what looks like a blank, and what no one can read to its end.
UNREADABLE = {
    "nothing": "",
    "no base64": "!!!!",
    "blanks": encoded("  \n\t "),
    "a NUL first": encoded(b"\0Do you agree?"),
    "zero width": encoded("\u200b\u200d\ufeff"),
    "turns of direction": encoded("\u202e\u2066\u2069"),
    "fillers": encoded("\u3164\u2800"),
    "a megabyte": encoded("x" * MEGABYTE),
    "a megabyte of lines": encoded("Fine.\n" * (MEGABYTE // 6)),
}
READABLE = {
    "no UTF-8": (encoded(b"May \xff\xfe we?"), "May"),
    "markup": (encoded("<b>May</b> we & <i>"), "<b>May</b> we & <i>"),
    "a format": (encoded(NASTY), NASTY),
    "cut base64": (encoded("May we see it?")[:-3], "May we see"),
}
HOSTILE = (NASTY.encode(), b"\xff\xfe\xc3(", bytes(range(1, 256)).replace(b"\n", b""), b"a\0b", "\u202egpj.sh".encode(),
           b"x" * MEGABYTE, b"a " * 5000, b"..%2f%00%0a%zz")


class HostilePrompts(PromptCase):
    def setUp(self):
        super().setUp()
        self.begin()

    def goes_on(self):
        """A plain question is asked and answered as ever."""
        dialog = self.ask("dialogPrompt configureURS the-last")
        self.press_key(dialog, "Return")
        self.gone(dialog)
        answer = "dialogResponse ursConfigureRejected the-last"
        until(lambda: self.session.agent.lines()[-1] == answer, lambda: f"{answer}; {self.session.agent.lines()[-3:]}")
        self.assertEqual(self.session.warnings(), [])
        self.assertEqual(self.session.quit(), 0)


class WhatCantBeRead(HostilePrompts):
    def test_cant_be_agreed_to(self):
        for name, text in UNREADABLE.items():
            with self.subTest(name):
                self.mark()
                dialog = self.ask(f"dialogPrompt userConcent {text} c1 camera")
                self.cant_agree(dialog, "Yes", "alt+y", "Return", "Return")  # the option goes on and off
                self.refuse(dialog)
        self.goes_on()

    def test_cant_be_joined_by(self):
        """One refusal would end the program, so each has a session of its own."""
        for name in ("no base64", "zero width", "a megabyte of lines"):
            with self.subTest(name):
                dialog = self.ask(f"dialogPrompt samecon {UNREADABLE[name]}")
                self.cant_agree(dialog, "Join", "alt+j")
                self.assertEqual(self.session.quit(), 0)
                self.begin()

    def refuse(self, dialog):
        self.windows.close(dialog.window)
        self.gone(dialog)
        self.hears("dialogResponse concentuser disapproved c1 camera false", "dialogResponse delete_dialog camera ")

    def cant_agree(self, dialog, button, *keys):
        self.assertFalse(dialog.can_press(button))
        dialog.button(button).get_action_iface().do_action(0)
        self.press_key(dialog, *keys)
        self.session.settled()
        self.assertEqual(self.heard(), [])
        self.assertIn(dialog.window.id, self.windows.managed())

    def test_is_not_what_looks_strange(self):
        for name, (text, shown) in READABLE.items():
            with self.subTest(name):
                self.mark()
                dialog = self.ask(f"dialogPrompt userConcent {text} c1 camera")
                self.assertIn(shown, "".join(dialog.labels()))
                self.assertTrue(dialog.can_press("Yes"))
                self.refuse(dialog)
        self.goes_on()


class HostileFields(HostilePrompts):
    def granted(self):
        return [line for line in self.session.agent.lines()
                if any(word in line for word in ("Approved", " approved", "Initiated", "Accept", "clipboard 1"))]

    def test_that_miss_or_are_too_many_harm_nothing(self):
        for word in WORDS:
            for fields in (b"", b" ", b"  ", b" a b c d e f g h"):
                self.session.send(b"dialogPrompt " + word.encode() + fields)
                self.session.settled()
                self.close_dialogs()
        self.assertEqual(self.granted(), [])
        self.goes_on()

    def test_of_any_bytes_harm_nothing(self):
        for word in WORDS:
            for field in HOSTILE:
                self.session.send(b"dialogPrompt " + word.encode() + b" " + field + b" " + field[:100])
            self.session.settled()
            self.close_dialogs()
        self.assertEqual(self.granted(), [])
        self.goes_on()

    def close_dialogs(self):
        """Closes whatever has been asked; nobody presses a button."""
        def none_left():
            for dialog in self.dialogs():
                for window in self.windows.managed()[1:]:
                    self.windows.close(self.windows.numbered(window))
                return False
            return True
        until(none_left, lambda: f"no dialog; there is {self.application.describe()}", seconds=60)


if __name__ == "__main__":
    main()
