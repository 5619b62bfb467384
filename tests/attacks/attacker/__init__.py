"""Shared code of the attacks. They use the board of the documents' tests."""

import sys
from pathlib import Path

TESTS = Path(__file__).resolve().parents[2]
sys.path += [str(TESTS / "documents"), str(TESTS / "faults")]
