"""placeOf.py PROCESS BUTTON: prints where the middle of a program's button is on the screen.

A program of its own: as long as somebody listens to the accessible tree, the toolkit does work for him, and keeps some
memory of each window that comes and goes."""

import pathlib
import sys

# What the tests find a button with finds it here, too.
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests/e2e"))

from screen import Application, place_of  # noqa: E402


def main():
    application = Application(int(sys.argv[1]))
    print(*place_of(application.find("push button", sys.argv[2])))


if __name__ == "__main__":
    main()
