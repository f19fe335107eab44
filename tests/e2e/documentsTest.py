"""The pages against the sources: the log lines that they quote, the places that they name, and where their links lead."""

import pathlib
import re
import unittest

TOP = pathlib.Path(__file__).parents[2]
PAGES = sorted([TOP / "README.md", *TOP.glob("docs/*.md"), *TOP.glob("tools/*/README.md")])
# They belong to no floor: they only include the topics of their folder.
FRONT_DOORS = ("src/Utils/Utils.h", "src/Dialog/dialog.h", "src/IdleThread/IdleThread.h", "src/Chat/chat.h",
               "src/Annotation/annotation.h")

_LITERAL = r'"(?:[^"\\\n]|\\.)*"'
_TEXT = rf"{_LITERAL}(?:\s*{_LITERAL})*"
_COMMENT = re.compile(rf"({_LITERAL})|//[^\n]*|/\*.*?\*/", re.DOTALL)
_CALL = re.compile(r"\b(?:UI_(?P<level>ERROR|INFO|TRACE|DEBUG)(?P<named>_AS)?|log_print)\((?P<arguments>.*?)\);", re.DOTALL)
# Log texts that stand in a table, or are handed to the function that logs them.
_TABLES = {
    "src/Dialog/questionTable.cpp": rf"\{{Line::\w+, (?:nullptr|{_LITERAL}), \w+, ({_TEXT})\}}",
    "src/Protocol/sessionStatus.cpp": rf'\{{"[\w-]+", ({_TEXT}), \w+',
    "src/Utils/installLayout.cpp": r'("\w+ Path Set")',
    "src/Utils/toolkitCompatibility.cpp": r'("set_widget_margins: [^"]+")',
    "src/localizationText.cpp": rf"FileMessages \w+ = \{{({_TEXT}), (?:{_TEXT})\}}",
}
_SECOND_MESSAGE = rf"FileMessages \w+ = \{{(?:{_TEXT}), ({_TEXT})\}}"
_TROUBLE = re.compile(r"[Ee]rr?ro|[Ff]ail|[Cc]ould not|cant |Dont |doenn't|[Uu]nhandled|No ")
_VARIES = "…"


def source(path):
    """A file of the program without its comments."""
    return _COMMENT.sub(lambda match: match[1] or " ", path.read_text())


def spoken(literals):
    """A log text as a page quotes it."""
    text = "".join(literal[1:-1] for literal in re.findall(_LITERAL, literals))
    text = re.sub(r"%z?[a-z]", _VARIES, text.replace(r"\n", "").replace(r"\"", '"'))
    return text.strip() + (" " + _VARIES if text.endswith("file ") else "")  # what went wrong is put behind it


def log_texts():
    """Every text that can come into the log, with its level. DEBUG is off in the program."""
    texts = set()
    for path in TOP.glob("src/**/*.cpp"):
        text = source(path)
        for call in _CALL.finditer(text):
            level, arguments = call["level"] or "", call["arguments"]
            if level == "DEBUG" or "levelDebug" in arguments:
                continue
            if call["named"]:
                arguments = arguments.split(",", 1)[1]
            texts |= {(level, spoken(literals)) for literals in re.findall(_TEXT, arguments)}
        pattern = _TABLES.get(str(path.relative_to(TOP)))
        found = re.findall(pattern, text) + re.findall(_SECOND_MESSAGE, text) if pattern else []
        texts |= {("INFO", spoken(literals)) for literals in found}
    return texts


def rows(page, first):
    """The cells of the tables whose first column has this heading."""
    inside = False
    for line in page.splitlines():
        cells = [cell.strip() for cell in line.strip("|").split(" |")]
        if not line.startswith("|"):
            inside = False
        elif cells[0] == first:
            inside = True
        elif inside and not line.startswith("|---"):
            yield cells


def matches(quoted, text):
    return re.fullmatch(".+".join(map(re.escape, quoted.split(_VARIES))), text) is not None


