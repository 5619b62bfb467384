"""Tests of the Debian package of efictl: its files, its dependencies and the bash completion."""

import os
import subprocess
import unittest

from client import BUILD, FolderTest

FILES = {"usr/bin/efictl", "usr/bin/eficonf", "usr/share/bash-completion/completions/efictl",
         "usr/share/man/man1/efictl.1.gz", "usr/share/man/man1/eficonf.1.gz"}


class PackageTest(FolderTest):
    def setUp(self):
        super().setUp()
        subprocess.run(["cpack", "--config", BUILD / "CPackClient.cmake", "-B", self.folder],
                       check=True, capture_output=True)
        self.package, = self.folder.glob("efictl-*.deb")
        self.root = self.folder / "root"
        subprocess.run(["dpkg-deb", "--extract", self.package, self.root], check=True)

    def run_installed(self, *command, **more):
        path = f"{self.root}/usr/bin:{os.environ['PATH']}"
        return subprocess.run(command, env={**os.environ, "PATH": path}, check=True, text=True,
                              capture_output=True, **more).stdout

    def complete(self, *words):
        """Returns the completions that bash offers for the last word."""
        script = self.root / "usr/share/bash-completion/completions/efictl"
        return self.run_installed(
            "bash", "-c", 'source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _efictl; '
            'printf "%s\\n" "${COMPREPLY[@]}"', script, *words).split()

    def test_contains_only_the_client(self):
        files = {str(path.relative_to(self.root)) for path in self.root.rglob("*")
                 if not path.is_dir()}
        self.assertEqual(files, FILES)
        needs = subprocess.run(["dpkg-deb", "--field", self.package, "Depends"], check=True,
                               text=True, capture_output=True).stdout
        self.assertEqual({each.split()[0] for each in needs.split(",")},
                         {"libc6", "libcurl4", "libgumbo1", "libgcc-s1", "libstdc++6"})

    def test_programs_and_pages_work(self):
        self.assertIn("backup", self.run_installed("efictl", "--help"))
        self.assertIn("show", self.run_installed("eficonf", "--help"))
        for name, word in (("efictl", "restore"), ("eficonf", "compare")):
            page = self.run_installed("zcat", self.root / f"usr/share/man/man1/{name}.1.gz")
            self.assertIn(".TH", page)
            self.assertIn(word, page)

    def test_completes_commands_and_options(self):
        self.assertEqual(self.complete("efictl", "re"), ["restore"])
        self.assertEqual(set(self.complete("efictl", "")),
                         {"list", "backup", "restore", "diff", "verify"})
        self.assertIn("--dry-run", self.complete("efictl", "restore", "--d"))
        self.assertNotIn("--dry-run", self.complete("efictl", "backup", "--"))


if __name__ == "__main__":
    unittest.main()
