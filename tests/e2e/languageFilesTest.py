"""The languages as translators edit them: every text of the program in each of them, and nothing else."""

import itertools
import json
import pathlib
import re
import sys
import unittest

TOP = pathlib.Path(__file__).parents[2]
sys.path.insert(0, str(TOP / "resources"))

from buildLanguage import conversions, outerBlanks, tableFaults, uniqueMembers  # noqa: E402

LANGUAGES = sorted((TOP / "resources/languages").glob("*.json"))
EXPECTED = "ar de es fr he hi it ja ko nl pl pt pt_BR ru tr zh_CN".split()
RIGHT_TO_LEFT = ("ar", "he")
UNTRANSLATED = {"Ostrel Reach  "}

_LITERAL = r'"(?:[^"\\\n]|\\.)*"'
_TEXT = rf"{_LITERAL}(?:\s*{_LITERAL})*"
_COMMENT = re.compile(rf"({_LITERAL})|//[^\n]*|/\*.*?\*/", re.DOTALL)
_ESCAPES = {"n": "\n", "t": "\t", '"': '"', "\\": "\\"}

# Calls whose text stands elsewhere: the file and what is written between the parentheses, then the file where the
# texts are found, and how.
_TABLE = "src/Dialog/questionTable.cpp"
_INDIRECT = {
    ("src/Utils/mainWindowBuilder.cpp", "tool.tooltip"):
        [("src/Utils/mainWindowBuilder.cpp", rf"&Annotation::\w+Path,\s*{_LITERAL},\s*({_TEXT})\}}")],
    ("src/Dialog/dialogShape.cpp", "message"):
        [(_TABLE, rf"\.text = ({_TEXT})"),
         ("src/Dialog/*.cpp", rf"custom_dialog\({_TEXT}, {_TEXT}, {_TEXT},\s*({_TEXT})\)")],
    ("src/Dialog/questionDialog.cpp", "text"): [(_TABLE, rf"\.text = ({_TEXT})")],
    ("src/Dialog/questionDialog.cpp", "label"):
        [(_TABLE, rf"\.(?:accept|reject)Label = ({_TEXT}),(?=(?:(?!\.id).)*\.traits = [^}}]*translatesLabels)")],
}
# Marks and invisible orders that turn the direction of what follows and whatever else nobody sees; what underlines the
# next letter; what would be read as markup where markup is shown.
_UNWANTED = re.compile("[\u061c\u200b\u200e\u200f\u202a-\u202e\u2060\u2066-\u2069\ufeff\u00ad\ufffd_<>&]")
_ARABIC_OR_HEBREW = re.compile("[\u0590-\u06ff]")


def source(path):
    """A file of the program without its comments."""
    return _COMMENT.sub(lambda match: match[1] or " ", path.read_text())


def spoken(literals):
    """What adjoining string literals say."""
    inner = "".join(literal[1:-1] for literal in re.findall(_LITERAL, literals))
    return re.sub(r"\\(.)", lambda match: _ESCAPES[match[1]], inner)


def calls(text):
    """What stands between the parentheses of each call of getString; its declarations and its body are none."""
    for match in re.finditer(r"(?<!\*)\bgetString\s*\(", text):
        depth, end = 1, match.end()
        while depth:
            literal = re.compile(_LITERAL).match(text, end)
            end = literal.end() if literal else end + 1
            if not literal:
                depth += {"(": 1, ")": -1}.get(text[end - 1], 0)
        yield text[match.end():end - 1].strip()


def search(pattern, expression):
    """The texts that an expression finds in the files of a pattern."""
    return {spoken(found[1]) for path in TOP.glob(pattern)
            for found in re.finditer(expression, source(path), re.DOTALL)}


def collect_keys():
    """Every text that the program looks up, and the calls of which nobody knows what they look up."""
    keys, unknown = set(), []
    for path in sorted(itertools.chain(TOP.glob("src/**/*.cpp"), TOP.glob("src/**/*.h"))):
        place = str(path.relative_to(TOP))
        for argument in calls(source(path)):
            if re.fullmatch(_TEXT, argument):
                keys.add(spoken(argument))
            elif (place, argument) in _INDIRECT:
                for pattern, expression in _INDIRECT[place, argument]:
                    keys |= search(pattern, expression)
            else:
                unknown.append(f"{place}: getString({argument})")
    return keys, unknown


