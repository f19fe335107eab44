"""The language of the window, chosen from a private /etc/default/locale."""

import base64
import json
import shlex

from session import RESOURCES, SANDBOX, Home, SessionCase, main

ENGLISH = "Connecting..."
LOADED = "count more than 10"
UNMATCHED = "error matching locale settings locale as english"


def entries(count):
    """A language with as many texts, one of them the first that the window shows."""
    others = [{"Key": f"key {number}", "Value": f"value {number}"} for number in range(count - 1)]
    return [{"Key": ENGLISH, "Value": "Bonjour"}, *others]


def packed(document):
    text = document if isinstance(document, (bytes, str)) else json.dumps(document)
    return base64.b64encode(text if isinstance(text, bytes) else text.encode())


class TheLanguage(SessionCase):
    def run_with(self, locale_file, languages=None):
        """A session whose system has this locale file (None: no file) and whose product has these languages:
        folder name to file content (None: an empty folder); None: the languages as they were built."""
        home = Home(resources=languages is None)
        if languages is not None:
            self.add_languages(home, languages)
        setup = "rm -f /etc/default/locale"
        if locale_file is not None:
            setup = f"mkdir -p /etc/default; printf %s {shlex.quote(locale_file)} >/etc/default/locale"
        return self.start(home=home, wrapper=[SANDBOX, setup]).ready()

    @staticmethod
    def add_languages(home, languages):
        resource = home.product / "Resource"
        resource.mkdir()
        for built in RESOURCES.iterdir():
            if built.name != "locale":
                (resource / built.name).symlink_to(built)
        for name, content in languages.items():
            (resource / "locale" / name).mkdir(parents=True)
            if content is not None:
                (resource / "locale" / name / "resource.json").write_bytes(content)

    def expect(self, session, label, *messages):
        session.application.has_label(label)
        for message in messages:
            self.assertEqual(session.log.count(message), 1, (message, session.log.messages()))
        failed = session.log.count("error loading resource")
        self.assertEqual(failed, 1 if label == ENGLISH else 0)
        self.assertEqual(session.warnings(), [])

    def test_is_the_one_of_the_system(self):
        source = RESOURCES / "locale/de/resource.json"
        texts = {entry["Key"]: entry["Value"] for entry in json.loads(base64.b64decode(source.read_bytes()))}
        session = self.run_with("# a comment\nLANG=de_DE.UTF-8\n")
        self.expect(session, texts[ENGLISH], "system locale de_DE.UTF-8", "read resource file", "decoded Text", LOADED,
                    "creating hash table")
        session.application.find("push button", texts["Annotation"])
        session.application.find("push button", texts["Pause Screen Sharing"])

    def test_is_english_without_a_locale_file(self):
        session = self.run_with(None)
        self.expect(session, ENGLISH)
        self.assertIn("error opening locale file", session.log.text())

    def test_is_english_when_the_line_comes_late(self):
        session = self.run_with("\n" * 7 + "LANG=de_DE.UTF-8\n")
        self.expect(session, ENGLISH)
        self.assertNotIn("system locale", session.log.text())

    def test_is_found_in_the_seventh_line_behind_blanks(self):
        session = self.run_with("\n" * 6 + " \t LANG=fr_FR.UTF-8\n", {"fr": packed(entries(12))})
        self.expect(session, "Bonjour", "system locale fr_FR.UTF-8")

    def test_is_english_without_such_a_line(self):
        session = self.run_with("LC_ALL=de_DE.UTF-8\n")
        self.expect(session, ENGLISH, UNMATCHED)

    def test_is_english_for_a_line_without_a_value(self):
        for text in ("LANG\n", "LANG=\n"):
            with self.subTest(text):
                session = self.run_with(text)
                self.expect(session, ENGLISH, UNMATCHED)
                session.quit()

    def test_is_english_for_a_quoted_value(self):
        session = self.run_with('LANG="de_DE.UTF-8"\n')
        self.expect(session, ENGLISH, 'system locale "de_DE.UTF-8"', UNMATCHED)

    def test_may_come_from_the_list_of_languages(self):
        session = self.run_with("LANGUAGE=fr:de\nLANG=de_DE.UTF-8\n", {"fr": packed(entries(12))})
        self.expect(session, "Bonjour", "system locale fr:de")

    def test_needs_ten_texts(self):
        session = self.run_with("LANG=fr_FR\n", {"fr": packed(entries(9))})
        self.expect(session, ENGLISH, "decoded Text")
        self.assertEqual(session.log.count(LOADED), 0)
        session.quit()
        session = self.run_with("LANG=fr_FR\n", {"fr": packed(entries(10))})
        self.expect(session, "Bonjour", LOADED)

    def test_counts_elements_that_are_no_texts_and_takes_the_last_of_two(self):
        document = [{"Key": ENGLISH, "Value": "Salut"}, 1, None, "x", [], {}, {"Key": "k"}, {"Value": "v"},
                    {"Key": 1, "Value": 2}, {"Key": ENGLISH, "Value": "Bonjour", "Other": 0}]
        session = self.run_with("LANG=fr_FR\n", {"fr": packed(document)})
        self.expect(session, "Bonjour", LOADED)

    def test_is_english_for_a_broken_file(self):
        broken = {"plain": json.dumps(entries(12)).encode(), "no list": packed({"Key": "a"}), "empty": b"",
                  "deep": packed("[" * 100_000), "cut": packed(json.dumps(entries(12))[:-5])}
        for name, content in broken.items():
            with self.subTest(name):
                session = self.run_with("LANG=fr_FR\n", {"fr": content})
                self.expect(session, ENGLISH, "read resource file", "decoded Text")
                if name != "no list":
                    self.assertEqual(session.log.count("error parsing reosurce string"), 1)
                session.quit()

    def test_is_english_when_the_file_is_missing(self):
        session = self.run_with("LANG=fr_FR\n", {"fr": None})
        self.expect(session, ENGLISH)
        self.assertIn("error opening resoruce file", session.log.text())

    def test_is_english_when_the_product_does_not_speak_it(self):
        session = self.run_with("LANG=de_DE\n", {"fr": packed(entries(12))})
        self.expect(session, ENGLISH, "system locale de_DE", UNMATCHED)

    def test_never_is_a_format(self):
        document = entries(12)
        document[0]["Value"] = "%n%s <b>_x"
        session = self.run_with("LANG=fr_FR\n", {"fr": packed(document)})
        session.application.has_label("%n%s <b>_x")
        self.assertEqual(session.quit(), 0)


if __name__ == "__main__":
    main()
