"""What stands in the program's log."""

import re
from typing import NamedTuple

from waiting import until

_PREFIX = re.compile(r"(\d+/\d+/\d+ \d+:\d+:\d+) <([A-Z_]+)> \[([^\]]*)\](: | $)")


class Line(NamedTuple):
    level: str      # "TRACE_CALL" for the entry into a function
    function: str
    message: str    # the whole line when it has no prefix, as the rest of a message with a newline


def take_apart(line):
    match = _PREFIX.match(line)
    return Line(match[2], match[3], line[match.end():]) if match else Line("", "", line)


class LogFile:
    def __init__(self, path):
        self.path = path

    def text(self):
        try:
            return self.path.read_bytes().decode("utf-8", "replace")
        except FileNotFoundError:
            return ""

    def lines(self):
        return [take_apart(line) for line in self.text().split("\n")[:-1]]

    def messages(self):
        """Messages in order, without entries into functions."""
        return [line.message for line in self.lines() if line.level != "TRACE_CALL"]

    def count(self, message):
        return self.messages().count(message)

    def expect(self, message, times=1, seconds=15):
        """Waits for a message to have been written so many times."""
        until(lambda: self.count(message) >= times, lambda: f"{message!r} in the log:\n" + self.tail(), seconds)

    def tail(self, lines=25):
        return "\n".join(self.text().splitlines()[-lines:])

    def has_in_order(self, *messages):
        """These messages stand in the log in this order, whatever stands between them; gives the first that doesn't."""
        rest = iter(self.messages())
        for message in messages:
            if message not in rest:
                return message
        return None
