// The partitions of the demo board, read from its description.

import { readFileSync } from "node:fs";
import { fileURLToPath } from "node:url";
import { parse } from "smol-toml";

// Returns the BIOS version that the board shows for a partition: that of its home system board, or
// "-" without one.
function shownVersion(partition, boards) {
    const home = partition.node_ids
        .filter((node) => (node & 0xe0) === 0)
        .map((node) => boards.find((board) => board.number === (node & 0x0f)))
        .find((board) => board?.home);
    return home?.bios_version ?? "-";
}

function demoText() {
    const file = new URL("../../../board/demo/demo.toml", import.meta.url);
    return readFileSync(fileURLToPath(file), "utf8");
}

// Returns the demo board's users, for a test's own description: each password is the user's name.
export function demoUsers() {
    const text = demoText();
    return text.slice(text.indexOf("[[user]]"));
}

export function demoPartitions() {
    const description = parse(demoText());
    return new Map(
        description.partition.map((partition) => [
            partition.number,
            {
                installed: partition.installed ?? true,
                running: partition.running ?? false,
                name: partition.name,
                settings: Object.entries(partition.settings ?? {}),
                shownVersion: shownVersion(partition, description.system_board),
            },
        ]),
    );
}
