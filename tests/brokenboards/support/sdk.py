"""Builds the contract tests against the host platform's SDK, unchanged or with edited sources."""

import json
import os
import shlex
import shutil
import subprocess


class Failure(Exception):
    """An error that prevents a board from being tested."""


def run(command, folder):
    result = subprocess.run(command, cwd=folder, capture_output=True, text=True, check=False,
                            errors="replace")
    if result.returncode != 0:
        raise Failure(f"failed: {' '.join(command)[:300]}\n{result.stdout}{result.stderr}")
    return result.stdout


class ContractBuild:
    """A build that contains contract_tests. All output is written to the folder `work`."""

    def __init__(self, project, build, work):
        self.project = project
        self.build = os.path.abspath(build)
        self.work = work
        self.sdk = os.path.join(work, "sdk")
        self.program = os.path.join(self.build, "tests", "contract", "contract_tests")
        if not os.path.exists(self.program):
            raise Failure(f"{self.build} has no contract_tests; build them first")

    def tests(self):
        """Returns the names of all contract tests."""
        names = set()
        suite = ""
        for line in run([self.program, "--gtest_list_tests"], self.build).splitlines():
            if line.startswith("  "):
                names.add(suite + line.split()[0])
            elif line.split("#")[0].strip().endswith("."):
                suite = line.split("#")[0].strip()
        return names

    def install_sdk(self):
        run(["cmake", "--install", self.build, "--component", "sdk", "--prefix", self.sdk],
            self.build)
        with open(os.path.join(self.build, "compile_commands.json"), encoding="utf-8") as file:
            self.commands = {entry["file"]: entry for entry in json.load(file)}
        self.members = {}
        for library in sorted(os.listdir(os.path.join(self.sdk, "lib"))):
            for member in run(["ar", "t", os.path.join(self.sdk, "lib", library)],
                              self.build).split():
                self.members.setdefault(member, library)

    def link(self, work, changed=None, include=None):
        """Links the tests in `work` and returns the program's path.

        `changed` maps files to the sources that replace them. They are compiled with `include`, if
        given, as the first include folder.
        """
        libraries = {name: os.path.join(self.sdk, "lib", name)
                     for name in os.listdir(os.path.join(self.sdk, "lib"))}
        command = self._link_command()
        objects = [word for word in command if "contract_tests.dir/" in word]
        for file, source in (changed or {}).items():
            compiled = self._compile(work, file, source, include)
            if file.startswith("platform/"):
                name = self._library_of(file)
                libraries[name] = self._replace(work, libraries[name], compiled)
            else:
                # A test's object replaces the original. An object of the program precedes its
                # library, so that the linker does not use the original in there.
                own = "contract_tests.dir/" + os.path.basename(file) + ".o"
                objects = [word for word in objects if not word.endswith(own)] + [compiled]
        program = os.path.join(work, "contract_tests")
        own = ["tests/support/libtest_support.a", "main/libefi_program.a", "data/libefi_data.a"]
        frameworks = [word for word in command if os.path.basename(word).startswith("libg")]
        # -fno-lto makes the linker use the machine code in the libraries, not their LTO code.
        run([command[0], "-fno-lto", *[word for word in command if word.startswith("-Wl,-z")],
             "-pie", "-o", program, *objects, "-Wl,--start-group", *own,
             *sorted(libraries.values()), "-Wl,--end-group", *frameworks], self.build)
        return program

    def _link_command(self):
        lines = run(["ninja", "-t", "commands", "contract_tests"], self.build).splitlines()
        line = next(line for line in reversed(lines) if "-o tests/contract/contract_tests" in line)
        words = shlex.split(line)
        start = words.index("&&") + 1
        return words[start:words.index("&&", start)]

    def _library_of(self, file):
        library = self.members.get(os.path.basename(file) + ".o")
        if library is None:
            raise Failure(f"no library of the SDK contains {file}")
        return library

    def _compile(self, work, file, source, include):
        edited = os.path.join(work, "sources", file)
        os.makedirs(os.path.dirname(edited), exist_ok=True)
        with open(edited, "w", encoding="utf-8") as output:
            output.write(source)
        entry = self.commands[os.path.join(self.project, file)]
        words = shlex.split(entry["command"])
        words = words[:words.index("-o")]
        if not file.startswith("tests/"):
            # Fast compilation matters more than fast code. Tests keep their flags, because those of
            # their precompiled header must match.
            words = [word for word in words if not word.startswith(
                ("-flto", "-ffat-lto", "-O", "-U_FORTIFY", "-D_FORTIFY"))] + ["-O0"]
        first = ["-I", include] if include else []
        # No warnings, because an edit may leave names unused.
        run([words[0], *first, *words[1:], "-w", "-o", edited + ".o", "-c", edited],
            entry["directory"])
        return edited + ".o"

    def _replace(self, work, library, compiled):
        copy = os.path.join(work, os.path.basename(library))
        if copy != library:
            shutil.copy(library, copy)
        run(["ar", "r", copy, compiled], work)
        return copy
