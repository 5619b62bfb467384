"""Tests of efictl against a board with as many partitions as possible."""

import tempfile
import unittest
from pathlib import Path

from client import DONE, PROJECT, BoardTest

PARTITIONS = 256


def description():
    """Returns the description of a board with every partition, each with a long name."""
    lines = [f"max_partitions = {PARTITIONS}", 'name = "Large"']
    for number in range(PARTITIONS):
        name = f"{number}: " + "a partition with a long name, " * 5
        lines += ["[[partition]]", f"number = {number}", f'name = "{name}"',
                  f"node_ids = [{number % 16}]"]
    for number in range(16):
        lines += ["[[system_board]]", f"number = {number}", "home = true",
                  'bios_version = "1.23 B"']
    demo = (PROJECT / "board/demo/demo.toml").read_text(encoding="utf-8")
    return "\n".join(lines) + "\n" + demo[demo.index("[[user]]"):]


class LargeBoardTest(BoardTest):
    @classmethod
    def setUpClass(cls):
        file = Path(cls.enterClassContext(tempfile.TemporaryDirectory())) / "large.toml"
        file.write_text(description(), encoding="utf-8")
        file.chmod(0o600)
        cls.options = ("--board", file)
        super().setUpClass()

    def test_lists_and_restores_every_partition(self):
        listed = self.efictl("list", "--json")
        self.assert_ended(listed, DONE)
        self.assertEqual([each["number"] for each in listed.json["partitions"]],
                         list(range(PARTITIONS)))
        run = self.efictl("restore", self.back_up(PARTITIONS - 1), "--all", "--json")
        self.assert_ended(run, DONE)
        self.assertEqual({each["status"] for each in run.json["partitions"]}, {"restored"})
        self.assertEqual(len(run.json["partitions"]), PARTITIONS)


if __name__ == "__main__":
    unittest.main()
