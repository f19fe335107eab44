"""The page and the pictures of a run."""

import dataclasses
import os
import re

import samples
from plot import Curve, Plot


# What any program prints when somebody comes to listen to its accessible tree after it has shown a file chooser: the
# toolkit has not let go of one object of the chooser. Only these four lines, in this order.
_STALE = ("Atk", r"atk_state_set_contains_state: assertion 'ATK_IS_STATE_SET \(set\)' failed")
_GONE = ("GLib-GObject", r"g_object_unref: assertion 'G_IS_OBJECT \(object\)' failed")
_TOOLKITS_OWN = re.compile("".join(rf"\n\(brindle-ui:\d+\): {domain}-CRITICAL \*\*: [\d:.]+: {text}\n"
                                   for domain, text in (_STALE, _STALE, _STALE, _GONE)))
_POINTS = 60  # of a curve, at most
_ROOM = 1.5  # above the curves, for their names
_FULL_LOG_BYTES = 2_000_000  # at the start


@dataclasses.dataclass
class Result:
    minutes: float
    faster: int
    done: dict
    agent: dataclasses.InitVar
    samples: list
    status: int
    errors: str
    is_log_rotated: bool = False

    def __post_init__(self, agent):
        self.heard, self.places = agent.heard()
        self.logged = agent.logged()
        self.expected, self.expected_log, self.lines_sent = agent.expected, agent.expected_log, agent.lines_sent
        self.growths = samples.judge(self.samples)
        self.warnings = re.findall(r".*(?:WARNING|CRITICAL|ERROR) \*\*.*", _TOOLKITS_OWN.sub("", self.errors))

    def checks(self):
        """(what, expected, seen)"""
        expected = self.expected
        return [
            ("lines that the companion had to send", expected.total(),
             sum(min(count, expected[line]) for line, count in self.heard.items())),
            ("lines that it sent beyond those", 0, (self.heard - expected).total()),
            ("messages that its log had to hold", self.expected_log.total(),
             sum(min(count, self.expected_log[line]) for line, count in self.logged.items())),
            ("messages there beyond those", 0, (self.logged - self.expected_log).total()),
            ("status at its end", 0, self.status),
            ("warnings and criticals of the toolkit", 0, len(self.warnings)),
            ("logs moved away by the next start", int(self.log_bytes() >= _FULL_LOG_BYTES), int(self.is_log_rotated)),
        ]

    def log_bytes(self):
        return self.samples[-1].log_bytes

    def holds(self):
        return all(expected == seen for _, expected, seen in self.checks()) and all(
            each.holds for each in self.growths)


def _table(headings, rows):
    lines = [headings, ["---"] * len(headings), *rows]
    return "".join(f"| {' | '.join(str(cell) for cell in line)} |\n" for line in lines)


def _number(value):
    return f"{value:,.2f}".rstrip("0").rstrip(".").replace(",", " ")


def _verdict(holds):
    return "ok" if holds else "OVER"


def _work_rows(result):
    done = result.done
    questions = {how: count for (*_, how), count in ((key, count) for key, count in done.items()
                                                     if isinstance(key, tuple))}
    yield "lines that ask nothing, in texts of several hundred", done["reports"]
    yield "all lines from the agent", result.lines_sent
    yield "lines to the agent, without reports of places", result.heard.total()
    yield "reports of places of dialogs", result.places
    yield "dialogs opened and closed", sum(questions.values()) + done["choosers"] // 3
    for how, count in questions.items():
        yield f"… {how}", count
    yield "… choosers of files and folders, before the long part", done["choosers"]
    yield "participants that came, were modified and left", done["participants"]
    yield "entries taken from menus", done["menus"]
    yield "chat messages, both ways", done["messages"]
    yield "AR invitations", done["invitations"]
    yield "panels opened and closed, without annotation", done["panels"] - done["annotations"]
    yield "annotation programs started, used and ended", done["annotations"]
    yield "rounds", done["rounds"]


