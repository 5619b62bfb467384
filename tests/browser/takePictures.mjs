// Takes the pictures of the documents from a board of its own. tools/draw runs it.

import { fileURLToPath } from "node:url";
import { Board } from "./support/board.js";
import { BACKUP_PAGE, Browser, RESTORE_PAGE, logIn } from "./support/browser.js";
import { makeConfigurationFile } from "./support/configurationFile.js";
import { upload } from "./support/restorePage.js";

const folder = fileURLToPath(new URL("../../docs/pictures/", import.meta.url));

const FILE = makeConfigurationFile({
    saveTime: Date.UTC(2026, 10, 14, 12) / 1000,
    partition: 5,
    version: "1.23 B",
    name: "Spare",
    payload: Buffer.from("Boot mode=UEFI\n"),
});

const PAGES = {
    backup: (page, board) => page.goto(board.url(BACKUP_PAGE)),
    upload: (page, board) => page.goto(board.url(RESTORE_PAGE)),
    selection: async (page, board) => {
        await upload(page, board, "Partition5_20261114_123B.dat", FILE);
        await page.click("#pid5");
    },
};

const board = await Board.start();
const browser = await Browser.start();
try {
    for (const theme of ["light", "dark"]) {
        for (const [name, open] of Object.entries(PAGES)) {
            const page = await browser.newPage();
            await page.setViewport({ width: 1000, height: 600 });
            await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: theme }]);
            await logIn(page, board);
            await open(page, board);
            await page.screenshot({ path: `${folder}${name}-${theme}.png`, fullPage: true });
            await page.close();
        }
    }
} finally {
    await browser.stop();
    await board.remove();
}
