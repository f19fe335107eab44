"""The system bus is missing, or goes away."""

from faultServers import DesktopCase, NO_BUS, new_bus
from session import main
from waiting import until


class ASystemBus(DesktopCase):
    def test_that_is_missing_or_dies_never_keeps_a_question_from_the_customer(self):
        bus = new_bus(self)
        for name, address in (("missing", NO_BUS), ("no address", "x"), ("dead", bus.said)):
            with self.subTest(name):
                # The question whether to reboot goes by itself.
                session = self.start(speed=2, environment={"DBUS_SYSTEM_BUS_ADDRESS": address}).ready()
                bus.end()
                session.send("dialogPrompt rebootPc")
                session.application.find("dialog")
                session.send("dialogPrompt configureURS x")
                until(lambda: len(session.application.shown_all("dialog")) == 2, session.application.describe)
                session.settled()
                self.ends(session)


if __name__ == "__main__":
    main()
