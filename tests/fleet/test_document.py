"""Tests of docs/fleet.md. Runs its commands as printed, with paths and boards of the test."""

import re
import subprocess
import unittest

from fleet.boards import Fleet, address_of
from fleet.engine import COLLECTION, Controller
from support.document import PROJECT, DocumentTest, codes_in
from support.source import read

BOARDS = ("rack1", "rack2", "rack3")
PARTITIONS = 5


class CollectionDocument(DocumentTest):
    name = "docs/fleet.md"

    def test_lists_playbooks_and_roles(self):
        playbooks = [codes_in(row[0])[0] for row in self.table("playbook", "does")]
        found = (COLLECTION / "playbooks").glob("*.yml")
        self.assertEqual(sorted(playbooks), sorted("vesk.efictl." + path.stem for path in found))
        roles = [codes_in(row[0])[0] for row in self.table("role", "does", "changed when")]
        found = (COLLECTION / "roles").glob("*/tasks")
        self.assertEqual(sorted(roles), sorted("vesk.efictl." + path.parent.name for path in found))

    def test_lists_variables_with_their_defaults(self):
        set_by_roles = {}
        for path in (COLLECTION / "roles").glob("*/defaults/main.yml"):
            text = path.read_text(encoding="utf-8")
            set_by_roles |= dict(re.findall(r"(?m)^(efictl_\w+): *(.*)$", text))
        waves = re.search(r"default\((\[.*?\])\)", read("fleet/ansible/playbooks/restore.yml"))[1]
        set_by_roles |= {"efictl_waves": waves}
        # Consists of the other variables.
        del set_by_roles["efictl_connection"]
        listed = {}
        for variables, _, defaults in self.table("variable", "says", "when not given"):
            names, values = codes_in(variables), codes_in(defaults)
            for number, name in enumerate(names):
                listed[name] = values[number] if len(values) == len(names) else None
        self.assertEqual(sorted(listed), sorted(set_by_roles))
        for name, value in listed.items():
            if value is not None:
                self.assertEqual(value, set_by_roles[name].strip('"'), name)

    def test_lists_modules(self):
        named, others = self.stated(r"`ansible-doc vesk\.efictl\.(\w+)` describes the module of "
                                    r"that name; the others are (.*?)\. Passwords")
        found = (COLLECTION / "plugins/modules").glob("*.py")
        self.assertEqual(sorted([named, *codes_in(others)]), sorted(path.stem for path in found))


class GrowthDocument(DocumentTest):
    """Checks that the conclusions follow from the measured figures."""

    name = "docs/fleet.md"

    def test_sums_are_right(self):
        checked = 0
        for _, arithmetic, _ in self.table("what", "arithmetic", "what to do"):
            match = re.match(r"([\d,. +×/a-zA-Z]+?) = ([\d,.]+) (\w+)", arithmetic)
            if match is None:
                continue
            terms = re.sub(r"[a-zA-Z,]", "", match[1]).replace("×", "*")
            self.assertRegex(terms, r"^[\d. +*/]+$")
            factor = 1000 if match[3] == "GB" else 1
            stated = float(match[2].replace(",", "")) * factor
            self.assertAlmostEqual(eval(terms), stated, delta=stated / 50)  # pylint: disable=eval-used
            checked += 1
        self.assertEqual(checked, 5)

    def test_times_for_each_board_match_the_table(self):
        rows = self.table("boards", "engine", "night", "s", "CPU s", "MiB", "open files")
        seconds = {(row[1], int(row[0])): float(row[4]) / int(row[0]) for row in rows
                   if row[2] == "first"}
        both, few, many = map(float, self.stated(
            r"parallel took ([\d.]+) s of processor time at 50 and at 200 boards, and no memory\. "
            r"Ansible took ([\d.]+) s at 50 boards and ([\d.]+) s at 200"))
        for key, stated in {("parallel", 50): both, ("parallel", 200): both, ("Ansible", 50): few,
                            ("Ansible", 200): many}.items():
            self.assertAlmostEqual(seconds[key], stated, delta=0.0051)


