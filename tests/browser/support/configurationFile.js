// Reads and makes EFI configuration files as described in docs/configuration-file.md.

import assert from "node:assert/strict";

function crc32(bytes) {
    let crc = 0xffffffff;
    for (const byte of bytes) {
        crc ^= byte;
        for (let bit = 0; bit < 8; ++bit) {
            crc = (crc >>> 1) ^ (crc & 1 ? 0xedb88320 : 0);
        }
    }
    return ~crc >>> 0;
}

export function parseConfigurationFile(bytes) {
    assert.equal(bytes.subarray(0, 8).toString("latin1"), "EFICONF\x1a");
    const versionLength = bytes.readUInt16BE(20);
    const nameLength = bytes.readUInt16BE(22);
    const payloadLength = bytes.readUInt32BE(24);
    const version = 28;
    const name = version + versionLength;
    const payload = name + nameLength;
    const end = payload + payloadLength;
    assert.equal(bytes.length, end + 4);
    assert.equal(bytes.readUInt32BE(end), crc32(bytes.subarray(0, end)));
    return {
        revision: bytes.readUInt32BE(8),
        saveTime: bytes.readUInt32BE(12),
        partition: bytes.readUInt32BE(16),
        version: bytes.toString("utf8", version, name),
        name: bytes.toString("utf8", name, payload),
        payload: bytes.subarray(payload, end),
    };
}

export function makeConfigurationFile({ saveTime, partition, version, name, payload }) {
    const [versionBytes, nameBytes] = [Buffer.from(version), Buffer.from(name)];
    const head = Buffer.alloc(28);
    head.write("EFICONF\x1a", "latin1");
    head.writeUInt32BE(1, 8);
    head.writeUInt32BE(saveTime, 12);
    head.writeUInt32BE(partition, 16);
    head.writeUInt16BE(versionBytes.length, 20);
    head.writeUInt16BE(nameBytes.length, 22);
    head.writeUInt32BE(payload.length, 24);
    const content = Buffer.concat([head, versionBytes, nameBytes, payload]);
    const check = Buffer.alloc(4);
    check.writeUInt32BE(crc32(content));
    return Buffer.concat([content, check]);
}
