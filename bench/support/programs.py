"""The programs for comparison. Those that answer with a page contain the backup page."""

import subprocess
from pathlib import Path

SOURCES = Path(__file__).resolve().parents[1] / "programs"

# The command that compiles each program. "OUT" is replaced by the path of the result, "PAGE" by the
# folder of page.h.
EMPTY = {
    "empty C, static": ["gcc", "-O2", "-static", "empty.c", "-o", "OUT"],
    "empty C++, static": ["g++", "-O2", "-static", "empty.cpp", "-o", "OUT"],
    "empty C++, dynamic": ["g++", "-O2", "empty.cpp", "-o", "OUT"],
}
PAGES = {
    "page, C++, static": ["g++", "-O2", "-static", "-IPAGE", "page.cpp", "-o", "OUT"],
    "page, C++, dynamic": ["g++", "-O2", "-IPAGE", "page.cpp", "-o", "OUT"],
    "floor": ["g++", "-O2", "-static", "-IPAGE", "floor.cpp", "-o", "OUT"],
    "page, libcgicc": ["g++", "-O2", "-IPAGE", "cgicc_page.cpp", "-lcgicc", "-o", "OUT"],
    "page, Perl CGI.pm": "page.pl",
    "page, Python cgi": "page.py",
}


def build(names, folder, page):
    """Builds the programs in `folder`. Returns their paths by name."""
    (folder / "page.h").write_bytes(b'static const char PAGE[] = R"page(' + page + b')page";\n')
    programs = {}
    for number, name in enumerate(names):
        path = folder / ("compared%d.cgi" % number)
        how = {**EMPTY, **PAGES}[name]
        if isinstance(how, str):
            path.write_bytes((SOURCES / how).read_bytes().replace(b"@PAGE@", page))
            path.chmod(0o755)
        else:
            words = [word.replace("PAGE", str(folder)).replace("OUT", str(path)) for word in how]
            subprocess.run(words, cwd=SOURCES, check=True)
        programs[name] = path
    return programs