def _thinned(points):
    step = -(-len(points) // _POINTS)
    return points[::step]


def _plots(result):
    def curve(name, read):
        points = [(each.minutes, value) for each in result.samples if (value := read(each)) is not None]
        return Curve(name, _thinned(points))
    return [
        Plot("soakMemory", "Memory of the companion at work", "minutes", "MiB", [
            curve("private", lambda each: each.private_kib / 1024)], room=_ROOM),
        Plot("soakCounts", "What the companion holds at work", "minutes", "number", [
            curve("accessible objects", lambda each: each.accessibles), curve("handles", lambda each: each.handles),
            curve("threads", lambda each: each.threads), curve("windows", lambda each: each.windows)], room=_ROOM),
    ]


_PAGE = """# Soak

The program at work in fast motion: {minutes} minutes in which its clock ran {faster} times faster, on a virtual screen
with a window manager. `scripts/soak` does it, writes this page, and ends with 1 when something was lost or has grown;
`scripts/soak 1` does the same for a minute. What came of it is [below](#the-last-run).

![Memory over the run]({pictures}/soakMemory.svg)

![Accessible objects, handles, threads and windows over the run]({pictures}/soakCounts.svg)

## How it is done

- A "normal" session of the release build. The agent is played: its lines go through the real pipe, and all that the companion says is read.
- The customer is a pointer and a keyboard on the screen. A dialog is answered by its button or by its frame, goes by time, or is taken back by the technician.
- One round is a text of {report} lines that ask nothing, 12 questions in turn of all kinds and answers, three participants with their menus, chat both ways with an AR invitation in the first third of the time, sharing paused and resumed, the panels opened and closed, a small program in the place of the one that draws, and the question whether to leave. Names and messages are in a dozen scripts.
- Each step waits for what has to come of it; what is lost ends the run. At the end every line of the agent must have left its message in the log, and every answer must have come exactly as often as it was given.
- Between two rounds, with all dialogs and panels closed, the companion is looked at. In the two thirds of the time in which the conversation rests, the median of the first quarter is compared with that of the last.
- Widgets are counted as accessible objects, shown or not, and as windows on the X server. A process of its own counts the former and listens to the program for that moment only.

Two things grow by their nature, and come before what is judged:

- **The conversation** is kept for the whole session: the customer can scroll back and save it. Its {entries} entries come in the first third, in which the curve of the memory rises; what one costs is on the page about [performance](performance.md).
- **A chooser of files or folders** is the toolkit's own, and a program that shows nothing else grows with them, too, by up to 25 KiB each, not always. {choosers} of them are shown first, and none in the long part.

## The last run

{work}
{checks}
{growths}
The log grew to {log_mb} MB. Pictures on the X server are those that the drawing library keeps for each shade that it has drawn; the toolkit's window for tooltips is made with the first of them.
"""


def _text(result, pictures):
    checks = [(what, _number(expected), _number(seen), _verdict(expected == seen))
              for what, expected, seen in result.checks()]
    growths = [(each.name, _number(each.first), _number(each.last), each.limit, _verdict(each.holds))
               for each in result.growths]
    return _PAGE.format(
        minutes=_number(result.minutes), faster=result.faster, pictures=pictures,
        report=_number(result.done["reports"] / result.done["rounds"]),
        work=_table(("what was done", "how often"), [(what, _number(count)) for what, count in _work_rows(result)]),
        checks=_table(("what was looked at when all was over", "expected", "seen", ""), checks),
        growths=_table(("what it holds", "first quarter", "last quarter", "limit", ""), growths),
        entries=_number(result.done["messages"] + result.done["invitations"]), choosers=result.done["choosers"],
        log_mb=_number(result.log_bytes() / 1e6))


def _show_differences(result):
    for expected, seen in ((result.expected, result.heard), (result.expected_log, result.logged)):
        for line in expected | seen:
            if expected[line] != seen[line]:
                print(f"{line!r}: expected {expected[line]}, seen {seen[line]}")
    print(*result.warnings, sep="\n", end="")


def write(result, page, pictures):
    pictures.mkdir(parents=True, exist_ok=True)
    page.parent.mkdir(parents=True, exist_ok=True)
    for each in _plots(result):
        (pictures / f"{each.name}.svg").write_text(each.svg())
    page.write_text(_text(result, os.path.relpath(pictures, page.parent)))
    print(page.read_text().split("## The last run")[1])
    _show_differences(result)
