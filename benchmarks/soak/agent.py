"""The agent: writes lines, reads all that the companion says, and keeps account of both."""

import collections
import os
import re
import select
import threading

from processes import LogTail, until, write_text

_PLACE = b"dialogResponse dialog_position "
_CHAT = re.compile(rb"(chat [^\n]*?%0A)")  # a message that the customer typed has no newline of its own


class Agent:
    """The reading end is there from now on, so that the companion never waits."""

    def __init__(self, home):
        self._home = home
        self._pipe = os.open(home.pipes / "myfifo", os.O_RDWR | os.O_NONBLOCK)
        self._log = LogTail(home.log)
        self._heard = bytearray()
        self._lock = threading.Lock()
        self._markers = 0
        self._is_over = threading.Event()
        self.lines_sent = 0
        self.expected = collections.Counter()  # lines that the companion has to send
        self.expected_log = collections.Counter()  # messages that its log has to hold
        self._reader = threading.Thread(target=self._read_on)
        self._reader.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._is_over.set()
        self._reader.join()
        os.close(self._pipe)
        self._log.__exit__()

    def send(self, text, *logged):
        """Writes one text; each of its lines leaves one of these messages in the log, where any are given."""
        self.lines_sent += text.count("\n") + 1
        self.expected_log.update(logged)
        write_text(self._home.pipes / "Status", text + "\n")

    def send_and_wait(self, text, words):
        """Writes one text and waits for a log line with these words."""
        self._log.count(b"")
        self.send(text)
        self._log.wait(words.encode())

    def sees(self, words):
        """A question: has a log line with these words come from now on?"""
        self._log.count(b"")
        return lambda: self._log.count(words.encode())

    def settle(self):
        """Waits until the companion has worked through all lines, and its window has heard of them all."""
        self._markers += 1
        answer = f"Participant box not found for ID: settled-{self._markers}"
        self.expected_log.update(("received participants modify", answer))
        self.send_and_wait(f"sessionStatus participantsModify settled-{self._markers} true", answer)

    def mark(self):
        """All that was heard so far; for `has`."""
        with self._lock:
            return len(self._heard)

    def has(self, mark, *lines):
        """These have been heard since the mark."""
        with self._lock:
            heard = bytes(self._heard[mark:])
        return all(line.encode() in heard for line in lines)

    def expect(self, mark, *lines, seconds=20):
        """Waits for these lines; at the end of the run each must have come exactly as often as it was expected."""
        self.expected.update(lines)
        until(lambda: self.has(mark, *lines), lines, seconds)

    def heard(self):
        """How often each line was heard, but for reports of places; and how many those were."""
        with self._lock:
            lines = _CHAT.sub(rb"\1\n", bytes(self._heard)).split(b"\n")
        places = sum(line.startswith(_PLACE) for line in lines)
        return collections.Counter(line.decode() for line in lines if line and not line.startswith(_PLACE)), places

    def logged(self):
        """How often each expected message stands in the log."""
        counts = collections.Counter()
        with open(self._home.log, "rb") as log:
            for line in log:
                message = line.rstrip(b"\n").partition(b"]: ")[2].decode(errors="replace")
                if message in self.expected_log:
                    counts[message] += 1
        return counts

    def _read_on(self):
        while not self._is_over.is_set():
            if select.select([self._pipe], [], [], 0.1)[0]:
                piece = os.read(self._pipe, 65536)
                with self._lock:
                    self._heard += piece
