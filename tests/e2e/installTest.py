"""The installed directories that the program never makes itself: who may enter them."""

import pathlib
import stat
import subprocess
import tempfile
import unittest

TOP = pathlib.Path(__file__).parents[2]
# The layout without the program.
PROJECT = f"""
cmake_minimum_required(VERSION 3.25)
project(layout NONE)
include("{TOP}/cmake/layout.cmake")
"""


class AnInstallation(unittest.TestCase):
    def rights(self, layout, *directories):
        """The modes of these directories, installed below a folder of its own."""
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            (folder / "CMakeLists.txt").write_text(PROJECT)
            for words in (["-S", folder, "-B", folder / "build", f"-DBRINDLE_LAYOUT={layout}"],
                          ["--install", folder / "build", "--prefix", folder / "root"]):
                subprocess.run(["cmake", *words], check=True, capture_output=True, timeout=120, umask=0o022)
            return [stat.S_IMODE((folder / "root" / directory).stat().st_mode) for directory in directories]

    def test_of_a_user_lets_nobody_else_at_logs_and_pipes(self):
        self.assertEqual(self.rights("user", ".brindle", ".brindle/Brindle/Logs", ".brindle/temp"),
                         [0o755, 0o700, 0o700])

    def test_of_a_machine_leaves_the_rights_to_its_administrator(self):
        self.assertEqual(self.rights("machine", "var/log/Brindle", "usr/local/Brindle/temp"), [0o755, 0o755])
        self.assertEqual(self.rights("reach", "var/log/OstrelReach", "usr/local/OstrelReach/temp"), [0o755, 0o755])


if __name__ == "__main__":
    unittest.main()
