"""docs/performance.md against bench/run. Its figures were measured once; what they say of each
other and of what they are to reach is checked."""

import re
import subprocess
import unittest

from support.document import PROJECT, DocumentTest, cells_of
from support.source import read


def number(text):
    return float(text.strip("*").replace(",", ""))


class Performance(DocumentTest):
    name = "docs/performance.md"

    def processes(self):
        """The figures of each program by their names."""
        header = ["program", "µs", "CPU µs", "peak KiB", "system calls", "instructions",
                  "KiB without symbols"]
        return {row[0].strip("*"): dict(zip(header[1:], row[1:])) for row in self.table(*header)}

    def wanted(self):
        """What each figure is to be: the number, what was measured, and whether it is a minimum."""
        for what, wanted, measured in self.table("figure", "wanted", "measured"):
            limit = re.fullmatch(r"at (most|least) ([\d.]+)", wanted)
            yield what, float(limit[2]), [float(each) for each in measured.split(", ")], limit[1]

    def test_the_command_has_the_stated_options(self):
        usage = self.document.blocks()[0].strip()
        text = subprocess.run([PROJECT / "bench/run", "--help"], check=True, capture_output=True,
                              text=True).stdout
        self.assertIn(usage, text)
        for option in re.findall(r"--\w+", usage):
            self.assertIn("  " + option, text)

    def test_preset_and_results_are_those_of_the_command(self):
        script = read("bench/run")
        preset = self.stated(r"builds the preset `(\w+)` \(the release build\)")
        self.assertIn('"--preset", "%s"' % preset, script)
        folder = self.stated(r"to `([^`]+)`, and ends with 1 when a ratio is not reached")
        self.assertIn('default=PROJECT / "%s"' % folder, script)
        presets = read("CMakePresets.json")
        self.assertRegex(presets, r'"name": "%s",\s*"displayName": "[^"]*",\s*"inherits": "release"'
                         % preset)

    def test_the_limits_are_those_of_the_command(self):
        limits = re.findall(r"(?s)\bwant\(.*?,\s+([\d.]+)(?:,\s*at_least=(True),?\s*)?\)\n",
                            read("bench/run"))
        ours = [(limit, kind == "least") for _, limit, _, kind in self.wanted()]
        theirs = [(float(limit), bool(least)) for limit, least in limits]
        # One row covers both sizes of the table of partitions.
        rows = theirs.index((3.0, False))
        del theirs[rows]
        self.assertEqual(ours, theirs)

    def test_what_was_measured_is_what_was_wanted(self):
        for what, limit, measured, kind in self.wanted():
            for value in measured:
                self.assertTrue(value <= limit if kind == "most" else value >= limit, what)

    def test_the_ratios_follow_from_the_tables(self):
        processes = self.processes()
        ours, empty = processes["our backup page"], processes["empty, C++, static"]
        measured = {what: values for what, _, values, _ in self.wanted()}

        def ratio(one, other, figure):
            return number(one[figure]) / number(other[figure])

        rows = {row[0]: row[1:] for row in self.growth()}
        counts, micros = rows["partitions"], rows["µs"]
        per_row = [(float(micros[last]) - float(micros[first]))
                   / (int(counts[last]) - int(counts[first])) for first, last in ((0, 3), (3, 5))]
        served = {row[0].strip("*"): [number(cell.split(";")[0]) for cell in row[1:]]
                  for row in self.table("program", "1 client", "4 clients", "16 clients")}
        expected = [
            [ratio(ours, empty, "µs")],
            [ratio(ours, processes["page, libcgicc"], "µs")],
            [served["our backup page"][1] / served["page, C++, static"][1]],
            [ratio(ours, empty, "peak KiB")],
            [ratio(processes["upload of 384 KiB"], processes["upload of 1 KiB"], "peak KiB")],
            [number(ours["system calls"])],
            per_row,
            [ratio(ours, empty, "KiB without symbols")],
        ]
        for (what, values), own in zip(measured.items(), expected):
            for value, computed in zip(values, own, strict=True):
                # The tables are rounded.
                self.assertAlmostEqual(value, computed, delta=0.02, msg=what)

    def growth(self):
        """The first two lines of the table of sizes."""
        lines = self.document.text.partition("## How it grows")[2].splitlines()
        rows = [cells_of(line) for line in lines if line.startswith("|")]
        return rows[2:4]

    def test_the_programs_are_those_that_are_measured(self):
        script = read("bench/run") + read("bench/support/programs.py")
        for name in self.processes():
            plain = re.sub(r"^our (.*)", r"\1", name)
            plain = re.sub(r"\d+ KiB", "%d KiB", plain)
            plain = plain.replace("empty, C", "empty C").replace("page, C++,", "page, C++,")
            self.assertIn('"%s"' % plain, script)

    def test_the_numbers_of_the_text_are_those_of_the_tables(self):
        processes = self.processes()
        ours, empty = processes["our backup page"], processes["empty, C++, static"]
        more = self.stated(r"is the kernel's: (\d+) system calls more")
        self.assertEqual(number(ours["system calls"]) - number(empty["system calls"]), more)
        instructions = number(self.stated(r"The ([\d,]+) instructions of the backup page"))
        self.assertAlmostEqual(number(ours["instructions"]), instructions, delta=500)
        parts = self.table("part", "instructions", "of which")
        self.assertEqual(sum(number(row[1]) for row in parts), instructions)
        counts, micros = self.growth()
        cost = (float(micros[-1]) - float(micros[1])) / (int(counts[-1]) - int(counts[1]))
        self.assertEqual(round(cost), self.stated(r"A further partition costs about (\d+) µs"))
        each = self.stated(r"An upload costs (\d+) µs for each KiB")
        cost = (number(processes["upload of 384 KiB"]["µs"])
                - number(processes["upload of 1 KiB"]["µs"])) / 383
        self.assertAlmostEqual(cost, each, delta=0.5)

    def test_every_plot_is_one_that_the_command_draws(self):
        report = read("bench/support/report.py")
        for picture in re.findall(r"pictures/performance-(\w+)\.svg", self.document.text):
            self.assertRegex(report, r"\b%s\b" % picture)


if __name__ == "__main__":
    unittest.main()
