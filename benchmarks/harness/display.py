"""The X server as the measurements need it: when a window comes, and a click that leaves at a known moment."""

import contextlib
import select
import subprocess
import time

from Xlib import X, display
from Xlib.ext import xtest
from Xlib.protocol import event as message


class Display:
    def __init__(self):
        self._display = display.Display()
        self._root = self._display.screen().root
        self._root.change_attributes(event_mask=X.SubstructureNotifyMask)
        self._display.set_error_handler(lambda *_: None)  # windows come and go
        self._framed = {}  # windows by the numbers of their frames
        self._display.sync()

    def forget(self):
        """Drops what has happened so far."""
        self._framed.clear()
        self._display.sync()
        while self._display.pending_events():
            self._display.next_event()

    def wait_for_map(self, seconds=30):
        """Waits for the first window that comes to the screen from now on, in its frame when there is a window manager.
        Gives the moment and the window."""
        def look(event):
            if event.type == X.ReparentNotify and event.parent != self._root:
                self._framed[event.parent.id] = event.window
            return event.type == X.MapNotify and not event.override
        moment, window = self._wait(look, "no window", seconds)
        return moment, self._framed.get(window.id, window)

    def wait_for_end(self, window, seconds=30):
        """Waits until a window that came by `wait_for_map` is destroyed."""
        def look(event):
            return event.type == X.DestroyNotify and self._framed.get(event.window.id, event.window) == window
        self._wait(look, "the window stays", seconds)

    def _wait(self, is_wanted, what, seconds):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            while self._display.pending_events():
                event = self._display.next_event()
                if is_wanted(event):
                    return time.monotonic(), event.window
            select.select([self._display], [], [], 0.1)
        raise TimeoutError(what)

    @contextlib.contextmanager
    def managed(self):
        """A window manager runs."""
        command = ["openbox", "--sm-disable"]
        with subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as manager:
            try:
                self._wait_for_manager()
                yield
            finally:
                manager.terminate()

    def _wait_for_manager(self):
        check = self._display.intern_atom("_NET_SUPPORTING_WM_CHECK")
        end = time.monotonic() + 30
        while not self._root.get_full_property(check, X.AnyPropertyType):
            if time.monotonic() > end:
                raise TimeoutError("no window manager")
            time.sleep(0.02)

    def count_windows(self):
        """Top-level windows of all programs, mapped or not."""
        return len(self._root.query_tree().children)

    def close(self, window):
        """Asks a window to close, as a click on its frame does."""
        protocols, delete = map(self._display.intern_atom, ("WM_PROTOCOLS", "WM_DELETE_WINDOW"))
        window.send_event(message.ClientMessage(window=window, client_type=protocols,
                                                data=(32, [delete, X.CurrentTime, 0, 0, 0])))
        self._display.flush()

    def place(self, window):
        """Where a window's upper left corner is on the screen."""
        corner = window.translate_coords(self._root, 0, 0)
        return -corner.x, -corner.y

    def move(self, window, x, y):
        window.configure(x=x, y=y)
        self._display.sync()

    def point_at_lower_right(self, window, left, up):
        """Moves the pointer so many pixels left of and above a window's lower right corner."""
        size = window.get_geometry()
        corner = window.translate_coords(self._root, 0, 0)
        self._root.warp_pointer(size.width - corner.x - left, size.height - corner.y - up)
        self._display.sync()

    def point_at(self, x, y):
        self._root.warp_pointer(x, y)
        self._display.sync()

    def click(self, settle=0.25):
        """Presses the first button, lets the look of the pressed button settle, and releases it. Gives the moment at
        which the release left."""
        xtest.fake_input(self._display, X.ButtonPress, 1)
        self._display.sync()
        time.sleep(settle)
        start = time.monotonic()
        xtest.fake_input(self._display, X.ButtonRelease, 1)
        self._display.flush()
        return start
