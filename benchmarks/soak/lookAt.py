"""lookAt.py PROCESS: prints how many accessible objects a program has, shown or not.
lookAt.py PROCESS ROLE NAME: prints where the middle of one of them is on the screen.

A program of its own: as long as somebody listens to the accessible tree, the toolkit does work for him, and keeps some
memory of each window that comes and goes."""

import pathlib
import sys

# What the tests find a control with finds it here, too.
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests/e2e"))

from screen import Application, everything, place_of  # noqa: E402


def main():
    application = Application(int(sys.argv[1]))
    if len(sys.argv) == 2:
        print(sum(1 for _ in everything(application.root)))
    else:
        print(*place_of(application.find(*sys.argv[2:])))


if __name__ == "__main__":
    main()
