"""The inbound way under load: many texts, and many lines in one text."""

import dataclasses
import os
import statistics
import subprocess
import time

from processes import session
from table import Row, at_most

_TEXTS = 20000
_LINES = 100000
_GROW_ROUNDS = 3
SPEED_LIMIT = 2.0  # times as long as the flushed log writes alone
_MEMORY_LIMIT = 1.10


@dataclasses.dataclass
class Kind:
    """A line and what it leaves in the log: (function, text), an empty text for the entry into the function."""
    line: str
    logged: tuple


_DISPATCHED = ("messageParser", "Session Status Message recived ")
_KINDS = (
    Kind("PING UI", (("messageParser", "Received Ping UI, sending alive response"),)),
    Kind("sessionStatus word", (_DISPATCHED, ("handleSessionStatusMessage", ""),
                                ("handleSessionStatusMessage", "Unhandled message  word"))),
)


def _write_texts(home, fifo):
    """Writes the texts back to back. Gives (writes that failed, seconds)."""
    output = subprocess.run([home.reference("textWriter"), fifo, str(_TEXTS), "sessionStatus text"], check=True,
                            stdout=subprocess.PIPE, text=True, timeout=300).stdout.split()
    return int(output[0]), float(output[1])


def _texts_to_ours(home, display):
    """Gives (failed, seconds until all are dispatched, lost)."""
    with session(home, display):
        start = time.monotonic()
        failed, _ = _write_texts(home, home.pipes / "Status")
        home.send("sessionStatus last\n")
        end = home.wait_for_log("Unhandled message  last")
    mark = "Unhandled message  text"
    seen = [int(line.split(mark)[1]) for line in home.log.read_text().split("\n") if mark in line]
    if seen != sorted(set(seen)):
        raise RuntimeError("texts came twice or changed their order")
    return failed, end - start, _TEXTS - len(seen)


def _texts_to_reference(home):
    """Gives the seconds until the last text is read."""
    fifo = home.path / "texts"
    os.mkfifo(fifo)
    start = time.monotonic()
    with subprocess.Popen([home.reference("referenceReader"), fifo, str(_TEXTS)]) as reader:
        _write_texts(home, fifo)
        reader.wait(timeout=60)
    fifo.unlink()
    return time.monotonic() - start


def texts(home, display, runs):
    rounds = [(_texts_to_ours(home, display), _texts_to_reference(home)) for _ in range(min(runs, 3))]
    failed = max(ours[0] for ours, _ in rounds)
    lost = max(ours[2] for ours, _ in rounds)
    row = at_most(f"{_TEXTS} texts, all dispatched, bare reader", [ours[1] for ours, _ in rounds],
                  [reference for _, reference in rounds], None, "s", 2)
    speed = _TEXTS / statistics.median(ours[1] for ours, _ in rounds)
    return [
        row,
        Row(f"{_TEXTS} texts, speed", f"{speed:.0f} texts/s"),
        Row(f"{_TEXTS} texts, lost", str(lost), "", "", "0", lost == 0),
        Row(f"{_TEXTS} texts, failed writes", str(failed), "", "", "0", failed == 0),
    ]


def _send_lines(home, kind, number, count=_LINES):
    """Sends the lines in one text. Gives the seconds until the last one is dispatched."""
    text = f"{kind.line}\n" * count + f"sessionStatus end{number}\n"
    start = time.monotonic()
    home.send(text)
    return home.wait_for_log(f"Unhandled message  end{number}") - start


def _write_log(home, kind, count=_LINES):
    """Gives the seconds that the same log lines take on their own."""
    pairs = [text for pair in kind.logged for text in pair]
    output = subprocess.run([home.reference("logWriter"), home.logs, str(count), *pairs], check=True,
                            stdout=subprocess.PIPE, text=True, timeout=300).stdout
    (home.logs / "reference.log").unlink()
    return float(output)


def _check_log(home, kind, rounds):
    function, text = kind.logged[-1]
    seen = home.log.read_text().count(f"[{function}]: {text}\n")
    if seen != rounds * _LINES:
        raise RuntimeError(f"{seen} lines logged, not {rounds * _LINES}")


def _time_lines(home, display, kind, runs):
    with session(home, display) as process:
        before = process.memory()
        times = [(_send_lines(home, kind, number), _write_log(home, kind)) for number in range(runs)]
        process.settle()
        after = process.memory()
        _check_log(home, kind, runs)
    return times, before, after


def grow(home, counts):
    """(lines, seconds) of the running program, and of the log writes alone, one text for each count."""
    def median(measure):
        return [(count, statistics.median(measure(count, number) for number in range(_GROW_ROUNDS))) for count in counts]

    kind = _KINDS[0]
    return (median(lambda count, number: _send_lines(home, kind, f"{count}Of{number}", count)),
            median(lambda count, _: _write_log(home, kind, count)))


def lines(home, display, runs):
    rows = []
    for kind in _KINDS:
        times, before, after = _time_lines(home, display, kind, min(runs, 5))
        name = f'{_LINES} lines "{kind.line}"'
        rows.append(at_most(f"{name}, log writes alone", *zip(*times), SPEED_LIMIT, "s", 2))
        rows.append(at_most(f"{name}, private memory after and before", [after[1] / 1024], [before[1] / 1024],
                            _MEMORY_LIMIT, "MiB"))
    return rows
