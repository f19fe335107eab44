"""The customer at the screen: looks for a control once, then knows where it is."""

import pathlib
import subprocess
import sys
import time

from Xlib import X, error
from Xlib.ext import res

from display import Display
from processes import until

_LOOK_AT = pathlib.Path(__file__).with_name("lookAt.py")
_TRIES = 6
_PATIENCE_SECONDS = 5  # then another try: the window may have been on its way to its place
_STEADY_LOOKS, _LOOK_SECONDS = 3, 0.02  # a window stands still that was the same so often


class Screen(Display):
    """The X server, with menus and what it holds for a program."""

    def menu_comes(self):
        """A menu has come; `came` is that one."""
        try:
            _, self.came = self._wait(lambda event: event.type == X.MapNotify and self._is_menu(event.window), "no menu",
                                      0.2)
            return True
        except TimeoutError:
            return False

    def _is_menu(self, window):
        try:
            kinds = window.get_full_property(self._display.intern_atom("_NET_WM_WINDOW_TYPE"), X.AnyPropertyType)
        except error.XError:  # it has just gone
            return False
        return any("MENU" in self._display.get_atom_name(kind) for kind in (kinds.value if kinds else ()))

    def map_comes(self):
        """A window has come; `came` is that one."""
        try:
            _, self.came = self.wait_for_map(0.2)
            return True
        except TimeoutError:
            return False

    def focused_in(self, window):
        """This window, or one in it, has the keyboard."""
        try:
            focus = self._display.get_input_focus().focus
            return focus == window or focus.query_tree().parent == window
        except (error.XError, AttributeError):  # it has just gone, or nobody has it
            return False

    def exists(self, window):
        try:
            return window.get_attributes().map_state == X.IsViewable
        except error.XError:
            return False

    def height(self, window):
        return window.get_geometry().height

    def resources(self, window):
        """What the X server holds for the program of this window: (windows, pictures and glyphs, all else)."""
        counts = {self._display.get_atom_name(each.resource_type): each.count
                  for each in res.query_client_resources(self._display, window.id).types}
        windows, drawn = counts.pop("WINDOW"), counts.pop("PICTURE", 0) + counts.pop("GLYPHSET", 0)
        return windows, drawn, sum(counts.values())


def look_at(process, *words):
    return [int(word) for word in subprocess.run(
        [sys.executable, _LOOK_AT, str(process.pid), *words], check=True, stdout=subprocess.PIPE, text=True,
        timeout=60).stdout.split()]


def keys(*arguments):
    subprocess.run(["xdotool", *arguments], check=True, timeout=20)


class Customer:
    def __init__(self, screen, process, window):
        self._screen = screen
        self._process = process
        self.window = window
        self._offsets = {}

    def press(self, name, is_done, role="push button", window=None, where="", tries=_TRIES):
        """Clicks on a control of a window, the main one unless given, until something has happened.

        where: what kind of window it is
        """
        window = window or self.window
        for _ in range(tries):
            place, height = self._steady(window)
            key = where, height, role, name  # a control stands elsewhere when its window has another size
            self._click(place, key, role, name)
            if self._comes_true(is_done):
                return
            self._offsets.pop(key, None)
        raise TimeoutError(f"nothing happens at {name!r}")

    def choose(self, button, entry, is_done):
        """Opens a button's menu and takes an entry, until something has happened."""
        for _ in range(_TRIES):
            self._screen.forget()
            self.press(button, self._screen.menu_comes)
            try:  # once: behind a menu that has gone there is another control
                self.press(entry, is_done, role="menu item", window=self._screen.came, where="menu", tries=1)
                return
            except (TimeoutError, subprocess.CalledProcessError):
                keys("key", "Escape")
        raise TimeoutError(f"nothing comes of {button!r}")

    def type_into(self, name, text, is_done):
        """Replaces what stands in a field, and ends with the return key, until something has happened."""
        for _ in range(_TRIES):
            self.press(name, self._has_keyboard, role="text")
            keys("key", "ctrl+a", "BackSpace", "type", "--delay", "2", text)
            keys("key", "Return")
            if self._comes_true(is_done):
                return
        raise TimeoutError(f"nothing comes of what is typed into {name!r}")

    def _has_keyboard(self):
        return self._screen.focused_in(self.window)

    def _steady(self, window):
        """Place and height of a window that stands still."""
        before, looks = None, 0
        end = time.monotonic() + 30
        while looks < _STEADY_LOOKS:
            now = self._screen.place(window), self._screen.height(window)
            looks = looks + 1 if now == before else 0
            before = now
            time.sleep(_LOOK_SECONDS)
            if time.monotonic() > end:
                raise TimeoutError("a window that never stands still")
        return before

    def _click(self, place, key, role, name):
        if key not in self._offsets:
            x, y = look_at(self._process, role, name)
            self._offsets[key] = x - place[0], y - place[1]
        right, down = self._offsets[key]
        self._screen.point_at(place[0] + right, place[1] + down)
        self._screen.click(settle=0.01)

    @staticmethod
    def _comes_true(is_done):
        try:
            until(is_done, "", _PATIENCE_SECONDS)
            return True
        except TimeoutError:
            return False
