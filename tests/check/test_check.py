"""./check with faked steps: what it runs, what it prints, and how it ends."""

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]

# Each command of a step appends its words to "ran" and does what the file named after them has,
# with "-" for every blank and slash.
FAKE = """#!/bin/bash
words="$(basename "$0") $*"
words=${words% }
echo "$words" >>"$FAKES/ran"
act=$FAKES/${words//[ \\/]/-}
[ -e "$act" ] || exit 0
. "$act"
"""

STEPS = """install_packages test
npm ci --no-audit --no-fund --loglevel=error
cmake --preset release
cmake --build --preset release
ctest --preset release
cmake --preset powerpc
cmake --build --preset powerpc
ctest --preset powerpc
cmake --preset arm32
cmake --build --preset arm32
ctest --preset arm32
cmake --preset arm64
cmake --build --preset arm64
ctest --preset arm64
cmake --preset asan
cmake --build --preset asan
ctest --preset asan
cmake --preset tsan
cmake --build --preset tsan
ctest --preset tsan
coverage
run short
""".splitlines()

PASSED = """Test project /board
      Start 1: unit.one
1/2 Test #1: unit.one .......   Passed    0.01 sec
      Start 2: unit.two
2/2 Test #2: unit.two .......   Passed    0.01 sec

100% tests passed, 0 tests failed out of 2
"""

FAILED = """Test project /board
      Start 1: unit.one
      Start 2: browser.two
1/3 Test #1: unit.one .......***Failed    0.01 sec
one.cpp:7: Failure
  Actual: 3
 Expected: 4
      Start 3: web.three
2/3 Test #2: browser.two ....   Passed    0.01 sec
3/3 Test #3: web.three ......***Timeout 300.01 sec
the server did not answer

33% tests passed, 2 tests failed out of 3

The following tests FAILED:
\t  1 - unit.one (Failed)
\t  3 - web.three (Timeout)
Errors while running CTest
"""

COVERAGE = """----
TOTAL                                       4000    3990    99%   main/a.cpp:1
----
TOTAL                                       2000    1940    97%   main/a.cpp:1
"""

FUZZING = """target                           runs  seconds  findings
boardDescription                 5000       12         0
controlOrder                     5000        9         0
"""


