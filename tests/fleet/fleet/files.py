"""Reads and writes configuration files and a board's state, independently of the programs."""

from faults.configuration_file import ConfigurationFile, decode_configuration_file, decode_state

STATE = "/var/lib/board/configurations"


def configuration_file(partition, version, payload, name="Test"):
    return ConfigurationFile(partition, version, name, payload).encode()


def decode(data):
    """Decodes a configuration file. Returns None if the bytes are not one."""
    return decode_configuration_file(data)


def payloads_of(board):
    """Returns the configuration of each partition."""
    return decode_state(board.path(STATE).read_bytes())
