"""Parses documents: sentences, tables and indented blocks."""

import re
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[3]


class Document:
    def __init__(self, name):
        self.name = name
        self.text = (PROJECT / name).read_text(encoding="utf-8")
        # Sentences are matched regardless of line breaks.
        self.words = " ".join(self.text.split())

    def tables(self):
        """Returns every table as the cells of its header and a list of rows."""
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
        """Returns the indented blocks from the words `after` on, without their indentation."""
        text = self.text[self.text.index(after):]
        blocks = re.findall(r"(?:^ {4,}\S.*\n(?:\n(?= {4}))?)+", text, re.MULTILINE)
        return [re.sub(r"^ {4}", "", block, flags=re.MULTILINE) for block in blocks]

    def bytes_after(self, words):
        """Returns the bytes of the next hexadecimal block after `words`."""
        for block in self.blocks(words):
            if re.fullmatch(r"[0-9A-F]{2}(\s+[0-9A-F]{2})*\s*", block):
                return bytes.fromhex("".join(block.split()))
        raise AssertionError("%s has no bytes after %r" % (self.name, words))

    def headings(self):
        return re.findall(r"^#+ (.*)$", self.text, re.MULTILINE)


def cells_of(line):
    return [cell.strip().replace("\\|", "|") for cell in re.split(r"(?<!\\)\|", line)[1:-1]]


def codes_in(text):
    """Returns the texts between backticks."""
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
        """Returns what the groups of `pattern` match in the document, numbers as int; without a list
        if there is one group."""
        match = re.search(pattern, self.document.words)
        self.assertIsNotNone(match, "%s does not say: %s" % (self.name, pattern))
        values = [int(each) if each and each.isdigit() else each for each in match.groups()]
        return values[0] if len(values) == 1 else values

    def table(self, *header):
        """Returns the rows of the table with this header."""
        for cells, rows in self.document.tables():
            if cells == list(header):
                return rows
        self.fail("%s has no table %s" % (self.name, header))
        return []
