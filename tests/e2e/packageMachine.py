"""Packages: what is in them, and machines that they are installed on and that go with their test."""

import datetime
import filecmp
import io
import os
import pathlib
import stat
import subprocess
import tarfile

from session import PICTURES, SANDBOX

TOP = pathlib.Path(__file__).parents[2]
FOLDER = PICTURES.parent / "brindlePackages"
BUILD = FOLDER / "build"
KINDS = ("machine", "reach", "user")
PLACES = {  # logs, pipes and resources
    "machine": ("/var/log/Brindle", "/usr/local/Brindle/temp", "/usr/local/Brindle/Resource"),
    "reach": ("/var/log/OstrelReach", "/usr/local/OstrelReach/temp", "/usr/local/OstrelReach/Resource"),
    "user": (".brindle/Brindle/Logs", ".brindle/temp", ".brindle/Brindle/Resource"),
}
PROGRAMS = {
    "machine": "/usr/local/Brindle/bin/brindle-ui",
    "reach": "/usr/local/OstrelReach/bin/brindle-ui",
    "user": "/usr/lib/brindle-ui-user/home/.brindle/Brindle/bin/brindle-ui",
}
GROUPS = {"machine": "brindle", "reach": "ostrelreach"}
_BUILD_SECONDS = 600
_SECONDS = 60
# What the package manager and its triggers keep for themselves.
_KEPT = ("/var/lib/dpkg/", "/var/cache/", "/var/log/dpkg.log")


def run(*command, seconds=_SECONDS, **options):
    """A command that has to succeed, and what it says."""
    result = subprocess.run([str(word) for word in command], timeout=seconds, stdin=subprocess.DEVNULL,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)
    if result.returncode != 0:
        raise AssertionError(f"{command} ends with {result.returncode}:\n{result.stdout}")
    return result.stdout


def make_packages():
    """Makes all packages; gives a Package for each kind of installation."""
    run(TOP / "scripts/package", BUILD, FOLDER / "out", seconds=_BUILD_SECONDS)
    found = sorted((FOLDER / "out").iterdir())
    if [path.name.split("_")[0] for path in found] != [f"brindle-ui-{kind}" for kind in KINDS]:
        raise AssertionError(f"scripts/package leaves {found}")
    return {kind: Package(path) for kind, path in zip(KINDS, found)}


class Package:
    def __init__(self, path):
        self.path = path
        self.name = path.name.split("_")[0]

    def field(self, name):
        return run("dpkg-deb", "--field", self.path, name).strip()

    def entries(self):
        """Path of everything in the package, with its rights and owner: "/usr/": "drwxr-xr-x root/root"."""
        found = {}
        for line in run("dpkg-deb", "--contents", self.path).splitlines():
            rights, owner, _, _, _, path = line.split(None, 5)
            found[path.removeprefix(".")] = f"{rights} {owner}"
        return found

    def dates(self):
        """Every date that something in the package bears, as UTC."""
        archive = subprocess.run(["dpkg-deb", "--fsys-tarfile", str(self.path)], check=True, timeout=_SECONDS,
                                 stdout=subprocess.PIPE).stdout
        with tarfile.open(fileobj=io.BytesIO(archive)) as content:
            return {str(datetime.datetime.utcfromtimestamp(member.mtime)) for member in content}

    def files(self):
        return {path for path in self.entries() if not path.endswith("/")}

    def unpack(self, folder):
        run("dpkg-deb", "--extract", self.path, folder)

    def scripts(self, folder):
        """The maintainer scripts, as files."""
        run("dpkg-deb", "--control", self.path, folder)
        return {path.name: path for path in pathlib.Path(folder).iterdir() if path.name not in ("control", "md5sums")}


def _difference(copy, original):
    """How a file of the layer over a file system differs from what it lies over; None where it does not."""
    status = copy.lstat()
    if stat.S_ISCHR(status.st_mode) and status.st_rdev == 0:
        return "-"
    if not os.path.lexists(original):
        return "+"
    if stat.S_ISREG(status.st_mode) and not filecmp.cmp(copy, original, shallow=False):
        return "~"
    return None


class Machine:
    """A throw-away copy of this one; only root can install there.

    triggers: other packages do their part of each change (index of manual pages, menus), which takes seconds
    """

    def __init__(self, triggers=False):
        self._dpkg = ["dpkg", "--triggers" if triggers else "--no-triggers"]
        self._holder = subprocess.Popen([SANDBOX, "", "/bin/sh", "-c", "echo there; exec sleep infinity"],
                                        stdout=subprocess.PIPE, stdin=subprocess.DEVNULL, text=True)
        if self._holder.stdout.readline() != "there\n":
            raise AssertionError("no copy of the file system")
        self.inside = ["nsenter", f"--target={self._holder.pid}", "--mount", "--root", "--wdns=/"]
        self._root = pathlib.Path(f"/proc/{self._holder.pid}/root")

    def run(self, *command):
        return run(*self.inside, *command, env={**os.environ, "PATH": "/usr/sbin:/usr/bin:/sbin:/bin"})

    def runs(self, *command):
        """Whether a command succeeds."""
        try:
            self.run(*command)
        except AssertionError:
            return False
        return True

    def wrapper(self, *command):
        """For a session whose program is this command, given the session's options."""
        return [*self.inside, "/bin/sh", "-c", 'program=$1; shift 2; exec $program "$@"', "sh",
                " ".join(str(word) for word in command)]

    def path(self, place):
        """A place of that machine as this process gets at it."""
        return self._root / place.lstrip("/")

    def install(self, package):
        self.run(*self._dpkg, "--install", package.path)

    def remove(self, package):
        self.run(*self._dpkg, "--remove", package.name)

    def purge(self, package):
        self.run(*self._dpkg, "--purge", package.name)

    def changes(self):
        """What differs from the machine that this one is a copy of: "+" is new, "-" is gone, "~" is another file."""
        upper = self.path("/tmp/brindleSandbox/upper")
        found = set()
        for changed in upper.rglob("*"):
            place = pathlib.Path("/", changed.relative_to(upper))
            kind = _difference(changed, place)
            # What changes the users' and groups' files keeps the former one, with a "-" at its end. A build that counts
            # which lines run writes its counters.
            if kind and not str(place).startswith(_KEPT) and not place.name.endswith(("-", ".gcda")):
                found.add(f"{kind} {place}")
        return found

    def group(self, name):
        """Number of a group."""
        return int(self.run("getent", "group", name).split(":")[2])

    def discard(self):
        self._holder.kill()
        self._holder.wait()
        self._holder.stdout.close()
