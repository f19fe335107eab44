"""The Debian packages: what is in them, and how they come, work and go."""

import gzip
import os
import pathlib
import re
import shutil
import stat
import tempfile
import unittest
import xml.etree.ElementTree

from hardening import assert_compiled_hardened, assert_hardened
from logFile import LogFile
from packageMachine import BUILD, GROUPS, KINDS, PLACES, PROGRAMS, TOP, Machine, make_packages, run
from screen import Application, Windows, click, sensitive
from session import SIMULATOR, Home, SessionCase, main
from waiting import until

PACKAGES = {}
# The customer pauses once, then the agent is done.
SCRIPT = """ping on 1000
send sessionStatus Connected
techname Ann Lee
expect buttonClicked stop timeout 60000
exit 0
"""


def setUpModule():
    PACKAGES.update(make_packages())


def new_folder(case):
    folder = tempfile.TemporaryDirectory(prefix="brindlePackage")
    case.addCleanup(folder.cleanup)
    return pathlib.Path(folder.name)


def changed(date_format):
    """When the newest entry of the history was written."""
    when = run("dpkg-parsechangelog", "-l", TOP / "packaging/changelog", "-S", "Timestamp").strip()
    return run("date", "--utc", f"--date=@{when}", f"+{date_format}").strip()


def resource_names():
    """What the program looks for in its resource directory."""
    layout = (TOP / "src/Utils/installLayout.cpp").read_text()
    languages = {path.stem for path in (TOP / "resources/languages").glob("*.json")}
    return {"brindle-gtk.css", "record.gif", *re.findall(r'"([\w-]+\.png)"', layout),
            *(f"locale/{language}/resource.json" for language in languages)}


def pause(application):
    """What a customer does who sees the window."""
    application.has_label("Ann Lee", seconds=60)
    button = application.find("push button", "Pause Screen Sharing")
    until(lambda: sensitive(button), "sharing can be paused")
    click(button)


class EachPackage(unittest.TestCase):
    def test_is_dated_by_its_history_and_not_by_the_clock(self):
        """So that the same sources give the same package."""
        for kind, package in PACKAGES.items():
            with self.subTest(kind):
                self.assertEqual(package.dates(), {changed("%Y-%m-%d %H:%M:%S")})

    def test_holds_the_program_and_every_resource(self):
        for kind, package in PACKAGES.items():
            with self.subTest(kind):
                entries, program = package.entries(), PROGRAMS[kind]
                self.assertEqual(entries[program], "-rwxr-xr-x root/root")
                resources = pathlib.PurePath(program).parents[1] / "Resource"
                self.assertLessEqual({f"{resources}/{name}" for name in resource_names()}, set(entries))
                self.assertEqual({rights for path, rights in entries.items() if path != program and path[-1] != "/"}
                                 - {"-rwxr-xr-x root/root"}, {"-rw-r--r-- root/root"})

    def test_holds_a_program_that_is_hardened(self):
        """What docs/security.md says about the built file."""
        for kind, package in PACKAGES.items():
            with self.subTest(kind):
                root = new_folder(self)
                package.unpack(root)
                assert_hardened(self, root / PROGRAMS[kind].lstrip("/"))
        assert_compiled_hardened(self, BUILD)

    def test_does_not_depend_on_the_folder_it_is_built_in(self):
        """The build's identifier is made of the whole file, debug information included."""
        program = (BUILD / "src/brindle-ui").read_bytes()
        self.assertIn(b"./src/main.cpp", program)
        for folder in (TOP, BUILD):
            self.assertNotIn(bytes(folder), program)

    def test_holds_no_program_of_the_agent(self):
        for kind, package in PACKAGES.items():
            with self.subTest(kind):
                programs = {path for path, rights in package.entries().items() if rights.startswith("-rwx")}
                self.assertEqual(programs - {"/usr/bin/brindle-user-install"}, {PROGRAMS[kind]})

    def test_stands_beside_the_others(self):
        counted = [path for package in PACKAGES.values() for path in package.files()]
        self.assertEqual(len(counted), len(set(counted)))

    def test_asks_for_the_libraries_that_its_program_is_linked_with(self):
        for kind, package in PACKAGES.items():
            with self.subTest(kind):
                wanted = {word.split()[0] for word in package.field("Depends").split(", ")}
                self.assertLessEqual({"libc6", "libgtk-3-0", "libglib2.0-0", "libcjson1", "libx11-6"}, wanted)
                self.assertEqual("passwd" in wanted, kind in GROUPS)  # makes the group
                self.assertIn("libwebkit2gtk", package.field("Recommends"))

    def test_satisfies_the_package_checker(self):
        run("lintian", "--allow-root", "--fail-on", "error,warning", *(package.path for package in PACKAGES.values()))

    def test_changes_the_system_with_scripts_that_stop_at_a_failure(self):
        for kind, package in PACKAGES.items():
            with self.subTest(kind):
                scripts = package.scripts(new_folder(self))
                self.assertEqual(sorted(scripts), ["postinst", "postrm", "prerm"] if kind in GROUPS else [])
                for script in scripts.values():
                    run("sh", "-n", script)
                    self.assertIn("\nset -e\n", script.read_text())
                    self.assertNotIn("@", script.read_text())  # everything was filled in


