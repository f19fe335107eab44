"""The controls of the window under a real pointer and keyboard, and the lines that they send."""

import os
import select
import time

from keyboard import key
from pixels import Pixels
from screen import click, grab_focus, sensitive, xdotool
from session import RESOURCES, SessionCase, main
from waiting import stays, until

PAUSE, RESUME = "Pause Screen Sharing", "Resume Screen Sharing"


class TheSharingButton(SessionCase):
    def setUp(self):
        super().setUp()
        self.session = self.start().ready()
        self.application = self.session.application

    def ready_button(self, name):
        button = self.application.find("push button", name)
        until(lambda: sensitive(button), f"{name} can be clicked")
        return button

    def test_waits_for_the_agent_after_the_start(self):
        button = self.application.find("push button", PAUSE)
        self.application.has_label("Connecting...")
        self.assertFalse(sensitive(button))
        click(button)
        self.session.settled()
        self.assertEqual(self.session.agent.lines(), [])

    def test_pauses_and_resumes_by_pointer(self):
        session, application = self.session, self.application
        session.send("sessionStatus Connected")
        click(self.ready_button(PAUSE))
        session.agent.expect("buttonClicked stop")
        application.has_label("Sharing has been disabled!")
        self.assertFalse(sensitive(application.find("push button", RESUME)))
        session.send("sessionStatus disconnected")
        click(self.ready_button(RESUME))
        session.agent.expect("buttonClicked stop", "buttonClicked start")
        application.has_label("Connecting")
        self.assertFalse(sensitive(application.find("push button", PAUSE)))
        session.send("sessionStatus Connected")
        click(self.ready_button(PAUSE))
        session.agent.expect("buttonClicked stop", "buttonClicked start", "buttonClicked stop")
        self.assertEqual(session.warnings(), [])

    def test_shows_the_technician_again_after_a_pause(self):
        session = self.session
        session.send("sessionStatus TECH-NAME Ann%20Lee")
        click(self.ready_button(PAUSE))
        self.application.has_label("Sharing has been disabled!")
        session.send("sessionStatus disconnected")
        click(self.ready_button(RESUME))
        self.application.has_label("Ann Lee")

    def test_works_by_keyboard(self):
        self.session.send("sessionStatus Connected")
        button = self.ready_button(PAUSE)
        self.session.windows.wait_focus("Brindle")
        grab_focus(button)
        key("space")
        self.session.agent.expect("buttonClicked stop")

    def test_shows_what_the_next_click_does(self):
        pixels, session = Pixels(), self.session
        session.send("sessionStatus Connected")
        pause = self.ready_button(PAUSE)
        xdotool("mousemove", 5, 5)
        until(lambda: pixels.shows(pause, RESOURCES / "pause.png"), "the pause picture")
        click(pause)
        session.send("sessionStatus disconnected")
        resume = self.ready_button(RESUME)
        xdotool("mousemove", 5, 5)
        until(lambda: pixels.shows(resume, RESOURCES / "play.png"), "the play picture")

    def test_sends_stop_at_the_first_click_of_an_agent_started_session(self):
        self.session.quit()
        session = self.start(kind="ras").ready()
        button = session.application.find("push button", PAUSE)
        until(lambda: sensitive(button), "the button can be clicked")
        click(button)
        session.agent.expect("SendSessionDetails", "buttonClicked stop")


class TheSettingsMenu(SessionCase):
    def setUp(self):
        super().setUp()
        self.session = self.start().ready()
        self.button = self.session.application.find("push button", "More")

    def test_asks_for_the_web_site_by_pointer(self):
        click(self.button)
        click(self.session.application.find("menu item", "Go to Website"))
        self.session.agent.expect("buttonClicked settings")
        self.session.application.gone("menu item", "Go to Website")

    def test_asks_for_the_web_site_by_keyboard(self):
        self.session.windows.wait_focus("Brindle")
        grab_focus(self.button)
        key("space")
        self.session.application.find("menu item", "Go to Website")
        key("Down", "Return")
        self.session.agent.expect("buttonClicked settings")

    def test_closes_without_a_line(self):
        click(self.button)
        self.session.application.find("menu item", "Go to Website")
        key("Escape")
        self.session.application.gone("menu item", "Go to Website")
        self.session.settled()
        self.assertEqual(self.session.agent.lines(), [])


class AnAgentThatReadsBadly(SessionCase):
    def click_pause(self, session):
        session.send("sessionStatus Connected")
        button = session.application.find("push button", PAUSE)
        until(lambda: sensitive(button), "the button can be clicked")
        click(button)

    def test_and_never_reads_does_not_keep_the_program_from_ending(self):
        session = self.start(agent=False, speed=1).ready()
        self.click_pause(session)
        session.log.expect(" Stop button has been pressed ")
        session.send("sessionStatus stillheard")
        session.log.expect("Unhandled message  stillheard")
        stays(session.alive, "the program waits for its reader", seconds=0.5)
        session.send("exit")
        began = time.monotonic()
        self.assertEqual(session.wait(), 0)
        self.assertLess(time.monotonic() - began, 5)  # a tenth of a second, and room for a busy machine
        self.assertEqual(session.log.messages()[-1], "freed meamory")

    def test_and_reads_late_gets_the_line_all_the_same(self):
        session = self.start(agent=False).ready()
        self.click_pause(session)
        session.log.expect(" Stop button has been pressed ")
        descriptor = os.open(session.home.pipes / "myfifo", os.O_RDONLY)
        self.addCleanup(os.close, descriptor)
        self.assertEqual(self.read_to_end(descriptor), b"buttonClicked stop\n")

    def test_and_closes_in_the_middle_costs_one_line(self):
        session = self.start(agent=False).ready()
        pipe = session.home.pipes / "myfifo"
        # More than a pipe holds, so that the reader can go while the program still writes.
        participant = "i" * 200_000
        session.send(f"sessionStatus participantsAdd Ann {participant} true")
        application = session.application
        click(application.find("push button", "Participant"))
        click(application.find("push button", "More: Ann"))
        click(application.find("menu item", "Swap Screen"))
        descriptor = os.open(pipe, os.O_RDONLY)
        self.assertTrue(select.select([descriptor], [], [], 10)[0])
        os.close(descriptor)
        session.log.expect(f"Error opening file {pipe}: Broken pipe")
        self.click_pause(session)
        descriptor = os.open(pipe, os.O_RDONLY)
        self.addCleanup(os.close, descriptor)
        self.assertEqual(self.read_to_end(descriptor), b"buttonClicked stop\n")
        self.assertTrue(session.alive())

    @staticmethod
    def read_to_end(descriptor):
        text = b""
        while piece := os.read(descriptor, 65536):
            text += piece
        return text


if __name__ == "__main__":
    main()
