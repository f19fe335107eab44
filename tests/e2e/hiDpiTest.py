"""A screen of scale factor 2: every picture is drawn with twice the pixels in its old size, and nothing is off the screen."""

import gi

gi.require_version("Atspi", "2.0")
gi.require_version("GdkPixbuf", "2.0")
from gi.repository import Atspi, GdkPixbuf, GLib  # noqa: E402

from pixels import Pixels, over
from screen import everything, press, sensitive, shown, the_display
from session import RESOURCES, Home, SessionCase, main
from waiting import until

SCALE = 2
# Control, picture, size: of the 64 pixels of its file the program makes what it needs.
SCALED = (("Participant", "participants", 18), ("Chat", "chat-black", 20), ("File Transfer", "files-black", 20),
          ("Annotation", "annotate-black", 20), ("More", "settings", 14), ("More: Ann Lee", "settings", 12),
          ("Pen", "pen", 16), ("Rectangle", "rectangle", 16), ("Ellipse", "ellipse", 16), ("Line", "line", 16),
          ("Eraser", "eraser", 16), ("Clear Screen", "delete2", 16))
# Control, picture: the double size is a file of its own.
DOUBLE = (("Pause Screen Sharing", "pause"), ("Download Chat", "download"))


def area(accessible):
    """Extents in the pixels of the screen."""
    extents = accessible.get_extents(Atspi.CoordType.SCREEN)
    return [SCALE * number for number in (extents.x, extents.y, extents.width, extents.height)]


