"""The X server as the measurements need it: when a window comes, and a click that leaves at a known moment."""

import select
import time

from Xlib import X, display
from Xlib.ext import xtest


class Display:
    def __init__(self):
        self._display = display.Display()
        self._root = self._display.screen().root
        self._root.change_attributes(event_mask=X.SubstructureNotifyMask)
        self._display.sync()

    def forget(self):
        """Drops what has happened so far."""
        self._display.sync()
        while self._display.pending_events():
            self._display.next_event()

    def wait_for_map(self, seconds=30):
        """Waits for the first window that is mapped from now on. Gives the moment and the window."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            while self._display.pending_events():
                event = self._display.next_event()
                if event.type == X.MapNotify and not event.override:
                    return time.monotonic(), event.window
            select.select([self._display], [], [], 0.1)
        raise TimeoutError("no window")

    def move(self, window, x, y):
        window.configure(x=x, y=y)
        self._display.sync()

    def point_at_lower_right(self, window, left, up):
        """Moves the pointer so many pixels left of and above a window's lower right corner."""
        size = window.get_geometry()
        corner = window.translate_coords(self._root, 0, 0)
        self._root.warp_pointer(size.width - corner.x - left, size.height - corner.y - up)
        self._display.sync()

    def click(self):
        """Presses the first button, lets the look of the pressed button settle, and releases it. Gives the moment at
        which the release left."""
        xtest.fake_input(self._display, X.ButtonPress, 1)
        self._display.sync()
        time.sleep(0.25)
        start = time.monotonic()
        xtest.fake_input(self._display, X.ButtonRelease, 1)
        self._display.flush()
        return start
