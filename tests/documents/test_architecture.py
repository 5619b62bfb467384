"""docs/architecture.md against the tree, the objects of the program and the tool that checks
skeletons."""

import os
import re
import subprocess
import tempfile
import unittest

from support.board import BUILD
from support.document import PROJECT, DocumentTest, codes_in
from support.source import read


class Architecture(DocumentTest):
    name = "docs/architecture.md"

    def folders(self):
        """What the tables of folders say of each."""
        return {codes_in(row[0])[0].rstrip("/"): row[1]
                for cells, rows in self.document.tables() if cells == ["folder", "contents"]
                for row in rows}

    def test_the_folders_of_the_program_are_listed(self):
        program, other = [[codes_in(row[0])[0] for row in rows]
                          for cells, rows in self.document.tables() if cells == ["folder", "contents"]]
        stated = re.search(r"The program is `([^`]+)`", read("docs/porting.md"))[1].split()
        self.assertEqual(sorted(program), sorted(stated))
        folders = {each.name for each in PROJECT.iterdir()
                   if each.is_dir() and not each.name.startswith(".")}
        listed = {each.split("/")[0] for each in program + other}
        self.assertEqual(folders - listed - {"bench", "cmake", "docs", "tests", "tools"},
                         folders & {"build", "var"})

    def test_the_parts_of_the_host_platform_are_listed(self):
        parts = codes_in(self.folders()["platform/host"])
        text = read("platform/host/CMakeLists.txt")
        self.assertEqual(parts, re.search(r"foreach\(part ([\w ]+)\)", text)[1].split())

    def test_the_platform_is_declarations_only(self):
        self.assertIn("declarations only", self.folders()["platform/include"])
        endings = {path.suffix for path in (PROJECT / "platform/include").rglob("*")
                   if path.is_file()}
        self.assertEqual(endings, {".h"})

    def test_the_dispatcher_is_where_it_is_stated(self):
        dispatcher = codes_in(self.folders()["main"])[0].removesuffix("()")
        self.assertIn("int %s() {" % dispatcher, read("main/EFIBackupRestoreMain.cpp"))

    def test_the_display_modes_are_those_of_the_dispatcher(self):
        modes = self.stated(r"may use the function \(`displayMode` (\d) or (\d)\)")
        self.assertIn("return allowed ? %d : %d;" % tuple(modes),
                      read("main/EFIBackupRestoreMain.cpp"))

    def test_each_page_is_one_source_and_has_the_stated_base(self):
        base = codes_in(self.folders()["pages"])[0]
        for path in (PROJECT / "pages").glob("*.cpp"):
            classes = re.findall(r"^class (\w+) : public (\w+)", path.with_suffix(".h").read_text(),
                                 re.MULTILINE)
            self.assertEqual(len(classes), 1)
            self.assertEqual(classes[0][0], path.stem)
            self.assertEqual(classes[0][1], "CommonDefaultPage" if path.stem == base else base)

    def test_the_program_carries_the_stated_operations_of_platform_classes(self):
        constructed, everything, but, destroyed, both = self.stated(
            r"the construction and destruction of `(\w+)`, everything of `(\w+)` but `(\w+)\(\)`, "
            r"the destruction of `(\w+)`, and the construction and destruction of `(\w+)`")
        symbols = subprocess.run(
            ["nm", "--demangle", "--defined-only", BUILD / "main/libefi_program.a",
             BUILD / "data/libefi_data.a"], check=True, capture_output=True,
            text=True).stdout
        symbols = symbols.replace("[abi:cxx11]", "")
        carried = {}
        for name in set(re.findall(r" [TW] VeskLib::(?:\w+::)*(\w+::~?\w+)\(", symbols)):
            owner, operation = name.split("::")
            carried.setdefault(owner, set()).add(operation)
        platform = {path.stem for path in (PROJECT / "platform/include").rglob("*.h")}
        # Declared by the program, its queries by the platform.
        platform.add(both)
        declared = read("platform/include/VeskLib/Gui/%s.h" % everything)
        operations = set(re.findall(r"^    [\w:&<>,\* ~]*?(~?\w+)\([^;]*\)[^;(]*;", declared,
                                    re.MULTILINE))
        found = {owner: names for owner, names in carried.items()
                 if owner in platform and self.is_out_of_line(owner, names)}
        self.assertEqual(set(found), {constructed, everything, destroyed, both})
        self.assertEqual(found[constructed], {constructed, "~" + constructed})
        self.assertEqual(found[destroyed], {"~" + destroyed})
        self.assertEqual(found[both] & {both, "~" + both}, {both, "~" + both})
        self.assertEqual(found[everything], operations - {but})

    def is_out_of_line(self, owner, names):
        """True for a class of which the program's sources define something themselves."""
        sources = "".join(path.read_text() for folder in ("main", "html", "pages", "data")
                          for path in (PROJECT / folder).glob("*.cpp"))
        return any("%s::%s(" % (owner, name) in sources for name in names)

    def test_the_folders_of_tests_are_there_and_built(self):
        parts = read("tests/CMakeLists.txt")
        for folders, _, _ in self.table("tests", "link the program against", "and check"):
            for folder in codes_in(folders):
                self.assertTrue((PROJECT / folder / "CMakeLists.txt").exists())
                self.assertRegex(parts, r"\b%s\b" % folder.removeprefix("tests/"))

    def check_skeleton(self, text):
        """Whether the build takes a skeleton."""
        with tempfile.NamedTemporaryFile("w", suffix=".txt", encoding="utf-8") as file:
            file.write(text)
            file.flush()
            catalogues = {**os.environ, "BOARD_ROOT": str(BUILD / "board/catalogue/root")}
            return subprocess.run([BUILD / "board/catalogue/check_texts", file.name], check=False,
                                  env=catalogues, capture_output=True).returncode == 0

    def marks(self):
        rows = self.table("mark", "prints")
        return [mark.replace("…", "x") for row in rows for mark in codes_in(row[0])]

    def test_the_build_takes_the_marks_that_are_listed(self):
        marks = self.marks()
        for mark in marks:
            self.assertTrue(self.check_skeleton(mark), mark)
        kinds = re.search(r"enum class Kind \{\s*PLAIN,\s*(.*?),?\s*\};",
                          read("platform/host/html/Skeleton.h"), re.DOTALL)[1].split(",")
        self.assertEqual(len(marks), len(kinds))

    def test_the_example_of_a_message_is_explained_by_its_number(self):
        row = next(row for row in self.table("mark", "prints") if "message" in row[0])
        self.assertEqual(re.search(r"(\d+)-", row[0])[1], re.search(r"message (\d+)", row[1])[1])

    def test_the_first_marks_take_the_stated_endings(self):
        count, first, second = self.stated(
            r"The first (\w+) take `(\|\w+)` before the closing braces to be safe inside a script "
            r"string, and `(\|\w+)` to be safe")
        self.assertEqual(count, "three")
        for number, mark in enumerate(self.marks()):
            for ending in (first, second):
                changed = mark.replace("}}", ending + "}}", 1)
                self.assertEqual(self.check_skeleton(changed), number < 3, changed)

    def test_a_malformed_mark_and_an_unknown_text_stop_the_build(self):
        self.stated(r"(A malformed mark and an unknown text stop the build)")
        for text in ("{{", "{{a b}}", "{{if a}}", "{{end}}", "{{text 8999}}", "{{message 1-2-3}}"):
            self.assertFalse(self.check_skeleton(text), text)
        self.stated(r"(An unknown name prints nothing)")
        self.assertTrue(self.check_skeleton("{{unknown_name}}"))
        self.assertIn("check_texts", read("board/catalogue/CMakeLists.txt"))


if __name__ == "__main__":
    unittest.main()
