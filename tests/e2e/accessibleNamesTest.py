"""Every control of the window says what it is to assistive technology."""

from screen import click, everything, shown
from session import WholeWindowCase, main

CONTROLS = {"push button", "toggle button", "check box", "text", "entry", "menu item", "combo box", "radio button"}
NAMES = ["Participant", "Chat", "File Transfer", "Annotation", "More", "Download Chat", "Send File", "Pen", "Rectangle",
         "Ellipse", "Line", "Eraser", "Clear Screen", "Pause Screen Sharing"]


class TheWindow(WholeWindowCase):
    def open_everything(self):
        for button, role, content in (("Participant", "label", "No participant has joined"), ("Chat", "text", "Message"),
                                      ("File Transfer", "push button", "Send File"),
                                      ("Annotation", "push button", "Pen")):
            click(self.application.find("push button", button))
            self.application.find(role, content)
        self.session.send("sessionStatus participantsAdd Ann%20Lee 42 true")
        self.application.has_label("Ann Lee")

    def controls(self):
        return [(a.get_role_name(), a.get_name()) for a in everything(self.application.root)
                if a.get_role_name() in CONTROLS and shown(a)]

    def test_names_every_control(self):
        self.open_everything()
        controls = self.controls()
        self.assertEqual([role for role, name in controls if not name.strip()], [], controls)
        names = [name for _, name in controls]
        for name in [*NAMES, "More: Ann Lee"]:
            self.assertIn(name, names)
        self.assertEqual(len(names), len(set(names)), names)

    def test_names_the_sharing_button_by_what_it_does(self):
        self.session.send("sessionStatus Connected")
        self.session.send("sessionStatus disconnected")
        self.application.find("push button", "Resume Screen Sharing")
        self.session.send("sessionStatus Connected")
        self.application.find("push button", "Pause Screen Sharing")

    def test_is_named_after_the_product(self):
        self.application.find("frame", "Brindle")


if __name__ == "__main__":
    main()
