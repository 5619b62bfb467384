"""Reads and writes configuration files and a board's state, independently of the programs."""

import importlib.util

from fleet import TESTS

STATE = "/var/lib/board/configurations"

_PATH = TESTS / "faults/support/configuration_file.py"
_SPEC = importlib.util.spec_from_file_location("configuration_file", _PATH)
_files = importlib.util.module_from_spec(_SPEC)
_SPEC.loader.exec_module(_files)


def configuration_file(partition, version, payload, name="Test"):
    return _files.ConfigurationFile(partition, version, name, payload).encode()


def decode(data):
    """Decodes a configuration file. Returns None if the bytes are not one."""
    return _files.decode_configuration_file(data)


def payloads_of(board):
    """Returns the configuration of each partition."""
    return _files.decode_state(board.path(STATE).read_bytes())
