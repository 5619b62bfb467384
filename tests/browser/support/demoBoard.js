// The partitions of the demo board, as its description gives them.

import { readFileSync } from "node:fs";
import { fileURLToPath } from "node:url";
import { parse } from "smol-toml";

// The BIOS version that the board shows for a partition: its home system board's.
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

// The users of the demo board, for a board of a test's own; tests know their passwords.
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
