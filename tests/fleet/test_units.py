"""Tests of the systemd units: systemd-analyze accepts them, and their commands work. The tests run
the commands themselves, with the environment that systemd would give them."""

import re
import shlex
import shutil
import subprocess
import unittest

from fleet.boards import Fleet, address_of, certificate_of
from fleet.engine import EFICTL, Controller
from support.document import PROJECT

UNITS = PROJECT / "fleet/systemd"
# On systemd's scale from 0, best, to 100.
MOST_EXPOSURE = 20


class Units(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.controller = self.enterContext(Controller())

    def copied(self):
        """Returns a copy of the units, with the paths of the programs on this machine."""
        folder = self.controller.folder / "units"
        shutil.copytree(UNITS, folder)
        for path in folder.glob("*.service"):
            text = path.read_text(encoding="utf-8").replace("/usr/bin/efictl", str(EFICTL))
            # The manual may not be installed on this machine.
            path.write_text(re.sub(r"(?m)^Documentation=.*\n", "", text), encoding="utf-8")
        return folder

    def analyze(self, *words, **how):
        return subprocess.run(["systemd-analyze", *map(str, words)], check=False, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **how)

    def test_systemd_accepts_the_units(self):
        folder = self.copied()
        for path in sorted(folder.iterdir()):
            with self.subTest(unit=path.name):
                result = self.analyze("verify", path)
                self.assertEqual((result.returncode, result.stdout), (0, ""))
        path = folder / "efictl-fleet.timer"
        path.write_text(path.read_text(encoding="utf-8").replace("02:00:00", "26:00:00"),
                        encoding="utf-8")
        self.assertNotEqual(self.analyze("verify", path).stdout, "")

    def test_services_have_few_privileges(self):
        for path in sorted(UNITS.glob("*.service")):
            with self.subTest(unit=path.name):
                result = self.analyze("security", "--offline=true",
                                      "--threshold=%d" % MOST_EXPOSURE, path)
                self.assertEqual(result.returncode, 0, result.stdout)

    def command_of(self, unit, instance, places):
        """Returns the command of a service. `places` replaces systemd's paths by the test's."""
        text = (UNITS / unit).read_text(encoding="utf-8")
        command = re.search(r"(?m)^ExecStart=(.*)$", text)[1].replace("%i", instance)
        for place, there in places.items():
            self.assertIn(place, command)
            command = command.replace(place, str(there))
        return command

    def environment_of(self, unit):
        text = (UNITS / unit).read_text(encoding="utf-8")
        return dict(each.split("=", 1) for line in re.findall(r"(?m)^Environment=(.*)$", text)
                    for each in shlex.split(line))

    def start_backup(self, board, options=""):
        folder = self.controller.folder
        (folder / "credentials").mkdir(exist_ok=True)
        password = folder / "credentials/password"
        password.write_text("admin\n", encoding="utf-8")
        password.chmod(0o400)
        (folder / "state").mkdir(exist_ok=True)
        command = self.command_of("efictl-backup@.service", "rack1", {
            "/usr/bin/efictl": EFICTL, "/var/lib/efictl": folder / "state"})
        # Like a shell, systemd splits a variable without braces at spaces.
        return self.controller.shell(
            command, CREDENTIALS_DIRECTORY=str(folder / "credentials"), OPTIONS=options,
            EFICTL_BOARD=address_of(board), EFICTL_USER="admin")

    def test_board_service_backs_up_its_board(self):
        with Fleet("rack1") as fleet:
            board = fleet.boards["rack1"]
            options = "--cacert %s --keep 1" % certificate_of(board)
            for _ in range(2):
                result = self.start_backup(board, options)
                self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
            saved = list((self.controller.folder / "state/rack1").iterdir())
            self.assertEqual(len(saved), 5)
            # No unit ignores the status, so that systemd sees the failure.
            self.assertEqual(self.start_backup(board).returncode, 3)

    def test_fleet_service_backs_up_every_board(self):
        folder = self.controller.folder
        (folder / "vault").write_text("vault\n", encoding="utf-8")
        with Fleet("rack0", "rack1") as fleet:
            self.controller.write_inventory(fleet.boards)
            environment = {**self.environment_of("efictl-fleet.service"),
                           "HOME": str(folder / "home"),
                           "ANSIBLE_HOME": str(folder / "home/.ansible"),
                           "ANSIBLE_REMOTE_TMP": str(folder / "home/.ansible/tmp"),
                           "ANSIBLE_COLLECTIONS_PATH": str(folder / "collections"),
                           "CREDENTIALS_DIRECTORY": str(folder)}
            command = self.command_of("efictl-fleet.service", "", {
                "/var/lib/efictl-fleet": folder, "/usr/bin/": ""})
            result = self.controller.shell(command, **environment)
            self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertEqual(len(self.controller.files()), 10)
        self.assertEqual({row["board"] for row in self.controller.report()}, {"rack0", "rack1"})


if __name__ == "__main__":
    unittest.main()
