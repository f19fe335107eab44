"""A whole session with the agent simulator in the agent's place."""

from screen import click, sensitive
from session import SIMULATOR, Home, SessionCase, main
from waiting import until

SCRIPT = """ping on 1000
send sessionStatus Connected
techname Ann Lee
participant add 42 Ann Lee true
expect buttonClicked stop timeout 60000
send sessionStatus disconnected
expect buttonClicked start timeout 60000
send sessionStatus Connected
expect buttonClicked exit timeout 60000
exit 0
"""


class AWholeSession(SessionCase):
    def test_is_played_with_the_simulator(self):
        home = Home()
        (home.product / "bin/main").symlink_to(SIMULATOR)
        script, record = home.path / "script", home.path / "record"
        script.write_text(SCRIPT)
        session = self.start(home=home, speed=1, agent=False, environment={
            "BRINDLE_AGENT_SCRIPT": str(script), "BRINDLE_AGENT_RECORD": str(record), "BRINDLE_AGENT_EXIT": "0"})
        session.log.expect("received techincian name Ann Lee ")
        application = session.application
        application.has_label("Ann Lee")
        for name, word in (("Pause Screen Sharing", "stop"), ("Resume Screen Sharing", "start")):
            button = application.find("push button", name)
            until(lambda: sensitive(button), f"{name} can be clicked")
            click(button)
            until(lambda: f"< buttonClicked {word}" in record.read_text(), record.read_text)  # as a text of its own
        windows = session.windows
        windows.close(windows.find("Brindle"))
        click(application.find("push button", "Yes"))
        self.assertEqual(session.wait(), 0)
        until(lambda: "< buttonClicked exit" in record.read_text(), record.read_text)
        lines = [line.split(None, 2)[2] for line in record.read_text().splitlines() if " < buttonClicked" in line]
        self.assertEqual(lines, [r"buttonClicked stop\n", r"buttonClicked start\n", r"buttonClicked exit\n"])


if __name__ == "__main__":
    main()
