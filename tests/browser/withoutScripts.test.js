// Tests that the screens work without scripts, in every browser.

import assert from "node:assert/strict";
import { beforeEach, describe, test } from "node:test";
import { BACKUP_PAGE, BROWSERS, logIn, textOf } from "./support/browser.js";
import { makeConfigurationFile } from "./support/configurationFile.js";
import { provide } from "./support/fixture.js";
import {
    followWithoutScript,
    restoreWithoutScript,
    uploadWithoutScript,
} from "./support/restorePage.js";

const FILES = ["a", "b"].map((payload) =>
    makeConfigurationFile({
        saveTime: Date.UTC(2026, 2, 7, 12) / 1000,
        partition: 3,
        version: "1.23 B",
        name: "R&D",
        payload: Buffer.from(payload),
    }),
);

for (const kind of BROWSERS) {
    describe(`without scripts in ${kind}`, () => {
        let board;
        let browser;
        let page;

        provide((started) => ({ board, browser } = started), [], ["en", kind, { scripts: false }]);
        beforeEach(async () => {
            page = await browser.newPage();
            await logIn(page, board);
        });

        test("a backup gives a link to its file", async () => {
            await page.goto(board.url(BACKUP_PAGE));
            await page.focus('input[name=radio_button][value="3"]');
            await page.keyboard.press(" ");
            await followWithoutScript(page, "button[type=submit]#backup");
            await browser.assertNoDownload();
            assert.match(await textOf(page, "#download_link"), /filename=Partition3_\d{8}_123B\.dat$/);
        });

        test("forms post their steps", async () => {
            await uploadWithoutScript(page, board, "a.dat", FILES[0]);
            assert.equal(await textOf(page, "#file_pid"), "3");
            await restoreWithoutScript(page, 3);
            assert.match(await textOf(page, "[role=alert]"), /was restored/);

            await uploadWithoutScript(page, board, "a.dat", FILES[0]);
            await followWithoutScript(page, "#discard");
            assert.notEqual(await page.$("#upload"), null);
            assert.equal(await page.$("[role=alert]"), null);
        });

        test("only the file that the page shows is restored", async () => {
            const other = await browser.newWindow(page.browserContext());
            await page.bringToFront();
            await uploadWithoutScript(page, board, "a.dat", FILES[0]);
            await other.bringToFront();
            await uploadWithoutScript(other, board, "b.dat", FILES[1]);
            await page.bringToFront();
            await restoreWithoutScript(page, 3);
            assert.match(await textOf(page, ".notice"), /1615/);
            await other.bringToFront();
            await restoreWithoutScript(other, 3);
            assert.match(await textOf(other, ".notice"), /was restored/);
        });

        test("the latest actions are listed", async () => {
            await uploadWithoutScript(page, board, "a.dat", FILES[0]);
            await restoreWithoutScript(page, 3);
            await followWithoutScript(page, 'header a[href="/activity.cgi"]');
            assert.match(await textOf(page, "tbody tr"), /admin.*Restore.*3.*Done/);
        });
    });
}
