"""Where the window first shows. Runs without a window manager, which would push the window back on the screen."""

from session import SessionCase, main


class TheWindow(SessionCase):
    def expect_place(self, session):
        window = session.ready().windows.find("Brindle")
        screen = session.windows.display.screen()
        place = session.windows.position(window)
        self.assertEqual(place, (screen.width_in_pixels - 200, screen.height_in_pixels - 50))

    def test_stands_left_of_the_corner(self):
        self.expect_place(self.start())

    def test_stands_there_on_every_architecture(self):
        for version in ("arm", "arm64"):
            with self.subTest(version):
                session = self.start(options=["-v", version])
                self.expect_place(session)
                session.quit()

    def test_is_350_wide(self):
        session = self.start().ready()
        self.assertEqual(session.windows.size(session.windows.find("Brindle"))[0], 350)


if __name__ == "__main__":
    main()
