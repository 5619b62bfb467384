"""Reads and writes configuration files and the back-end's state file, without the program's code.

docs/configuration-file.md defines the bytes.
"""

import struct
import zlib

LARGEST_FILE = 393216
MAGIC = b"EFICONF\x1a"
STATE_MAGIC = b"EFISTOR\x1a"


class ConfigurationFile:
    def __init__(self, partition, version, name, payload, save_time=1700000000):
        self.partition = partition
        self.version = version
        self.name = name
        self.payload = payload
        self.save_time = save_time

    def encode(self):
        version, name = self.version.encode(), self.name.encode()
        covered = (MAGIC + struct.pack(">IIIHHI", 1, self.save_time, self.partition, len(version),
                                       len(name), len(self.payload)) + version + name + self.payload)
        return covered + struct.pack(">I", zlib.crc32(covered))


def decode_configuration_file(data):
    """Returns the decoded file, or None if `data` is not a configuration file."""
    if len(data) < 32 or data[:8] != MAGIC or zlib.crc32(data[:-4]) != unpack_word(data[-4:]):
        return None
    revision, save_time, partition, version_size, name_size, payload_size = struct.unpack(
        ">IIIHHI", data[8:28])
    texts = 28 + version_size
    payload = texts + name_size
    if revision != 1 or len(data) != payload + payload_size + 4:
        return None
    return ConfigurationFile(partition, data[28:texts].decode(), data[texts:payload].decode(),
                             data[payload:-4], save_time)


def encode_state(payloads):
    covered = STATE_MAGIC + struct.pack(">II", 1, len(payloads))
    for number in sorted(payloads):
        covered += struct.pack(">II", number, len(payloads[number])) + payloads[number]
    return covered + struct.pack(">I", zlib.crc32(covered))


def decode_state(data):
    """Returns {partition: payload}, or None if `data` is not a state file."""
    if len(data) < 20 or data[:8] != STATE_MAGIC or zlib.crc32(data[:-4]) != unpack_word(data[-4:]):
        return None
    payloads = {}
    position = 16
    for _ in range(unpack_word(data[12:16])):
        number, size = struct.unpack(">II", data[position:position + 8])
        payloads[number] = data[position + 8:position + 8 + size]
        position += 8 + size
    return payloads if position == len(data) - 4 else None


def unpack_word(data):
    return struct.unpack(">I", data)[0]
