"""Top-level windows as a Wayland compositor of the sway kind knows them; the same questions as screen.Windows answers."""

import json
import subprocess
from typing import NamedTuple

from waiting import until


class Window(NamedTuple):
    id: int
    title: str
    pid: int
    focused: bool
    rectangle: tuple  # x, y, width, height on the screen

    def shadow(self, size):
        """How much larger the toolkit says the window is, which then draws its frame and shadow itself; None if it is
        another window that has this size."""
        wider, higher = size[0] - self.rectangle[2], size[1] - self.rectangle[3]
        return wider if wider == higher >= 0 else None


def _sway(*words):
    return json.loads(subprocess.run(["swaymsg", "-r", *words], check=False, capture_output=True, timeout=20,
                                     text=True).stdout or "null")


def _leaves(node):
    below = node.get("nodes", []) + node.get("floating_nodes", [])
    for child in below:
        yield from _leaves(child)
    if node.get("pid") and not below:
        yield node


class Compositor:
    def all(self):
        """Every window, the oldest first."""
        leaves = _leaves(_sway("-t", "get_tree") or {})
        return sorted(Window(leaf["id"], leaf["name"], leaf["pid"], leaf["focused"],
                             tuple(leaf["rect"][side] for side in ("x", "y", "width", "height"))) for leaf in leaves)

    def titled(self, title):
        return [window for window in self.all() if window.title == title]

    def find(self, title, seconds=15):
        return until(lambda: next(iter(self.titled(title)), None), f"a window titled {title!r}", seconds)

    def managed(self):
        return [window.id for window in self.all()]

    def active(self):
        return next((window.id for window in self.all() if window.focused), None)

    def numbered(self, identifier):
        return next((window for window in self.all() if window.id == identifier), None)

    def position(self, window):
        return self.numbered(window.id).rectangle[:2]

    def size(self, window):
        return self.numbered(window.id).rectangle[2:]

    def focused(self):
        """Title of the window that has the keyboard, or None."""
        return next((window.title for window in self.all() if window.focused), None)

    def wait_focus(self, title):
        until(lambda: self.focused() == title, lambda: f"focus on {title!r}, is {self.focused()!r}")

    def knows(self, pid):
        return any(window.pid == pid for window in self.all())

    def wait_placed(self, pid):
        until(lambda: self.knows(pid), lambda: f"a window of {pid} among {self.all()}")

    def close(self, window):
        """What a click on a close box makes the compositor send."""
        _sway(f"[con_id={window.id}]", "kill")

    def holding(self, pid, title, size):
        """The window of a process that fits, by its title where several do; None while there is none."""
        found = [window for window in self.all() if window.pid == pid and window.shadow(size) is not None]
        return max(found, key=lambda window: (window.title == title, window.focused), default=None)
