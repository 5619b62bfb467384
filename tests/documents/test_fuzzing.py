"""Checks docs/reliability/fuzzing.md against the targets and the commands. Its figures were measured
once; checks that they agree with each other."""

import importlib.machinery
import importlib.util
import json
import re
import subprocess
import unittest

from support.board import BUILD, listed_tests
from support.document import PROJECT, DocumentTest, codes_in
from support.source import read

FUZZ = PROJECT / "tests/fuzz"


def growth():
    """Loads the script as a module, for its table of inputs."""
    loader = importlib.machinery.SourceFileLoader("growth", str(FUZZ / "growth"))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("growth", loader))
    loader.exec_module(module)
    return module


def number(text):
    return int(text.replace(",", ""))


class Fuzzing(DocumentTest):
    name = "docs/reliability/fuzzing.md"
    targets = sorted(path.stem for path in (FUZZ / "targets").glob("*.cpp"))

    def test_lists_every_target(self):
        rows = self.table("parser", "targets")
        self.assertEqual(sorted({name for row in rows for name in codes_in(row[1])}), self.targets)

    def test_each_target_has_seeds_and_is_a_test(self):
        seeds = self.stated(r"`([\w/]+)/TARGET` contains small inputs")
        replayed = self.stated(r"replayed as the tests `(\w+)\.TARGET`")
        tests = listed_tests()
        for target in self.targets:
            self.assertTrue(any((PROJECT / seeds / target).iterdir()), target)
            self.assertIn("%s.%s" % (replayed, target), tests)

    def test_regressions_belong_to_targets(self):
        folder = self.stated(r"An input that has failed is moved to `([\w/]+)/TARGET`")
        for path in (PROJECT / folder).iterdir():
            self.assertIn(path.name, self.targets)

    def test_runs_agree_with_each_other(self):
        figures = dict(self.table("figure", "value"))
        least = self.stated(r"targets with fewer than (\d+) million runs") * 10 ** 6
        few = next(value for figure, value in figures.items() if "with fewer than" in figure)
        runs = {name: number(count) for name, count in re.findall(r"`(\w+)` ([\d,]+)", few)}
        self.assertLessEqual(set(runs), set(self.targets))
        self.assertLess(max(runs.values()), least)
        # All other targets have had at least that many.
        self.assertGreaterEqual(number(figures["runs of all targets"]) - sum(runs.values()),
                                least * (len(self.targets) - len(runs)))
        self.assertEqual(figures["findings"], "0")

    def test_forms_have_the_stated_lengths(self):
        script = read("tests/fuzz/run")
        self.assertEqual(self.stated(r"`tests/fuzz/run short`: (\d+) runs of each target"),
                         int(re.search(r"short_runs=(\d+)", script)[1]))
        millions, hours = self.stated(r"aim of the long form is (\d+) million runs of each target, "
                                      r"or (an hour)")
        self.assertEqual(hours, "an hour")
        self.assertRegex(script, r"runs=%d seconds=3600" % (millions * 10 ** 6))

    def test_growth_has_the_stated_limit_and_inputs(self):
        module = growth()
        self.assertEqual(float(self.stated(r"more than (\d+\.\d+) times the work for twice")),
                         module.LIMIT)
        self.assertEqual(self.stated(r"(\d+) kinds of input, at least one for every target"),
                         len(module.KINDS))
        self.assertEqual(sorted({kind[0] for kind in module.KINDS}), self.targets)
        largest = self.stated(r"the largest step is (\d+\.\d+) \(settings of a configuration")
        self.assertLess(float(largest), module.LIMIT)
        self.assertIn(("payloadSettings", "settings"), [kind[:2] for kind in module.KINDS])

    def test_growth_takes_the_stated_folder(self):
        folder = self.stated(r"`tests/fuzz/growth (build/release/tests/fuzz)`")
        self.assertTrue((BUILD / folder.removeprefix("build/release/")).is_dir())
        self.assertEqual(subprocess.run([FUZZ / "growth"], check=False,
                                        stdout=subprocess.DEVNULL).returncode, 2)

    def test_percentages_match_their_counts(self):
        found = re.findall(r"(\d+) of (\d+), (\d+) %", self.document.words)
        self.assertEqual(len(found), 2)
        for reached, whole, percent in found:
            self.assertEqual(round(100 * int(reached) / int(whole)), int(percent))
        changes, useless, rest, caught = (row[1] for row in self.table("changes", "number"))
        caught, percent = re.fullmatch(r"(\d+), ([\d.]+) %", caught).groups()
        self.assertEqual(int(changes) - int(useless), int(rest))
        self.assertEqual("%.1f" % (100 * int(caught) / int(rest)), percent)

    def test_remaining_lines_name_existing_sources(self):
        names = {path.name for folder in ("platform", "board", "data", "pages")
                 for path in (PROJECT / folder).rglob("*.cpp")}
        for where, _, _ in self.table("where", "branches that are not reached", "why"):
            for name in codes_in(where):
                self.assertIn(name, names)

    def test_targets_are_built_as_stated(self):
        self.stated(r"(built by clang with its fuzzer, AddressSanitizer and UndefinedBehaviorSan)")
        text = read("CMakeLists.txt")
        self.assertIn("-fsanitize=fuzzer-no-link", text)
        self.assertIn("-fsanitize=address,undefined", text)
        presets = {each["name"]: each.get("cacheVariables", {})
                   for each in json.loads(read("CMakePresets.json"))["configurePresets"]}
        for name in ("asan", "fuzz"):
            for variable, value in (("CMAKE_CXX_COMPILER", "clang++"), ("SANITIZE", "ON"),
                                    ("FUZZ", "ON")):
                self.assertEqual(presets[name][variable], value)


if __name__ == "__main__":
    unittest.main()
