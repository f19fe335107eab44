"""Curves as SVG pictures."""

import dataclasses
import math
from xml.sax.saxutils import escape

_WIDTH, _HEIGHT = 640, 360
_LEFT, _RIGHT, _TOP, _BOTTOM = 70, 36, 40, 50  # room around the curves
_COLOURS = ("#1f6fb2", "#d1701c", "#4f8f3a", "#8a5aa8")
_TICKS = 5  # about as many on a linear axis


@dataclasses.dataclass
class Curve:
    name: str
    points: list  # (x, y)


@dataclasses.dataclass
class Plot:
    name: str  # of the file, without its ending
    title: str
    x_label: str
    y_label: str
    curves: list
    log_x: bool = False
    log_y: bool = False
    room: float = 1  # how much higher than the curves it is, for the names of flat ones

    def svg(self):
        x_axis = _Axis([x for curve in self.curves for x, _ in curve.points], self.log_x, _LEFT, _WIDTH - _RIGHT)
        y_axis = _Axis([y * self.room for curve in self.curves for _, y in curve.points], self.log_y,
                       _HEIGHT - _BOTTOM, _TOP, from_zero=True)
        parts = [_FRAME, _text(_WIDTH / 2, 22, self.title, size=15), *_grid(x_axis, y_axis),
                 _text((_LEFT + _WIDTH - _RIGHT) / 2, _HEIGHT - 12, self.x_label),
                 _text(16, (_TOP + _HEIGHT - _BOTTOM) / 2, self.y_label, turned=True)]
        for number, curve in enumerate(self.curves):
            parts += _draw(curve, x_axis, y_axis, _COLOURS[number % len(_COLOURS)])
        parts += _legend(self.curves)
        return "\n".join([*parts, "</svg>", ""])


class _Axis:
    """Where a value stands in the picture, and which values are named."""

    def __init__(self, values, is_log, start, end, from_zero=False):
        self._is_log, self._start, self._end = is_log, start, end
        if is_log:
            values = [value for value in values if value > 0]
            self.ticks = [10.0 ** power for power in range(math.floor(math.log10(min(values))),
                                                           math.ceil(math.log10(max(values))) + 1)]
        else:
            self.ticks = _round_ticks(0 if from_zero else min(values), max(values))
        self._low, self._high = self._scale(self.ticks[0]), self._scale(self.ticks[-1])

    def _scale(self, value):
        return math.log10(value) if self._is_log else value

    def shows(self, value):
        return value > 0 or not self._is_log

    def place(self, value):
        share = (self._scale(value) - self._low) / ((self._high - self._low) or 1)
        return self._start + share * (self._end - self._start)


def _round_ticks(low, high):
    """About so many round values that hold all others between them."""
    rough = (high - low or 1) / _TICKS
    power = 10.0 ** math.floor(math.log10(rough))
    step = next(factor * power for factor in (1, 2, 5, 10) if factor * power >= rough)
    first, last = math.floor(low / step), math.ceil(high / step)
    return [number * step for number in range(first, max(last, first + 1) + 1)]


_FRAME = (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {_WIDTH} {_HEIGHT}" width="{_WIDTH}" '
          f'height="{_HEIGHT}" font-family="sans-serif" font-size="12" fill="#333">\n'
          f'<rect width="{_WIDTH}" height="{_HEIGHT}" fill="#fff"/>')


def _text(x, y, words, size=12, anchor="middle", turned=False):
    turn = f' transform="rotate(-90 {x:.1f} {y:.1f})"' if turned else ""
    return f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" text-anchor="{anchor}"{turn}>{escape(words)}</text>'


def _number(value):
    if value >= 1000:
        return f"{value:,.0f}".replace(",", " ")
    return f"{value:.6f}".rstrip("0").rstrip(".")


def _line(x1, y1, x2, y2, colour="#ddd"):
    return f'<path d="M{x1:.1f} {y1:.1f}L{x2:.1f} {y2:.1f}" stroke="{colour}"/>'


def _grid(x_axis, y_axis):
    bottom, right = _HEIGHT - _BOTTOM, _WIDTH - _RIGHT
    for tick in x_axis.ticks:
        x = x_axis.place(tick)
        yield _line(x, _TOP, x, bottom)
        yield _text(x, bottom + 16, _number(tick))
    for tick in y_axis.ticks:
        y = y_axis.place(tick)
        yield _line(_LEFT, y, right, y)
        yield _text(_LEFT - 6, y + 4, _number(tick), anchor="end")
    yield _line(_LEFT, bottom, right, bottom, "#888")
    yield _line(_LEFT, _TOP, _LEFT, bottom, "#888")


def _draw(curve, x_axis, y_axis, colour):
    places = [(x_axis.place(x), y_axis.place(y)) for x, y in curve.points if x_axis.shows(x) and y_axis.shows(y)]
    path = "L".join(f"{x:.1f} {y:.1f}" for x, y in places)
    yield f'<path d="M{path}" fill="none" stroke="{colour}" stroke-width="2"/>'
    for x, y in places:
        yield f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{colour}"/>'


def _legend(curves):
    for number, curve in enumerate(curves):
        y = _TOP + 16 + 18 * number
        yield f'<rect x="{_LEFT + 12}" y="{y - 9}" width="14" height="10" fill="{_COLOURS[number % len(_COLOURS)]}"/>'
        yield _text(_LEFT + 32, y, curve.name, anchor="start")
