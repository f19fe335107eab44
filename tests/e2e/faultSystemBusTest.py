"""The system bus is missing, goes away or hangs, or the login manager on it does. Who sits at the machine stays unknown
then, and files are offered all the same."""

import signal
import time

from faultServers import NO_BUS, DesktopCase, new_bus
from offerCase import OPENED, OfferCase, SeatCase, accepted
from session import main
from waiting import until

END_SECONDS = 5  # two, and room for a machine that is busy with other tests
UNHURRIED = 1  # the bus library waits twenty-five seconds of the program's clock
NOBODYS, ANNS = "/tmp/", "/home/ann/Downloads"
NO_CONNECTION, NO_MANAGER = "g_bus_get_sync failed: ", "Get(ActiveSession) failed: "


class LookupCase(OfferCase, DesktopCase):
    def is_offered(self, folder):
        """The customer sees files that would go there, and takes them."""
        before = len(self.session.agent.lines())
        self.offer("a.txt")
        self.application.has_label(folder)
        self.press("Save")
        self.dialog_is_gone()
        self.session.agent.expect(OPENED, accepted(folder), after=before)

    def failed(self, step, times=1):
        def count():
            return sum(message.startswith(step) for message in self.session.log.messages())
        until(lambda: count() >= times, self.session.log.tail)
        self.assertEqual(count(), times, self.session.log.tail())


class ASystemBus(LookupCase):
    def test_that_is_missing_or_dead_never_keeps_an_offer_from_the_customer(self):
        dead = new_bus(self)
        dead.end()
        for name, address in (("missing", NO_BUS), ("no address", "x"), ("dead", dead.said)):
            with self.subTest(name):
                self.begin(environment={"DBUS_SYSTEM_BUS_ADDRESS": address})
                self.is_offered(NOBODYS)
                self.failed(NO_CONNECTION)
                self.ends(self.session)


class ASystemBusWithAnn(SeatCase, LookupCase):
    def test_that_dies_between_two_offers_costs_the_second_one_only_her_folder(self):
        self.begin_at_seat()
        self.is_offered(ANNS)
        self.bus.end()
        self.is_offered(NOBODYS)
        self.failed(NO_CONNECTION)
        self.ends(self.session)

    def test_that_hangs_for_a_while_costs_no_later_offer_anything(self):
        self.begin_at_seat(speed=UNHURRIED)
        self.is_offered(ANNS)
        for process, failure in ((self.bus.process, NO_CONNECTION), (self.manager, NO_MANAGER)):
            with self.subTest(failure):
                process.send_signal(signal.SIGSTOP)
                self.is_offered(NOBODYS)
                self.failed(failure)
                process.send_signal(signal.SIGCONT)
                self.is_offered(ANNS)
        self.ends(self.session)


class AHungSystemBus(LookupCase):
    ENDS = {
        "the agent says so": ("ras", lambda session: session.send("exit")),
        "the system says so": ("ras", lambda session: session.process.send_signal(signal.SIGTERM)),
        "the agent ends": ("normal", lambda session: session.home.agent_ends(0)),
    }

    def begin_lookup(self, kind):
        """An offer has come, and the bus is asked."""
        bus = new_bus(self)
        bus.process.send_signal(signal.SIGSTOP)
        self.session = self.start(kind=kind, environment={"DBUS_SYSTEM_BUS_ADDRESS": bus.said}).ready()
        self.offer("a.txt")
        until(lambda: any(line.function == "getActiveUser" for line in self.session.log.lines()), self.session.log.tail)

    def test_holds_up_no_end(self):
        for name, (kind, end) in self.ENDS.items():
            with self.subTest(name):
                self.begin_lookup(kind)
                start = time.monotonic()
                end(self.session)
                self.assertEqual(self.session.wait(), 0)
                self.assertLess(time.monotonic() - start, END_SECONDS)
                self.assertEqual(self.session.log.messages()[-1], "freed meamory")


if __name__ == "__main__":
    main()
