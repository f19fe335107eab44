"""What the customer sees and touches: the accessible tree, pointer and keyboard, windows and pictures."""

import functools
import os
import subprocess
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402
from Xlib import X, display, error  # noqa: E402

from waiting import TimedOut, until  # noqa: E402
from waylandCompositor import Compositor  # noqa: E402

warnings.simplefilter("ignore")
Atspi.init()
_TIMEOUT_MS = 5000
_FRAMES_SECONDS = 0.03  # two frames, in which a layout that is due is done
_BUSY_FRAMES_SECONDS = 0.3
Atspi.set_timeout(_TIMEOUT_MS, _TIMEOUT_MS)


@functools.cache
def the_display():
    connection = display.Display()
    connection.set_error_handler(lambda *_: None)  # windows come and go
    return connection


def grab_focus(accessible):
    """Moves the keyboard to a control, as assistive technology does."""
    if not accessible.get_component_iface().grab_focus():
        raise AssertionError(f"{accessible.get_name()!r} takes no focus")


def xdotool(*arguments):
    return subprocess.run(["xdotool", *map(str, arguments)], check=True, timeout=20, capture_output=True,
                          text=True).stdout


def children(accessible):
    found = []
    for index in range(accessible.get_child_count()):
        child = accessible.get_child_at_index(index)
        if child:
            found.append(child)
    return found


def everything(accessible):
    """The accessible and all below it, in the order of the tree."""
    yield accessible
    for child in children(accessible):
        yield from everything(child)


def has_state(accessible, state):
    return accessible.get_state_set().contains(state)


def shown(accessible):
    return has_state(accessible, Atspi.StateType.SHOWING)


def sensitive(accessible):
    return has_state(accessible, Atspi.StateType.SENSITIVE)


class Application:
    """The program as assistive technology finds it."""

    def __init__(self, pid):
        self.pid = pid
        self.root = until(self._find, "the program in the accessible tree")

    def _find(self):
        desktop = Atspi.get_desktop(0)
        for application in children(desktop):
            try:
                if application.get_process_id() == self.pid:
                    return application
            except Exception:  # one that has just gone
                continue
        return None

    def look(self, role, name=None, only_shown=True):
        """First accessible of a role ("push button", "label", "dialog", ...) and name, or None."""
        try:
            for accessible in everything(self.root):
                if accessible.get_role_name() != role or (name is not None and accessible.get_name() != name):
                    continue
                if not only_shown or shown(accessible):
                    return accessible
        except gi.repository.GLib.Error:  # the tree changed meanwhile
            pass
        return None

    def find(self, role, name=None, only_shown=True, seconds=15):
        return until(lambda: self.look(role, name, only_shown),
                     lambda: f"{role} {name!r}; there is {self.describe()}", seconds)

    def gone(self, role, name=None, seconds=15):
        until(lambda: not self.look(role, name), f"{role} {name!r} goes away", seconds)
        if role == "menu item" and not under_wayland():
            until(_is_pointer_free, "the menu lets the pointer go")

    def shown_all(self, role):
        """All shown accessibles of a role, in the order of the tree."""
        try:
            return [a for a in everything(self.root) if a.get_role_name() == role and shown(a)]
        except gi.repository.GLib.Error:  # the tree changed meanwhile
            return []

    def labels(self):
        """Texts of the shown labels that have one."""
        return [a.get_name() for a in self.shown_all("label") if a.get_name()]

    def go_to_place(self, label, shown_as=None):
        """Clicks a folder in a chooser's list of places until it stands above the files. That list is built anew while
        it fills; a click that falls into that is made once more."""
        for _ in range(3):
            click(lambda: self.look("label", label))
            try:
                return self.find("toggle button", shown_as or label, seconds=5)
            except TimedOut:
                continue
        raise TimedOut(f"the folder {label!r} is never shown")

    def has_label(self, text, seconds=15):
        self.find("label", text, seconds=seconds)

    def describe(self):
        try:
            return [(a.get_role_name(), a.get_name()) for a in everything(self.root) if shown(a)]
        except gi.repository.GLib.Error as failure:
            return str(failure)


def place_of(accessible):
    """Middle of a control on the screen, once the control and the X server agree about it; or of what a function finds,
    for controls that are built anew, as the places of a chooser are."""
    look = accessible if callable(accessible) else lambda: accessible
    x, y, width, height = until(lambda: (found := look()) and steady_extents(found), "the place of a control")
    return x + width // 2, y + height // 2


