"""Compares README.md with the commands, the tools and the build."""

import json
import os
import re
import subprocess
import unittest

from support.board import SCREEN, BoardDocumentTest, Client
from support.document import PROJECT
from support.source import read


class Readme(BoardDocumentTest):
    name = "README.md"

    def test_the_two_commands_exist(self):
        commands = [line.split("#")[0].strip() for line in self.document.blocks()[0].splitlines()]
        self.assertEqual(commands, ["./serve", "./check"])
        for command in commands:
            self.assertTrue(os.access(PROJECT / command, os.X_OK))
        self.assertIn(self.stated(r"`\./serve (--\w+)` lists the options"),
                      read("serve"))
        for command in commands:
            self.assertIn("tools/install_packages", read(command))
        self.stated(r"(Both commands install the missing packages of \[packages\.txt\])")
        self.assertIn("packages.txt", read("tools/install_packages"))

    def test_serve_uses_the_stated_port(self):
        port = self.stated(r"builds a board and serves it on http://127\.0\.0\.1:(\d+)/")
        options = subprocess.run([PROJECT / "serve", "--help"], check=True, capture_output=True,
                                 text=True).stdout
        self.assertRegex(options, r"--port N +the port \(default %d\)" % port)
        self.assertRegex(read("serve"), r"(?m)^port=%d$" % port)

    def test_accounts_have_the_stated_rights(self):
        accounts = re.findall(r"`(\w+)`/`(\w+)`, who may ([\w ]+)", self.document.words)
        self.assertEqual(len(accounts), 2)
        for name, password, rights in accounts:
            self.assertEqual(name, password)
            status = {"back up and restore": 200, "do neither": 403}[rights.strip()]
            for function in ("105", "106"):
                answer = Client(self.board, name).get(SCREEN + "?functionID=" + function)
                self.assertEqual(answer.status, status)

    def tool(self, name, *words):
        command = [self.board.path("/usr/local/bin/" + name), *words]
        return subprocess.run(command, check=False, capture_output=True, text=True)

    def test_tools_are_installed_where_stated(self):
        folder = self.stated(r"The board also installs two tools under `([^`]+)` of its root")
        for name in ("eficonf", "boardctl"):
            self.assertTrue(self.board.path(folder + "/" + name).exists())
            self.assertEqual(self.tool(name, "--help").returncode, 0)

    def test_manual_pages_are_installed_where_stated(self):
        folder = self.stated(r"`man -M var/board/([^` ]+) eficonf`")
        for name in ("eficonf", "boardctl", "serve"):
            page = self.board.path("/%s/man1/%s.1" % (folder, name)).read_text(encoding="utf-8")
            self.assertIn(".SH SYNOPSIS", page)

    def test_logs_are_where_stated(self):
        serve_log, check_log = self.stated(
            r"output to `(var/log/build\.log)` under the board's root \(`var/board`\), "
            r"`./check` to `(build/check\.log)`")
        self.assertIn("$root/" + serve_log, read("serve"))
        self.assertIn("begin_steps " + check_log, read("check"))

    def test_eficonf_works_as_stated(self):
        client = Client(self.board, "admin")
        client.post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP", "radio_button": "3"})
        file = self.board.path("/var/tmp/efi_backup" + client.identifier)
        show, compare, option, ignore = self.stated(
            r"`(eficonf show FILE)` prints a configuration file and `(eficonf compare A B)` compares "
            r"two \(`(--\w+)` for scripts, `(--\S+)` for the contents alone\)")
        self.assertEqual(self.tool(*show.replace("FILE", str(file)).split()).returncode, 0)
        words = compare.replace("A B", "%s %s" % (file, file)).split()
        self.assertEqual(self.tool(*words).returncode, 0)
        self.assertIsInstance(json.loads(self.tool(*words, option).stdout), dict)
        self.assertEqual(self.tool(*words, ignore).returncode, 0)

    def test_boardctl_works_as_stated(self):
        self.stated(r"`(boardctl --root DIR)` makes a running back-end fail")
        for words in ("refuse 1 2", "slow 1", "silent", "torn 1", "partition 3 on",
                      "partition 3 off", "reset", "die"):
            result = self.tool("boardctl", "--root", self.board.root, *words.split())
            self.assertEqual(result.returncode, 0, result.stderr)
        self.board.wait_for_backend()

    def test_build_has_the_stated_variable(self):
        variable = self.stated(r"`-D(\w+)=DIR` builds the program")
        self.assertIn(variable, read("cmake/platform.cmake"))

    def test_packages_contain_the_stated_files(self):
        self.stated(r"`cpack` makes (a tarball and a Debian package)")
        self.assertRegex(read("cmake/packaging.cmake"), r"CPACK_GENERATOR TGZ DEB|\"?TGZ;DEB")


if __name__ == "__main__":
    unittest.main()
