"""Tests of ./check with faked steps: what it runs and prints, and its exit status."""

import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]

# A fake command. Appends its command line to the file "ran"; if there is a file named like the
# command line, with "-" for every space and slash, runs that. Leaves out the number of parallel tests, which depends on the machine.
FAKE = """#!/bin/bash
words="$(basename "$0") $*"
words=$(sed 's/ --parallel [0-9]*//' <<<"${words% }")
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
cmake --preset asan
cmake --build --preset asan
ctest --preset asan
coverage --counted
run short
cmake --preset tsan
cmake --build --preset tsan
ctest --preset tsan
cmake --preset powerpc
cmake --build --preset powerpc
ctest --preset powerpc
cmake --preset arm32
cmake --build --preset arm32
ctest --preset arm32
cmake --preset arm64
cmake --build --preset arm64
ctest --preset arm64
lint --changed
""".splitlines()

QUICK_STEPS = STEPS[:4] + ["ctest --preset release --label-regex ^quick$"]

PASSED = """Test project /board
      Start 1: unit
1/2 Test #1: unit ...........   Passed    0.01 sec
      Start 2: format
2/2 Test #2: format .........   Passed    0.01 sec

100% tests passed, 0 tests failed out of 2
"""

FAILED = """Test project /board
      Start 1: unit.1
      Start 2: browser.two
1/4 Test #1: unit.1 .........***Failed    0.01 sec
[----------] 4 tests from OneTest
[ RUN      ] OneTest.passes
whatever it prints
[       OK ] OneTest.passes (0 ms)
[ RUN      ] OneTest.fails
one.cpp:7: Failure
  Actual: 3
 Expected: 4
[  FAILED  ] OneTest.fails (0 ms)
[ RUN      ] OneTest.isSkipped
[  SKIPPED ] OneTest.isSkipped (0 ms)
[ RUN      ] Every/OneTest.endsTheProcess/1
a signal

      Start 3: web.three
2/4 Test #2: browser.two ....   Passed    0.01 sec
3/4 Test #3: web.three ......***Timeout 300.01 sec
the server did not answer

      Start 4: attacks.four
4/4 Test #4: attacks.four ...***Failed    0.01 sec
Ran 5 tests in 0.1s

25% tests passed, 3 tests failed out of 4

The following tests FAILED:
\t  1 - unit.1 (Failed)
\t  3 - web.three (Timeout)
\t  4 - attacks.four (Failed)
Errors while running CTest
"""


def log_of_ctest(*tests):
    """Returns a log as ctest writes it. Each test is given as (output, result)."""
    blocks = ["%d/%d Testing: a.b\n%d/%d Test: a.b\nCommand: \"x\"\nOutput:\n%s\n%s<end of output>\n"
              "Test time =   0.01 sec\n%s\nTest %s\n\"a.b\" time elapsed: 00:00:00\n%s\n\n"
              % (number, len(tests), number, len(tests), "-" * 58, output, "-" * 58, result, "-" * 58)
              for number, (output, result) in enumerate(tests, 1)]
    return "Start testing\n%s\n%sEnd testing\n" % ("-" * 58, "".join(blocks))


GOOGLETEST = """Running main() from gtest_main.cc
[==========] Running 3 tests from 1 test suite.
[ RUN      ] OneTest.a
[       OK ] OneTest.a (0 ms)
[ RUN      ] OneTest.b
[       OK ] OneTest.b (0 ms)
[ RUN      ] OneTest.c
[  SKIPPED ] OneTest.c (0 ms)
[==========] 3 tests from 1 test suite ran. (0 ms total)
[  PASSED  ] 2 tests.
[  SKIPPED ] 1 test, listed below:
[  SKIPPED ] OneTest.c
"""

# GoogleTest: 2 passed, none failed, 1 skipped. A script: 1 passed.
PASSED_LOG = log_of_ctest((GOOGLETEST, "Passed."), ("formatted", "Passed."))

# Passed, failed and skipped tests: 1, 2, 1 of GoogleTest, the last of which ended the process; 2, 1, 0
# of node; 0, 1, 0 of a script; 2, 2, 1 of Python.
FAILED_LOG = log_of_ctest(
    ("""[ RUN      ] OneTest.passes
[       OK ] OneTest.passes (0 ms)
[ RUN      ] OneTest.fails
[  FAILED  ] OneTest.fails, where GetParam() = 3 (0 ms)
[ RUN      ] OneTest.isSkipped
[  SKIPPED ] OneTest.isSkipped (0 ms)
[ RUN      ] Every/OneTest.endsTheProcess/1
""", "Failed."),
    ("not ok 1 - one\n# tests 3\n# suites 1\n# pass 2\n# fail 1\n# cancelled 0\n# skipped 0\n",
     "Fail Reason:\nsomething"),
    ("the server did not answer\n", "Failed."),
    ("FAIL: one\nRan 5 tests in 0.1s\n\nFAILED (failures=1, errors=1, skipped=1)\n", "Failed."))