class WhatTheDesktopShows(unittest.TestCase):
    def setUp(self):
        self.root = new_folder(self)
        for package in PACKAGES.values():
            package.unpack(self.root)
        self.share = self.root / "usr/share"

    def test_is_a_valid_entry_that_no_session_deletes(self):
        entries = sorted((self.share / "applications").iterdir())
        self.assertEqual([entry.name for entry in entries],
                         ["com.brindle.ui.desktop", "com.brindle.ui.reach.desktop", "com.brindle.ui.user.desktop"])
        self.assertEqual(run("desktop-file-validate", *entries), "")

    def test_has_a_program_and_a_picture_that_are_there(self):
        for entry in (self.share / "applications").iterdir():
            fields = dict(line.split("=", 1) for line in entry.read_text().splitlines() if "=" in line)
            program = fields["Exec"].split()[0]
            self.assertTrue((self.root / "usr/bin" / program.lstrip("/")).exists()
                            or (self.root / program.lstrip("/")).exists(), fields["Exec"])
            self.assertTrue((self.share / f"icons/hicolor/scalable/apps/{fields['Icon']}.svg").exists())
            # The agent starts the companion, unless the customer does.
            self.assertEqual(fields["NoDisplay"], "false" if entry.name == "com.brindle.ui.user.desktop" else "true")

    def test_is_described_for_software_centres(self):
        files = sorted((self.share / "metainfo").iterdir())
        self.assertEqual(len(files), len(KINDS))
        for file in files:
            run("appstreamcli", "validate", "--no-net", "--pedantic", file)
            described = xml.etree.ElementTree.parse(file)
            self.assertEqual(file.name, described.findtext("id") + ".metainfo.xml")
            self.assertTrue((self.share / "applications" / described.findtext("launchable")).exists())
            released = described.find("releases/release")
            self.assertEqual(released.get("version"), PACKAGES["machine"].field("Version"))
            self.assertEqual(released.get("date"), changed("%Y-%m-%d"))

    def test_has_a_history_that_ends_with_this_version(self):
        for package in PACKAGES.values():
            history = gzip.decompress((self.share / "doc" / package.name / "changelog.gz").read_bytes()).decode()
            self.assertIn(f"({package.field('Version')})", history.splitlines()[0])


class TheManual(unittest.TestCase):
    def pages(self):
        root = new_folder(self)
        for package in PACKAGES.values():
            package.unpack(root)
        return sorted((root / "usr/share/man/man1").iterdir())

    def test_is_well_formed(self):
        pages = self.pages()
        self.assertEqual([page.name.removesuffix(".gz") for page in pages],
                         ["brindle-ui.1", "brindle-ui.1reach", "brindle-ui.1user", "brindle-user-install.1"])
        for page in pages:
            self.assertEqual(run("mandoc", "-Tlint", "-Wwarning", page), "")
            said = run("man", "--warnings", "--local-file", page, env={**os.environ, "LC_ALL": "C.UTF-8"})
            self.assertNotIn("warning:", said)

    def test_explains_every_option(self):
        page = (TOP / "docs/man/brindle-ui.1").read_text()
        letters = re.search(r'getopt\(argc, argv, "-([a-z:]+)"\)', (TOP / "src/Utils/installLayout.cpp").read_text())[1]
        self.assertEqual(sorted(re.findall(r"^\.It Fl (\w) Ar", page, re.MULTILINE)),
                         sorted(letters.replace(":", "")))