class CrispPixels(Pixels):
    def is_crisp(self, accessible, crisp):
        """Nearer to the picture with all its pixels than to one of half the size that was drawn larger."""
        wide, high = crisp.get_width(), crisp.get_height()
        coarse = crisp.scale_simple(wide // SCALE, high // SCALE, GdkPixbuf.InterpType.BILINEAR).scale_simple(
            wide, high, GdkPixbuf.InterpType.BILINEAR)
        near, far = self.distances(accessible, (crisp, coarse))
        return near < 6 and near < far / 2

    def distances(self, accessible, pictures):
        """How far, on average, a control is from each picture, wherever near its middle that is: extents are told in
        the pixels of the program, and a frame has an odd number of the screen's."""
        x, y, width, height = area(accessible)
        wide, high = pictures[0].get_width(), pictures[0].get_height()
        around = 6
        left, top = x + (width - wide) // 2 - around, y + (height - high) // 2 - around
        seen = self._grab(left, top, wide + 2 * around, high + 2 * around)
        rows = [seen[at:at + wide + 2 * around] for at in range(0, len(seen), wide + 2 * around)]
        found = []
        for picture in pictures:
            expected = over(picture, seen[0])
            found.append(min(_distance(rows, expected, wide, right, down)
                             for right in range(2 * around + 1) for down in range(2 * around + 1)))
        return found


    def frame_on(self, accessible, frames):
        """Number of the frame that stands on a control with every pixel it has, or None. Extents are told in the pixels
        of the program."""
        x, y, width, height = area(accessible)
        wide, high = frames[0].get_width(), frames[0].get_height()
        for left in range(x + (width - wide) // 2 - 1, x + (width - wide) // 2 + 2):
            for top in range(y + (height - high) // 2 - 1, y + (height - high) // 2 + 2):
                seen = self._grab(left, top, wide, high)
                for number, frame in enumerate(frames):
                    if all(a == b for a, b in zip(seen, _opaque(frame)) if b):
                        return number
        return None


def _opaque(picture):
    """Colours of its pixels, None where it is transparent."""
    row, data = picture.get_rowstride(), picture.get_pixels()
    for y in range(picture.get_height()):
        for at in range(y * row, y * row + 4 * picture.get_width(), 4):
            yield tuple(data[at:at + 3]) if data[at + 3] else None


def frames_of(file):
    """The frames of an animation, each once."""
    animation = GdkPixbuf.PixbufAnimation.new_from_file(str(file))
    now = GLib.TimeVal()
    frames, player = [], animation.get_iter(now)
    for tenth in range(14):
        now.tv_sec, now.tv_usec = divmod(tenth * 100_000 + 50_000, 1_000_000)
        player.advance(now)
        frames.append(player.get_pixbuf().copy())
    return frames


def _distance(rows, expected, wide, right, down):
    wrong = 0
    for at in range(0, len(expected), wide):
        row = rows[down + at // wide][right:right + wide]
        wrong += sum(abs(a[0] - b[0]) for a, b in zip(row, expected[at:at + wide]))
    return wrong / len(expected)


class TheWindow(SessionCase):
    def setUp(self):
        super().setUp()
        home = Home()
        home.install_annotation()
        self.session = self.start(home=home, environment={"GDK_SCALE": str(SCALE)}).ready()
        self.application = self.session.application
        self.pixels = CrispPixels()

    def press(self, name):
        button = self.application.find("push button", name)
        until(lambda: sensitive(button), f"{name} can be pressed")
        x, y, width, height = area(button)
        press(x + width // 2, y + height // 2)

    def open_everything(self):
        self.session.send("sessionStatus TECH-NAME Ann%20Lee")
        self.session.send("sessionStatus participantsAdd Ann%20Lee 42 true")
        for panel, content in (("Participant", "More: Ann Lee"), ("File Transfer", "Send File"), ("Annotation", "Pen")):
            self.press(panel)
            self.application.find("push button", content)
        self.session.send("chat Ann\nHello")  # opens its panel, and there is something to download
        self.application.find("push button", "Download Chat")
        press(3, 3)  # nothing is lit under the pointer

    def draws(self, name, picture):
        button = self.application.find("push button", name)
        until(lambda: self.pixels.is_crisp(button, picture),
              lambda: f"{name} crisp; it is {self.pixels.distances(button, [picture])} away")

    def test_draws_every_picture_crisp_in_its_old_size(self):
        self.open_everything()
        for name, file, size in SCALED:
            with self.subTest(name):
                source = GdkPixbuf.Pixbuf.new_from_file(str(RESOURCES / f"{file}.png"))
                self.draws(name, source.scale_simple(SCALE * size, SCALE * size, GdkPixbuf.InterpType.BILINEAR))
        for name, file in DOUBLE:
            with self.subTest(name):
                self.draws(name, GdkPixbuf.Pixbuf.new_from_file(str(RESOURCES / f"{file}@2x.png")))

    def test_draws_the_state_crisp(self):
        def icon():
            return next(a for a in self.application.shown_all("icon") if a.get_extents(Atspi.CoordType.SCREEN).width == 16)

        for line, file in (("disconnected", "offline"), ("Connected", "online")):
            self.session.send(f"sessionStatus {line}")
            picture = GdkPixbuf.Pixbuf.new_from_file(str(RESOURCES / f"{file}@2x.png"))
            until(lambda: self.pixels.is_crisp(icon(), picture), f"{file} crisp")

    def test_draws_the_recording_sign_crisp_in_every_frame(self):
        frames = frames_of(RESOURCES / "record@2x.gif")
        self.session.send("ONDEMAND START")
        sign = until(lambda: next((a for a in self.application.shown_all("icon")
                                   if a.get_extents(Atspi.CoordType.SCREEN).width > 20), None), "the recording sign")
        seen = set()

        def look():
            number = self.pixels.frame_on(sign, frames)
            if number is not None:
                seen.add(number)
            return len(seen) >= 4
        until(look, lambda: f"four frames of the double size; there are {seen}")

    def test_is_on_the_screen_with_every_control(self):
        whole = the_display().screen()
        self.open_everything()
        for accessible in everything(self.application.root):
            if shown(accessible) and accessible.get_role_name() == "push button":
                x, y, width, height = area(accessible)
                with self.subTest(accessible.get_name()):
                    self.assertGreaterEqual(min(x, y), 0)
                    self.assertLessEqual(x + width, whole.width_in_pixels)
                    self.assertLessEqual(y + height, whole.height_in_pixels)


if __name__ == "__main__":
    main()