COVERAGE = """program lines branches
TOTAL 902 of 913 225 of 228
Covered: 98.8 % of the lines of the program
Covered: 97.0 % of the branches of the program
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
        for name in ("check", "tools/steps", "tools/failed_tests", "tools/count_tests"):
            shutil.copy(PROJECT / name, self.folder / name)
        for name in ("fakes/cmake", "fakes/ctest", "fakes/npm", "tools/install_packages",
                     "tools/coverage", "tools/lint", "tests/fuzz/run"):
            path = self.folder / name
            path.write_text(FAKE, encoding="utf-8")
            path.chmod(0o755)
        for name in ("release", "powerpc", "arm32", "arm64", "asan", "tsan"):
            self.fake_tests(name, PASSED, PASSED_LOG)
        self.fake("coverage --counted", COVERAGE)
        self.fake("run short", FUZZING)

    def fake(self, command, output, status=0):
        path = self.fakes / re.sub("[ /]", "-", command)
        path.write_text("cat <<'END_OF_OUTPUT'\n%sEND_OF_OUTPUT\nexit %d\n" % (output, status),
                        encoding="utf-8")

    def fake_tests(self, preset, output, log, status=0, options=""):
        """Makes ctest print `output`, and writes the log of its tests."""
        self.fake("ctest --preset " + preset + options, output, status)
        folder = self.folder / "build" / preset / "Testing/Temporary"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "LastTest.log").write_text(log, encoding="utf-8")

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
        for preset in ("release", "asan", "tsan", "powerpc", "arm32", "arm64"):
            names += ["Building " + preset, "Testing " + preset]
            if preset == "asan":
                names += ["Measuring the coverage", "Fuzzing"]
        names.append("Linting")
        self.assertEqual([line.split(" ... ")[0] for line in lines[1:len(names) + 1]], names)
        for line in lines[1:len(names) + 1]:
            self.assertRegex(line, r" \.\.\. done \(\d+ s")
        self.assertRegex(output,
                         r"Testing arm64 \.\.\. done \(\d+ s, 3 passed, 0 failed, 1 skipped\)\n")
        self.assertRegex(output, r"the coverage \.\.\. done \(\d+ s, covered: 98\.8% 97\.0%\)\n")
        self.assertRegex(output, r"Fuzzing \.\.\. done \(\d+ s, 2 targets, 0 findings\)\n")
        self.assertEqual(lines[-1], "18 passed, 0 failed, 6 skipped")
        self.assertLess(len(lines), 25)

    def test_quick_names_the_steps_left_out(self):
        self.fake_tests("release", PASSED, PASSED_LOG, options=" --label-regex ^quick$")
        status, output = self.run_check("quick")
        self.assertEqual((status, self.ran()), (0, QUICK_STEPS), output)
        self.assertIn("\nLeft out: the other tests, the other builds, ", output)
        self.assertTrue(output.endswith("\n3 passed, 0 failed, 1 skipped\n"), output)

    def test_quick_fails_if_a_test_fails(self):
        self.fake_tests("release", FAILED, FAILED_LOG, 8, " --label-regex ^quick$")
        status, output = self.run_check("quick")
        self.assertEqual(status, 1)
        self.assertIn("-- unit.1: OneTest.fails\n", output)

    def test_removes_profiles_of_earlier_runs(self):
        profiles = self.folder / "build/asan/profiles/unit"
        profiles.mkdir(parents=True)
        self.run_check()
        self.assertFalse(profiles.exists())

    def test_writes_the_whole_output_to_the_log(self):
        self.fake("cmake --build --preset asan", "compiled a file\n")
        _, output = self.run_check()
        for text in (PASSED, COVERAGE, FUZZING, "compiled a file\n"):
            self.assertIn(text, self.log())
        self.assertNotIn("compiled a file", output)
        self.assertNotIn("unit.one", output)

    def test_truncates_the_log(self):
        self.run_check()
        size = len(self.log())
        self.run_check()
        self.assertEqual(len(self.log()), size)

    def test_shows_why_tests_failed(self):
        self.fake_tests("release", FAILED, FAILED_LOG, 8)
        status, output = self.run_check()
        self.assertEqual(status, 1)
        self.assertEqual(self.ran(), STEPS)
        self.assertRegex(output,
                         r"Testing release \.\.\. FAILED \(\d+ s, 5 passed, 6 failed, 2 skipped\)\n"
                         r"    unit\.1: OneTest\.fails\n"
                         r"    unit\.1: Every/OneTest\.endsTheProcess/1\n"
                         r"    web\.three\n    attacks\.four\nBuilding asan")
        _, end = output.split("== Testing release failed with exit status 8\n")
        self.assertIn("-- unit.1: OneTest.fails\n-- unit.1: Every/OneTest.endsTheProcess/1\n", end)
        self.assertIn("one.cpp:7: Failure\n  Actual: 3\n Expected: 4\n", end)
        self.assertIn("[ RUN      ] Every/OneTest.endsTheProcess/1\na signal\n", end)
        self.assertIn("***Timeout 300.01 sec\nthe server did not answer\n", end)
        for text in ("browser.two", "OneTest.passes", "whatever it prints", "OneTest.isSkipped"):
            self.assertNotIn(text, output)
        self.assertTrue(output.endswith(
            "Failed: Testing release\n20 passed, 6 failed, 7 skipped\n"), output)

    def test_shows_failures_of_every_build(self):
        self.fake_tests("arm32", FAILED.replace("one.cpp:7", "arm.cpp:1"), FAILED_LOG, 8)
        self.fake_tests("tsan", FAILED.replace("one.cpp:7", "race.cpp:1"), FAILED_LOG, 8)
        status, output = self.run_check()
        self.assertEqual(status, 1)
        self.assertLess(output.index("race.cpp:1: Failure"), output.index("arm.cpp:1: Failure"))
        self.assertTrue(output.endswith("22 passed, 12 failed, 8 skipped\n"), output)

    def test_shows_the_failure_in_a_long_output(self):
        early = "not ok 2 - asks about a file\n  error: 'expected a question'\n"
        output_of_test = early + "".join("ok %d\n" % number for number in range(3, 3000))
        self.fake_tests("release", FAILED.replace("the server did not answer\n", output_of_test),
                        FAILED_LOG, 8)
        _, output = self.run_check()
        self.assertIn(early, output)
        self.assertIn("ok 2999\n", output)
        self.assertRegex(output, r"\[29\d\d lines are left out\]")
        self.assertLess(len(output.splitlines()), 160)
        self.assertIn("ok 1500\n", self.log())

    def test_stops_when_a_build_fails(self):
        self.fake_tests("release", FAILED, FAILED_LOG, 8)
        lines = ["line %d of the compiler" % number for number in range(200)]
        self.fake("cmake --build --preset asan", "\n".join(lines) + "\n", 3)
        status, output = self.run_check()
        self.assertEqual(status, 3)
        self.assertEqual(self.ran(), STEPS[:STEPS.index("cmake --build --preset asan") + 1])
        self.assertIn("== Building asan failed with exit status 3\n", output)
        self.assertIn("line 199 of the compiler\n", output)
        self.assertNotIn("line 100 of the compiler\n", output)
        self.assertIn("one.cpp:7: Failure\n", output)
        self.assertTrue(output.endswith("5 passed, 6 failed, 2 skipped\n"), output)

    def test_does_not_build_after_a_failed_configuration(self):
        self.fake("cmake --preset tsan", "no such compiler\n", 1)
        status, _ = self.run_check()
        self.assertEqual(status, 1)
        self.assertEqual(self.ran()[-1], "cmake --preset tsan")

    def test_shows_why_coverage_or_fuzzing_failed(self):
        self.fake("coverage --counted", COVERAGE + "That is less than 98 %.\n", 1)
        self.fake("run short", FUZZING.replace("9         0", "9         1") + "crash\n", 1)
        status, output = self.run_check()
        self.assertEqual(status, 1)
        self.assertIn("That is less than 98 %.\n", output)
        self.assertRegex(output, r"Fuzzing \.\.\. FAILED \(\d+ s, 2 targets, 1 findings\)\n")
        self.assertIn("crash\n", output)
        self.assertTrue(output.endswith(
            "Failed: Measuring the coverage\nFailed: Fuzzing\n18 passed, 0 failed, 6 skipped\n"), output)

    def test_shows_findings_of_the_linter(self):
        self.fake("lint --changed", "a.cpp:1: warning: no\n", 1)
        status, output = self.run_check()
        self.assertEqual(status, 1)
        self.assertIn("a.cpp:1: warning: no\n", output)

    def test_fails_if_ctest_runs_no_tests(self):
        self.fake("ctest --preset asan", "No tests were found!!!\n", 8)
        status, output = self.run_check()
        self.assertEqual(status, 1)
        self.assertIn("No tests were found!!!\n", output)

    def test_fails_without_a_log_of_the_tests(self):
        shutil.rmtree(self.folder / "build/tsan")
        status, output = self.run_check()
        self.assertEqual(status, 1)
        self.assertIn("count_tests: there is no build/tsan/", output)

    def test_counts_brief_googletest_output(self):
        brief = "[==========] 12 tests from 2 test suites ran. (1 ms total)\n[  PASSED  ] 12 tests.\n"
        self.fake_tests("arm64", PASSED, log_of_ctest((brief, "Passed.")))
        _, output = self.run_check()
        self.assertRegex(output, r"Testing arm64 \.\.\. done \(\d+ s, 12 passed, 0 failed\)\n")

    def test_rejects_other_arguments(self):
        status, output = self.run_check("--help")
        self.assertEqual(status, 0)
        self.assertIn("Usage: ./check [quick]\n", output)
        self.assertIn("build/check.log", output)
        self.assertNotIn("set -e", output)
        for words in (["--quick"], ["all"], ["quick", "quick"], [""]):
            self.assertEqual(self.run_check(*words)[0], 2)
        self.assertFalse((self.fakes / "ran").exists())


if __name__ == "__main__":
    unittest.main()
