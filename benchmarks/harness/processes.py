"""The programs under measurement, and what the kernel says about them."""

import contextlib
import os
import pathlib
import select
import shutil
import signal
import subprocess
import sys
import time

START_DELAY = 4  # seconds that the program sleeps at every start
_PROCESS_CLOCK = 2  # what makes a process number the number of its clock
_LOOK_SECONDS, _LITTLE_SHARE = 0.01, 0.4  # little is less processor time than this in each such stretch ...
_QUIET_SECONDS = 0.3  # ... and quiet is when it was little all this time


def until(question, what, seconds=60, step=0.002):
    """Asks again and again until the answer is true, and gives it."""
    end = time.monotonic() + seconds
    while True:
        answer = question()
        if answer:
            return answer
        if time.monotonic() > end:
            raise TimeoutError(f"not within {seconds} s: {what}")
        time.sleep(step)


_FONTS = """<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts</dir>
  <cachedir>{cache}</cachedir>
  <include ignore_missing="yes">/etc/fonts/conf.d</include>
</fontconfig>
"""


def use_own_font_cache(folder):
    """From now on all programs share a font cache that nobody else spoils: a stale one costs a start three times its
    time."""
    settings = pathlib.Path(folder) / "fonts.conf"
    settings.write_text(_FONTS.format(cache=settings.parent / "fontCache"))
    os.environ["FONTCONFIG_FILE"] = str(settings)


def write_text(path, text):
    """Writes one text in one open-write-close cycle."""
    with open(path, "wb", buffering=0) as pipe:
        data = memoryview(text.encode())
        while data:
            data = data[pipe.write(data):]


