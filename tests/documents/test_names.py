"""Checks that everything named in a document exists: documents, headings, pictures, files, commands,
options and tests."""

import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from support.board import BUILD, listed_tests
from support.document import PROJECT, Document, codes_in
from support.source import read

FOLDERS = ("bench", "board", "cmake", "data", "docs", "fleet", "html", "main", "pages", "platform",
           "skel", "tests", "tools")
PROGRAMS = ("board", "data", "html", "main", "pages", "platform")
NOT_OURS = {".git", "build", "node_modules", "var"}


def tree():
    """Returns the paths of the project's own files."""
    found = []
    for folder, folders, files in os.walk(PROJECT):
        folders[:] = [each for each in folders if each not in NOT_OURS]
        found += [(Path(folder) / each).relative_to(PROJECT) for each in files]
    return found


FILES = tree()
DOCUMENTS = [Document(str(path)) for path in sorted(FILES)
             if path.suffix == ".md" and path.parts[0] in ("README.md", "CONTRIBUTING.md", "docs")]


def slug(heading):
    """Returns the anchor of a heading."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def links(document):
    """Returns each link and picture as ("!" for a picture, text, target)."""
    return re.findall(r"(!?)\[([^\]]*)\]\(([^)]+)\)", document.words)


def commands(document):
    """Returns the code in a document: text between backticks, and the lines of its blocks."""
    text = document.words
    lines = "\n".join(document.blocks()).replace("\\\n", " ").splitlines()
    return codes_in(re.sub(r"```.*?```", "", text)) + lines


def glob_of(path):
    """Returns a glob for a path. Its placeholders, which are words in capitals, match anything."""
    return re.sub(r"(?<![\w.])[A-Z]{2,}(?![\w.])", "*", path).rstrip("/")


class Names(unittest.TestCase):
    maxDiff = None

    def for_each(self, check):
        for document in DOCUMENTS:
            with self.subTest(document=document.name):
                check(document)

    def test_links_lead_to_documents_and_headings(self):
        def check(document):
            for _, text, target in links(document):
                path, _, anchor = target.partition("#")
                own = PROJECT / document.name
                found = own.parent / path if path else own
                self.assertTrue(found.exists(), target)
                if anchor:
                    linked = Document(str(found.resolve().relative_to(PROJECT)))
                    self.assertIn(anchor, [slug(each) for each in linked.headings()], target)
                # If the text is a path, the link must lead there.
                if re.fullmatch(r"[\w/.-]+\.(md|txt)", text):
                    self.assertEqual(Path(path).name, Path(text).name)

        self.for_each(check)

    def test_shows_every_picture(self):
        shown = {(PROJECT / Path(document.name).parent / target).resolve()
                 for document in DOCUMENTS for mark, _, target in links(document) if mark}
        pictures = {PROJECT / path for path in FILES
                    if path.parts[:2] == ("docs", "pictures") and path.suffix in (".png", ".svg")}
        self.assertEqual(shown, {each.resolve() for each in pictures})

    def test_readme_links_to_every_document(self):
        linked = {target.partition("#")[0] for _, _, target in links(Document("README.md"))}
        self.assertEqual({each.name for each in DOCUMENTS} - linked, {"README.md"})

    def test_paths_of_the_project_exist(self):
        def check(document):
            for code in commands(document):
                for word in re.split(r"[\s,]+", code):
                    word = word.split("::")[0]
                    if word.startswith("./"):
                        self.assertTrue((PROJECT / word).exists(), code)
                    elif word.split("/")[0] in FOLDERS and "/" in word:
                        self.assertTrue(any(PROJECT.glob(glob_of(word))), code)

        self.for_each(check)

    def test_files_named_without_a_path_exist(self):
        names = {path.name for path in FILES} | {"backend.sock"}

        def check(document):
            for code in commands(document):
                if re.fullmatch(r"\w+\.(cpp|h|js|json|conf|toml|md|py)", code):
                    self.assertIn(code, names)

        self.for_each(check)

    def test_board_files_are_installed_or_in_the_sources(self):
        sources = "".join(read(path) for path in FILES
                          if path.suffix in (".cpp", ".h") and path.parts[0] in PROGRAMS)
        with tempfile.TemporaryDirectory() as root:
            subprocess.run(["cmake", "--install", BUILD, "--prefix", root], check=True,
                           stdout=subprocess.DEVNULL)

            def check(document):
                for code in commands(document):
                    for path in re.findall(r"^/(?:var|usr|maintenance|common)/[\w/.]+", code):
                        places = (root + path, root + "/usr/local/www/htdocs" + path)
                        self.assertTrue(any(map(os.path.exists, places))
                                        or '"' + path in sources, code)

            self.for_each(check)

    def test_commands_exist_and_take_their_options(self):
        def check(document):
            for code in commands(document):
                words = code.split()
                if not words or not re.match(r"(\./|tools/|bench/|tests/)\w", words[0]):
                    continue
                command = PROJECT / words[0]
                if not command.is_file() or len(words) == 1 and command.suffix:
                    continue
                self.assertTrue(os.access(command, os.X_OK), code)
                script = command.read_text(encoding="utf-8")
                for option in re.findall(r"--[a-z][a-z-]*", " ".join(words[1:])):
                    self.assertIn(option, script, code)
                for word in words[1:]:
                    for choice in word.split("|"):
                        if re.fullmatch("short|long|repeat", choice):
                            self.assertIn(choice, script, code)

        self.for_each(check)

    def test_named_tests_exist(self):
        tests = listed_tests()

        def check(document):
            listed = r"\bthe tests? ((?:`[\w.]+`(?:,? (?:and )?)?)+)"
            for names in re.findall(listed, document.words):
                for name in codes_in(names):
                    pattern = re.sub("[A-Z]{2,}", r"\\w+", re.escape(name))
                    self.assertTrue(any(re.fullmatch(pattern, each) for each in tests), name)

        self.for_each(check)


if __name__ == "__main__":
    unittest.main()
