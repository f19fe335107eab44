"""Waiting with a deadline: every wait of these tests goes through `until`.

PATIENCE in the environment makes all deadlines so many times longer, for a program that runs under a checker.
"""

import os
import time

from gi.repository import GLib


PATIENCE = float(os.environ.get("PATIENCE", 1))


class TimedOut(AssertionError):
    """What was waited for did not come."""


def _ask(question):
    try:
        return question()
    except GLib.Error:  # the accessible tree changed while it was looked at
        return None


def until(question, what, seconds=15):
    """Asks again every few milliseconds until the answer is true, and gives it.

    what: what is waited for, or a function that says what is seen instead; part of the failure.
    """
    end = time.monotonic() + seconds * PATIENCE
    context = GLib.MainContext.default()
    while True:
        while context.iteration(False):  # news of the accessible tree arrives here
            pass
        answer = _ask(question)
        if answer:
            return answer
        if time.monotonic() > end:
            raise TimedOut(f"not within {seconds} s: {what() if callable(what) else what}")
        time.sleep(0.01)


def stays(question, what, seconds):
    """The answer is true now and at every look of the next seconds."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if not question():
            raise AssertionError(f"did not stay so: {what() if callable(what) else what}")
        time.sleep(0.01)
