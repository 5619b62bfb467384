// The partitions of the demo board, as its description gives them.

import { readFileSync } from "node:fs";
import { fileURLToPath } from "node:url";
import { parse } from "smol-toml";

export function demoPartitions() {
    const file = fileURLToPath(new URL("../../../board/demo/demo.toml", import.meta.url));
    const description = parse(readFileSync(file, "utf8"));
    return new Map(
        description.partition.map((partition) => [
            partition.number,
            {
                installed: partition.installed ?? true,
                name: partition.name,
                settings: Object.entries(partition.settings ?? {}),
            },
        ]),
    );
}
