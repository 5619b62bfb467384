"""Tests of efictl against recorded pages of a board with older software. Its menu has the times of
the last backup and restore only as text, not in <time> elements."""

import unittest
from pathlib import Path

from client import DIFFERENT, DONE, Account, FolderTest, configuration_file
from client.hostile import SCREEN, HostileBoard, file, html

PAGES = Path(__file__).resolve().parent / "pages/older"
SAVED = PAGES / "partition003.dat"


def page(name):
    return html((PAGES / f"{name}.html").read_bytes())


class OlderBoardTest(FolderTest):
    def efictl(self, *words, screen="backup"):
        """Runs a command against a board that answers requests of the screen with page `screen`."""
        answers = {"/": page("menu"), SCREEN: page(screen), SCREEN + " upload": page("selection"),
                   SCREEN + " restore": page("restored"), SCREEN + " discard": page("upload"),
                   "/common/download.cgi": file(SAVED.read_bytes())}
        with HostileBoard(answers) as board:
            run = Account(board.address).efictl(*words, "--json")
            self.requests = board.requests
        return run

    def test_recorded_menu_has_no_time_elements(self):
        rows = (PAGES / "menu.html").read_text(encoding="utf-8").split("<tbody>")[1]
        self.assertIn('<span class="detail time">', rows)
        self.assertNotIn("<time", rows)

    def test_lists_partitions_without_their_last_times(self):
        run = self.efictl("list")
        self.assert_ended(run, DONE)
        partitions = run.json["partitions"]
        self.assertEqual([(each["number"], each["bios_version"]) for each in partitions],
                         [(0, "10.20.30"), (2, None), (3, "1.23 B"), (5, None), (7, "1.40")])
        for each in partitions:
            self.assertIsNone(each["last_backup"])
            self.assertIsNone(each["last_restore"])
        self.assertEqual(run.json["board_name"], "Demo board")

    def test_backs_up(self):
        run = self.efictl("backup", "--partition", 3, "--out", self.out)
        self.assert_ended(run, DONE)
        stored = self.out / run.partition(3)["file"]
        self.assertEqual(stored.read_bytes(), SAVED.read_bytes())

    def test_compares(self):
        for other, status in ((SAVED, DONE), (self.write("new.dat", configuration_file()), DIFFERENT)):
            with self.subTest(status=status):
                self.assert_ended(self.efictl("diff", "--against-board", other), status)

    def test_restores(self):
        for more, status, restores in ((["--dry-run"], "planned", 0), ([], "restored", 1)):
            with self.subTest(status=status):
                run = self.efictl("restore", SAVED, "--to", 3, *more, screen="upload")
                self.assert_ended(run, DONE)
                self.assertEqual(run.partition(3)["status"], status)
                self.assertEqual(self.requests.count(f"POST {SCREEN} restore"), restores)


if __name__ == "__main__":
    unittest.main()