class Check(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="check-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.fakes = self.folder / "fakes"
        (self.folder / "tests/browser").mkdir(parents=True)
        for name in ("tools", "tests/fuzz", "fakes"):
            (self.folder / name).mkdir()
        for name in ("check", "tools/steps", "tools/failed_tests"):
            shutil.copy(PROJECT / name, self.folder / name)
        for name in ("fakes/cmake", "fakes/ctest", "fakes/npm", "tools/install_packages",
                     "tools/coverage", "tests/fuzz/run"):
            path = self.folder / name
            path.write_text(FAKE, encoding="utf-8")
            path.chmod(0o755)
        for name in ("release", "powerpc", "arm32", "arm64", "asan", "tsan"):
            self.fake("ctest --preset " + name, PASSED)
        self.fake("coverage", COVERAGE)
        self.fake("run short", FUZZING)

    def fake(self, command, output, status=0):
        path = self.fakes / re.sub("[ /]", "-", command)
        path.write_text("cat <<'END_OF_OUTPUT'\n%sEND_OF_OUTPUT\nexit %d\n" % (output, status),
                        encoding="utf-8")

    def run_check(self, *words):
        environment = dict(os.environ, FAKES=str(self.fakes))
        environment["PATH"] = "%s:%s" % (self.fakes, environment["PATH"])
        result = subprocess.run([self.folder / "check", *words], check=False, text=True,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, env=environment)
        return result.returncode, result.stdout

    def ran(self):
        return (self.fakes / "ran").read_text(encoding="utf-8").splitlines()

    def log(self):
        return (self.folder / "build/check.log").read_text(encoding="utf-8")

    def test_runs_every_step_in_order(self):
        status, output = self.run_check()
        self.assertEqual((status, self.ran()), (0, STEPS), output)

    def test_prints_one_line_for_each_step(self):
        _, output = self.run_check()
        lines = output.splitlines()
        self.assertEqual(lines[0], "The whole output is written to build/check.log.")
        names = ["Installing packages", "Installing the browser tests' libraries"]
        for preset in ("release", "powerpc", "arm32", "arm64", "asan", "tsan"):
            names += ["Building " + preset, "Testing " + preset]
        names += ["Measuring the coverage", "Fuzzing"]
        self.assertEqual([line.split(" ... ")[0] for line in lines[1:len(names) + 1]], names)
        for line in lines[1:len(names) + 1]:
            self.assertRegex(line, r" \.\.\. done \(\d+ s")
        self.assertRegex(output, r"Testing arm64 \.\.\. done \(\d+ s, 2 passed, 0 failed\)\n")
        self.assertRegex(output, r"the coverage \.\.\. done \(\d+ s, covered: 99% 97%\)\n")
        self.assertRegex(output, r"Fuzzing \.\.\. done \(\d+ s, 2 targets, 0 findings\)\n")
        self.assertEqual(lines[-1], "12 passed, 0 failed")
        self.assertLess(len(lines), 25)

    def test_writes_the_whole_output_to_the_log(self):
        self.fake("cmake --build --preset asan", "compiled a file\n")
        _, output = self.run_check()
        for text in (PASSED, COVERAGE, FUZZING, "compiled a file\n"):
            self.assertIn(text, self.log())
        self.assertNotIn("compiled a file", output)
        self.assertNotIn("unit.one", output)

    def test_begins_the_log_anew(self):
        self.run_check()
        size = len(self.log())
        self.run_check()
        self.assertEqual(len(self.log()), size)

    def test_shows_why_tests_failed(self):
        self.fake("ctest --preset release", FAILED, 8)
        status, output = self.run_check()
        self.assertEqual(status, 1)
        self.assertEqual(self.ran(), STEPS)
        self.assertRegex(output, r"Testing release \.\.\. FAILED \(\d+ s, 1 passed, 2 failed\)\n"
                                 r"    unit\.one\n    web\.three\nBuilding powerpc")
        _, end = output.split("== Testing release failed with exit status 8\n")
        self.assertIn("-- unit.one\n", end)
        self.assertIn("one.cpp:7: Failure\n  Actual: 3\n Expected: 4\n", end)
        self.assertIn("***Timeout 300.01 sec\nthe server did not answer\n", end)
        self.assertNotIn("browser.two", output)
        self.assertTrue(output.endswith("Failed: Testing release\n11 passed, 2 failed\n"), output)

    def test_shows_the_failures_of_every_build(self):
        self.fake("ctest --preset arm32", FAILED.replace("one.cpp:7", "arm.cpp:1"), 8)
        self.fake("ctest --preset tsan", FAILED.replace("one.cpp:7", "race.cpp:1"), 8)
        status, output = self.run_check()
        self.assertEqual(status, 1)
        self.assertLess(output.index("arm.cpp:1: Failure"), output.index("race.cpp:1: Failure"))
        self.assertTrue(output.endswith("10 passed, 4 failed\n"), output)

    def test_shows_why_a_long_output_means_failure(self):
        early = "not ok 2 - asks about a file\n  error: 'expected a question'\n"
        output_of_test = early + "".join("ok %d\n" % number for number in range(3, 3000))
        self.fake("ctest --preset release",
                  FAILED.replace("one.cpp:7: Failure\n", output_of_test), 8)
        _, output = self.run_check()
        self.assertIn(early, output)
        self.assertIn("ok 2999\n", output)
        self.assertRegex(output, r"\[29\d\d lines are left out\]")
        self.assertLess(len(output.splitlines()), 150)
        self.assertIn("ok 1500\n", self.log())

    def test_ends_when_a_build_fails(self):
        self.fake("ctest --preset release", FAILED, 8)
        lines = ["line %d of the compiler" % number for number in range(200)]
        self.fake("cmake --build --preset powerpc", "\n".join(lines) + "\n", 3)
        status, output = self.run_check()
        self.assertEqual(status, 3)
        self.assertEqual(self.ran(), STEPS[:STEPS.index("cmake --build --preset powerpc") + 1])
        self.assertIn("== Building powerpc failed with exit status 3\n", output)
        self.assertIn("line 199 of the compiler\n", output)
        self.assertNotIn("line 100 of the compiler\n", output)
        self.assertIn("one.cpp:7: Failure\n", output)
        self.assertTrue(output.endswith("1 passed, 2 failed\n"), output)

    def test_does_not_build_what_is_not_configured(self):
        self.fake("cmake --preset tsan", "no such compiler\n", 1)
        status, _ = self.run_check()
        self.assertEqual(status, 1)
        self.assertEqual(self.ran()[-1], "cmake --preset tsan")

    def test_shows_why_the_coverage_or_the_fuzzing_failed(self):
        self.fake("coverage", COVERAGE + "failed minimum line coverage\n", 1)
        self.fake("run short", FUZZING.replace("9         0", "9         1") + "crash\n", 1)
        status, output = self.run_check()
        self.assertEqual(status, 1)
        self.assertIn("failed minimum line coverage\n", output)
        self.assertRegex(output, r"Fuzzing \.\.\. FAILED \(\d+ s, 2 targets, 1 findings\)\n")
        self.assertIn("crash\n", output)
        self.assertTrue(output.endswith(
            "Failed: Measuring the coverage\nFailed: Fuzzing\n12 passed, 0 failed\n"), output)

    def test_a_ctest_that_runs_nothing_is_a_failure(self):
        self.fake("ctest --preset asan", "No tests were found!!!\n", 8)
        status, output = self.run_check()
        self.assertEqual(status, 1)
        self.assertIn("No tests were found!!!\n", output)

    def test_counts_skipped_tests(self):
        skipped = PASSED.replace("Test #2: unit.two .......   Passed",
                                 "Test #2: unit.two .......***Skipped")
        skipped += "\nThe following tests did not run:\n\t  2 - unit.two (Skipped)\n"
        self.fake("ctest --preset release", skipped)
        _, output = self.run_check()
        self.assertIn(", 2 passed, 0 failed (1 of those passed were skipped))\n", output)
        self.fake("ctest --preset arm32", FAILED + skipped, 8)
        _, output = self.run_check()
        self.assertNotIn("unit.two", output)

    def test_takes_no_options(self):
        status, output = self.run_check("--help")
        self.assertEqual(status, 0)
        self.assertIn("Usage: ./check\n", output)
        self.assertIn("build/check.log", output)
        self.assertNotIn("set -e", output)
        self.assertEqual(self.run_check("--quick")[0], 2)
        self.assertFalse((self.fakes / "ran").exists())


if __name__ == "__main__":
    unittest.main()
