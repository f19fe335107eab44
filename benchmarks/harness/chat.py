"""The conversation: what a received message costs, whether it stays so, and what the window still answers meanwhile."""

import contextlib
import dataclasses
import os
import statistics
import subprocess
import time

from plot import Curve, Plot
from processes import LogTail, Process, at_rest, session, until, write_text
from table import at_most, below

_MESSAGES, _BATCHES = 10000, 10
_MESSAGE_LIMIT_MS = 0.16
_FLAT_LIMIT = 1.3
_MEMORY_LIMIT = 1.5
_ANSWER_LIMIT_MS = 100
_STATUS_EVERY_MS = 10
_STORED, _ANSWERED = b"<TRACE_CALL> [store_chat_message]", b"<TRACE_CALL> [ButtonChangeStart]"
_ENTRIES = 10000
_APPEND_LIMIT = 2.0


@dataclasses.dataclass
class Batch:
    """What some messages cost."""
    total: int  # messages after it
    count: int
    processor_ms: float  # of the thread that draws
    private_kib: int  # after it

    @property
    def message_ms(self):
        return self.processor_ms / self.count


@contextlib.contextmanager
def panels(home, display):
    """Gives the reference of both panels at rest, and where it takes its orders."""
    orders = home.path / "orders"
    os.mkfifo(orders)
    with at_rest(display, lambda: Process(home.reference("referencePanels"), home.resources, orders)) as process:
        yield process, orders
    orders.unlink()


def _write_messages(home, first, count, status_every_ms=0):
    return subprocess.Popen([home.reference("chatWriter"), home.pipes / "Status", str(count), str(first),
                             str(status_every_ms)], stdout=subprocess.PIPE, text=True)


def _check_all_came(home, count):
    # The first one has an entry of another kind.
    stored = home.log.read_bytes().count(_STORED) + 1
    if stored != count:
        raise RuntimeError(f"{stored} messages came, not {count}")


# --------------------------------------------------------------------------------------------------------- in batches

def _add(process, before, total, send):
    used = process.main_thread_ms()
    send(before, total - before)
    process.wait_quiet()
    return Batch(total, total - before, process.main_thread_ms() - used, process.memory()[1])


def _add_all(process, totals, send):
    """Adds messages until each of the totals is reached, one after the other. Gives a batch for each."""
    process.settle()
    start = Batch(0, 0, 0, process.memory()[1])
    return [start, *(_add(process, before, total, send) for before, total in zip((0, *totals), totals))]


def fill(home, process, totals):
    """The program's batches."""
    batches = _add_all(process, totals, lambda first, count: _write_messages(home, first, count).wait(600))
    _check_all_came(home, totals[-1])
    return batches


def fill_reference(process, orders, totals):
    return _add_all(process, totals, lambda _, count: write_text(orders, f"messages {count}"))


def _grown(rounds, first=0, last=-1):
    """KiB that each round took from one batch to another."""
    return [batch[last].private_kib - batch[first].private_kib for batch in rounds]


def _batch_rows(ours, reference):
    def cost(rounds):
        return [sum(batch.processor_ms for batch in each) / _MESSAGES for each in rounds]

    def part(rounds, number):
        return [each[number].processor_ms for each in rounds]

    name = f"{_MESSAGES} messages"
    half = _BATCHES // 2
    return [
        at_most(f"{name}, processor for each, bare view", cost(ours), cost(reference), None, "ms", 3),
        at_most(f"{name}, processor of the last thousand, the first", part(ours, -1), part(ours, 1), _FLAT_LIMIT, "ms"),
        at_most(f"{name}, the same of the bare view", part(reference, -1), part(reference, 1), None, "ms"),
        at_most(f"{name}, private memory, bare view", _grown(ours), _grown(reference), _MEMORY_LIMIT, "KiB", 0),
        at_most(f"{name}, private memory of the second half, the first", _grown(ours, half), _grown(ours, 0, half),
                _FLAT_LIMIT, "KiB", 0),
    ]


# ---------------------------------------------------------------------------------------------------------- in a burst

