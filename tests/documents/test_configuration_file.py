"""Checks docs/configuration-file.md against real files. Reads the examples with the document's tables;
tests/backend/documentsTest.cpp generates the examples."""

import json
import re
import struct
import subprocess
import tempfile
import time
import unittest
import zlib
from pathlib import Path

from support.board import BUILD, SCREEN, Board, Client
from support.configuration import layout, read_file, read_states
from support.document import DocumentTest
from support.source import constant

HEADER = "platform/host/storage/ConfigurationFile.h"
EFICONF = BUILD / "board/inspector/eficonf"
FILE_EXAMPLE, STATE_EXAMPLE = "## Example", "Partition 0 has the payload"


def seal(data):
    """Returns the file with a correct checksum."""
    return data[:-4] + struct.pack(">I", zlib.crc32(data[:-4]))


class ConfigurationFile(DocumentTest):
    name = "docs/configuration-file.md"

    def setUp(self):
        self.example = self.document.bytes_after(FILE_EXAMPLE)

    def show(self, data):
        """Returns exit status and report of eficonf, which reads a file with the platform's code."""
        with tempfile.NamedTemporaryFile(suffix=".dat") as file:
            file.write(data)
            file.flush()
            result = subprocess.run([EFICONF, "show", "--json", file.name], text=True,
                                    stdout=subprocess.PIPE, check=False)
        return result.returncode, json.loads(result.stdout)

    def is_usable(self, data):
        return self.show(data)[0] == 0

    def test_table_reads_the_example_as_the_text_describes_it(self):
        partition, name, date, version, payload = self.stated(
            r"Partition (\d+), called \"([^\"]+)\", saved on (\S+) at 00:00:00 UTC, BIOS version "
            r"\"([^\"]+)\", payload \"([^\"]+)\" and a line feed")
        fields = read_file(self.example)
        epoch = self.stated(r"save time, seconds since (\S+) UTC")
        self.assertEqual(time.strftime("%F", time.gmtime(0)), epoch)
        self.assertEqual(fields["number"], partition)
        self.assertEqual(fields["name"].decode(), name)
        self.assertEqual(time.strftime("%F %T", time.gmtime(fields["save time"])),
                         date + " 00:00:00")
        self.assertEqual(fields["version"].decode(), version)
        self.assertEqual(fields["payload"].decode(), payload + "\n")
        self.assertEqual(fields["crc"], zlib.crc32(self.example[:-4]))
        self.assertEqual(fields["end"], len(self.example))

    def test_platform_reads_the_example_as_the_table_does(self):
        fields = read_file(self.example)
        status, shown = self.show(self.example)
        self.assertEqual(status, 0)
        text = json.dumps(shown)
        for value in (fields["version"].decode(), fields["name"].decode()):
            self.assertIn('"%s"' % value, text)
        self.assertIn(": %d" % fields["number"], text)

    def test_magic_and_revision_are_as_stated(self):
        rows = {field: codes for _, _, field in layout()
                for codes in [re.findall(r"\"(\w+)\" and 0x(\w+)|layout: (\d+)", field)]}
        magic = next(codes[0] for field, codes in rows.items() if field.startswith("magic"))
        revision = next(codes[0] for field, codes in rows.items() if field.startswith("revision"))
        fields = read_file(self.example)
        self.assertEqual(fields["magic"], magic[0].encode() + bytes.fromhex(magic[1]))
        self.assertEqual(fields["revision"], int(revision[2]))
        self.assertEqual(fields["revision"], constant(HEADER, "REVISION"))

    def test_lengths_have_the_stated_limits(self):
        for text, name, begin in (("BIOS version", "LARGEST_VERSION", 20),
                                  ("partition name", "LARGEST_PARTITION_NAME", 22)):
            limit = self.stated(r"length of the %s: 0 to (\d+)" % text)
            self.assertEqual(limit, constant(HEADER, name))
            for length, usable in ((0, True), (limit, True), (limit + 1, False)):
                head = bytearray(self.example[:28])
                head[20:28] = bytes(8)
                head[begin:begin + 2] = struct.pack(">H", length)
                self.assertEqual(self.is_usable(seal(bytes(head) + b"x" * length + bytes(4))),
                                 usable)

    def test_files_have_the_stated_size(self):
        limit = self.stated(r"A file is at most (\d+) bytes long")
        self.assertEqual(limit, constant("data/uploadLimit.h", "LARGEST_UPLOAD"))
        for size, usable in ((limit, True), (limit + 1, False)):
            payload = size - 28 - 4
            head = self.example[:20] + struct.pack(">HHI", 0, 0, payload)
            self.assertEqual(self.is_usable(seal(head + bytes(payload + 4))), usable)

    def test_damaged_files_are_rejected(self):
        self.stated(r"(not a configuration file if the magic or the revision is different, if the "
                    r"lengths do not add up to the length of the file, if there is a byte too few or too "
                    r"many, or if the CRC is wrong)")
        for position in range(len(self.example)):
            damaged = bytearray(self.example)
            damaged[position] ^= 1
            self.assertFalse(self.is_usable(bytes(damaged)), position)
            if position < 12 or 20 <= position < 28:
                self.assertFalse(self.is_usable(seal(bytes(damaged))), position)
        self.assertFalse(self.is_usable(seal(self.example[:-5] + self.example[-4:])))
        self.assertFalse(self.is_usable(self.example + b"\0"))
        self.assertFalse(self.is_usable(self.example[:-1]))

    def test_checksum_is_as_stated(self):
        characters, checksum = self.stated(r"CRC-32 of the nine characters `(\d+)` is (\w+)\.")
        self.assertEqual("%X" % zlib.crc32(str(characters).encode()), checksum)
        polynomial = int(self.stated(r"polynomial (0x\w+) reflected, initial value and final XOR "
                                     r"all ones"), 16)
        reflected = int("{:032b}".format(polynomial)[::-1], 2)
        value = 0xFFFFFFFF
        for byte in str(characters).encode():
            value ^= byte
            for _ in range(8):
                value = value >> 1 ^ (reflected if value & 1 else 0)
        self.assertEqual("%X" % (value ^ 0xFFFFFFFF), checksum)

    def test_save_time_has_the_stated_range(self):
        year = self.stated(r"save time is unsigned and lasts until (\d+)")
        self.assertEqual(time.gmtime(0xFFFFFFFF).tm_year, year)
        data = self.example[:12] + b"\xff" * 4 + self.example[16:]
        self.assertIn(str(year), json.dumps(self.show(seal(data))[1]))

    def test_backups_are_configuration_files(self):
        with Board() as board:
            client = Client(board, "admin")
            before = int(time.time())
            client.post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP",
                                 "radio_button": "3"})
            data = board.path("/var/tmp/efi_backup" + client.identifier).read_bytes()
            fields = read_file(data)
            self.assertEqual(fields["end"], len(data))
            self.assertEqual(fields["number"], 3)
            self.assertEqual(fields["version"], b"1.23 B")
            self.assertLessEqual(before, fields["save time"])
            path = self.stated(r"payloads of all partitions are in one file, `([^`]+)` under the board's root")
            states = board.path(path)
            self.assertEqual(read_states(states.read_bytes())[3], fields["payload"])
            self.check_replacement(board, client, states)

    def check_replacement(self, board, client, states):
        """Checks that a restore replaces the whole state file and leaves no temporary file."""
        self.stated(r"(replaced atomically: the new contents are written to a temporary file and "
                    r"synced, the file is renamed, and the folder is synced)")
        before = states.stat().st_ino
        backup = board.path("/var/tmp/efi_backup" + client.identifier)
        backup.rename(board.path("/var/tmp/restored_eficonf" + client.identifier))
        client.post(SCREEN, {"functionID": "106", "hidden_status": "2", "pid2": "2", "pid5": "5"})
        self.assertNotEqual(states.stat().st_ino, before)
        payloads = read_states(states.read_bytes())
        self.assertEqual(payloads[2], payloads[3])
        self.assertEqual(payloads[5], payloads[3])
        self.assertEqual([each for each in states.parent.iterdir() if "aside" in each.name], [])

    def test_restore_has_the_stated_cost(self):
        megabytes, count = self.stated(r"payloads of all partitions again, (\d+) MB for (\w+) full")
        self.assertEqual(count, "eight")
        self.assertEqual(8 * constant("data/uploadLimit.h", "LARGEST_UPLOAD") // 10 ** 6, megabytes)

    def test_table_reads_the_example_of_the_state_file(self):
        sizes = [row[0] for row in self.table("size", "field")]
        self.assertEqual(sizes, ["8", "4", "4", "4 + 4 + L each", "4"])
        fields = [row[1] for row in self.table("size", "field")]
        self.assertEqual(fields[0].replace(" and 0x1A", "\x1a"), 'magic: "EFISTOR"\x1a')
        self.assertTrue(fields[1].endswith(": 1"))
        partitions = self.stated(r"Partition (\d) has the payload \"(\w)\", that of partition (\d) is empty")
        self.assertEqual(read_states(self.document.bytes_after(STATE_EXAMPLE)),
                         {partitions[0]: partitions[1].encode(), partitions[2]: b""})

    def start(self, root, states=None):
        """Starts a back-end with partitions 1 and 2. Returns its states; None if it does not start."""
        path = Path(root) / "var/lib/board/configurations"
        board = Path(root) / "board.toml"
        board.touch(mode=0o600)
        board.write_text("max_partitions = 3\n" + "".join(
            '[[partition]]\nnumber = %d\nname = "x"\n[partition.settings]\na = %d\n' % (each, each)
            for each in (1, 2)), encoding="utf-8")
        if states is not None:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(states)
        with subprocess.Popen(
                [BUILD / "board/backend/efi_backend", "--root", root, "--board", board],
                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
            ready = process.stdout.readline()
            if ready:
                process.terminate()
        return read_states(path.read_bytes()) if ready else None

    def test_keeps_and_completes_states_as_stated(self):
        self.stated(r"(Entries of partitions that are not in the board description are kept)")
        self.stated(r"(A partition without an entry gets the initial configuration)")
        body = b"EFISTOR\x1a" + struct.pack(">IIII", 1, 1, 0, 1) + b"A"
        with tempfile.TemporaryDirectory() as root:
            states = self.start(root, body + struct.pack(">I", zlib.crc32(body)))
            self.assertEqual(states, {0: b"A", 1: b"a=1\n", 2: b"a=2\n"})

    def test_never_overwrites_a_damaged_state_file(self):
        self.stated(r"(If the file is damaged, the back-end does not start and does not overwrite)")
        with tempfile.TemporaryDirectory() as root:
            path = Path(root) / "var/lib/board/configurations"
            self.assertIsNone(self.start(root, b"damaged"))
            self.assertEqual(path.read_bytes(), b"damaged")
            path.rename(path.with_name("moved"))
            self.assertEqual(self.start(root), {1: b"a=1\n", 2: b"a=2\n"})


if __name__ == "__main__":
    unittest.main()