class Troubleshooting(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.texts = log_texts()
        page = (TOP / "docs/troubleshooting.md").read_text()
        cls.firsts = [cells[0] for cells in rows(page, "log line")]
        cls.quoted = {line for cell in cls.firsts for line in re.findall("`([^`]+)`", re.sub(r"by `\w+`", "", cell))}

    def test_finds_log_texts_of_every_kind_in_the_sources(self):
        for text in (("ERROR", "Could not create desktop file: …"), ("INFO", "User Path Set"),
                     ("INFO", "error reading resoruce file …"), ("INFO", "User has reJected session"),
                     ("INFO", "Active user is …"), ("INFO", "chat is disabled"),
                     ("INFO", "set_widget_margins: error getting margin_end/margin_right")):
            self.assertIn(text, self.texts)
        self.assertGreater(len(self.quoted), 90)

    def test_quotes_only_what_the_program_logs(self):
        known = {text for _, text in self.texts}
        unknown = [line for line in sorted(self.quoted) if not any(matches(line, text) for text in known)]
        self.assertEqual(unknown, [])

    def test_knows_every_line_that_tells_of_trouble(self):
        missing = [text for level, text in sorted(self.texts) if level == "ERROR" or _TROUBLE.search(text)
                   if not any(matches(line, text) for line in self.quoted)]
        self.assertEqual(missing, [])

    def test_marks_the_lines_of_the_level_error_and_no_others(self):
        errors = {text for level, text in self.texts if level == "ERROR"}
        marked = {re.search("`([^`]+)`", cell)[1] for cell in self.firsts if "✻" in cell}
        self.assertEqual(marked, errors)

    def test_names_functions_that_log(self):
        names = {name for cell in self.firsts for name in re.findall(r"by `(\w+)`", cell)}
        self.assertTrue(names)
        sources = "".join(path.read_text() for path in TOP.glob("src/**/*.cpp"))
        self.assertEqual([name for name in names if not re.search(rf"\b{name}\b", sources)], [])


def slug(heading):
    """The anchor of a heading."""
    return re.sub(r"[^\w -]", "", heading.replace("`", "").lower()).replace(" ", "-")


def prose(page):
    """A page without its blocks of code."""
    return re.sub(r"^```.*?^```$", "", page.read_text(), flags=re.DOTALL | re.MULTILINE)


class EveryPage(unittest.TestCase):
    def test_leads_to_pages_pictures_and_headings_that_exist(self):
        lost = []
        for page in PAGES:
            for target in re.findall(r"\]\(([^)\s]+)\)", prose(page)):
                path, _, anchor = target.partition("#")
                file = (page.parent / path).resolve() if path else page
                if re.match(r"\w+://", target):
                    continue
                if not file.exists():
                    lost.append(f"{page.name}: {target}")
                elif anchor and anchor not in map(slug, re.findall(r"^#+ (.*)$", file.read_text(), re.MULTILINE)):
                    lost.append(f"{page.name}: {target}")
        self.assertEqual(lost, [])

    def test_names_files_that_exist(self):
        folders = "Logger|benchmarks|cmake|docs|packaging|resources|scripts|src|tests|tools"
        lost = []
        for page in PAGES:
            for name in re.findall(rf"`((?:{folders})/[\w./*-]*)", prose(page)):
                if "NAME" not in name and not list(TOP.glob(name.rstrip("/.") if name.endswith("/") else name)):
                    lost.append(f"{page.name}: {name}")
        self.assertEqual(lost, [])

    def test_names_things_that_are_there(self):
        """Functions, tables, variables and whatever else is written as a name, on the pages about the code."""
        sources = "".join(path.read_text() for tree in ("Logger", "src", "tests", "tools", "cmake")
                          for path in TOP.glob(f"{tree}/**/*.*") if path.suffix in (".cpp", ".h", ".py", ".c", ".txt"))
        sources += "".join(path.read_text() for path in (TOP / "CMakePresets.json", *TOP.glob("scripts/*")))
        sources += " ".join(path.stem for path in TOP.glob("src/**/*.cpp"))
        lost = []
        for name in ("architecture", "newPrompt"):
            page = TOP / f"docs/{name}.md"
            added = "".join(re.findall(r"^\+.*$", page.read_text(), re.MULTILINE))
            names = set(re.findall(r"`([A-Za-z_]\w{3,})`", prose(page)))
            self.assertIn("answerQuestion", names)
            lost += [f"{name}.md: {word}" for word in sorted(names) if not re.search(rf"\b{word}\b", sources + added)]
        self.assertEqual(lost, [])

    def test_is_found_from_the_readme(self):
        readme = (TOP / "README.md").read_text()
        self.assertEqual([page.name for page in TOP.glob("docs/*.md") if f"(docs/{page.name})" not in readme], [])


class Floors(unittest.TestCase):
    """The architecture page gives every source file a floor; a file includes none of a higher one."""

    @classmethod
    def setUpClass(cls):
        page = (TOP / "docs/architecture.md").read_text()
        cls.files, cls.folders = {}, {}
        for floor, _, where in rows(page, "floor"):
            for place, topics in re.findall(r"`([\w/.*]+)`(?: \(((?:`\w+`(?:, )?)+)\))?", where):
                names = [place + topic for topic in re.findall(r"\w+", topics)] or [place]
                for name in names:
                    known = cls.folders if name.endswith("/") else cls.files
                    known[name.removesuffix(".*")] = int(floor)

    def floor(self, path):
        stem = path.rsplit(".", 1)[0]
        folder = path.rsplit("/", 1)[0] + "/"
        return self.files.get(path, self.files.get(stem, self.folders.get(folder)))

    def sources(self):
        for path in sorted([*TOP.glob("src/**/*.*"), *TOP.glob("Logger/*.*")]):
            name = str(path.relative_to(TOP))
            if path.suffix in (".cpp", ".h") and name not in FRONT_DOORS:
                yield name, path.read_text()

    def test_have_every_source_file(self):
        self.assertEqual([name for name, _ in self.sources() if self.floor(name) is None], [])

    def test_hold_what_the_files_include(self):
        upwards = [f"{name} includes {included}" for name, text in self.sources()
                   for included in re.findall(r'#include "([^"]+)"', text)
                   if included not in FRONT_DOORS and self.floor(included) > self.floor(name)]
        self.assertEqual(upwards, [])


class NewPrompt(unittest.TestCase):
    """The recipe names places: what is there already stands in its blocks without a "+"."""

    def test_shows_places_that_are_there(self):
        blocks = re.findall(r"^```diff\n(.*?)\n```$", (TOP / "docs/newPrompt.md").read_text(), re.DOTALL | re.MULTILINE)
        self.assertGreater(len(blocks), 10)
        lost = []
        for block in blocks:
            name, *lines = block.split("\n")
            text = (TOP / name).read_text()
            for part in "\n".join(lines).split("\n@@\n"):
                place = "\n".join(line[1:] for line in part.split("\n") if not line.startswith("+"))
                if not place or f"\n{place}\n" not in f"\n{text}\n":
                    lost.append(f"{name}: {place}")
        self.assertEqual(lost, [])


if __name__ == "__main__":
    unittest.main()
