"""Checks docs/performance.md against bench/run and the recorded costs. The times were measured once;
checks the statements about them against the document's own tables."""

import json
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
        """Returns the figures of each program by name."""
        header = ["program", "µs", "CPU µs", "peak KiB", "system calls", "instructions"]
        return {row[0].strip("*"): dict(zip(header[1:], row[1:])) for row in self.table(*header)}

    def bounds(self):
        """Yields for each bound: the figure, the limit, whether it is a minimum, the measured values,
        and whether it was reached according to the document."""
        for what, wanted, measured, reached in self.table("figure", "wanted", "measured", "reached"):
            limit = re.fullmatch(r"at (most|least) ([\d.]+)", wanted)
            values = [float(each) for each in measured.split(", ")]
            yield what, float(limit[2]), limit[1] == "least", values, reached

    def growth(self):
        """Returns the first two rows of the table of sizes."""
        lines = self.document.text.partition("## How it grows")[2].splitlines()
        rows = [cells_of(line) for line in lines if line.startswith("|")]
        return rows[2:4]

    def test_costs_match_the_recorded_ones(self):
        costs = json.loads(read("tests/costs/costs.json"))
        recorded = [[name, f"{each['instructions']:,}", str(each["system calls"])]
                    for name, each in costs.items()]
        self.assertEqual(self.table("request", "instructions", "system calls"), recorded)
        tolerance = self.stated(r"fails if a request takes (\d+) % more instructions")
        self.assertIn("TOLERANCE = 0.%02d\n" % tolerance, read("tests/costs/test_counts.py"))

    def test_command_has_the_stated_options(self):
        usage = self.document.blocks()[0].strip()
        text = subprocess.run([PROJECT / "bench/run", "--help"], check=True, capture_output=True,
                              text=True).stdout
        self.assertIn(usage, text)
        for option in re.findall(r"--\w+", usage):
            self.assertIn("  " + option, text)

    def test_preset_and_results_match_the_command(self):
        script = read("bench/run")
        preset = self.stated(r"builds the preset `(\w+)` \(the release build\)")
        self.assertIn('"--preset", "%s"' % preset, script)
        folder = self.stated(r"JSON and plots to `([^`]+)`")
        self.assertIn('default=PROJECT / "%s"' % folder, script)
        presets = read("CMakePresets.json")
        self.assertRegex(presets, r'"name": "%s",\s*"displayName": "[^"]*",\s*"inherits": "release"'
                         % preset)

    def test_bounds_match_the_command(self):
        found = re.findall(r"(?s)\bwant\(.*?,\s+([\d.]+)(?:,\s*at_least=(True),?\s*)?\)\n",
                           read("bench/run"))
        theirs = [(float(limit), bool(least)) for limit, least in found]
        # The document has one row for both ranges of partitions.
        del theirs[theirs.index((3.0, False))]
        self.assertEqual([(limit, least) for _, limit, least, _, _ in self.bounds()], theirs)

    def test_bounds_are_reached_where_stated(self):
        for what, limit, least, measured, reached in self.bounds():
            meets = all(value >= limit if least else value <= limit for value in measured)
            self.assertEqual(reached, "yes" if meets else "no", what)

    def test_ratios_match_the_tables(self):
        processes = self.processes()
        ours, floor = processes["our backup page"], processes["floor"]
        measured = {what: values for what, _, _, values, _ in self.bounds()}

        def ratio(one, other, figure):
            return number(one[figure]) / number(other[figure])

        counts, micros = ([float(each) for each in row[1:]] for row in self.growth())
        per_row = [(micros[last] - micros[first]) / (counts[last] - counts[first])
                   for first, last in ((0, 3), (3, 5))]
        served = {row[0].strip("*"): [number(cell.split(";")[0]) for cell in row[1:]]
                  for row in self.table("program", "1 client", "4 clients", "16 clients")}
        expected = [
            [ratio(ours, floor, "µs")],
            [ratio(ours, processes["page, libcgicc"], "µs")],
            [served["our backup page"][1] / served["floor"][1]],
            [ratio(ours, processes["empty, C++, static"], "peak KiB")],
            [ratio(processes["upload of 384 KiB"], processes["upload of 1 KiB"], "peak KiB")],
            [number(ours["system calls"])],
            per_row,
        ]
        for (what, values), own in zip(measured.items(), expected):
            for value, computed in zip(values, own, strict=True):
                # The tables are rounded.
                self.assertAlmostEqual(value, computed, delta=0.02, msg=what)

    def test_programs_match_those_measured(self):
        script = read("bench/run") + read("bench/support/programs.py")
        for name in self.processes():
            plain = re.sub(r"^our (.*)", r"\1", name)
            plain = re.sub(r"\d+ KiB", "%d KiB", plain)
            self.assertIn('"%s"' % plain.replace("empty, C", "empty C"), script)

    def test_derived_figures_match_the_tables(self):
        processes = self.processes()
        total = number(self.stated(r"The ([\d,]+) instructions of the backup page"))
        self.assertAlmostEqual(number(processes["our backup page"]["instructions"]), total, delta=1000)
        self.assertEqual(sum(number(row[1]) for row in self.table("part", "instructions")), total)
        counts, micros = ([float(each) for each in row[1:]] for row in self.growth())
        cost = (micros[-1] - micros[1]) / (counts[-1] - counts[1])
        each = {what: int(value) for what, value in self.table("each further", "µs")}
        self.assertEqual(round(cost), each["partition"])
        lines = self.document.text.partition("| sessions on the board |")[2].splitlines()
        sessions = [float(cell) for cell in cells_of("|" + lines[0]) if cell]
        times = [float(cell) for cell in cells_of(lines[1])[1:] if cell]
        cost = (times[-1] - times[0]) / (sessions[-1] - sessions[0])
        self.assertEqual(round(cost), each["session"])
        cost = (number(processes["upload of 384 KiB"]["µs"])
                - number(processes["upload of 1 KiB"]["µs"])) / 383
        self.assertAlmostEqual(cost, each["KiB of an upload"], delta=0.5)

    def test_command_draws_every_plot(self):
        report = read("bench/support/report.py")
        for picture in re.findall(r"pictures/performance-(\w+)\.svg", self.document.text):
            self.assertRegex(report, r"\b%s\b" % picture)


if __name__ == "__main__":
    unittest.main()
