"""Questions: from the line of the agent to the dialog, and a thousand of them opened and answered."""

import contextlib
import dataclasses
import itertools
import os
import random
import time

from plot import Curve, Plot
from processes import Inbox, Process, at_rest, find_button, session, write_text
from table import Row, at_most

_MAP_LIMIT = 1.6
_ZENITY_LIMIT = 0.1  # ten times as fast
_GROWTH_LIMIT = 1.02
_FEWEST_ROUNDS = 12
_SAMPLES = 10
_PAUSE_SECONDS = 0.05  # between two prompts: what the last one left to do is done
_WORDS = "Your technician has requested for a root-level access of your computer. Would you like to accept the request?"


@dataclasses.dataclass
class Kind:
    """A prompt, the button that the customer clicks, what the agent hears of it, and the last it hears in any case."""
    line: str
    button: str
    answer: str
    end: str


_CONSENT = "dialogPrompt userConcent TWF5IEkgdXNlIHlvdXIgY2FtZXJhPw== client9 camera"
_KINDS = (
    Kind("dialogPrompt runAsService", "Yes", "rasApproved", "delete_dialog serviceDialog "),
    Kind(_CONSENT, "Yes", "concentuser approved client9 camera false", "delete_dialog camera "),
    Kind("dialogPrompt launchScript clean.sh", "Allow", "scriptApproved", "delete_dialog scriptLauncherDialog "),
    Kind("dialogPrompt command 41", "Yes", "controlApproved 41", "control"),
    Kind("dialogPrompt configureURS word", "No", "ursConfigureRejected word", "ursConfigure"),
    Kind("dialogPrompt rebootPc", "No", "rebootCanceled", "reboot"),
)
_TIMED = (_KINDS[0], _KINDS[1], _KINDS[4])


@contextlib.contextmanager
def _session(home, display):
    """Gives the program at rest and the agent's reading end."""
    with session(home, display) as process, Inbox(home.pipes / "myfifo") as inbox:
        yield process, inbox


@contextlib.contextmanager
def _reference(home, display, name, *arguments):
    """Gives the pipe of a reference at rest."""
    fifo = home.path / name
    os.mkfifo(fifo)
    with at_rest(display, lambda: Process(home.reference("referencePrompt"), fifo, *arguments)):
        yield fifo
    fifo.unlink()


# ------------------------------------------------------------------------------------------------ until it is there

def _time_prompt(display, pipe, line, wait_for_answer=lambda: None):
    """Milliseconds from the writing of a line to its dialog, which is then closed by its frame."""
    time.sleep(_PAUSE_SECONDS)
    display.forget()
    start = time.monotonic()
    write_text(pipe, line + "\n")
    moment, dialog = display.wait_for_map()
    display.close(dialog)
    wait_for_answer()
    display.wait_for_end(dialog)
    return (moment - start) * 1000


def _time_zenity(display):
    display.forget()
    with Process("zenity", "--question", "--text", _WORDS) as process:
        moment, _ = display.wait_for_map()
        return (moment - process.started) * 1000


def _time_in_turn(display, asked, runs):
    """{who: milliseconds}, asked one after the other, so that all see the same machine, and in another order each round:
    who is asked twice in a row has the advantage."""
    times = {name: [] for name in asked}
    order = random.Random(1)
    for _ in range(max(3 * runs, _FEWEST_ROUNDS) + 1):
        for name in order.sample(list(asked), len(asked)):
            times[name].append(asked[name]())
    # The first round only fills the caches.
    return {**{name: each[1:] for name, each in times.items()},
            "zenity": [_time_zenity(display) for _ in range(runs)]}


def _rows(times, suffix):
    for kind in _TIMED:
        name = f"prompt {kind.line.split()[1]} to its dialog{suffix}"
        yield at_most(f"{name}, by hand", times[kind.line], times["plain"], _MAP_LIMIT, "ms", 2)
    yield at_most(f"the same by hand with the style sheet{suffix}", times["styled"], times["plain"], None, "ms", 2)
    yield at_most(f"prompt to its dialog{suffix}, start of zenity", times[_TIMED[0].line], times["zenity"],
                  _ZENITY_LIMIT, "ms", 2)


def prompts(home, display, runs):
    with (_session(home, display) as (_, inbox), _reference(home, display, "plain") as plain,
          _reference(home, display, "styled", home.resources) as styled):
        status = home.pipes / "Status"
        asked = {kind.line: lambda kind=kind: _time_prompt(display, status, kind.line,
                                                           lambda: inbox.wait_for(kind.end)) for kind in _TIMED}
        asked["plain"] = lambda: _time_prompt(display, plain, _WORDS)
        asked["styled"] = lambda: _time_prompt(display, styled, _WORDS)
        bare = _time_in_turn(display, asked, runs)
        with display.managed():
            managed = _time_in_turn(display, asked, runs)
    return [*_rows(bare, ""), *_rows(managed, ", window manager")]


# --------------------------------------------------------------------------------------------- a thousand, answered

class _Customer:
    """Answers with the pointer. Where a dialog has its button is looked up once."""

    def __init__(self, display, process):
        self._display = display
        self._process = process
        self._offsets = {}

    def answer(self, kind, dialog):
        x, y = self._display.place(dialog)
        if kind.line not in self._offsets:
            button_x, button_y = find_button(self._process, kind.button)
            self._offsets[kind.line] = button_x - x, button_y - y
        right, down = self._offsets[kind.line]
        self._display.point_at(x + right, y + down)
        self._display.click(settle=0)


@dataclasses.dataclass
class _Sample:
    prompts: int
    private_kib: int
    handles: int
    threads: int
    windows: int


def _take_sample(display, process, number):
    process.settle()
    return _Sample(number, process.memory()[1], process.handles(), process.threads(), display.count_windows())


def _open_and_answer(home, display, inbox, customer, kind):
    """A prompt whose kind is still in the registry would be dropped: that the dialog comes shows that it is not."""
    display.forget()
    home.send(kind.line + "\n")
    _, dialog = display.wait_for_map()
    customer.answer(kind, dialog)
    inbox.wait_for(kind.answer, kind.end)
    display.wait_for_end(dialog)


def _soak(home, display, count, every):
    samples = []
    with _session(home, display) as (process, inbox):
        customer = _Customer(display, process)
        for number, kind in zip(range(count), itertools.cycle(_KINDS)):
            if number % every == 0:
                samples.append(_take_sample(display, process, number))
            _open_and_answer(home, display, inbox, customer, kind)
        samples.append(_take_sample(display, process, count))
    return samples


def _same(name, first, last):
    return Row(name, str(last), str(first), f"{last / first:.3f}", "<= 1.00", last <= first)


def soak(home, display, count):
    first, *samples = _soak(home, display, count, max(count // _SAMPLES, 50))
    warm, last = samples[0], samples[-1]
    name = f"{count} prompts answered"
    return [
        at_most(f"{name}, private memory, after the first {warm.prompts}", [last.private_kib / 1024],
                [warm.private_kib / 1024], _GROWTH_LIMIT, "MiB", 2),
        _same(f"{name}, handles, after the first {warm.prompts}", warm.handles, last.handles),
        _same(f"{name}, threads, at the start", first.threads, last.threads),
        _same(f"{name}, windows of the display, after the first {warm.prompts}", warm.windows, last.windows),
        Plot("promptsMemory", "Private memory while prompts are answered", "prompts answered", "MiB",
             [Curve("the companion", [(each.prompts, each.private_kib / 1024) for each in (first, *samples)])]),
    ]
