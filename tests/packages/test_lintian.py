#!/usr/bin/python3
"""Debian's checker finds nothing in the packages except the tags named here."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
BUILD = PROJECT / "build" / os.environ.get("BOARD_PRESET", "release")

# The project has no license text, and git keeps its history.
INTENDED = {"no-copyright-file", "no-changelog"}
# The board's paths are below /usr/local, and a static program needs no library.
INTENDED_ON_BOARD = INTENDED | {"dir-in-usr-local", "file-in-usr-local", "file-in-unusual-dir",
                                "shared-library-lacks-prerequisites"}


class LintianTest(unittest.TestCase):
    def tags_of(self, config):
        with tempfile.TemporaryDirectory(prefix="packages-") as folder:
            subprocess.run(["cpack", "--config", BUILD / config, "-G", "DEB", "-B", folder],
                           check=True, capture_output=True)
            package, = Path(folder).glob("*.deb")
            # As root, lintian needs the permission; otherwise the option changes nothing.
            run = subprocess.run(["lintian", "--allow-root", "--tag-display-limit", "0", package],
                                 text=True, capture_output=True)
        lines = run.stdout.splitlines()
        self.assertTrue(lines, run.stderr)
        return {line.split()[2] for line in lines}

    def test_client(self):
        self.assertEqual(self.tags_of("CPackClient.cmake"), INTENDED)

    def test_program(self):
        self.assertEqual(self.tags_of("CPackConfig.cmake"), INTENDED_ON_BOARD)


if __name__ == "__main__":
    unittest.main()