class Process:
    """A running program with a process group of its own; ends with its `with` block."""

    def __init__(self, *command):
        self.started = time.monotonic()
        self._process = subprocess.Popen([str(part) for part in command], stdin=subprocess.DEVNULL,
                                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        self.pid = self._process.pid

    def __enter__(self):
        return self

    def __exit__(self, *_):
        with contextlib.suppress(ProcessLookupError):
            os.killpg(self.pid, signal.SIGKILL)
        self._process.wait()

    def ended(self):
        return self._process.poll() is not None

    def settle(self):
        """Waits until it has used no processor time for half a second."""
        quiet_since, before = time.monotonic(), self._processor_ticks()
        end = time.monotonic() + 30
        while time.monotonic() - quiet_since < 0.5:
            time.sleep(0.05)
            now = self._processor_ticks()
            if now != before:
                quiet_since, before = time.monotonic(), now
            if time.monotonic() > end:
                raise TimeoutError("never at rest")

    def memory(self):
        """KiB: (proportional share, private). Clean pages are left out of the second: they count as private or not
        depending on who else runs."""
        fields = {}
        for line in pathlib.Path(f"/proc/{self.pid}/smaps_rollup").read_text().splitlines()[1:]:
            name, value = line.split(":")
            fields[name] = int(value.split()[0])
        return fields["Pss"], fields["Private_Dirty"]

    def switches(self):
        """How often each thread went to sleep so far: {(id, name): count}."""
        counts = {}
        for task in pathlib.Path(f"/proc/{self.pid}/task").iterdir():
            status = dict(line.split(":", 1) for line in (task / "status").read_text().splitlines())
            counts[task.name, status["Name"].strip()] = int(status["voluntary_ctxt_switches"])
        return counts

    def handles(self):
        """Files, pipes and sockets that are open."""
        return len(list(pathlib.Path(f"/proc/{self.pid}/fd").iterdir()))

    def threads(self):
        return len(list(pathlib.Path(f"/proc/{self.pid}/task").iterdir()))

    def main_thread_ms(self):
        """Processor time of the thread that draws, so far."""
        return int(pathlib.Path(f"/proc/{self.pid}/task/{self.pid}/schedstat").read_text().split()[0]) / 1e6

    def wait_quiet(self, seconds=600):
        """Waits until the thread that draws has done little for a while. Gives the moment since when. What moves on the
        screen, such as a list that rolls to its end, is little."""
        since, before = time.monotonic(), self.main_thread_ms()
        end = since + seconds
        while time.monotonic() - since < _QUIET_SECONDS:
            time.sleep(_LOOK_SECONDS)
            now = self.main_thread_ms()
            if now - before > _LITTLE_SHARE * _LOOK_SECONDS * 1000:
                since = time.monotonic()
            before = now
            if since > end:
                raise TimeoutError("never quiet")
        return since

    def processor_ms(self):
        """Processor time of all its threads so far, of those that have ended, too."""
        return time.clock_gettime(~self.pid << 3 | _PROCESS_CLOCK) * 1000

    def _processor_ticks(self):
        fields = pathlib.Path(f"/proc/{self.pid}/stat").read_text().rsplit(")", 1)[1].split()
        return int(fields[11]) + int(fields[12])


class Home:
    """A folder with an installed program whose agent does nothing."""

    def __init__(self, build, path):
        self.build = pathlib.Path(build)
        self.path = pathlib.Path(path)
        subprocess.run(["cmake", "--install", self.build, "--prefix", self.path, "--component", "runtime"], check=True,
                       stdout=subprocess.DEVNULL)
        product = self.path / ".brindle/Brindle"
        self.program = product / "bin/brindle-ui"
        self.resources = product / "Resource"
        self.logs = product / "Logs"
        self.log = self.logs / "ui.log"
        self.pipes = self.path / ".brindle/temp"
        self.annotation = product / "bin/Annotation"
        agent = product / "bin/main"
        agent.unlink(missing_ok=True)
        shutil.copy(self.reference("quietAgent"), agent)

    def reference(self, name):
        return self.build / "benchmarks" / name

    def start(self, kind, *wrapper):
        """Starts the program with a fresh log."""
        self.log.unlink(missing_ok=True)
        return Process(*wrapper, self.program, "-u", kind, "-p", self.path, "-n", "Brindle")

    def start_reference(self, *arguments):
        return Process(self.reference("referenceWindow"), self.resources, *arguments)

    def warm_up(self, display):
        """The first GTK program of a display looks for its GL visuals and leaves them there for all others."""
        display.forget()
        with Process(self.reference("referenceMinimal")) as process:
            display.wait_for_map()
            process.settle()

    def make_pipes(self):
        for name in ("myfifo", "Status"):
            with contextlib.suppress(FileExistsError):
                os.mkfifo(self.pipes / name)

    def send(self, text):
        """The agent writes one text."""
        write_text(self.pipes / "Status", text)

    def wait_for_log(self, line_end, seconds=120):
        """Waits until the log's last lines hold one with this end. Gives the moment."""
        wanted = line_end.encode() + b"\n"
        until(lambda: wanted in self._log_tail(), f"{line_end!r} in the log", seconds, 0.0005)
        return time.monotonic()

    def _log_tail(self):
        with open(self.log, "rb") as log:
            log.seek(max(0, os.fstat(log.fileno()).st_size - 2000))
            return log.read()


@contextlib.contextmanager
def at_rest(display, start):
    """A program whose window is there and which has nothing left to do."""
    display.forget()
    with start() as process:
        display.wait_for_map()
        process.settle()
        yield process


def session(home, display):
    """The program at rest, in a session that it has started itself."""
    return at_rest(display, lambda: home.start("normal"))


def find_button(process, name):
    """The middle of a program's button on the screen."""
    program = pathlib.Path(__file__).with_name("placeOf.py")
    place = subprocess.run([sys.executable, program, str(process.pid), name], check=True, stdout=subprocess.PIPE,
                           text=True, timeout=60).stdout
    return map(int, place.split())


class LogTail:
    """Counts what is added to the log from now on."""

    def __init__(self, path):
        self._log = open(path, "rb")  # closed by the `with` block of the one who reads
        self._log.seek(0, os.SEEK_END)
        self._rest = b""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._log.close()

    def count(self, words):
        """How often these words stand in the lines that came since the last look."""
        *lines, self._rest = (self._rest + self._log.read()).split(b"\n")
        return sum(words in line for line in lines)

    def wait(self, words):
        """Waits for a line with these words."""
        until(lambda: self.count(words), f"{words!r} in the log", step=0.0005)


class Inbox:
    """The reading end of a FIFO, there from now on, so that no writer ever waits."""

    def __init__(self, path):
        self._descriptor = os.open(path, os.O_RDWR | os.O_NONBLOCK)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self._descriptor)

    def wait(self, seconds=5):
        """Waits for bytes. Gives the moment at which they were read, and the bytes."""
        if not select.select([self._descriptor], [], [], seconds)[0]:
            raise TimeoutError("nothing was written")
        data = os.read(self._descriptor, 65536)
        return time.monotonic(), data

    def wait_for(self, *texts, seconds=15):
        """Waits until all of these were written."""
        data = b""
        end = time.monotonic() + seconds
        while not all(text.encode() in data for text in texts):
            if time.monotonic() > end:
                raise TimeoutError(f"not written: {texts!r}; but {data!r}")
            with contextlib.suppress(TimeoutError):
                data += self.wait(0.5)[1]
