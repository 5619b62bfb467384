// Tests that axe-core finds nothing to fix on any page, in both themes, on a phone and on a wide
// screen, and in every language on a phone.

import { describe, test } from "node:test";
import { THEMES, WIDTHS, assertAccessible, show } from "./support/accessibility.js";
import { BACKUP_PAGE, RESTORE_PAGE, chooseAndBackUp, logIn } from "./support/browser.js";
import { LANGUAGES } from "./support/catalogue.js";
import { makeConfigurationFile } from "./support/configurationFile.js";
import { provide } from "./support/fixture.js";
import { restoreTo, upload } from "./support/restorePage.js";

const FILE = makeConfigurationFile({
    saveTime: 1772884800,
    partition: 3,
    version: "1.23 B",
    name: "A name without a blank ".replaceAll(" ", "_").repeat(20),
    payload: Buffer.from("x"),
});

// How to reach each page as a logged-in user.
const PAGES = {
    login: (page, board) => page.goto(board.url("/login.cgi")),
    menu: (page, board) => page.goto(board.url("/")),
    backup: (page, board) => page.goto(board.url(BACKUP_PAGE)),
    "finished backup": async (page, board) => {
        await page.goto(board.url(BACKUP_PAGE));
        await chooseAndBackUp(page, 3);
    },
    upload: (page, board) => page.goto(board.url(RESTORE_PAGE)),
    selection: (page, board) => upload(page, board, "a.dat", FILE),
    "finished restore": async (page, board) => {
        await upload(page, board, "a.dat", FILE);
        await restoreTo(page, [3]);
    },
    "refused restore": async (page, board) => {
        await upload(page, board, "a.dat", FILE);
        await restoreTo(page, [3, 7]);
    },
    "unknown outcome": async (page, board) => {
        await upload(page, board, "a.dat", FILE);
        await board.control("torn", 3);
        await restoreTo(page, [3]);
        await board.control("reset");
    },
    error: (page, board) => page.goto(board.url(`${BACKUP_PAGE}9`)),
    "not found": (page, board) => page.goto(board.url("/nothing")),
};

describe("accessibility", () => {
    let board;
    let browser;

    provide((started) => ({ board, browser } = started));

    for (const theme of THEMES) {
        for (const width of WIDTHS) {
            for (const [name, open] of Object.entries(PAGES)) {
                test(`${name}, ${theme}, ${width} pixels`, async () => {
                    const page = await browser.newPage();
                    await show(page, theme, width);
                    await logIn(page, board);
                    await open(page, board);
                    await assertAccessible(page);
                    await page.close();
                });
            }
        }
    }
});

for (const language of LANGUAGES.filter((each) => each !== "en")) {
    describe(`accessibility in ${language}`, () => {
        let board;
        let browser;

        provide((started) => ({ board, browser } = started), [], [language]);

        for (const [name, open] of Object.entries(PAGES)) {
            test(`${name}, ${WIDTHS[0]} pixels`, async () => {
                const page = await browser.newPage();
                await show(page, THEMES[0], WIDTHS[0]);
                await logIn(page, board);
                await open(page, board);
                await assertAccessible(page);
                await page.close();
            });
        }
    });
}
