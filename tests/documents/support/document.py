"""The documents as a reader sees them: sentences, tables and indented blocks."""

import re
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[3]


class Document:
    def __init__(self, name):
        self.name = name
        self.text = (PROJECT / name).read_text(encoding="utf-8")
        # Sentences do not care where a line is broken.
        self.words = " ".join(self.text.split())

    def tables(self):
        """Every table: its header's cells, and its rows as lists of cells."""
        found = []
        lines = self.text.splitlines()
        for number, line in enumerate(lines):
            if re.fullmatch(r"\|[-|]+\|", line):
                rows = []
                for row in lines[number + 1:]:
                    if not row.startswith("|"):
                        break
                    rows.append(cells_of(row))
                found.append((cells_of(lines[number - 1]), rows))
        return found

    def blocks(self, after=""):
        """The indented blocks, each without its indentation, from the words `after` on."""
        text = self.text[self.text.index(after):]
        blocks = re.findall(r"(?:^ {4,}\S.*\n(?:\n(?= {4}))?)+", text, re.MULTILINE)
        return [re.sub(r"^ {4}", "", block, flags=re.MULTILINE) for block in blocks]

    def bytes_after(self, words):
        """The bytes of the next block that is written in hexadecimal."""
        for block in self.blocks(words):
            if re.fullmatch(r"[0-9A-F]{2}(\s+[0-9A-F]{2})*\s*", block):
                return bytes.fromhex("".join(block.split()))
        raise AssertionError("%s has no bytes after %r" % (self.name, words))

    def headings(self):
        return re.findall(r"^#+ (.*)$", self.text, re.MULTILINE)


def cells_of(line):
    return [cell.strip().replace("\\|", "|") for cell in re.split(r"(?<!\\)\|", line)[1:-1]]


def codes_in(text):
    """What a text has between backticks."""
    return re.findall(r"`([^`]+)`", text)


class DocumentTest(unittest.TestCase):
    """A test of the document `name`. It reads each fact there, so that neither the document nor the
    program can change alone."""

    name = ""
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.document = Document(cls.name)

    def stated(self, pattern):
        """What the groups of `pattern` match in a sentence, numbers as such; a single one alone."""
        match = re.search(pattern, self.document.words)
        self.assertIsNotNone(match, "%s does not say: %s" % (self.name, pattern))
        values = [int(each) if each and each.isdigit() else each for each in match.groups()]
        return values[0] if len(values) == 1 else values

    def table(self, *header):
        """The rows of the table with this header."""
        for cells, rows in self.document.tables():
            if cells == list(header):
                return rows
        self.fail("%s has no table %s" % (self.name, header))
        return []