def _is_pointer_free():
    """Nobody holds the pointer, as a menu does that is still on its way out: a click would go to it."""
    connection = the_display()
    status = connection.screen().root.grab_pointer(False, 0, X.GrabModeAsync, X.GrabModeAsync, X.NONE, X.NONE,
                                                   X.CurrentTime)
    if status == X.GrabSuccess:
        connection.ungrab_pointer(X.CurrentTime)
        connection.sync()
    return status == X.GrabSuccess


def under_wayland():
    return "WAYLAND_DISPLAY" in os.environ


def top_level(accessible):
    """The window, dialog or menu that a control is in."""
    while accessible.get_parent() and accessible.get_parent().get_role_name() != "application":
        accessible = accessible.get_parent()
    return accessible


def _extents_in_compositor(accessible):
    """Extents on the screen, which the toolkit itself is never told, or None while its window is being laid out."""
    inside = accessible.get_extents(Atspi.CoordType.WINDOW)
    around = top_level(accessible)
    whole = around.get_extents(Atspi.CoordType.WINDOW)
    window = Compositor().holding(around.get_process_id(), around.get_name(), (whole.width, whole.height))
    if not window or inside.width <= 0 or not _is_drawn(*window.rectangle):
        return None
    left, top = window.rectangle[:2]
    if window.shadow((whole.width, whole.height)):
        parts = [part.get_extents(Atspi.CoordType.WINDOW) for part in children(around) if shown(part)]
        left, top = left - min(part.x for part in parts), top - min(part.y for part in parts)
    return left + inside.x, top + inside.y, inside.width, inside.height


def extents_of(window):
    """A window's extents on the screen; of a menu in a compositor, where it may be."""
    if not under_wayland():
        extents = window.get_extents(Atspi.CoordType.SCREEN)
        return extents.x, extents.y, extents.width, extents.height
    extents = window.get_extents(Atspi.CoordType.WINDOW)
    found = Compositor().holding(window.get_process_id(), window.get_name(), (extents.width, extents.height))
    whole = the_display().screen()
    return found.rectangle if found else (0, 0, whole.width_in_pixels, whole.height_in_pixels)


def _is_drawn(x, y, width, height):
    """No corner shows the desktop: the compositor knows windows, and gives them the keyboard, before it shows them."""
    inset = 8  # corners may be round
    corners = [(x + right, y + bottom) for right in (inset, width - inset) for bottom in (inset, height - inset)
               if on_screen(x + right, y + bottom)]
    return all(colour_at(*corner) != colour_at(0, 0) for corner in corners)


def steady_extents(accessible):
    """Extents on the screen, or None while the toolkit has not yet heard where its window went."""
    if under_wayland():
        return _extents_in_compositor(accessible)
    on_screen = accessible.get_extents(Atspi.CoordType.SCREEN)
    in_window = accessible.get_extents(Atspi.CoordType.WINDOW)
    if on_screen.width <= 0 or on_screen.x < 0 or on_screen.y < 0:
        return None
    middle = on_screen.x + on_screen.width // 2, on_screen.y + on_screen.height // 2
    if (on_screen.x - in_window.x, on_screen.y - in_window.y) not in _origins_at(*middle):
        return None
    return on_screen.x, on_screen.y, on_screen.width, on_screen.height


def _origins_at(x, y):
    """Where the windows begin that lie one in the other under a point of the screen."""
    root = the_display().screen().root
    origins, window = [], root
    while window:
        try:
            inside = window.translate_coords(root, x, y)
            if window != root:  # where a window seems to be that was not placed yet
                origins.append((x - inside.x, y - inside.y))
            window = inside.child or None
        except error.XError:
            break
    return origins


def click(accessible, button=1):
    """A real click of the pointer on the middle of a control; nobody can tell where a Wayland compositor puts a menu."""
    if under_wayland() and not callable(accessible) and accessible.get_role_name() == "menu item":
        accessible.get_action_iface().do_action(0)
        return
    point_at(accessible)
    xdotool("click", button)


def click_through(accessible):
    """A click that no key and no request overtakes: the window manager holds clicks back until it has looked at them,
    but no keys. Not for what opens a menu, which holds the pointer."""
    click(accessible)
    if not under_wayland():
        until(_is_pointer_free, "the click arrives")


def point_at(accessible):
    """Moves the pointer to a control until it is there: layouts move it, and a tooltip that covers it goes by that."""
    aim, began = None, time.monotonic()
    while aim != (place := place_of(accessible)):
        aim = place
        _move(*aim)
        # On a busy machine everything takes longer, layouts, too.
        time.sleep(min(max(_FRAMES_SECONDS, 2 * (time.monotonic() - began)), _BUSY_FRAMES_SECONDS))
        began = time.monotonic()


