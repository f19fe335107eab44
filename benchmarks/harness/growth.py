"""How the work grows with what there is: lines in a text, messages, participants, logs that were moved away."""

import dataclasses
import math
import pathlib
import shutil
import statistics
import subprocess

import chat
import lines
from plot import Curve, Plot
from processes import LogTail, Process, session, write_text
from table import at_most

_GROWTH_LIMIT = 1.5  # of what one costs when there are many, to what it cost when there were some
_FULL_LOG_BYTES = 2000000
_ADDED = b"<TRACE_CALL> [participantsExpandCallback]"


def _powers(first, last):
    """Powers of ten from one to the other."""
    return [10 ** power for power in range(round(math.log10(first)), round(math.log10(last)) + 1)]


# --------------------------------------------------------------------------------------------------- lines of a text

def _grow_lines(home, most):
    counts = _powers(1, most)
    ours, reference = lines.grow(home, counts)
    each = [(count, seconds * 1e6 / count) for count, seconds in ours]
    return [
        at_most(f"{counts[-1]} lines in one text, log writes alone", [ours[-1][1]], [reference[-1][1]],
                lines.SPEED_LIMIT, "s", 2),
        at_most(f"each of {counts[-1]} lines in one text, of {counts[-2]}", [each[-1][1]], [each[-2][1]],
                _GROWTH_LIMIT, "us", 2),
        Plot("growthLines", "One text of many lines", "lines in the text", "ms until the last one is dispatched",
             [Curve("the companion", [(count, seconds * 1000) for count, seconds in ours]),
              Curve("log writes alone", [(count, seconds * 1000) for count, seconds in reference])], True, True),
    ]


# ---------------------------------------------------------------------------------------------------------- messages

def _grow_messages(home, running, most):
    totals = _powers(1, most)
    rounds = [chat.fill(home, running.ours, totals)[1:],
              chat.fill_reference(running.reference, running.orders, totals)[1:]]
    ours = rounds[0]
    names = ("the companion", "a bare text view")
    return [
        at_most(f"each message up to {totals[-1]}, up to {totals[-2]}, processor", [ours[-1].message_ms],
                [ours[-2].message_ms], _GROWTH_LIMIT, "ms", 3),
        Plot("growthMessages", "A long conversation", "messages received", "ms of the processor for a message",
             [Curve(name, [(batch.total, batch.message_ms) for batch in each]) for name, each in zip(names, rounds)],
             True, True),
    ]


def _grow_transcript(home, most):
    counts = _powers(100, most)
    times = [[sum(tenths) for tenths in chat.append_entries(home, count)] for count in counts]
    return [Plot("growthTranscript", "A long transcript", "entries", "ms for all of them",
                 [Curve(name, [(count, each[number] * 1000) for count, each in zip(counts, times)])
                  for number, name in enumerate(("the companion", "a bare text"))], True, True)]


# ------------------------------------------------------------------------------------------------------ participants

def _add_participants(process, totals, add):
    """Gives (participants, milliseconds of the processor for each that came since the last total)."""
    points = []
    for before, total in zip((0, *totals), totals):
        process.wait_quiet()
        used = process.main_thread_ms()
        add(before, total)
        process.wait_quiet()
        points.append((total, (process.main_thread_ms() - used) / (total - before)))
    return points


def _add_to_ours(home, log, first, end):
    for number in range(first, end):
        home.send(f"sessionStatus participantsAdd Participant%20{number} {number} false\n")
        log.wait(_ADDED)  # the mailbox holds one


def _grow_participants(home, running, most):
    totals = [1, *(number for power in _powers(10, most) for number in (power // 2, power))]
    with LogTail(home.log) as log:
        ours = _add_participants(running.ours, totals, lambda first, end: _add_to_ours(home, log, first, end))
    reference = _add_participants(running.reference, totals,
                                  lambda first, end: write_text(running.orders, f"participants {end - first}"))
    return [
        # The toolkit lays every row out again for a new one, ours as well as those made by hand.
        at_most(f"each participant up to {totals[-1]}, up to {totals[-2]}, processor", [ours[-1][1]], [ours[-2][1]],
                None, "ms", 2),
        at_most("the same, rows by hand", [ours[-1][1]], [reference[-1][1]], _GROWTH_LIMIT, "ms", 2),
        Plot("growthParticipants", "Many participants", "participants", "ms of the processor for a participant",
             [Curve("the companion", ours), Curve("rows by hand", reference)], True, True),
    ]


# --------------------------------------------------------------------------------------------------------------- logs

def _rotate(home, count, runs):
    """Median seconds of a start's rotation, and of a look at each file."""
    folder = home.path / "rotated"
    folder.mkdir()
    for number in range(count):
        (folder / f"ui.log_1970-1-1_{number}").touch()
    times = []
    for _ in range(runs):
        with open(folder / "ui.log", "wb") as log:
            log.truncate(_FULL_LOG_BYTES)
        output = subprocess.run([home.reference("logRotator"), folder, "ui.log"], check=True, text=True, timeout=60,
                                stdout=subprocess.DEVNULL, stderr=subprocess.PIPE).stderr
        times.append([float(word) for word in output.split()])
    shutil.rmtree(folder)
    return [statistics.median(each) for each in zip(*times)]


def _grow_logs(home, most, runs):
    counts = [0, *_powers(10, most)]
    times = [_rotate(home, count, max(runs, 3)) for count in counts]
    return [
        at_most(f"rotation beside {most} logs, a look at each", [times[-1][0] * 1000], [times[-1][1] * 1000], None,
                "ms", 2),
        at_most(f"each of {most} logs at the rotation, of {most // 10}", [times[-1][0] * 1e6 / most],
                [times[-2][0] * 1e7 / most], _GROWTH_LIMIT, "us", 2),
        Plot("growthLogs", "Logs that were moved away", "files in the log folder", "ms of the processor for the rotation at a start",
             [Curve(name, [(count, each[number] * 1000) for count, each in zip(counts, times)])
              for number, name in enumerate(("the companion", "a look at each file"))]),
    ]


@dataclasses.dataclass
class _Running:
    ours: Process
    reference: Process
    orders: pathlib.Path  # of the reference


def growth(home, display, runs, share=1):
    """Each kind up to its bound, divided by the share."""
    with session(home, display) as ours, chat.panels(home, display) as (reference, orders):
        running = _Running(ours, reference, orders)
        grown = [
            *_grow_lines(home, 10 ** 6 // share),
            *_grow_messages(home, running, 10 ** 5 // share),
            *_grow_participants(home, running, 10 ** 3 // share),
        ]
    return [*grown, *_grow_transcript(home, 10 ** 6 // share), *_grow_logs(home, 10 ** 4 // share, runs)]
