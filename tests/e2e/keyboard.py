"""The customer's keyboard."""

import functools

from Xlib import XK

from screen import the_display, xdotool

XK.load_keysym_group("xkb")


def key(*names):
    """Presses and releases keys one after the other, as xdotool names them ("Return", "ctrl+Tab")."""
    for name in names:
        _put_on_keyboard(name.split("+")[-1])
    xdotool("key", *names)


@functools.cache
def _put_on_keyboard(name):
    """Gives the keyboard a key that it lacks. xdotool would, too, but take it away before a busy program has looked at
    what was pressed."""
    connection = the_display()
    symbol = XK.string_to_keysym(name)
    if symbol == XK.NoSymbol or connection.keysym_to_keycode(symbol):
        return
    first = connection.display.info.min_keycode
    rows = connection.get_keyboard_mapping(first, connection.display.info.max_keycode - first + 1)
    free = next(code for code, row in enumerate(rows, first) if not any(row))
    connection.change_keyboard_mapping(free, [[symbol] * len(rows[0])])
    connection.sync()
