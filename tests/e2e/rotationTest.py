"""The log at start: what is rotated, under which name, what is counted."""

import os

from session import Home, SessionCase, main

LIMIT = 2_000_000


def rotated_name(number):
    return f"ui.log_1970-1-1_{number}"


class TheLog(SessionCase):
    def run_with(self, size, others=()):
        home = Home()
        logs = home.product / "Logs"
        (logs / "ui.log").write_bytes(b"x" * (size - 1) + b"\n")
        for name in others:
            (logs / name).write_text("kept")
        session = self.start(home=home, environment={"TZ": "UTC"}).ready()
        self.assertEqual(session.quit(), 0)
        return logs

    def names(self, logs):
        return sorted(os.listdir(logs))

    def test_of_two_million_bytes_is_rotated_to_the_first_day_of_the_epoch(self):
        logs = self.run_with(LIMIT)
        self.assertEqual(self.names(logs), ["ui.log", rotated_name(1)])
        self.assertEqual((logs / rotated_name(1)).stat().st_size, LIMIT)
        self.assertTrue((logs / "ui.log").read_bytes().startswith(b"20"))

    def test_that_is_smaller_goes_on_in_the_same_file(self):
        # Well below: the first lines of this start must not lift it over the limit before the second look.
        logs = self.run_with(LIMIT - 100_000)
        self.assertEqual(self.names(logs), ["ui.log"])
        self.assertGreater((logs / "ui.log").stat().st_size, LIMIT - 100_000)

    def test_that_the_first_lines_lift_over_the_limit_is_rotated_at_the_second_look(self):
        logs = self.run_with(LIMIT - 1)
        self.assertEqual(self.names(logs), ["ui.log", rotated_name(1)])
        self.assertIn(b"Created .desktop file at", (logs / rotated_name(1)).read_bytes())

    def test_counts_only_its_own_rotated_files(self):
        logs = self.run_with(LIMIT, others=["ui.log_x", "ui.logX_a_b", "ui.log_a_b"])
        self.assertIn(rotated_name(2), self.names(logs))

    def test_takes_the_seventh_name_and_then_one_name_again_and_again(self):
        six = [rotated_name(number) for number in range(1, 7)]
        logs = self.run_with(LIMIT, others=six)
        self.assertIn(rotated_name(7), self.names(logs))
        logs = self.run_with(LIMIT, others=[*six, rotated_name(7)])
        self.assertEqual((logs / "ui.log_(null)_0").stat().st_size, LIMIT)
        logs = self.run_with(LIMIT, others=[*six, rotated_name(7), "ui.log_(null)_0"])
        self.assertEqual((logs / "ui.log_(null)_0").stat().st_size, LIMIT)
        self.assertEqual(len(self.names(logs)), 9)


if __name__ == "__main__":
    main()