def press(x, y, button=1):
    _move(x, y)
    xdotool("click", button)


def _move(x, y):
    # A compositor sees what is under a pointer that moves.
    xdotool("mousemove", x - 1, y, "mousemove", x, y)


def picture(path):
    """A picture of the whole screen, for whoever looks into a failure."""
    subprocess.run(["import", "-window", "root", str(path)], check=False, timeout=30)


def window_tree():
    """What the X server knows of all windows, for the same."""
    return subprocess.run(["xwininfo", "-root", "-tree"], check=False, capture_output=True, timeout=30, text=True,
                          errors="replace").stdout


def on_screen(x, y):
    return 0 <= x < the_display().screen().width_in_pixels and 0 <= y < the_display().screen().height_in_pixels


def colour_at(x, y):
    """Red, green and blue of a point of the screen."""
    blue, green, red, _ = the_display().screen().root.get_image(x, y, 1, 1, X.ZPixmap, 0xFFFFFFFF).data
    return red, green, blue


class Windows:
    """Top-level windows as the X server knows them."""

    def __init__(self):
        self.display = the_display()
        self.root = self.display.screen().root

    def titled(self, title):
        """Visible windows with this title, wherever a window manager has put them."""
        return [window for window in self._below(self.root) if self._title(window) == title and self._visible(window)]

    def find(self, title, seconds=15):
        return until(lambda: next(iter(self.titled(title)), None), f"a window titled {title!r}", seconds)

    def managed(self):
        """Identifiers of the windows that the window manager knows, the oldest first."""
        return self._numbers("_NET_CLIENT_LIST")

    def active(self):
        """Identifier of the window that the window manager has made active, or None."""
        return next(iter(self._numbers("_NET_ACTIVE_WINDOW")), None)

    def numbered(self, identifier):
        return self.display.create_resource_object("window", identifier)

    def position(self, window):
        there = window.translate_coords(self.root, 0, 0)
        return -there.x, -there.y

    def size(self, window):
        geometry = window.get_geometry()
        return geometry.width, geometry.height

    def focused(self):
        """Title of the window that has the keyboard, or None."""
        focus = self.display.get_input_focus().focus
        while hasattr(focus, "id"):
            title = self._title(focus)
            if title:
                return title
            focus = focus.query_tree().parent
            if not focus or focus == self.root:
                return None
        return None

    def wait_focus(self, title):
        until(lambda: self._focused_or_none() == title, lambda: f"focus on {title!r}, is {self._focused_or_none()!r}")

    def knows(self, pid):
        """The window manager knows a window of this process."""
        return any(self._pid(window) == pid for window in self.managed())

    def wait_placed(self, pid):
        """The window manager knows a window of this process and has made up its mind about the active one."""
        until(lambda: self.active() in self.managed() and self.knows(pid),
              lambda: f"a placed window of {pid}; there are {self.managed()}, active is {self.active()}")

    def close(self, window):
        """What a click on the frame's close box makes the window manager send."""
        from Xlib.protocol import event
        protocols = self.display.intern_atom("WM_PROTOCOLS")
        message = event.ClientMessage(window=window, client_type=protocols, data=(
            32, [self.display.intern_atom("WM_DELETE_WINDOW"), X.CurrentTime, 0, 0, 0]))
        window.send_event(message)
        self.display.flush()

    def _numbers(self, name, window=None):
        found = (window or self.root).get_full_property(self.display.intern_atom(name), X.AnyPropertyType)
        return list(found.value) if found else []

    def _pid(self, identifier):
        try:
            return next(iter(self._numbers("_NET_WM_PID", self.numbered(identifier))), None)
        except error.XError:  # has just gone
            return None

    def _focused_or_none(self):
        try:
            return self.focused()
        except (error.XError, AttributeError):
            return None

    def _below(self, window):
        try:
            for child in window.query_tree().children:
                yield child
                yield from self._below(child)
        except error.XError:
            return

    def _title(self, window):
        try:
            name = window.get_full_text_property(self.display.intern_atom("_NET_WM_NAME"))
            return name if isinstance(name, str) or name is None else name.decode()
        except (error.XError, UnicodeDecodeError):
            return None

    @staticmethod
    def _visible(window):
        try:
            return window.get_attributes().map_state == X.IsViewable
        except error.XError:
            return False


def windows_shown():
    return Compositor() if under_wayland() else Windows()
