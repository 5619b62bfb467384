"""Configuration files and what a board keeps, read and written apart from the programs."""

import importlib.util

from fleet import TESTS

STATE = "/var/lib/board/configurations"

_PATH = TESTS / "faults/support/configurationFile.py"
_SPEC = importlib.util.spec_from_file_location("configurationFile", _PATH)
_files = importlib.util.module_from_spec(_SPEC)
_SPEC.loader.exec_module(_files)


def configuration_file(partition, version, payload, name="Test"):
    return _files.ConfigurationFile(partition, version, name, payload).encode()


def decode(data):
    """The configuration file that the bytes are; None if they are none."""
    return _files.decodeConfigurationFile(data)


def payloads_of(board):
    """The configuration of each partition."""
    return _files.decodeState(board.path(STATE).read_bytes())
