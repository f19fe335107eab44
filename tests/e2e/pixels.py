"""What stands on the screen, point by point."""

import gi

gi.require_version("GdkPixbuf", "2.0")

from gi.repository import GdkPixbuf  # noqa: E402
from Xlib import X  # noqa: E402

from screen import steady_extents, the_display  # noqa: E402


class Pixels:
    """What really stands on the screen, compared with picture files."""

    def __init__(self):
        self.root = the_display().screen().root

    def shows(self, accessible, file):
        """The picture file stands in the middle of a control, in its natural size, over the control's ground."""
        picture_file = GdkPixbuf.Pixbuf.new_from_file(str(file))
        width, height = picture_file.get_width(), picture_file.get_height()
        extents = steady_extents(accessible)
        if not extents or extents[2] < width or extents[3] < height:
            return False
        left, top = extents[0] + (extents[2] - width) // 2, extents[1] + (extents[3] - height) // 2
        seen = self._grab(left, top, width, height)
        ground = seen[0]
        expected = over(picture_file, ground)
        wrong = sum(abs(a - b) for one, other in zip(seen, expected) for a, b in zip(one, other))
        return wrong / (3 * len(seen)) < 6

    def _grab(self, x, y, width, height):
        data = self.root.get_image(x, y, width, height, X.ZPixmap, 0xFFFFFFFF).data
        return [(data[i + 2], data[i + 1], data[i]) for i in range(0, len(data), 4)]


def over(pixbuf, ground):
    """Pixels of a picture over a ground of one colour."""
    bytes_of_row, channels, data = pixbuf.get_rowstride(), pixbuf.get_n_channels(), pixbuf.get_pixels()
    pixels = []
    for y in range(pixbuf.get_height()):
        for x in range(pixbuf.get_width()):
            at = y * bytes_of_row + x * channels
            opacity = data[at + 3] / 255 if channels == 4 else 1
            pixels.append(tuple(data[at + c] * opacity + ground[c] * (1 - opacity) for c in range(3)))
    return pixels
