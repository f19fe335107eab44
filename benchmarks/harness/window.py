"""Start, rest and a click: the control window beside the same widgets written by hand."""

import os
import re
import subprocess
import time

from processes import START_DELAY, Inbox, Process, until
from table import Row, at_most, at_most_more

_START_LIMIT = 1.10
_MEMORY_LIMIT = 1.15
_CLICK_LIMIT_MS = 1
_FEWEST_CLICKS = 5
_LAST_TIMER_SECONDS = 18  # GTK's own one-off timers of a new window are over then
_REST_SECONDS = 20
_LIVENESS_SECONDS = 15


def _time_start(display, start, delay=0):
    """Milliseconds from the start of a program to its first window: (clock, processor)."""
    display.forget()
    with start() as process:
        moment, _ = display.wait_for_map()
        return (moment - process.started - delay) * 1000, process.processor_ms()


def start(home, display, runs):
    """Each round starts every program once, one after the other, so that all see the same machine."""
    starts = {
        "ours": lambda: _time_start(display, lambda: home.start("normal"), START_DELAY),
        "window": lambda: _time_start(display, home.start_reference),
        "minimal": lambda: _time_start(display, lambda: Process(home.reference("referenceMinimal"))),
    }
    times = {name: [] for name in starts}
    for _ in range(runs + 1):
        for name, run in starts.items():
            times[name].append(run())
    # The first round only fills the caches.
    clock, processor = ({name: [each[kind] for each in times[name][1:]] for name in times} for kind in range(2))
    return [
        at_most("start, same widgets", clock["ours"], clock["window"], _START_LIMIT, "ms"),
        at_most("start, same widgets, processor", processor["ours"], processor["window"], None, "ms"),
        at_most("start, minimal window", clock["ours"], clock["minimal"], None, "ms"),
    ]


def _memory_side_by_side(home, display):
    """KiB of both programs, which run at the same time: shared pages are shared by the same processes for both."""
    display.forget()
    with home.start_reference() as reference:
        display.wait_for_map()
        with home.start("normal") as ours:
            display.wait_for_map()
            ours.settle()
            reference.settle()
            return ours.memory(), reference.memory()


def memory(home, display, runs):
    ours, reference = zip(*(_memory_side_by_side(home, display) for _ in range(min(runs, 3))))
    return [at_most(f"memory at rest, {name}", [each[kind] / 1024 for each in ours],
                    [each[kind] / 1024 for each in reference], _MEMORY_LIMIT, "MiB")
            for kind, name in enumerate(("PSS", "private"))]


def _wake_ups(process):
    """How often the threads woke in a stretch of rest: {name: count}, without those that slept all along."""
    before = process.switches()
    time.sleep(_REST_SECONDS)
    counts = {}
    for thread, count in process.switches().items():
        if count != before.get(thread, 0):
            counts[thread[1]] = counts.get(thread[1], 0) + count - before.get(thread, 0)
    return counts


def _rest_row(kind, counts, reference, allowed):
    seen = ", ".join(f"{count} {name}" for name, count in counts.items()) or "0"
    return Row(f"wake-ups in {_REST_SECONDS} s, {kind}", seen, str(sum(reference.values())), "", f"<= {allowed}",
               sum(counts.values()) <= allowed)


def _wake_ups_of_window(display, start):
    display.forget()
    with start() as process:
        display.wait_for_map()
        time.sleep(_LAST_TIMER_SECONDS)
        return _wake_ups(process)


def _wake_ups_of_started_session(home, display):
    """The agent pings just after one check and again just after the stretch: only one check falls into it."""
    home.make_pipes()
    display.forget()
    with Inbox(home.pipes / "myfifo"), home.start("ras") as process:
        display.wait_for_map()
        home.send("PING UI\n")
        until(lambda: home.log.read_text().count("[uiChecker]: Checking ss is alive") == 2, "the second check")
        home.send("PING UI\n")
        time.sleep(_LAST_TIMER_SECONDS - _LIVENESS_SECONDS)
        counts = _wake_ups(process)
        home.send("PING UI\n")
        home.wait_for_log("[messageParser]: Received Ping UI, sending alive response")
        if process.ended():
            raise RuntimeError("the session ended during its rest")
        return counts


def rest(home, display):
    reference = _wake_ups_of_window(display, home.start_reference)
    checks = -(-_REST_SECONDS // _LIVENESS_SECONDS) - 1  # the stretch begins just after one
    return [
        _rest_row("normal", _wake_ups_of_window(display, lambda: home.start("normal")), reference, 0),
        # A check is a thread that goes back to sleep once.
        _rest_row("ras", _wake_ups_of_started_session(home, display), reference, checks),
    ]


def _click_times(display, window, inbox, runs, between):
    """Milliseconds from each click on the button in the lower right corner to its line."""
    display.move(window, 100, 100)
    display.point_at_lower_right(window, 22, 18)
    times = []
    for number in range(runs):
        between(number)
        start = display.click()
        moment, _ = inbox.wait()
        times.append((moment - start) * 1000)
    return times


def _click_ours(home, display, runs):
    def answer(number):
        """The agent reports the state that was asked for, which enables the button again."""
        report, handler = (("Connected", "ButtonChangeStart"), ("disconnected", "ButtonChangeStop"))[number % 2]
        home.send(f"sessionStatus {report}\n")
        home.wait_for_log(f"[{handler}]: button state {1 + number % 2}")
        time.sleep(0.2)

    display.forget()
    with home.start("normal") as process:
        _, window = display.wait_for_map()
        process.settle()
        with Inbox(home.pipes / "myfifo") as inbox:
            return _click_times(display, window, inbox, runs, answer)


def click_reference(home, display, runs):
    """Milliseconds from each click on a button to the line that its handler writes in a bare open-write-close."""
    fifo = home.path / "clicks"
    os.mkfifo(fifo)
    display.forget()
    with Inbox(fifo) as inbox, home.start_reference(fifo) as process:
        _, window = display.wait_for_map()
        process.settle()
        times = _click_times(display, window, inbox, runs, lambda _: time.sleep(0.2))
    fifo.unlink()
    return times


def click(home, display, runs):
    ours, reference = [], []
    for _ in range(min(runs, 3)):
        ours += _click_ours(home, display, max(runs, _FEWEST_CLICKS))
        reference += click_reference(home, display, max(runs, _FEWEST_CLICKS))
    return [at_most_more("click to line, bare write", ours, reference, _CLICK_LIMIT_MS, "ms", 2)]


def _count_instructions(home, display, name, start):
    """Millions of instructions to a window at rest."""
    output = home.path / f"callgrind.{name}"
    valgrind = ("setarch", "-R", "valgrind", "--tool=callgrind", f"--callgrind-out-file={output}")
    display.forget()
    with start(*valgrind) as process:
        display.wait_for_map(120)
        process.settle()
        subprocess.run(["kill", "-TERM", str(process.pid)], check=True)
        until(process.ended, "the end under valgrind")
    return int(re.search(r"^(?:totals|summary): (\d+)", output.read_text(), re.M)[1]) / 1e6


def instructions(home, display):
    ours = _count_instructions(home, display, "ours", lambda *wrapper: home.start("normal", *wrapper))
    reference = _count_instructions(home, display, "reference", lambda *wrapper: Process(
        *wrapper, home.reference("referenceWindow"), home.resources))
    return [at_most("instructions to a window at rest", [ours], [reference], None, "M")]
