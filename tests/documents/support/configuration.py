"""Reads configuration files and the back-end's state file with the tables of
docs/configuration-file.md."""

import struct
import zlib

from support.document import Document

DOCUMENT = "docs/configuration-file.md"


def layout():
    """Returns offset, size and field of each row in the table of a configuration file."""
    header = ["offset", "size", "field"]
    return next(rows for cells, rows in Document(DOCUMENT).tables() if cells == header)


def read_file(data):
    """Returns the fields of a configuration file by their names in the table: "magic", "V", ..."""
    names = {"magic": "magic", "revision": "revision", "save time": "save time", "number": "number",
             "V,": "V", "P,": "P", "L,": "L", "BIOS": "version", "partition": "name",
             "payload": "payload", "CRC-32": "crc"}
    fields = {}
    for offset, size, field in layout():
        lengths = {key: fields[key] for key in "VPL" if key in fields}
        begin = eval(offset, {}, lengths)  # pylint: disable=eval-used
        length = eval(size, {}, lengths)  # pylint: disable=eval-used
        name = next(names[key] for key in names if field.startswith(key))
        value = data[begin:begin + length]
        fields[name] = (int.from_bytes(value, "big")
                        if name in ("revision", "save time", "number", "V", "P", "L", "crc")
                        else value)
        end = begin + length
    fields["end"] = end
    return fields


def read_states(data):
    """Returns the payloads in a state file by partition."""
    assert data[:8] == b"EFISTOR\x1a"
    revision, count = struct.unpack(">II", data[8:16])
    assert revision == 1
    assert struct.unpack(">I", data[-4:])[0] == zlib.crc32(data[:-4])
    states = {}
    position = 16
    for _ in range(count):
        partition, length = struct.unpack(">II", data[position:position + 8])
        states[partition] = data[position + 8:position + 8 + length]
        position += 8 + length
    assert position == len(data) - 4
    return states