class TheLanguages(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.keys, cls.unknown = collect_keys()
        cls.tables = {path.stem: json.loads(path.read_text(encoding="utf-8"), object_pairs_hook=uniqueMembers)
                      for path in LANGUAGES}

    def expect(self, is_good):
        """Every text of every language is good; `is_good` takes language, key and value."""
        bad = [(language, entry["Key"], entry["Value"]) for language, table in self.tables.items() for entry in table
               if not is_good(language, entry["Key"], entry["Value"])]
        self.assertEqual(bad, [])

    def test_are_these(self):
        self.assertEqual(sorted(self.tables), EXPECTED)

    def test_know_where_every_text_comes_from(self):
        self.assertEqual(self.unknown, [])

    def test_find_texts_of_every_kind_in_the_sources(self):
        # One of each way in which a text reaches the look-up.
        for text in ("Go to Website", "Pause Screen Sharing", "Ellipse", "Yes", "No",
                     "Admin mode is not supported under wayland",
                     "Do you want your Technician to access your system Clipboard",
                     "Technician wants to reboot your computer. Click\n\"Yes\" to reboot.",
                     "Do you want to leave this Session?" + 30 * " "):
            self.assertIn(text, self.keys)
        self.assertNotIn("Join", self.keys)

    def test_say_every_text_and_no_other(self):
        for language, table in self.tables.items():
            with self.subTest(language):
                said = {entry["Key"] for entry in table}
                self.assertEqual((sorted(self.keys - said), sorted(said - self.keys)), ([], []), "missing, stale")

    def test_are_fit_to_be_packed(self):
        for language, table in self.tables.items():
            with self.subTest(language):
                self.assertEqual(tableFaults(table), [])

    def test_keep_conversions_and_outer_blanks(self):
        self.expect(lambda _, key, value: conversions(key) == conversions(value))
        self.expect(lambda _, key, value: outerBlanks(key) == outerBlanks(value))

    def test_keep_the_number_of_lines_and_what_every_line_begins_with(self):
        def indents(text):
            return [len(line) - len(line.lstrip(" ")) for line in text.split("\n")]
        self.expect(lambda _, key, value: indents(key) == indents(value))

    def test_say_something_of_their_own(self):
        for language, table in self.tables.items():
            same = {entry["Key"] for entry in table if entry["Key"] == entry["Value"]} - UNTRANSLATED
            with self.subTest(language):
                # Loan words such as "Chat" or "No" are fine; a sentence is not.
                self.assertFalse([text for text in same if " " in text])
                self.assertLess(len(same), 8)

    def test_keep_names_and_what_a_button_says(self):
        names = {"Ostrel Reach": "Ostrel Reach", "wayland": "Wayland", "\"Yes\"": "Yes", "root-level": "root"}
        self.expect(lambda _, key, value: all(kept in value for name, kept in names.items() if name in key))

    def test_hold_no_invisible_character_no_mnemonic_and_no_markup(self):
        self.expect(lambda _, key, value: not _UNWANTED.search(value))

    def test_begin_each_line_in_the_direction_of_the_language(self):
        # The first letter decides the direction of a whole line, and a name of any script stands for "%s".
        def begins_right(language, key, value):
            first = re.compile("%s|[A-Za-z]|[\u0590-\u06ff]")
            return (language not in RIGHT_TO_LEFT or key in UNTRANSLATED
                    or all(_ARABIC_OR_HEBREW.match(first.search(line)[0]) for line in value.split("\n")))
        self.expect(begins_right)

    def test_speak_their_own_script(self):
        scripts = {"ar": "[\u0600-\u06ff]", "he": "[\u0590-\u05ff]", "hi": "[\u0900-\u097f]", "ru": "[\u0400-\u04ff]",
                   "ja": "[\u3040-\u30ff\u4e00-\u9fff]", "ko": "[\uac00-\ud7af]", "zh_CN": "[\u4e00-\u9fff]"}
        self.expect(lambda language, key, value: key in UNTRANSLATED
                    or re.search(scripts.get(language, "[A-Za-z]"), value))


if __name__ == "__main__":
    unittest.main()