@unittest.skipUnless(os.geteuid() == 0, "packages are installed by root only: run the tests as root to see this")
class AnInstalledPackage(SessionCase):
    def setUp(self):
        self.machine = self.new_machine()
        super().setUp()

    def new_machine(self, **options):
        machine = Machine(**options)
        self.addCleanup(machine.discard)
        return machine

    def test_of_a_machine_works_and_goes_without_a_trace(self):
        self.comes_works_and_goes("machine", "service", "Brindle")

    def test_of_ostrel_reach_works_and_goes_without_a_trace(self):
        self.comes_works_and_goes("reach", "oreach", "Ostrel Reach  ")

    def test_of_single_users_goes_without_a_trace(self):
        package, machine = PACKAGES["user"], self.new_machine(triggers=True)
        machine.install(package)
        self.assertIn("--purge", machine.run("brindle-user-install", "--help"))
        self.assertIn("brindle-ui.1user.gz", machine.run("man", "--where", "brindle-ui"))
        machine.remove(package)
        self.assertEqual(machine.changes(), set())

    def test_lets_the_members_of_its_group_in_and_nobody_else(self):
        for kind, group in GROUPS.items():
            with self.subTest(kind):
                logs, pipes, resources = PLACES[kind]
                self.machine.install(PACKAGES[kind])
                member = ["setpriv", "--reuid=64000", "--regid=64000", f"--groups={self.machine.group(group)}"]
                outsider = ["setpriv", "--reuid=64001", "--regid=64001", "--clear-groups"]
                self.machine.run(*member, "mkfifo", f"{pipes}/Status")
                self.machine.run(*member, "touch", f"{logs}/ui.log")
                for user in (member, outsider):
                    self.machine.run(*user, "test", "-r", f"{resources}/logo.png")
                    self.machine.run(*user, "test", "-x", PROGRAMS[kind])
                    self.assertFalse(self.machine.runs(*user, "touch", f"{resources}/new"))
                self.assertFalse(self.machine.runs(*outsider, "test", "-e", f"{pipes}/Status"))
                self.assertFalse(self.machine.runs(*outsider, "test", "-e", f"{logs}/ui.log"))

    def test_leaves_alone_what_the_agent_has_put_beside_it(self):
        agent = "/usr/local/Brindle/bin/agent"
        self.machine.install(PACKAGES["machine"])
        self.machine.path(agent).touch()
        self.machine.purge(PACKAGES["machine"])
        self.assertEqual(self.machine.changes(),
                         {"+ /usr/local/Brindle", "+ /usr/local/Brindle/bin", "+ /usr/local/Brindle/bin/agent"})
        self.assertFalse(self.machine.path(PROGRAMS["machine"]).exists())

    def test_keeps_the_rights_that_an_administrator_has_laid_down(self):
        pipes = PLACES["machine"][1]
        self.machine.run("dpkg-statoverride", "--add", "root", "root", "0755", pipes)
        self.machine.install(PACKAGES["machine"])
        self.assertEqual(stat.S_IMODE(self.machine.path(pipes).stat().st_mode), 0o755)

    def comes_works_and_goes(self, kind, session_type, title):
        machine, package = self.machine, PACKAGES[kind]
        logs, pipes, resources = PLACES[kind]
        machine.install(package)
        self.assertLessEqual({f"+ {place}" for place in (logs, pipes, resources, PROGRAMS[kind])}, machine.changes())
        self.assertEqual(machine.run("dpkg", "--verify", package.name), "")
        self.play(kind, session_type, title)
        machine.install(package)  # an update keeps the log
        self.assertTrue(machine.path(f"{logs}/ui.log").exists())
        machine.run("mkdir", f"{resources}/locale/xx")  # a language added by hand
        machine.remove(package)
        self.assertFalse(machine.path(PROGRAMS[kind]).exists())
        self.assertFalse(machine.path(pipes).exists())
        self.assertTrue(machine.path(f"{logs}/ui.log").exists())
        machine.purge(package)
        self.assertEqual(machine.changes(), set())

    def play(self, kind, session_type, title):
        """A session that the agent starts, and that its customer pauses."""
        logs, pipes, _ = PLACES[kind]
        home = Home(resources=False)
        home.log = LogFile(self.machine.path(f"{logs}/ui.log"))
        script, record = home.path / "script", home.path / "record"
        script.write_text(SCRIPT)
        session = self.start(home=home, kind=session_type, speed=1, agent=False, pings=False,
                             arguments=["-u", session_type], wrapper=self.machine.wrapper(
                                 SIMULATOR, "--pipes", pipes, "--create-pipes", "--send-timeout", 60000,
                                 "--script", script, "--record", record, "--run", PROGRAMS[kind]))
        companion = until(lambda: [pid for pid, words in session.children().items() if words[:1] == [PROGRAMS[kind]]],
                          lambda: f"the companion runs, not only {session.children()}")[0]
        application = Application(companion)
        Windows().find(title)
        pause(application)
        self.assertEqual(session.wait(), 0, record.read_text())
        self.assertIn(r"< buttonClicked stop\n", record.read_text())
        until(lambda: not pathlib.Path(f"/proc/{companion}").exists(), "the companion ends with its agent")
        self.assertNotIn("error parsing css", home.log.text())
        self.assertEqual(session.warnings(), [])
        self.assertEqual(self.machine.path(f"{pipes}/myfifo").stat().st_gid, self.machine.group(GROUPS[kind]))


