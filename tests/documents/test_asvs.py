"""Checks docs/asvs.md: its counts, and the tests that it names."""

import re
import unittest

from support.document import PROJECT, DocumentTest

HEADER = ("number", "level", "requirement", "verdict", "test or reason")
VERDICTS = ("met", "partly", "not met", "n/a")
SUITE_FOLDERS = ("host", "web", "backend", "contract", "unit")


class ASVS(DocumentTest):
    name = "docs/asvs.md"

    def requirements(self):
        """Returns the rows of each chapter as {number: rows}."""
        found = {}
        for cells, rows in self.document.tables():
            if cells == list(HEADER):
                found[rows[0][0].split(".")[0]] = rows
        return found

    def test_counts_match_the_rows(self):
        chapters = self.requirements()
        total = [0] * (len(VERDICTS) + 1)
        for name, *counts in self.table("chapter", "met", "partly", "not met", "n/a", "all"):
            if name == "**all**":
                counted = total
            else:
                rows = chapters.pop(re.match(r"V(\d+) ", name)[1])
                counted = [sum(row[3] == verdict for row in rows) for verdict in VERDICTS]
                counted.append(len(rows))
                total = [one + other for one, other in zip(total, counted)]
            with self.subTest(chapter=name):
                self.assertEqual([int(count.strip("*")) for count in counts], counted)
        self.assertEqual(chapters, {})

    def test_each_row_has_a_verdict_and_a_reason(self):
        numbers = []
        for chapter, rows in self.requirements().items():
            for number, level, requirement, verdict, reason in rows:
                with self.subTest(number=number):
                    self.assertEqual(number.split(".")[0], chapter)
                    self.assertIn(level, ("1", "2"))
                    self.assertIn(verdict, VERDICTS)
                    self.assertTrue(requirement and reason)
                numbers.append(number)
        self.assertEqual(len(numbers), len(set(numbers)))

    def test_every_named_test_exists(self):
        text = self.document.text
        attacks = set(re.findall(r"\battacks\.(\w\w+)", text))
        pages = set(re.findall(r"\b(\w\w+)\.test\b", text))
        suites = set(re.findall(r"\b(\w+Test)\b", text))
        self.assertTrue(attacks and pages and suites)
        for name in attacks:
            self.assertTrue((PROJECT / f"tests/attacks/test_{name}.py").exists(), name)
        for name in pages:
            self.assertTrue((PROJECT / f"tests/browser/{name}.test.js").exists(), name)
        sources = [path for folder in SUITE_FOLDERS
                   for path in (PROJECT / "tests" / folder).glob("*.cpp")]
        known = {path.stem for path in sources}
        for path in sources:
            known.update(re.findall(r"\b(?:TEST|TEST_F|TEST_P)\((\w+),",
                                    path.read_text(encoding="utf-8")))
        self.assertEqual(suites - known, set())

    def test_every_named_document_and_source_exists(self):
        for name in re.findall(r"\b([\w-]+\.(?:md|txt|h|cpp|js|toml))\b", self.document.text):
            with self.subTest(name=name):
                self.assertTrue(any(PROJECT.glob(f"docs/{name}"))
                                or any(PROJECT.glob(name))
                                or any(path for folder in ("board", "data", "main", "pages",
                                                           "platform", "skel", "docs")
                                       for path in (PROJECT / folder).rglob(name)))


if __name__ == "__main__":
    unittest.main()
