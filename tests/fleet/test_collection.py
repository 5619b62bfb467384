"""Tests of the Ansible collection as a package: linter, installation and module documentation."""

import json
import shutil
import subprocess
import unittest

from fleet.engine import COLLECTION, Controller

MODULES = sorted(path.stem for path in (COLLECTION / "plugins/modules").glob("*.py"))
# Prints the options that modules take. Run with Debian's Python, which Ansible uses.
PRINT_OPTIONS = """
import importlib, json, os, sys
sys.path.insert(0, os.environ["ANSIBLE_COLLECTIONS_PATH"])
place = "ansible_collections.vesk.efictl.plugins.modules."
print(json.dumps({name: importlib.import_module(place + name).OPTIONS for name in sys.argv[1:]}))
"""
KEYS = ("type", "elements", "required", "default")
ROLES = ("backup", "verify", "restore", "report")


class Collection(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.controller = self.enterContext(Controller())

    def run_tool(self, *words, folder=None):
        return subprocess.run(words, cwd=folder or self.controller.folder, check=False,
                              env=self.controller.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True)

    def test_passes_the_linter(self):
        # Checks a copy, because the linter writes its cache next to the sources.
        place = self.controller.folder / "collections/ansible_collections/vesk/efictl"
        place.unlink()
        shutil.copytree(COLLECTION, place)
        words = ("ansible-lint", "--offline", "--nocolor", "--profile", "production")
        result = self.run_tool(*words, folder=place)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        (place / "roles/backup/tasks/main.yml").write_text("- shell: echo\n", encoding="utf-8")
        self.assertNotEqual(self.run_tool(*words, folder=place).returncode, 0)

    def test_installs_without_a_network(self):
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

    def test_documents_all_module_options(self):
        taken = json.loads(self.run_tool("/usr/bin/python3", "-c", PRINT_OPTIONS, *MODULES).stdout)
        names = ["vesk.efictl." + name for name in MODULES]
        described = json.loads(self.run_tool("ansible-doc", "--json", *names).stdout)
        for name in MODULES:
            options = described["vesk.efictl." + name]["doc"]["options"]
            self.assertEqual({option: {key: each[key] for key in KEYS if each.get(key) is not None}
                              for option, each in options.items()},
                             {option: {key: each[key] for key in KEYS if key in each}
                              for option, each in taken[name].items()}, name)


if __name__ == "__main__":
    unittest.main()
