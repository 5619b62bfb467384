"""Tests of efictl diff and verify, and of the documented recipe with curl alone."""

import re
import subprocess
import unittest

from client import (DIFFERENT, DONE, FAILED, TESTS, BoardTest, FolderTest,
                    configuration_file, efictl)

DOCUMENT = TESTS.parent / "docs/automation.md"


class FileDiffTest(FolderTest):
    def files(self, *payloads):
        return [self.write(f"{number}.dat", configuration_file(payload=payload))
                for number, payload in enumerate(payloads)]

    def test_names_the_settings(self):
        files = self.files(b"A=1\nB=2\n", b"A=1\nB=3\nC=4\n")
        run = efictl("diff", *files, "--json")
        self.assert_ended(run, DIFFERENT)
        found = [(each["kind"], each["name"], each["expected"], each["found"])
                 for each in run.json["differences"]]
        self.assertEqual(found, [("setting", "B", "2", "3"), ("setting", "C", None, "4")])
        self.assertFalse(run.json["changed"])

    def test_compares_the_first_with_each_of_the_others(self):
        files = self.files(b"A=1\n", b"A=1\n", b"A=2\n")
        run = efictl("diff", *files, "--json")
        self.assertEqual([each["other"] for each in run.json["differences"]], [str(files[2])])

    def test_equal_files(self):
        self.assert_ended(efictl("diff", *self.files(b"A=1\n", b"A=1\n"), "--json"), DONE)

    def test_damaged_file(self):
        good = self.write("good.dat", configuration_file())
        run = efictl("diff", good, self.write("bad.dat", b"bad"), "--json")
        self.assert_ended(run, FAILED, "bad.dat")


class BoardDiffTest(BoardTest):
    def test_board_equal_to_its_backups(self):
        self.assert_ended(self.efictl("backup", "--all", "--out", self.out), DONE)
        run = self.efictl("diff", "--against-board", "--out", self.out, "--json")
        self.assert_ended(run, DONE)
        self.assertEqual({each["status"] for each in run.json["partitions"]}, {"same"})

    def test_reports_drift_by_setting(self):
        self.assert_ended(self.efictl("backup", "--all", "--out", self.out), DONE)
        golden = self.write("new.dat", configuration_file(payload=b"Boot mode=Drift\n"))
        self.assert_ended(self.efictl("restore", golden, "--to", 3), DONE)
        run = self.efictl("diff", "--against-board", "--out", self.out, "--json")
        self.assert_ended(run, DIFFERENT)
        self.assertIn(("Boot mode", "UEFI", "Drift"),
                      [(each["name"], each["expected"], each["found"])
                       for each in run.json["differences"]])
        self.assertEqual({each["partition"] for each in run.json["differences"]}, {3})
        # It is now equal to the golden file.
        self.assert_ended(self.efictl("diff", "--against-board", golden), DONE)
        many = self.efictl("diff", "--against-board", golden, "--partition", "3,7", "--json")
        self.assertEqual(many.partition(3)["status"], "same")
        self.assertEqual(many.partition(7)["status"], "different")
        self.assertEqual(self.left_on_board(), [])

    def test_partition_without_backup(self):
        self.back_up(3)
        run = self.efictl("diff", "--against-board", "--out", self.out, "--json")
        self.assert_ended(run, FAILED, "no usable backup")
        self.assertEqual(run.partition(3)["status"], "same")


class VerifyTest(FolderTest):
    def put(self, name, content):
        self.out.mkdir(exist_ok=True)
        (self.out / name).write_bytes(content)

    def verify(self, *options):
        return efictl("verify", self.out, *options, "--json")

    def test_usable_folder(self):
        self.put("partition003-20260101T000000Z.dat", configuration_file())
        self.put("partition003-20260102T000000Z.dat", configuration_file())
        run = self.verify()
        self.assert_ended(run, DONE)
        self.assertEqual([each["newest"] for each in run.json["files"]], [False, True])
        self.assertEqual(run.partition(3)["newest"], "partition003-20260102T000000Z.dat")
        self.assertEqual(run.partition(3)["usable"], 2)

    def test_unusable_files(self):
        self.put("partition003-20260101T000000Z.dat", configuration_file())
        self.put("partition003-20260102T000000Z.dat", configuration_file()[:-1])
        self.put("partition005-20260102T000000Z.dat", configuration_file())
        run = self.verify()
        self.assert_ended(run, DIFFERENT)
        problems = [each["problem"] for each in run.json["files"]]
        self.assertIsNone(problems[0])
        self.assertIn("cut off", problems[1])
        self.assertIn("partition 3 instead", problems[2])
        self.assertEqual(run.partition(3)["newest"], "partition003-20260101T000000Z.dat")

    def test_reports_gaps(self):
        self.put("partition003-20260101T000000Z.dat", configuration_file())
        self.put("partition003-20260103T000000Z.dat", configuration_file())
        run = self.verify("--max-gap", 24)
        self.assert_ended(run, DIFFERENT)
        gaps = run.json["gaps"]
        self.assertEqual((gaps[0]["from"], gaps[0]["to"], gaps[0]["hours"]),
                         ("2026-01-01T00:00:00Z", "2026-01-03T00:00:00Z", 48))
        self.assertIsNone(gaps[1]["to"])
        self.assertEqual(self.verify().json["gaps"], [])

    def test_empty_and_absent_folder(self):
        self.out.mkdir()
        self.assert_ended(self.verify(), DIFFERENT, "no backup")
        self.out.rmdir()
        self.assert_ended(self.verify(), FAILED, "No such file")


class CurlTest(BoardTest):
    def test_recipe_makes_a_backup(self):
        text = DOCUMENT.read_text(encoding="utf-8").split("## With curl alone")[1]
        recipe = "\n".join(re.findall(r"^    (.*)$", text, re.MULTILINE))
        self.assertIn("curl", recipe)
        recipe = recipe.replace("https://board1.example", self.address)
        (self.folder / "operator.password").write_text("admin", encoding="utf-8")
        run = subprocess.run(["bash", "-euc", recipe.replace("user=operator", "user=admin")],
                             cwd=self.folder, capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        self.assert_ended(efictl("diff", self.folder / "partition3.dat", self.back_up(3)), DONE)
        self.assertEqual(self.left_on_board(), [])


if __name__ == "__main__":
    unittest.main()
