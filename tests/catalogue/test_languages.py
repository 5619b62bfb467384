"""A catalogue is all that a language needs: one more file, and the platform and the web server's error
pages speak it. A file without its tag, its name or a text of an error page stops the build.
"""

import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
CATALOGUES = PROJECT / "board/catalogue"

# What follows from the catalogues, without the rest of the build.
BUILD = """
cmake_minimum_required(VERSION 3.25)
project(languages CXX)
set(CMAKE_CXX_STANDARD 20)
set(CATALOGUE_SOURCES %(catalogues)s)
include(%(project)s/cmake/languages.cmake)
add_subdirectory(%(project)s/board/web/errors errors)
set(platform %(project)s/platform)
configure_file(${platform}/host/text/languages.cpp.in languages.cpp @ONLY)
add_executable(speak speak.cpp ${CMAKE_CURRENT_BINARY_DIR}/languages.cpp
    ${platform}/host/text/Catalogue.cpp ${platform}/host/base/Environment.cpp
    ${platform}/host/base/cookies.cpp ${platform}/host/base/getCGIPath.cpp)
target_include_directories(speak PRIVATE %(project)s ${platform}/include)
"""

# Prints tag, name and a caption of the language that is accepted, then all tags.
SPEAK = """
#include "platform/host/text/Catalogue.h"
#include <iostream>
using namespace VeskLib::Host;
int main(int, char** arguments) {
    const int language = chooseLanguage("", arguments[1]);
    std::cout << languageTag(language) << '\\n'
              << languages()[language].name << '\\n'
              << findText(language, TextSet::CAPTIONS, 9027) << '\\n';
    for (const auto& [tag, name] : languages()) {
        std::cout << tag << ' ';
    }
    std::cout << '\\n';
}
"""


class Languages(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="languages-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.catalogues = self.folder / "catalogue"
        shutil.copytree(CATALOGUES, self.catalogues)
        self.build = self.folder / "build"
        self.folder.joinpath("speak.cpp").write_text(SPEAK)
        self.folder.joinpath("CMakeLists.txt").write_text(
            BUILD % {"catalogues": self.catalogues, "project": PROJECT})

    def add(self, tag, change=lambda text: text):
        """Adds a made-up language: English with a mark before each text."""
        text = CATALOGUES.joinpath("messages_en.msg").read_text(encoding="utf-8")
        text = re.sub(r'(?m)^(\d+) "(?!en"$|English"$)', r'\1 "~', text)
        text = text.replace('9005 "en"', '9005 "%s"' % tag).replace("English", "Ünglish")
        self.catalogues.joinpath("messages_%s.msg" % tag).write_text(change(text), encoding="utf-8")

    def configure(self):
        return subprocess.run(["cmake", "-S", self.folder, "-B", self.build], check=False,
                              capture_output=True, encoding="utf-8")

    def speak(self, accepted):
        folder = self.folder / "root/usr/local/share/catalogue"
        folder.mkdir(parents=True, exist_ok=True)
        for source in self.catalogues.glob("messages_*.msg"):
            subprocess.run(["gencat", folder / (source.stem + ".cat"), source], check=True)
        return subprocess.run([self.build / "speak", accepted], check=True, capture_output=True,
                              env={"BOARD_ROOT": str(self.folder / "root")},
                              encoding="utf-8").stdout.splitlines()

    def test_one_file_adds_a_language(self):
        self.add("aa")
        run = self.configure()
        self.assertEqual(run.returncode, 0, run.stderr)
        subprocess.run(["cmake", "--build", self.build], check=True, capture_output=True)
        *texts, tags = self.speak("aa-XX,en")
        self.assertEqual(texts, ["aa", "Ünglish", "~Log in"])
        # The numbers of the first two are the same on every board.
        self.assertEqual(tags.split()[:3], ["en", "ja", "aa"])
        self.assertEqual(self.speak("zz,ja")[0], "ja")
        pages = sorted((self.build / "errors").glob("*.html"))
        self.assertTrue(pages)
        for page in pages:
            text = page.read_text(encoding="utf-8")
            self.assertIn('<p lang="aa">~Th', text)
            self.assertIn('Menu / <span lang="ja">', text)
            self.assertIn('<span lang="aa">~Menu</span>', text)

    def refused(self, reason, change, tag="aa"):
        self.add(tag, change)
        run = self.configure()
        self.assertNotEqual(run.returncode, 0)
        self.assertIn(reason, " ".join(run.stderr.split()))

    def test_a_language_without_its_tag_is_refused(self):
        self.refused("messages_aa.msg has no text 9005.", lambda text: text.replace('9005 "', '$ "'))

    def test_a_language_without_its_name_is_refused(self):
        self.refused("messages_aa.msg has no text 9006.", lambda text: text.replace('9006 "', '$ "'))

    def test_a_language_with_the_tag_of_another_is_refused(self):
        self.refused("messages_aa.msg has the language tag en.",
                     lambda text: text.replace('9005 "aa"', '9005 "en"'))

    def test_a_tag_that_is_none_is_refused(self):
        self.refused("has the language tag A_A.", lambda text: text, tag="A_A")

    def test_a_language_without_an_error_page_is_refused(self):
        self.refused("messages_aa.msg has no text 9404.", lambda text: text.replace('9404 "', '$ "'))


if __name__ == "__main__":
    unittest.main()
