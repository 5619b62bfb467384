"""Checks the manual pages against the --help of the programs."""

import re
import subprocess
import unittest

from support.board import BUILD
from support.document import PROJECT

PAGES = BUILD / "board/manual"
PROGRAMS = {
    "eficonf": BUILD / "board/inspector/eficonf",
    "boardctl": BUILD / "board/control/boardctl",
    "serve": PROJECT / "serve",
}
SUBCOMMANDS = {
    "eficonf": ["show", "compare"],
    "boardctl": ["status", "refuse", "slow", "silent", "torn", "die", "partition", "reset"],
    "serve": [],
}


def text_of(name):
    """Returns the text of a page without its markup."""
    page = (PAGES / (name + ".1")).read_text(encoding="utf-8")
    return re.sub(r"\\(f.|,|/)", "", page).replace("\\-", "-").replace("\\(cq", "'")


def words_of(text):
    return set(re.findall(r"[\w-]+", text))


class Manual(unittest.TestCase):
    def help_of(self, name, *words):
        # boardctl requires a root before any other argument.
        root = ["--root", "/nowhere"] if name == "boardctl" and words else []
        return subprocess.run([PROGRAMS[name], *root, *words, "--help"], check=True, text=True,
                              stdout=subprocess.PIPE).stdout

    def test_page_names_every_option_of_the_help(self):
        for name, subcommands in SUBCOMMANDS.items():
            page = words_of(text_of(name))
            for words in [[], *[[each] for each in subcommands]]:
                with self.subTest(name=name, words=words):
                    options = set(re.findall(r"(?<![\w-])--?[a-z][\w-]*", self.help_of(name, *words)))
                    self.assertIn("--help", options)
                    self.assertEqual(options - page, set())

    def test_page_names_every_subcommand_of_the_help(self):
        for name, subcommands in SUBCOMMANDS.items():
            listed = re.findall(r"(?m)^  (\w+) {3,}", self.help_of(name).partition("Subcommands:")[2])
            self.assertEqual(listed, subcommands)
            self.assertEqual(set(listed) - words_of(text_of(name)), set())

    def test_page_states_the_exit_status(self):
        self.assertIn("4 the answer could not be printed", text_of("eficonf"))
        self.assertIn("2 wrong usage", text_of("boardctl"))
        self.assertIn("2 after a wrong option", text_of("serve"))

    def test_page_has_a_name_and_a_synopsis(self):
        for name in PROGRAMS:
            self.assertRegex(text_of(name), r"\.SH NAME\n%s - [a-z]+ .*\n\.SH SYNOPSIS" % name)
            self.assertIn(".TH %s \"1\"" % name.upper(), text_of(name))


if __name__ == "__main__":
    unittest.main()