class FleetDocument(DocumentTest):
    name = "docs/fleet.md"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.boards = cls.enterClassContext(Fleet(*BOARDS)).boards

    def setUp(self):
        self.controller = self.enterContext(Controller())
        self.folder = self.controller.folder
        self.controller.boards = self.boards
        self.controller.write_certificates()

    def lines_after(self, words, block=0):
        return self.document.blocks(words)[block].splitlines()

    def shell(self, script, stdin=subprocess.DEVNULL, **environment):
        """Runs a line of the document, which must succeed. Returns its output."""
        result = subprocess.run(["bash", "-uc", script], cwd=self.folder, check=False, text=True,
                                env={**self.controller.environment, **environment},
                                capture_output=True, **stdin if isinstance(stdin, dict)
                                else {"stdin": stdin})
        self.assertEqual(result.returncode, 0, script + "\n" + result.stdout + result.stderr)
        return result.stdout

    def places(self, line):
        """Returns the line with paths below the test's folder and the addresses of its boards."""
        for place in ("/etc/efictl", "/etc/systemd/system", "/usr/share/ansible/collections"):
            line = line.replace(place, "%s%s" % (self.folder, place))
        for name, board in self.boards.items():
            line = line.replace("https://%s.example/" % name, address_of(board))
            line = re.sub(r"%s\.example(?=[ ;]|$)" % name,
                          "'%s.example efictl_board=%s'" % (name, address_of(board)), line)
        return line

    def system(self):
        """Creates the folders that the lines write to, and replaces the programs that need root."""
        for place in ("etc/efictl", "etc/systemd/system", "usr/share/ansible/collections"):
            (self.folder / place).mkdir(parents=True)
        (self.folder / "etc/efictl/boards.pem").write_bytes(
            (self.folder / "boards.pem").read_bytes())
        (self.folder / "fleet").symlink_to(PROJECT / "fleet")
        (self.folder / "efictl-1.deb").touch()
        self.program("apt", 'echo "$@" >apt.asked')
        self.program("systemctl", 'exec /usr/bin/systemctl --root="%s" "${@/--now/--quiet}"'
                     % self.folder)

    def program(self, name, script):
        path = self.folder / "bin" / name
        path.write_text("#!/bin/bash\n%s\n" % script, encoding="utf-8")
        path.chmod(0o755)

    def test_ten_lines_set_up_nightly_backups_of_three_boards(self):
        self.system()
        lines = self.lines_after("## Three boards in ten lines")
        self.assertEqual(len(lines), 10)
        environment = {"ANSIBLE_COLLECTIONS_PATH":
                       str(self.folder / "usr/share/ansible/collections")}
        for line in lines:
            line = self.places(line).replace("operator", "admin")
            typed = {"input": "admin"} if "encrypt_string" in line else subprocess.DEVNULL
            output = self.shell(line, typed, **environment)
            if "--check" in line:
                self.assertEqual(len(re.findall(r"(?m)^rack\d\.example .*changed=1 .*failed=0 ",
                                                output)), len(BOARDS), output)
        self.assertIn("ansible-core", (self.folder / "apt.asked").read_text(encoding="utf-8"))
        enabled = self.folder / "etc/systemd/system/timers.target.wants/efictl-fleet.timer"
        self.assertTrue(enabled.is_symlink())
        self.assertFalse((self.folder / "etc/efictl/fleet/backups").exists())
        self.assert_the_service_backs_up(environment)

    def assert_the_service_backs_up(self, environment):
        """Runs the command of the enabled service in its working directory."""
        service = (self.folder / "etc/systemd/system/efictl-fleet.service").read_text(
            encoding="utf-8")
        value = {key: re.search("(?m)^%s=(.*)$" % key, service)[1]
                 for key in ("ExecStart", "WorkingDirectory", "LoadCredential")}
        name, _, secret = value["LoadCredential"].partition(":")
        (self.folder / name).symlink_to(self.places(secret))
        command = value["ExecStart"].replace("/var/lib/efictl-fleet", str(self.folder))
        self.shell("cd %s && %s" % (self.places(value["WorkingDirectory"]), command),
                   CREDENTIALS_DIRECTORY=str(self.folder), **environment)
        self.assertEqual(len(self.controller.files()), PARTITIONS * len(BOARDS))

    def test_timer_backs_up_one_board(self):
        self.system()
        lines = self.lines_after("`efictl-backup@.timer` saves one board every night")
        self.shell("cp fleet/systemd/* etc/systemd/system/")
        for line in lines:
            self.shell(self.places(line), {"input": "admin\n"} if "password" in line
                       else subprocess.DEVNULL)
        wanted = self.folder / "etc/systemd/system/timers.target.wants"
        self.assertEqual([path.name for path in wanted.iterdir()], ["efictl-backup@rack1.timer"])
        self.assertIn("EFICTL_BOARD=" + address_of(self.boards["rack1"]),
                      (self.folder / "etc/efictl/rack1.env").read_text(encoding="utf-8"))
        password = self.folder / "etc/efictl/rack1.password"
        self.assertEqual(password.stat().st_mode & 0o777, 0o600)

    def save_with_parallel(self, line):
        (self.folder / "boards.txt").write_text(
            "".join("%s %s\n" % (name, address_of(board)) for name, board in self.boards.items()),
            encoding="utf-8")
        # This machine does not trust the certificates of the test's boards.
        line = line.replace("efictl backup", "efictl backup --cacert boards.pem")
        return subprocess.run(["bash", "-uc", line], cwd=self.folder, check=False,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              env={**self.controller.environment, "EFICTL_USER": "admin",
                                   "EFICTL_PASSWORD": "admin"})

    def test_parallel_backs_up_every_board(self):
        (line,) = self.lines_after("## GNU parallel")
        result = self.save_with_parallel(line)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(len(self.controller.files()), PARTITIONS * len(BOARDS))
        self.boards["rack2"].control("refuse", "0x020100A3", 1603, "--times", PARTITIONS)
        result = self.save_with_parallel(line)
        self.boards["rack2"].control("reset")
        self.assertEqual(result.returncode, 1, result.stderr)
        log = (self.folder / "night.log").read_text(encoding="utf-8").splitlines()
        column = log[0].split("\t").index(self.stated(r"the column (\w+) of night\.log"))
        statuses = sorted(line.split("\t")[column] for line in log[1:])
        self.assertEqual(statuses, ["0", "0", "4"])

    def test_git_shows_which_settings_changed(self):
        (line,) = self.lines_after("## GNU parallel")
        self.assertEqual(self.save_with_parallel(line).returncode, 0)
        once, nightly, shown = (self.lines_after("## History in git", each) for each in range(3))
        who = {each: "operator" for each in ("GIT_AUTHOR_NAME", "GIT_COMMITTER_NAME")}
        who |= {each: "operator@rack.example" for each in ("GIT_AUTHOR_EMAIL",
                                                           "GIT_COMMITTER_EMAIL")}
        for command in once + nightly:
            self.shell("cd backups && " + command, **who)
        self.controller.change_setting("rack1", b"Boot timeout=10", b"Boot timeout=11")
        self.assertEqual(self.save_with_parallel(line).returncode, 0)
        for command in nightly:
            self.shell("cd backups && " + command, **who)
        (command,) = shown
        output = self.shell("cd backups && " + command, **who)
        self.assertRegex(output, r"(?m)^-.*Boot timeout.*10$")
        self.assertRegex(output, r"(?m)^\+.*Boot timeout.*11$")
        self.assertNotRegex(output, r"(?m)^[-+].*Boot mode.*UEFI$(?s:.*)^-.*Boot mode")


if __name__ == "__main__":
    unittest.main()