def _time_answers(log, writer):
    """Milliseconds from each status line to its handler. Reads along while the writer writes."""
    handled = []

    def look():
        found = log.count(_ANSWERED)
        handled.extend([time.monotonic()] * found)
        return len(handled)

    until(lambda: look() is not None and writer.poll() is not None, "the end of the messages", 600, 0.001)
    written = [float(line) for line in writer.stdout]
    until(lambda: look() == len(written), "an answer to each status line", step=0.001)
    return [(moment - begin) * 1000 for begin, moment in zip(written, handled)]


def _time_burst(process, send):
    """Milliseconds for each message."""
    start = time.monotonic()
    send()
    return (process.wait_quiet() - start) * 1000 / _MESSAGES


def _burst_rows(ours, reference, answers):
    name = f"{_MESSAGES} messages in a burst"
    return [
        at_most(f"{name}, until the last is shown, for each, bare view", ours, reference, None, "ms", 3),
        below(f"{name}, the same", statistics.median(ours), _MESSAGE_LIMIT_MS, "ms", 3),
        below(f"{name}, slowest of {len(answers)} status lines", max(answers), _ANSWER_LIMIT_MS, "ms"),
    ]


# ---------------------------------------------------------------------------------------------------------- transcript

def append_entries(home, count):
    """Seconds for each tenth of the entries: those of the transcript, those of a bare text."""
    output = subprocess.run([home.reference("transcriptWriter"), str(count)], check=True, stdout=subprocess.PIPE,
                            text=True, timeout=300).stdout
    return list(zip(*([float(word) for word in line.split()] for line in output.splitlines())))


def _transcript_rows(home, runs):
    ours, reference = zip(*(append_entries(home, _ENTRIES) for _ in range(runs)))
    name = f"transcript of {_ENTRIES} entries"
    return [
        at_most(f"{name}, bare text", [sum(each) * 1000 for each in ours], [sum(each) * 1000 for each in reference],
                _APPEND_LIMIT, "ms", 2),
        at_most(f"{name}, last tenth, the first", [each[-1] * 1000 for each in ours], [each[0] * 1000 for each in ours],
                _FLAT_LIMIT, "ms", 3),
    ]


# ------------------------------------------------------------------------------------------------------- all together

@dataclasses.dataclass
class _Round:
    """A conversation of the program, or of the reference: in batches, then in a burst, then with status lines."""
    batches: list
    burst_ms: float
    answers_ms: list


def _measure_ours(home, display, totals):
    with session(home, display) as process:
        batches = fill(home, process, totals)
        burst_ms = _time_burst(process, lambda: _write_messages(home, _MESSAGES, _MESSAGES).wait(600))
        _check_all_came(home, 2 * _MESSAGES)
        with LogTail(home.log) as log:
            answers_ms = _time_answers(log, _write_messages(home, 2 * _MESSAGES, _MESSAGES, _STATUS_EVERY_MS))
        return _Round(batches, burst_ms, answers_ms)


def _measure_reference(home, display, totals):
    with panels(home, display) as (process, orders):
        batches = fill_reference(process, orders, totals)
        return _Round(batches, _time_burst(process, lambda: write_text(orders, f"messages {_MESSAGES}")), [])


def _memory_plot(rounds):
    names = ("the companion", "a bare text view")
    return Plot("chatMemory", "Private memory of a growing conversation", "messages received", "KiB more than before",
                [Curve(name, [(batch.total, batch.private_kib - each.batches[0].private_kib) for batch in each.batches])
                 for name, each in zip(names, rounds)])


def chat(home, display, runs):
    totals = [_MESSAGES // _BATCHES * number for number in range(1, _BATCHES + 1)]
    rounds = [(_measure_ours(home, display, totals), _measure_reference(home, display, totals))
              for _ in range(min(runs, 3))]
    ours, reference = zip(*rounds)
    return [
        *_burst_rows([each.burst_ms for each in ours], [each.burst_ms for each in reference],
                     [answer for each in ours for answer in each.answers_ms]),
        *_batch_rows([each.batches for each in ours], [each.batches for each in reference]),
        *_transcript_rows(home, runs),
        _memory_plot(rounds[0]),
    ]
