"""Checks docs/messages.md against the catalogues, and each of its texts on a page of a served board."""

import html
import re
import unittest

from support.board import BoardDocumentTest
from support.document import PROJECT, DocumentTest
from support.provocations import OTHER_CODE, Provocations
from support.source import constant, enumerators, read

HEADER = ("number", "code", "text", "outcome", "cause")
LANGUAGES = [path.stem.removeprefix("messages_")
             for path in sorted((PROJECT / "board/catalogue").glob("messages_*.msg"))]

# Texts for codes that this board does not have, but others may.
NOT_HERE = {(30, "other"), (45, "other"), (63, "other"), (64, "other")}
# Texts that only the scripts of a page show.
IN_SCRIPTS = {293, 303, 354}


def catalogue(language):
    """Returns the texts of a catalogue by set and number."""
    limit = constant("data/uploadLimit.h", "LARGEST_UPLOAD")
    texts = read("board/catalogue/messages_%s.msg" % language)
    texts = texts.replace("@LARGEST_UPLOAD@", str(limit)).replace("@LARGEST_UPLOAD_KIB@", str(limit // 1024))
    sets = {}
    for line in texts.splitlines():
        if match := re.match(r"\$set (\d+)", line):
            current = sets.setdefault(int(match[1]), {})
        elif match := re.match(r'(\d+) "(.*)"$', line):
            current[int(match[1])] = match[2]
    return sets


def text_of(sets, number, code):
    """Returns the text that a page shows for a message and a code; "other" means OTHER_CODE."""
    if number > 9000:
        return sets[2][number]
    if number == 107:
        return sets[107][{"0": 1, "other": 2}.get(code) or int(code)]
    by_code = sets.get(number, {}) if number > 3 else {}
    return by_code.get(int(code)) if code.isdigit() and int(code) in by_code else sets[1][number]


class MessageTable(DocumentTest):
    """Checks that the tables list every message with its English text, and no others."""

    name = "docs/messages.md"

    @classmethod
    def rows(cls):
        return [row for cells, rows in cls.document.tables() if cells == list(HEADER)
                for row in rows]

    def test_texts_match_the_catalogue(self):
        sets = catalogue("en")
        for number, code, text, _, cause in self.rows():
            with self.subTest(number=number, code=code):
                self.assertEqual(text_of(sets, int(number), code), text)
                self.assertTrue(cause)

    def test_lists_each_message_once(self):
        sets = catalogue("en")
        rows = [(int(number), code) for number, code, *_ in self.rows()]
        self.assertEqual(len(rows), len(set(rows)))
        expected = {number for number in sets[1]}
        self.assertEqual({number for number, _ in rows if number < 9000 and number != 107},
                         expected)
        for number in set(sets) - {1, 2, 3, 4}:
            codes = {code for each, code in rows if each == number}
            named = {{1: "0", 2: "other"}.get(code, str(code)) if number == 107 else str(code)
                     for code in sets[number]}
            self.assertEqual(codes, named | {"other"}, number)

    def test_each_code_of_a_restore_has_its_own_text(self):
        codes = set(enumerators("platform/host/channel/BackendError.h", "BackendError").values())
        codes |= {int(code) for code in re.findall(r"CHANNEL_\w+ = (\d{4});",
                                                   read("platform/host/channel/Channel.h"))}
        # Leaves out codes with their own message, and codes of a login and of boardctl.
        codes -= {1047, 1539, 1549, 1551, 1607, 1610, 1614}
        self.assertLessEqual(codes, set(catalogue("en")[71]))
        self.assertLessEqual(codes - {1601, 1613, 1615, 1616}, set(catalogue("en")[72]))

    def test_no_text_needs_its_code_to_be_understood(self):
        for language in LANGUAGES:
            for texts in catalogue(language).values():
                for number, text in texts.items():
                    with self.subTest(language=language, number=number):
                        self.assertIsNone(re.search(r"\b(1[0-9]|20)\d\d\b", text), text)


class MessagesOnPages(Provocations, BoardDocumentTest):
    """Provokes the message of each row by a request, in every language."""

    name = "docs/messages.md"

    def test_every_text_appears(self):
        for language in LANGUAGES:
            sets = catalogue(language)
            for number, code, _, outcome, _ in MessageTable.rows():
                if (int(number), code) in NOT_HERE:
                    continue
                with self.subTest(number=number, code=code, language=language):
                    self.language = language
                    self.board.control("reset")
                    answer = self.provoke(int(number), code)
                    self.check(answer.text, int(number), code, outcome,
                               text_of(sets, int(number), code))

    def check(self, page, number, code, outcome, text):
        if number in IN_SCRIPTS:
            decoded = re.sub(r"\\x([0-9a-f]{2})", lambda match: chr(int(match[1], 16)), page)
            self.assertIn('"%s"' % text, decoded)
            return
        if number == 9041:
            self.assertIn(html.escape(text), page)
            return
        shown = str(OTHER_CODE) if code == "other" else code
        paragraph = re.search(r'<p data-message="%d" data-code="%s">(.*?)</p>' % (number, shown),
                              page)
        self.assertIsNotNone(paragraph, page)
        end = "" if shown == "0" else " [%d-%s]" % (number, shown)
        end = " [107]" if number == 107 and shown == "0" else end
        self.assertEqual(html.unescape(paragraph[1]), text + end)
        self.assertIn('data-outcome="%s"' % outcome, page)


if __name__ == "__main__":
    unittest.main()
