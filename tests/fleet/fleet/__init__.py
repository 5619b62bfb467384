"""What the tests of fleets share. Their boards are those of the documents' tests."""

import sys
from pathlib import Path

TESTS = Path(__file__).resolve().parents[2]
sys.path.append(str(TESTS / "documents"))
