"""Checks docs/board-description.md: tries each row of its tables on the back-end."""

import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from support.board import BUILD
from support.configuration import read_states
from support.document import PROJECT, DocumentTest, codes_in
from support.source import constant, read

BACKEND = BUILD / "board/backend/efi_backend"
PASSWORD = next(re.finditer(r'password_hash = "([^"]+)"',
                            (PROJECT / "board/demo/demo.toml").read_text(encoding="utf-8")))[1]
# The required keys of each table with usable values, as TOML, by the headings of the document.
USABLE = {
    "The board": {"max_partitions": "8"},
    "[[system_board]]": {"number": "0"},
    "[[partition]]": {"number": "1", "name": '"x"'},
    "[[user]]": {"name": '"x"', "password_hash": '"%s"' % PASSWORD},
}


class BoardDescription(DocumentTest):
    name = "docs/board-description.md"

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.root = self.folder / "root"
        self.root.mkdir()

    def start(self, text):
        """Returns the back-end's error with this description; None if it starts."""
        board = self.folder / "board.toml"
        board.touch(mode=0o600)
        board.write_text(text, encoding="utf-8")
        with subprocess.Popen([BACKEND, "--root", self.root, "--board", board], text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            ready = process.stdout.readline()
            if ready:
                self.assertEqual(ready, "ready\n")
                process.terminate()
                self.assertEqual(process.wait(), 0)
                return None
            error = process.stderr.read()
        self.assertTrue(error.startswith("efi_backend: "), error)
        return error.removeprefix("efi_backend: ").strip()

    def describe(self, table, **values):
        """Returns a description with one table of each kind. `values` replace those in `table`."""
        text = ""
        for heading, keys in USABLE.items():
            keys = {**keys, **(values if heading == table else {})}
            text += "\n%s\n" % (heading if heading.startswith("[") else "")
            text += "".join("%s = %s\n" % item for item in keys.items() if item[1] is not None)
        return text

    def rows(self):
        """Yields heading, key, value and default of every row."""
        sections = re.split(r"^## ", self.document.text, flags=re.MULTILINE)[1:]
        for section in sections:
            heading = re.match(r"`?([^`:\n]+)", section)[1]
            for row in re.findall(r"^\| (.*) \| (.*) \| (.*) \|$", section, re.MULTILINE)[1:]:
                yield heading, codes_in(row[0])[0], row[1], row[2]

    def test_description_with_only_the_required_keys_is_usable(self):
        self.assertIsNone(self.start(self.describe("The board")))
        self.assertIsNone(self.start("max_partitions = 0"))

    def test_keys_are_required_as_stated(self):
        for heading, key, _, default in self.rows():
            if key.startswith("["):
                continue
            with self.subTest(table=heading, key=key):
                self.assertEqual(default == "needed", key in USABLE[heading])
                if default == "needed":
                    error = self.start(self.describe(heading, **{key: None}))
                    self.assertIn('"%s"' % key, error)

    def test_defaults_match_the_reader(self):
        reader = read("board/backend/DescriptionReader.cpp")
        for heading, key, _, default in self.rows():
            if default == "needed":
                continue
            name = key.strip("[]").rpartition(".")[2]
            with self.subTest(table=heading, key=name):
                if default == "none":
                    self.assertRegex(
                        reader, r'(readNumbers|readTexts|readInstalled|readTable)\([^)]*"%s"' % name)
                    continue
                call = re.search(r'read\w+\("%s"(?:, [\w:]+)*, ([^,)]+)\)' % name, reader)
                self.assertEqual(call[1], codes_in(default)[0])

    def test_every_key_of_the_reader_has_a_row(self):
        read_keys = re.findall(r'read\w+\((?:table, )?"(\w+)"',
                               read("board/backend/DescriptionReader.cpp"))
        stated = {key.strip("[]").rpartition(".")[2] for _, key, _, _ in self.rows()}
        tables = {heading.strip("[]") for heading in USABLE if heading.startswith("[")}
        self.assertEqual(set(read_keys), stated | tables)

    def test_numbers_have_the_stated_bounds(self):
        for heading, key, value, _ in self.rows():
            bounds = re.search(r"\b(\d+) to (\d+)\b", value)
            if bounds is None or key == "name":
                continue
            first, last = int(bounds[1]), int(bounds[2])
            wrap = "[%d]" if key in ("io_boards", "gsp_boards", "node_ids", "functions") else "%d"
            with self.subTest(table=heading, key=key):
                for number, usable in ((first, True), (last, True), (first - 1, False),
                                       (last + 1, False)):
                    # Without partitions, so that every maximum is large enough.
                    text = self.describe(heading, **{key: wrap % number})
                    if key == "max_partitions":
                        text = "max_partitions = %d\n" % number
                    self.assertEqual(self.start(text) is None, usable, text)

    def test_texts_have_the_stated_lengths(self):
        found = 0
        for heading, key, value, _ in self.rows():
            length = re.search(r"(?:at most|(\d+) to) (\d+) bytes", value)
            if length is None:
                continue
            found += 1
            with self.subTest(table=heading, key=key):
                shortest, longest = int(length[1] or 0), int(length[2])
                for size, usable in ((shortest, True), (longest, True), (longest + 1, False),
                                     (shortest - 1, False)):
                    if size >= 0:
                        text = self.describe(heading, **{key: '"%s"' % ("x" * size)})
                        self.assertEqual(self.start(text) is None, usable, (key, size))
        self.assertEqual(found, 5)

    def test_partition_numbers_have_the_stated_limit(self):
        key = next(codes_in(value)[0] for heading, key, value, _ in self.rows()
                   if (heading, key) == ("[[partition]]", "number"))
        below = self.describe("The board", **{key: "2"})
        self.assertIsNone(self.start(below))
        self.assertIsNotNone(self.start(self.describe("The board", **{key: "1"})))

    def test_password_hashes_begin_as_stated(self):
        first = next(re.search(r'beginning with "(.)"', value)[1]
                     for _, key, value, _ in self.rows() if key == "password_hash")
        self.assertTrue(PASSWORD.startswith(first))
        error = self.start(self.describe("[[user]]", password_hash='"%s"' % PASSWORD[1:]))
        self.assertIn("not a password hash of crypt(3)", error)

    def test_methods_of_password_hashes_are_accepted_as_stated(self):
        value = next(value for _, key, value, _ in self.rows() if key == "password_hash")
        taken = codes_in(value)
        self.assertEqual(taken, ["$y$", "$gy$", "$7$", "$6$"])
        hashes = {"$y$": "j75T$saltsalt$0gBD67sgmJgRX3RZ6wHHO7sHimQEWGCWN85o4Twogh2",
                  "$gy$": "j75T$saltsalt$Z2AC4hWkfKORG0LWhY01sMkijJ4fV2cmiComDBMYUwC",
                  "$7$": "CU..../....saltsalt$NUwJnl2EzU4ACwYC9BDHKGDt.PCVFKyF6Hlr/CUA09D",
                  "$6$": "rounds=%d$saltsalt$x"}
        rounds = int(re.search(r"at least (\d+) rounds", value)[1])
        for method in taken:
            text = method + hashes[method]
            self.assertIsNone(self.start(self.describe(
                "[[user]]", password_hash='"%s"' % (text % rounds if "%" in text else text))))
        weak = ["$1$saltsalt$9xy1btjgzLYfb7hivXtC//", "$6$rounds=%d$saltsalt$x" % (rounds - 1),
                "$2b$04$abcdefghijklmnopqrstuu2r9OfJnfCsdneAXAGHnS4UpFFP8WIrW"]
        advice = self.stated(r"`(mkpasswd -m yescrypt)` \(Debian package `whois`\) makes a hash")
        for each in weak:
            error = self.start(self.describe("[[user]]", password_hash='"%s"' % each))
            self.assertIn(advice, error)

    def test_file_and_folders_are_private_as_stated(self):
        advice = self.stated(r"other users must have no access to it: `(chmod 600) FILE`")
        board = self.folder / "board.toml"
        for mode in (0o640, 0o620, 0o604, 0o602):
            board.touch()
            board.chmod(mode)
            self.assertIn("%s %s" % (advice, board), self.start("max_partitions = 0"))
        board.chmod(0o600)
        self.assertIsNone(self.start("max_partitions = 0"))
        listed = self.stated(r"and the folders (.*) under it must belong")
        for folder in ["", *codes_in(listed)]:
            path = self.root / folder
            path.chmod(0o770)
            self.assertIn("chmod go-w", self.start("max_partitions = 0"))
            path.chmod(0o700)
        self.assertIsNone(self.start("max_partitions = 0"))

    def test_user_names_differ(self):
        again = self.describe("[[user]]") + '[[user]]\nname = "x"\npassword_hash = "%s"' % PASSWORD
        self.assertIn(":", self.start(again))

    def test_reports_mistakes_as_stated(self):
        self.stated(r"(`FILE:LINE:COLUMN: what is wrong`; an unknown key is a mistake too)")
        for text in ("max_partitions = 1\nunknown = 2", "max_partitions = 1\nmax", "\nx=300"):
            place = "^%s:[0-9]+:[0-9]+: ." % (self.folder / "board.toml")
            self.assertRegex(self.start(text), place)

    def test_command_starts_the_back_end_with_the_example(self):
        command = self.document.blocks()[0].split()
        self.assertEqual(command, ["efi_backend", "--root", "DIR", "--board", "FILE"])
        example = self.stated(r"`([^`]+)` is an example")
        self.assertIsNone(self.start((PROJECT / example).read_text(encoding="utf-8")))

    def states(self, text):
        self.assertIsNone(self.start(text))
        return read_states((self.root / "var/lib/board/configurations").read_bytes())

    def settings(self, settings, **values):
        """Returns the description of one partition with these settings."""
        return "max_partitions = 8\n[[partition]]\nnumber = 1\nname = \"x\"\n" + "".join(
            "%s = %s\n" % item for item in values.items()) + "[partition.settings]\n" + settings

    def test_makes_the_initial_configuration_as_stated(self):
        self.stated(r"one line `(name=value)` for each setting, sorted by name, then the fill bytes")
        payload = self.states(self.settings('z = "text"\na = 5\nm = true\n', fill_bytes="100"))[1]
        lines, fill = payload[:-100], payload[-100:]
        self.assertEqual(lines, b"a=5\nm=true\nz=text\n")
        self.stated(r"(the bytes are always the same for the same partition number)")
        self.root = self.folder / "again"
        self.root.mkdir()
        self.assertEqual(self.states(self.settings("", fill_bytes="100"))[1], fill)

    def test_refuses_malformed_settings(self):
        self.stated(r"(Names must not be empty or contain \"=\"; neither names nor values may "
                    r"contain control characters)")
        for setting in ('"" = "x"', '"a=b" = "x"', 'a = "\\n"', '"a\\t" = "x"', "a = 1.5"):
            self.assertIsNotNone(self.start(self.settings(setting)), setting)

    def test_uses_the_root_s_state_after_the_first_start(self):
        self.stated(r"(After that, the back-end uses the state stored in the root)")
        self.assertEqual(self.states(self.settings("a = 1"))[1], b"a=1\n")
        self.assertEqual(self.states(self.settings("a = 2"))[1], b"a=1\n")

    def test_configuration_files_have_the_stated_length(self):
        limit = self.stated(r"configuration file must not be longer than (\d+) bytes")
        self.assertEqual(limit, constant("data/uploadLimit.h", "LARGEST_UPLOAD"))
        # Header, the version "-", the name "x" and the checksum.
        room = limit - 28 - 1 - 1 - 4
        self.assertIsNone(self.start(self.settings("", fill_bytes=str(room))))
        self.root = self.folder / "again"
        self.root.mkdir()
        self.assertIn(str(limit), self.start(self.settings("", fill_bytes=str(room + 1))))


if __name__ == "__main__":
    unittest.main()
