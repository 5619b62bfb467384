// Tests that a restore does not happen after its page has given up: in every browser, with and
// without scripts.

import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { describe, test } from "node:test";
import { BROWSERS, logIn, textOf } from "./support/browser.js";
import { makeConfigurationFile } from "./support/configurationFile.js";
import { eventually } from "./support/eventually.js";
import { provide } from "./support/fixture.js";
import { restoreWithoutScript, uploadWithoutScript } from "./support/restorePage.js";

const FILE = makeConfigurationFile({
    saveTime: Date.UTC(2026, 2, 7, 12) / 1000,
    partition: 3,
    version: "1.23 B",
    name: "R&D",
    payload: Buffer.from("too late"),
});

for (const kind of BROWSERS) {
    for (const scripts of [true, false]) {
        describe(`a restore in ${kind}, scripts ${scripts ? "on" : "off"}`, () => {
            let board;
            let browser;

            provide((started) => ({ board, browser } = started), [], ["en", kind, { scripts }]);

            test("changes nothing when slower than its page", async () => {
                const configurations = () => readFile(board.path("var/lib/board/configurations"));
                const page = await browser.newPage();
                await logIn(page, board);
                await uploadWithoutScript(page, board, "a.dat", FILE);
                const former = await configurations();
                await board.control("slow", 16000);  // the page waits for 10 s
                await restoreWithoutScript(page, 3);
                assert.match(await textOf(page, ".notice.unknown"), /It is not known.*Activity/);

                await board.control("reset");
                await eventually(async () => {
                    const lines = (await readFile(board.path("var/log/audit.log"), "utf8")).split("\n");
                    assert.ok(lines.some((line) => /"restore".*"refused".*1616/.test(line)));
                });
                assert.deepEqual(await configurations(), former);
                await page.goto(board.url("/activity.cgi"));
                assert.match(await textOf(page, "tbody tr"), /Restore.*3.*\[1616\]/);
            });
        });
    }
}
