"""Checks docs/how-to.md: runs the commands of the section without a web server as printed."""

import re
import subprocess
import unittest

from support.board import BoardDocumentTest


class HowTo(BoardDocumentTest):
    name = "docs/how-to.md"

    def shell(self, script):
        """Runs a script in a folder with the board's root in the default place. Returns its output."""
        result = subprocess.run(["bash", "-euc", script], cwd=self.board.folder, check=True,
                                capture_output=True, text=True)
        return result.stdout

    def test_commands_without_a_web_server_answer_a_request(self):
        blocks = self.document.blocks("## Without a web server")
        login = blocks[1].replace(":8080", ":%d" % self.board.port)
        cookie = re.search(r"set-cookie: (session=[^;]+)", self.shell(login), re.IGNORECASE)[1]
        commands = blocks[0]
        self.assertIn("session=...", commands)
        output = self.shell(commands.replace("session=...", cookie))
        self.assertTrue(output.startswith("Status: 200 OK\n"), output)
        self.assertIn('<meta name="FRAME-ID" content="M-BACKUP_EFI_CONF-C-00">', output)


if __name__ == "__main__":
    unittest.main()
