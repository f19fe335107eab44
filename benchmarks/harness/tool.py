"""A tool of the annotation panel: from the click to its command in the hands of the program that draws."""

import shutil
import time

from processes import Inbox, LogTail, find_button, until, write_text
from table import at_most_more
from window import click_reference

_TOOL_LIMIT_MS = 1
_FEWEST_CLICKS = 11
_PAUSE_SECONDS = 0.2
_USABLE = b"<TRACE_CALL> [MakeButtonSensitive]"


def _click_ours(home, display, runs):
    """A program that does nothing stands for the one that draws; its pipes are read and written here."""
    shutil.copy(home.reference("quietAgent"), home.annotation)
    display.forget()
    with home.start("normal") as process:
        _, window = display.wait_for_map()
        process.settle()
        display.move(window, 100, 100)  # room for the panel
        display.point_at(*find_button(process, "Annotation"))
        display.click()
        pipe, reports = home.pipes / "AnnotationIn", home.pipes / "AnnotationOut"
        until(lambda: pipe.exists() and reports.exists(), "the pipes of the annotation program")
        process.settle()
        display.point_at(*find_button(process, "Pen"))
        with Inbox(pipe) as inbox, LogTail(home.log) as log:
            return [_time_click(display, inbox, log, reports) for _ in range(runs)]


def _time_click(display, inbox, log, reports):
    time.sleep(_PAUSE_SECONDS)
    start = display.click()
    moment, command = inbox.wait()
    if command != b"2":
        raise RuntimeError(f"the command was {command!r}")
    write_text(reports, "normal")
    until(lambda: log.count(_USABLE), "the tool can be used again")
    return (moment - start) * 1000


def tool(home, display, runs):
    clicks = max(3 * runs, _FEWEST_CLICKS)
    return [at_most_more("click on a tool to its command, bare write", _click_ours(home, display, clicks),
                         click_reference(home, display, clicks), _TOOL_LIMIT_MS, "ms", 2)]
