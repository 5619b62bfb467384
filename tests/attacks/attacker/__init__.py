"""Shared code of the attacks. They use the board of the documents' tests."""

import importlib.util
import sys
from pathlib import Path

TESTS = Path(__file__).resolve().parents[2]
sys.path.append(str(TESTS / "documents"))


def load(path):
    """Loads a module of another test folder, in which the package has a name used here too."""
    spec = importlib.util.spec_from_file_location("shared_" + path.stem, path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module
