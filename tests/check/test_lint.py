"""Tests of tools/lint with a faked linter: which sources it selects."""

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]

# Writes its last argument, the pattern of the sources, to "pattern", and prints the file "findings".
LINTER = """#!/bin/bash
echo "${@: -1}" >"$FAKES/pattern"
if [ -e "$FAKES/findings" ]; then
    cat "$FAKES/findings"
    exit 1
fi
"""


class Lint(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="lint-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.fakes = self.folder / "fakes"
        self.project = self.folder / "project"
        for folder in ("tools", "build/release", "pages", "data", "tests"):
            (self.project / folder).mkdir(parents=True)
        self.fakes.mkdir()
        shutil.copy(PROJECT / "tools/lint", self.project / "tools/lint")
        linter = self.fakes / "run-clang-tidy"
        linter.write_text(LINTER, encoding="utf-8")
        linter.chmod(0o755)
        self.write(".gitignore", "build\n")
        self.write("pages/old.cpp")

    def write(self, name, text="// first\n"):
        (self.project / name).write_text(text, encoding="utf-8")

    def environment(self):
        names = {"GIT_%s_%s" % (who, what): "x@example.org" for who in ("AUTHOR", "COMMITTER")
                 for what in ("NAME", "EMAIL")}
        return dict(os.environ, FAKES=str(self.fakes), GIT_CONFIG_GLOBAL="/dev/null",
                    GIT_CONFIG_SYSTEM="/dev/null", GIT_CEILING_DIRECTORIES=str(self.folder),
                    PATH="%s:%s" % (self.fakes, os.environ["PATH"]), **names)

    def git(self, *words):
        subprocess.run(["git", *words], cwd=self.project, check=True, stdout=subprocess.DEVNULL,
                       env=self.environment())

    def commit(self):
        self.git("add", "-A")
        self.git("commit", "-qm", "a change")

    def lint(self, *words):
        """Runs tools/lint. Returns its exit status, its output and the sources that it selected."""
        result = subprocess.run([self.project / "tools/lint", *words], check=False, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                env=self.environment())
        pattern = self.fakes / "pattern"
        files = []
        if pattern.exists():
            expression = re.compile(pattern.read_text(encoding="utf-8").strip())
            files = sorted(str(path.relative_to(self.project))
                           for path in self.project.rglob("*.cpp") if expression.search(str(path)))
        return result.returncode, result.stdout, files

    def start_branch(self):
        self.git("init", "-qb", "main")
        self.commit()
        self.git("checkout", "-qb", "branch")

    def test_lints_everything_except_tests(self):
        self.write("data/a.cpp")
        self.write("tests/a.cpp")
        self.assertEqual(self.lint(), (0, "", ["data/a.cpp", "pages/old.cpp"]))

    def test_lints_committed_and_uncommitted_changes_of_a_branch(self):
        self.start_branch()
        self.write("data/a.cpp")
        self.commit()
        self.write("tests/a.cpp")
        self.commit()
        self.write("pages/new.cpp")
        status, output, files = self.lint("--changed")
        self.assertEqual((status, files), (0, ["data/a.cpp", "pages/new.cpp"]))
        self.assertIn("Linted: data/a.cpp\n", output)
        self.assertNotIn("Left out", output)

    def test_lints_the_source_of_a_changed_header(self):
        self.start_branch()
        self.write("pages/old.h")
        self.write("data/alone.h")
        self.commit()
        self.assertEqual(self.lint("--changed")[2], ["pages/old.cpp"])

    def test_ignores_later_commits_on_main(self):
        self.start_branch()
        self.write("data/a.cpp")
        self.commit()
        self.git("checkout", "-q", "main")
        self.write("pages/old.cpp", "// second\n")
        self.commit()
        self.git("checkout", "-q", "branch")
        self.assertEqual(self.lint("--changed")[2], ["data/a.cpp"])

    def test_lints_the_last_commit_on_main(self):
        self.start_branch()
        self.git("checkout", "-q", "main")
        for name in ("data/a.cpp", "data/b.cpp"):
            self.write(name)
            self.commit()
        self.assertEqual(self.lint("--changed")[2], ["data/b.cpp"])

    def test_limits_the_sources_and_names_the_rest(self):
        self.start_branch()
        names = ["data/%d.cpp" % number for number in range(15)]
        for name in names:
            self.write(name)
        self.commit()
        for words, most in (((), 12), (("4",), 4)):
            _, output, files = self.lint("--changed", *words)
            self.assertEqual(len(files), most)
            left_out = re.findall("Left out: (.*)", output)
            self.assertEqual(sorted(files + left_out), sorted(names))

    def test_does_not_start_the_linter_without_changes(self):
        self.start_branch()
        self.write("README.md")
        self.commit()
        status, output, files = self.lint("--changed")
        self.assertEqual((status, files), (0, []))
        self.assertIn("no source was changed", output)

    def test_lints_nothing_without_git(self):
        status, output, files = self.lint("--changed")
        self.assertEqual((status, files), (0, []))
        self.assertIn("without git", output)

    def test_shows_each_finding_once(self):
        finding = "data/a.cpp:1: warning: no\n"
        (self.fakes / "findings").write_text(finding + "a line\n" + finding, encoding="utf-8")
        self.assertEqual(self.lint()[:2], (1, finding))

    def test_rejects_other_options(self):
        self.assertEqual(self.lint("--help")[0], 0)
        for words in (["--all"], ["a", "b"], ["--changed", "x", "y"]):
            self.assertEqual(self.lint(*words)[0], 2)
        self.assertFalse((self.fakes / "pattern").exists())


if __name__ == "__main__":
    unittest.main()
