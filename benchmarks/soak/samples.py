"""What the companion holds at a moment between two rounds, and whether it has become more."""

import dataclasses
import pathlib
import statistics

from customer import look_at

CONVERSATION = 1 / 3  # of the run; it is kept, and so the memory is judged when it rests


@dataclasses.dataclass
class Sample:
    minutes: float
    private_kib: int
    share_kib: int  # proportional
    handles: int
    threads: int
    windows: int
    pictures: int  # that the toolkit's drawing library keeps on the X server, and glyphs
    resources: int  # all else there
    children: int
    zombies: int
    log_bytes: int
    accessibles: int | None  # looked at less often


@dataclasses.dataclass
class Growth:
    name: str
    first: float  # medians of the first and the last quarter of what comes behind the conversation
    last: float
    limit: str
    holds: bool


def _children(pid):
    """States of all processes that this one has started and not yet waited for."""
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            state, parent = (folder / "stat").read_text().rpartition(")")[2].split()[:2]
        except OSError:  # has just gone
            continue
        if int(parent) == pid:
            yield state


def take(process, screen, window, log, minutes, with_accessibles):
    share, private = process.memory()
    states = list(_children(process.pid))
    windows, pictures, resources = screen.resources(window)
    return Sample(minutes, private, share, process.handles(), process.threads(), windows, pictures,
                  resources, len(states), states.count("Z"), log.stat().st_size,
                  look_at(process)[0] if with_accessibles else None)


def _quarters(samples, read):
    """Medians of the first and the last quarter of what is read when the conversation rests."""
    rest = samples[-1].minutes * CONVERSATION
    values = [value for value in (read(each) for each in samples if each.minutes >= rest) if value is not None]
    quarter = max(len(values) // 4, 1)
    return statistics.median(values[:quarter]), statistics.median(values[-quarter:])


def _at_most_more(name, samples, read, share):
    first, last = _quarters(samples, read)
    return Growth(name, first, last, f"<= {share:.2f} times", last <= first * share)


def _no_more(name, samples, read, but=0):
    first, last = _quarters(samples, read)
    return Growth(name, first, last, f"{but} more" if but else "no more", last <= first + but)


def _below(name, samples, read, limit):
    first, last = _quarters(samples, read)
    return Growth(name, first, last, f"<= {limit}", last <= limit)


_MEMORY_LIMIT = 1.02
_TOOLTIP = 1  # the toolkit's window for tooltips comes with the first of them and stays
_OF_TOOLTIP = 2  # what belongs to that window
_PICTURES_LIMIT = 600  # the drawing library keeps one for each shade of grey and of transparency that was ever drawn


def judge(samples):
    return [
        _at_most_more("private memory, MiB", samples, lambda each: each.private_kib / 1024, _MEMORY_LIMIT),
        Growth("proportional share, MiB", *_quarters(samples, lambda each: each.share_kib / 1024), "none: it depends "
               "on who else uses the toolkit", True),
        _no_more("handles", samples, lambda each: each.handles),
        _no_more("threads", samples, lambda each: each.threads),
        _no_more("windows on the X server", samples, lambda each: each.windows, _TOOLTIP),
        _below("pictures and glyphs there", samples, lambda each: each.pictures, _PICTURES_LIMIT),
        _no_more("all else there", samples, lambda each: each.resources, _OF_TOOLTIP),
        _no_more("accessible objects", samples, lambda each: each.accessibles),
        _no_more("processes started and not ended", samples, lambda each: each.children),
        Growth("most ended ones not waited for, at any look", 0, max(each.zombies for each in samples), "none",
               not any(each.zombies for each in samples)),
    ]