class AUsersInstallation(SessionCase):
    """Needs no rights: the package is only unpacked."""

    def setUp(self):
        super().setUp()
        folder = new_folder(self)
        PACKAGES["user"].unpack(folder)
        self.installer = folder / "usr/bin/brindle-user-install"
        self.skeleton = folder / "usr/lib/brindle-ui-user/home"
        self.home = new_folder(self)

    def install(self, *arguments):
        without_display = {name: value for name, value in os.environ.items() if "DISPLAY" not in name}
        return run(self.installer, *arguments, env={**without_display, "HOME": str(self.home)})

    def files(self):
        return {str(path.relative_to(self.home)) for path in self.home.rglob("*") if not path.is_dir()}

    def expected(self):
        return {str(path.relative_to(self.skeleton)) for path in self.skeleton.rglob("*") if not path.is_dir()}

    def test_holds_what_a_session_needs(self):
        self.install()
        self.assertEqual(self.files(), self.expected() | {".brindle/Brindle/brindle-ui.sha256"})
        self.assertNotIn("FAILED", run("sha256sum", "--check", ".brindle/Brindle/brindle-ui.sha256", cwd=self.home))
        for place in PLACES["user"][:2]:
            self.assertEqual(stat.S_IMODE((self.home / place).stat().st_mode), 0o700)

    def test_is_repaired_at_the_start_from_the_menu(self):
        self.install()
        product = self.home / ".brindle/Brindle"
        program, style = product / "bin/brindle-ui", product / "Resource/brindle-gtk.css"
        shutil.rmtree(product / "Resource/locale")
        style.write_text("changed")
        program.unlink()
        with self.assertRaises(AssertionError) as failed:  # the companion has no display
            self.install("--run")
        self.assertIn("cannot open display", str(failed.exception))
        self.assertEqual(self.files() - {".brindle/Brindle/Logs/ui.log"},
                         self.expected() | {".brindle/Brindle/brindle-ui.sha256"})
        for path in (program, style):
            self.assertEqual(path.read_bytes(), (self.skeleton / path.relative_to(self.home)).read_bytes())

    def test_is_left_alone_at_the_start_when_nothing_differs(self):
        self.install()
        program = self.home / ".brindle/Brindle/bin/brindle-ui"
        before = program.stat().st_ino
        with self.assertRaises(AssertionError):
            self.install("--run")
        self.assertEqual(program.stat().st_ino, before)

    def test_is_brought_up_to_date(self):
        former = self.skeleton / ".brindle/Brindle/Resource/former.png"
        former.touch()
        self.install()
        former.unlink()
        style = self.home / ".brindle/Brindle/Resource/brindle-gtk.css"
        style.write_text("")
        own = self.home / ".brindle/Brindle/Resource/own.png"
        own.touch()
        self.install()
        self.assertGreater(style.stat().st_size, 0)
        self.assertTrue(own.exists())
        self.assertEqual(len([name for name in self.files() if "former" in name]), 0)

    def test_goes_and_leaves_what_is_not_its_own(self):
        self.install()
        agent, log = self.home / ".brindle/Brindle/bin/main", self.home / ".brindle/Brindle/Logs/ui.log"
        for path in (agent, log):
            path.touch()
        os.mkfifo(self.home / ".brindle/temp/myfifo")
        self.install("--remove")
        self.assertEqual(self.files(), {str(path.relative_to(self.home)) for path in (agent, log)})
        self.install("--purge")
        self.assertEqual(self.files(), {str(agent.relative_to(self.home))})
        agent.unlink()
        self.install("--purge")
        self.assertEqual(list(self.home.iterdir()), [])

    def test_is_refused_where_there_is_no_home(self):
        for arguments in (["--home", str(self.home / "nowhere")], ["--home", "relative"], ["--home"], ["--other"],
                          ["--remove", "extra"]):
            with self.subTest(arguments), self.assertRaises(AssertionError):
                self.install(*arguments)
        self.assertEqual(list(self.home.iterdir()), [])

    def test_starts_at_once_from_the_menu(self):
        home = Home(resources=False)
        (home.product / "bin/main").symlink_to(SIMULATOR)
        script, record = home.path / "script", home.path / "record"
        script.write_text(SCRIPT)
        wrapper = ["/bin/sh", "-c", 'program=$1; shift 2; exec "$program" --run "$@"', "sh", self.installer]
        session = self.start(home=home, speed=1, agent=False, arguments=["-s", "ann@example.org"], wrapper=wrapper,
                             environment={"BRINDLE_AGENT_SCRIPT": str(script), "BRINDLE_AGENT_RECORD": str(record)})
        pause(session.application)
        self.assertEqual(session.wait(), 0)
        arguments = re.findall(r"# argv\[\d+\] (.*)", record.read_text())
        self.assertEqual(arguments[arguments.index("-applicationPath") + 1], str(home.path))
        self.assertEqual(arguments[arguments.index("-email") + 1], "ann@example.org")
        self.assertNotIn("error parsing css", home.log.text())
        self.assertEqual(session.warnings(), [])


if __name__ == "__main__":
    main()
