"""The Ansible collection as a package: the linter, its installation, and what its modules say of
themselves."""

import json
import re
import shutil
import subprocess
import unittest

from fleet.engine import COLLECTION, Controller

MODULES = sorted(path.stem for path in (COLLECTION / "plugins/modules").glob("*.py"))
ROLES = ("backup", "verify", "restore", "report")


class Collection(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.controller = self.enterContext(Controller())

    def run_tool(self, *words, folder=None):
        return subprocess.run(words, cwd=folder or self.controller.folder, check=False,
                              env=self.controller.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True)

    def test_the_linter_finds_nothing(self):
        # A copy, because the linter keeps its cache beside what it reads.
        place = self.controller.folder / "collections/ansible_collections/vesk/efictl"
        place.unlink()
        shutil.copytree(COLLECTION, place)
        words = ("ansible-lint", "--offline", "--nocolor", "--profile", "production")
        result = self.run_tool(*words, folder=place)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        (place / "roles/backup/tasks/main.yml").write_text("- shell: echo\n", encoding="utf-8")
        self.assertNotEqual(self.run_tool(*words, folder=place).returncode, 0)

    def test_it_is_built_and_installed_without_a_network(self):
        target = self.controller.folder / "installed"
        result = self.run_tool("ansible-galaxy", "collection", "install", "--offline",
                               "--collections-path", target, COLLECTION)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        installed = target / "ansible_collections/vesk/efictl"
        for role in ROLES:
            self.assertTrue((installed / "roles" / role / "tasks/main.yml").exists(), role)
        result = self.run_tool("ansible-doc", "--list", "--json", "vesk.efictl")
        self.assertEqual(sorted(json.loads(result.stdout)),
                         ["vesk.efictl." + name for name in MODULES])

    def test_modules_describe_their_options(self):
        for name in MODULES:
            with self.subTest(module=name):
                result = self.run_tool("ansible-doc", "--json", "vesk.efictl." + name)
                described = json.loads(result.stdout)["vesk.efictl." + name]["doc"]["options"]
                # An unknown option makes a module list those it takes.
                result = self.run_tool("ansible", "localhost", "-m", "vesk.efictl." + name,
                                       "-a", "no_such_option=1")
                listed = re.search(r"Supported parameters include: ([\w, ]+)", result.stdout)[1]
                self.assertEqual(sorted(described), sorted(listed.split(", ")))


if __name__ == "__main__":
    unittest.main()
