"""The installed languages: where the program looks for them, all of them unless some were chosen."""

import os
import pathlib
import subprocess
import tempfile
import unittest

RESOURCES = pathlib.Path(os.environ["RESOURCE_FOLDER"])
TOP = pathlib.Path(__file__).parents[2]

# The resources without the program, as they were built.
PROJECT = f"""
cmake_minimum_required(VERSION 3.25)
project(languages NONE)
set(BRINDLE_LAYOUT user CACHE STRING "")
include("{TOP}/cmake/layout.cmake")
add_subdirectory("{TOP}/resources" resources)
"""


def sources():
    return {path.stem for path in (TOP / "resources/languages").glob("*.json")}


class TheInstalledLanguages(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "CMakeLists.txt").write_text(PROJECT)
        (self.folder / "build").mkdir()
        (self.folder / "build/Resource").symlink_to(RESOURCES)

    def cmake(self, *arguments):
        return subprocess.run(["cmake", *map(str, arguments)], capture_output=True, text=True, timeout=120, check=False)

    def configure(self, *options):
        return self.cmake("-S", self.folder, "-B", self.folder / "build", *options)

    def installed(self, *options):
        """The languages in a home into which was installed."""
        configured = self.configure(*options)
        self.assertEqual(configured.returncode, 0, configured.stderr)
        home = self.folder / f"home{len(list(self.folder.iterdir()))}"
        done = self.cmake("--install", self.folder / "build", "--prefix", home)
        self.assertEqual(done.returncode, 0, done.stderr)
        languages = home / ".brindle/Brindle/Resource/locale"
        for language in languages.iterdir():
            packed = "resource.json"
            self.assertEqual([file.name for file in language.iterdir()], [packed])
            built = RESOURCES / "locale" / language.name / packed
            self.assertEqual((language / packed).read_bytes(), built.read_bytes())
        return {language.name for language in languages.iterdir()}

    def test_are_all(self):
        self.assertEqual(self.installed(), sources())

    def test_are_those_that_were_chosen(self):
        self.assertEqual(self.installed("-DBRINDLE_LANGUAGES=de;pt_BR"), {"de", "pt_BR"})
        self.assertEqual(self.installed("-DBRINDLE_LANGUAGES="), set())
        self.assertEqual(self.installed("-DBRINDLE_LANGUAGES=all"), sources())

    def test_must_be_there_to_be_chosen(self):
        refused = self.configure("-DBRINDLE_LANGUAGES=de;tlh")
        self.assertNotEqual(refused.returncode, 0)
        self.assertIn('"tlh"', refused.stderr)


if __name__ == "__main__":
    unittest.main()
