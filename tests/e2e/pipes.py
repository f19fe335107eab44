"""The agent's side of both pipes."""

import errno
import fcntl
import os
import select
import struct
import termios
import threading
import time

from waiting import until


class PipeReader:
    """Reads a FIFO to end of file again and again; loses nothing between two rounds, as the next read end is open
    before the last one is closed. Waits for the FIFO to be made."""

    def __init__(self, path):
        self.path = str(path)
        self.texts = []  # one entry a writer session, bytes
        self._stop = threading.Event()
        self._thread = threading.Thread(target=self._read_on, daemon=True)
        self._thread.start()

    def lines(self):
        """All lines in order, without their newlines."""
        return b"".join(self.texts).decode("utf-8", "surrogateescape").split("\n")[:-1]

    def expect(self, *lines, after=0, seconds=15):
        """Waits until exactly these lines have come since the first `after` ones."""
        until(lambda: len(self.lines()) >= after + len(lines), lambda: self.lines()[after:], seconds)
        if self.lines()[after:] != list(lines):
            raise AssertionError(f"the agent received {self.lines()[after:]}, not {list(lines)}")

    def stop(self):
        self._stop.set()
        self._thread.join()

    def _open(self):
        while not self._stop.is_set():
            try:
                return os.open(self.path, os.O_RDONLY | os.O_NONBLOCK)
            except OSError as error:
                if error.errno != errno.ENOENT:
                    raise
                time.sleep(0.005)
        return None

    def _read_on(self):
        current = self._open()
        while current is not None and not self._stop.is_set():
            if not self._readable(current):
                continue
            text = self._read_to_end(current)
            if text:
                self.texts.append(text)
            following = self._open()
            os.close(current)
            current = following
        if current is not None:
            os.close(current)

    def _read_to_end(self, descriptor):
        text = b""
        while not self._stop.is_set():
            try:
                piece = os.read(descriptor, 65536)
            except BlockingIOError:
                self._readable(descriptor)
                continue
            if not piece:
                break
            text += piece
        return text

    @staticmethod
    def _readable(descriptor):
        poller = select.poll()
        poller.register(descriptor, select.POLLIN)
        return poller.poll(20)


def unread_bytes(pipe):
    """How much of what was written to a FIFO waits for its reader; either end will do."""
    return struct.unpack("i", fcntl.ioctl(pipe, termios.FIONREAD, bytes(4)))[0]


def send_text(path, text, seconds=15):
    """Writes one text in one open-write-close cycle; a FIFO that nobody reads fails at the deadline."""
    data = text if isinstance(text, bytes) else text.encode()
    end = time.monotonic() + seconds
    descriptor = _open_to_write(str(path), end)
    try:
        os.set_blocking(descriptor, False)
        poller = select.poll()
        poller.register(descriptor, select.POLLOUT)
        while data:
            if time.monotonic() > end:
                raise TimeoutError(f"{path} takes no more")
            if poller.poll(50):
                try:
                    data = data[os.write(descriptor, data):]
                except BlockingIOError:
                    pass
    finally:
        os.close(descriptor)


def _open_to_write(path, end):
    while True:
        try:
            return os.open(path, os.O_WRONLY | os.O_NONBLOCK)
        except OSError as error:
            if error.errno not in (errno.ENXIO, errno.ENOENT) or time.monotonic() > end:
                raise
            time.sleep(0.002)
