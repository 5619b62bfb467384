"""What the attacks share. The board that they attack is that of the documents' tests."""

import importlib.util
import sys
from pathlib import Path

TESTS = Path(__file__).resolve().parents[2]
sys.path.append(str(TESTS / "documents"))


def load(path):
    """A module of another folder of tests, which has a package of the same name."""
    spec = importlib.util.spec_from_file_location("shared_" + path.stem, path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module
