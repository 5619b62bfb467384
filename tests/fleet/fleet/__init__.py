"""Helpers shared by the tests of fleets. The boards are served by the helpers of tests/documents."""

import sys
from pathlib import Path

TESTS = Path(__file__).resolve().parents[2]
sys.path += [str(TESTS / "documents"), str(TESTS / "faults")]
