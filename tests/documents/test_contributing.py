"""Compares CONTRIBUTING.md with the presets."""

import json
import unittest

from support.document import DocumentTest, codes_in
from support.source import read


class Contributing(DocumentTest):
    name = "CONTRIBUTING.md"

    def presets(self, kind):
        return {each["name"]: each for each in json.loads(read("CMakePresets.json"))[kind]
                if not each.get("hidden")}

    def test_the_presets_are_those_of_cmake(self):
        listed = [name for row in self.table("preset", "builds") for name in codes_in(row[0])]
        # Those whose tests can be run, as the commands above the table do.
        self.assertEqual(sorted(listed), sorted(self.presets("testPresets")))
        for name in listed:
            self.assertIn(name, self.presets("configurePresets"))
            self.assertIn(name, self.presets("buildPresets"))
            self.assertEqual(self.presets("testPresets")[name]["configurePreset"], name)

    def test_the_presets_build_what_is_stated(self):
        rows = {name: row[1] for row in self.table("preset", "builds") for name in codes_in(row[0])}
        presets = self.presets("configurePresets")
        variables = {name: presets[name].get("cacheVariables", {}) for name in rows}
        self.assertEqual([name for name in rows if "shared libraries" in rows[name]],
                         [name for name in rows if variables[name].get("STATIC_PROGRAM") == "OFF"])
        self.assertEqual([name for name in rows if "other processors" in rows[name]],
                         [name for name in rows if "toolchainFile" in presets[name]])


if __name__ == "__main__":
    unittest.main()
