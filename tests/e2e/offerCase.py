"""Files from the technician: how a test offers them, and who sits at the machine."""

import os
import subprocess

from faultServers import new_bus
from screen import click
from session import SANDBOX, SessionCase

DIALOG = "Receive File"
OPENED = "monitorData fileTransferRecive"
REFUSED = "dialogResponse FTCancel"


def accepted(path):
    return "dialogResponse FTAccept " + str(path).replace("/", "%2F")


class OfferCase(SessionCase):
    def begin(self, **options):
        self.session = self.start(kind="ras", **options).ready().heard()
        self.application = self.session.application
        self.before = len(self.session.agent.lines())

    def offer(self, fields):
        self.session.send(b"dialogPrompt fileTransferReceive " + (fields if isinstance(fields, bytes) else fields.encode()))

    def expect(self, *lines):
        self.session.agent.expect(*lines, after=self.before)

    def press(self, name):
        click(self.application.find("push button", name))

    def dialog_is_gone(self):
        self.application.gone("dialog", DIALOG)


class SeatCase(OfferCase):
    """Ann sits at the machine, as a login manager on a bus of its own says."""

    def login_manager(self, session_type):
        self.bus = new_bus(self)
        environment = {**os.environ, "DBUS_SYSTEM_BUS_ADDRESS": self.bus.said}
        self.manager = subprocess.Popen(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"],
                                        env=environment, stdout=subprocess.DEVNULL)
        self.addCleanup(self.manager.wait)
        self.addCleanup(self.manager.kill)

        def call(path, method, *arguments):
            subprocess.run(["gdbus", "call", "--system", "-d", "org.freedesktop.login1", "-o", path, "-m", method,
                            *arguments], env=environment, check=True, stdout=subprocess.DEVNULL)

        subprocess.run(["gdbus", "wait", "--system", "--timeout", "20", "org.freedesktop.login1"], env=environment,
                       check=True)
        call("/org/freedesktop/login1", "org.freedesktop.DBus.Mock.AddSession", "c1", "seat0", "2000", "ann", "true")
        call("/org/freedesktop/login1/session/c1", "org.freedesktop.DBus.Mock.UpdateProperties",
             "org.freedesktop.login1.Session", '{"Type": <"%s">}' % session_type)

    def begin_at_seat(self, session_type="x11", **options):
        """In a system of its own that has the user; the program may make folders there."""
        setup = ("grep -v '^ann:' /etc/passwd >/etc/passwd.new; echo 'ann:x:2000:2000::/home/ann:/bin/sh' "
                 ">>/etc/passwd.new; cp /etc/passwd.new /etc/passwd; mkdir -p /home/ann; chown 2000:2000 /home/ann; "
                 "umask 077")
        self.login_manager(session_type)
        self.begin(wrapper=[SANDBOX, setup], environment={"DBUS_SYSTEM_BUS_ADDRESS": self.bus.said}, **options)
