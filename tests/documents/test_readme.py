"""Checks README.md: runs its commands as printed, and compares its statements with the sources."""

import json
import os
import re
import subprocess
import unittest

from support.board import SCREEN, BoardDocumentTest, Client
from support.document import PROJECT, codes_in
from support.source import read


class Readme(BoardDocumentTest):
    name = "README.md"

    def shell(self, script):
        """Runs a script in a folder with the board's root in the default place. Returns its output."""
        result = subprocess.run(["bash", "-euc", script], cwd=self.board.folder, check=True,
                                capture_output=True, text=True)
        return result.stdout

    def test_the_two_commands_exist(self):
        commands = [line.split("#")[0].strip() for line in self.document.blocks()[0].splitlines()]
        self.assertEqual(commands, ["./serve", "./check"])
        for command in commands:
            self.assertTrue(os.access(PROJECT / command, os.X_OK))
        self.assertIn(self.stated(r"`\./serve (--\w+)` lists the options"),
                      read("serve"))
        for command in commands:
            self.assertIn("tools/install_packages", read(command))
        self.stated(r"(Both install what is missing from \[packages\.txt\])")
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

    def test_commands_without_a_web_server_answer_a_request(self):
        blocks = self.document.blocks("## Without a web server")
        login = blocks[1].replace(":8080", ":%d" % self.board.port)
        cookie = re.search(r"set-cookie: (session=[^;]+)", self.shell(login), re.IGNORECASE)[1]
        commands = blocks[0]
        self.assertIn("session=...", commands)
        output = self.shell(commands.replace("session=...", cookie))
        self.assertTrue(output.startswith("Status: 200 OK\n"), output)
        self.assertIn('<meta name="FRAME-ID" content="M-BACKUP_EFI_CONF-C-00">', output)

    def tool(self, name, *words):
        command = [self.board.path("/usr/local/bin/" + name), *words]
        return subprocess.run(command, check=False, capture_output=True, text=True)

    def test_tools_are_installed_where_stated(self):
        folder = self.stated(r"Both are installed under `([^`]+)` of the board's root and explain")
        for name in ("eficonf", "boardctl"):
            self.assertTrue(self.board.path(folder + "/" + name).exists())
            self.assertEqual(self.tool(name, "--help").returncode, 0)

    def test_manual_pages_are_installed_where_stated(self):
        folder = self.stated(r"manual pages and that of `\./serve` are in `([^`]+)` there")
        self.stated(r"`man -M var/board/%s (eficonf)`" % folder)
        for name in ("eficonf", "boardctl", "serve"):
            page = self.board.path("/%s/man1/%s.1" % (folder, name)).read_text(encoding="utf-8")
            self.assertIn(".SH SYNOPSIS", page)

    def test_logs_are_where_stated(self):
        log = self.stated(r"`(build/check\.log)` has everything")
        self.assertIn("begin_steps " + log, read("check"))
        log = self.stated(r"`(var/log/build\.log)` of the board's root")
        self.assertIn("$root/" + log, read("serve"))

    def test_eficonf_works_as_stated(self):
        client = Client(self.board, "admin")
        client.post(SCREEN, {"functionID": "105", "hidden_status": "BACKUP", "radio_button": "3"})
        file = self.board.path("/var/tmp/efi_backup" + client.identifier)
        show, compare, option = self.stated(
            r"`(eficonf show FILE)` and `(eficonf compare A B)` look at configuration files with "
            r"the same eyes as the pages \(`(--\w+)` for scripts\)")
        self.assertEqual(self.tool(*show.replace("FILE", str(file)).split()).returncode, 0)
        words = compare.replace("A B", "%s %s" % (file, file)).split()
        self.assertEqual(self.tool(*words).returncode, 0)
        self.assertIsInstance(json.loads(self.tool(*words, option).stdout), dict)
        self.assertEqual(self.tool(*words, self.stated(r"`(--\S+)` compares two backups")).returncode,
                         0)

    def test_boardctl_works_as_stated(self):
        self.stated(r"`(boardctl --root DIR)` makes a running back-end go wrong: refuse, be slow "
                    r"or silent, tear its answers, die and come back, switch partitions on and off")
        for words in ("refuse 1 2", "slow 1", "silent", "torn 1", "partition 3 on",
                      "partition 3 off", "reset", "die"):
            result = self.tool("boardctl", "--root", self.board.root, *words.split())
            self.assertEqual(result.returncode, 0, result.stderr)
        self.board.wait_for_backend()

    def presets(self, kind):
        return {each["name"]: each for each in json.loads(read("CMakePresets.json"))[kind]
                if not each.get("hidden")}

    def test_presets_match_those_of_cmake(self):
        listed = [name for row in self.table("preset", "builds") for name in codes_in(row[0])]
        # The presets with tests, because the commands above the table also run the tests.
        self.assertEqual(sorted(listed), sorted(self.presets("testPresets")))
        for name in listed:
            self.assertIn(name, self.presets("configurePresets"))
            self.assertIn(name, self.presets("buildPresets"))
            self.assertEqual(self.presets("testPresets")[name]["configurePreset"], name)

    def test_presets_build_what_is_stated(self):
        rows = {name: row[1] for row in self.table("preset", "builds") for name in codes_in(row[0])}
        presets = self.presets("configurePresets")
        variables = {name: presets[name].get("cacheVariables", {}) for name in rows}
        self.assertEqual([name for name in rows if "shared libraries" in rows[name]],
                         [name for name in rows if variables[name].get("STATIC_PROGRAM") == "OFF"])
        self.assertEqual([name for name in rows if "other processors" in rows[name]],
                         [name for name in rows if "toolchainFile" in presets[name]])

    def test_build_has_the_stated_variable(self):
        variable = self.stated(r"Build with `cmake -D(\w+)=DIR`")
        self.assertIn(variable, read("cmake/platform.cmake"))

    def test_packages_contain_the_stated_files(self):
        self.stated(r"`cpack` makes (a tarball and a Debian package) of them")
        self.assertRegex(read("cmake/packaging.cmake"), r"CPACK_GENERATOR TGZ DEB|\"?TGZ;DEB")


if __name__ == "__main__":
    unittest.main()
