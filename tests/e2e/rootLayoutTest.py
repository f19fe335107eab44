"""Where each kind of session keeps its log, pipes and pictures, in a throw-away copy of the file system."""

import os

from logFile import LogFile
from session import RESOURCES, SANDBOX, Home, SessionCase, main
from waiting import until

MACHINE, REACH, BARE = "/usr/local/Brindle", "/usr/local/OstrelReach", "/usr/local/.brindle"


class RootCase(SessionCase):
    """The places of a root installation are links into the test's own folder, so that they can be looked at."""

    def start_root(self, kind, logs, pipes, resources=None, options=(), with_home=False, setup="", **more):
        home = Home(resources=False)
        places = home.path / "places"
        steps = []
        for place, name in ((logs, "logs"), (pipes, "pipes")):
            (places / name).mkdir(parents=True)
            steps.append(f"mkdir -p $(dirname {place}); rm -rf {place}; ln -s {places / name} {place}")
        if resources:
            steps.append(f"mkdir -p $(dirname {resources}); ln -s {RESOURCES} {resources}")
        home.log, home.pipes = LogFile(places / "logs/ui.log"), places / "pipes"
        arguments = ["-u", kind, *(["-p", str(home.path)] if with_home else []), *options]
        return self.start(home=home, kind=kind, arguments=arguments, wrapper=[SANDBOX, "; ".join([*steps, setup])],
                          **more).ready()

    def pipes_are(self, session, folder):
        self.assertEqual(session.log.count(f"pipe created {folder}/Status"), 1, session.log.messages())
        self.assertEqual(session.log.count(f"pipe created {folder}/myfifo"), 1)
        session.agent.expect("SendSessionDetails")

    def has_pictures(self, session):
        """A missing style sheet would be complained about."""
        self.assertNotIn("error parsing css", session.log.text())
        self.assertEqual(session.warnings(), [])


class EachInstallation(RootCase):
    def test_of_a_service_for_one_user(self):
        # At its own speed: the end gives a thread a tenth of a second to remove its pipe.
        session = self.start_root("UrsUserSession", f"/var/log/Brindle/{os.getuid()}/Logs", f"{MACHINE}/temp",
                                  f"{MACHINE}/Resource", speed=1)
        self.pipes_are(session, f"{MACHINE}/temp")
        self.has_pictures(session)
        self.assertEqual(session.log.count("root Path Set"), 0)
        self.assertIsNone(session.application.look("push button", "More"))
        self.assertEqual(session.quit(), 0)
        self.assertEqual(os.listdir(session.home.pipes), ["myfifo"])

    def test_of_the_reach_product(self):
        session = self.start_root("oreach", "/var/log/OstrelReach", f"{REACH}/temp", f"{REACH}/Resource")
        self.pipes_are(session, f"{REACH}/temp")
        self.has_pictures(session)
        self.assertIsNone(session.log.has_in_order("root Path Set", "Window title: Brindle",
                                                   "Settings title as OstrelReach"))
        session.windows.find("Ostrel Reach  ")

    def test_of_any_other_kind(self):
        session = self.start_root("somethingelse", "/var/log/Brindle", f"{MACHINE}/temp", f"{MACHINE}/Resource")
        self.pipes_are(session, f"{MACHINE}/temp")
        self.has_pictures(session)
        self.assertEqual(session.log.count("root Path Set"), 1)
        self.assertEqual(session.log.count("session is of Type somethingelse "), 1)

    def test_of_remote_access_without_a_home(self):
        session = self.start_root("ras", f"{BARE}/Brindle/Logs", f"{BARE}/temp", "/.brindle/Brindle/Resource")
        self.pipes_are(session, f"{BARE}/temp")
        self.has_pictures(session)
        self.assertEqual(session.log.count("User Path Set"), 1)
        self.assertEqual(session.log.count(
            f"productName: , ui pipe {BARE}/temp/myfifo, st pipe {BARE}/temp/Status"), 1)

    def test_of_a_service_without_any_folder_still_shows_its_window(self):
        session = self.start(kind="UrsUserSession", arguments=["-u", "UrsUserSession"], pings=False,
                             wrapper=[SANDBOX, f"rm -rf {MACHINE} /var/log/Brindle"], agent=False)
        session.application.find("push button", "Chat")
        self.assertFalse(session.log.path.exists())


class ACloudProduct(RootCase):
    ICON = "/usr/local/ostrel/fleet_agent/images/FC_icon.svg"

    def start_cloud(self, code, setup):
        return self.start_root("UrsUserSession", f"/var/log/Brindle/{os.getuid()}/Logs", f"{MACHINE}/temp",
                               f"{MACHINE}/Resource", options=["-n", code], setup=setup)

    def test_has_its_desktop_entry_beside_all_others(self):
        for code, title in (("FLEET_CLOUD", "Ostrel Fleet Console"), ("REACH_CLOUD", "Ostrel Reach  ")):
            with self.subTest(code):
                home = Home()
                self.addCleanup(home.remove)
                applications = home.path / "applications"
                applications.mkdir()
                session = self.start_cloud(
                    code, f"rm -rf /usr/share/applications; ln -s {applications} /usr/share/applications")
                entry = (applications / "Brindle.desktop").read_text()
                self.assertIn(f"Name={title}\nIcon={self.ICON}\n", entry)
                self.assertFalse(session.home.entry.exists())
                session.windows.find(title)
                self.assertEqual(session.quit(), 0)
                self.assertEqual(os.listdir(applications), [])

    def test_without_that_folder_says_so_and_goes_on(self):
        session = self.start_cloud("FLEET_CLOUD", "rm -rf /usr/share/applications")
        path = "/usr/share/applications/Brindle.desktop"
        self.assertEqual(session.log.count(f"Could not create desktop file: {path}"), 1)
        self.assertEqual(session.quit(), 0)
        self.assertEqual(session.log.count(f"Could not delete desktop file: {path}"), 1)
        until(lambda: "<ERROR>" in session.log.text(), "the level of these lines")


if __name__ == "__main__":
    main()
