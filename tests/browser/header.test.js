// Tests of the header (board, user, remaining time), the activity page and the menu's partition
// table, in every browser.

import assert from "node:assert/strict";
import { readFile, readdir, stat, utimes, writeFile } from "node:fs/promises";
import { beforeEach, describe, test } from "node:test";
import { THEMES, WIDTHS, assertAccessible, show } from "./support/accessibility.js";
import {
    BACKUP_PAGE,
    BROWSERS,
    Browser,
    RESTORE_PAGE,
    logIn,
    textOf,
} from "./support/browser.js";
import { LANGUAGES } from "./support/catalogue.js";
import { Client } from "./support/client.js";
import { makeConfigurationFile } from "./support/configurationFile.js";
import { demoPartitions } from "./support/demoBoard.js";
import { eventually } from "./support/eventually.js";
import { provide } from "./support/fixture.js";
import { restoreTo, upload } from "./support/restorePage.js";

const NAME = 'Rack <4> & "row" 12';
const IDLE_SECONDS = 30 * 60;
const LIFE_SECONDS = 12 * 60 * 60;

const FILE = makeConfigurationFile({
    saveTime: 1772884800,
    partition: 3,
    version: "1.23 B",
    name: "x",
    payload: Buffer.from("Boot mode=UEFI\n"),
});

const demo = await readFile(new URL("../../board/demo/demo.toml", import.meta.url), "utf8");
const DESCRIPTION = demo.replace('"Demo board"', `'${NAME}'`);

// Stops the clock of the page's documents, at `time` or when each document opens.
function stopClock(page, time) {
    return page.evaluateOnNewDocument((at) => {
        window.clock = at ?? Date.now();
        Date.now = () => window.clock;
    }, time);
}

// Advances the stopped clock until the page's session has `seconds` left.
async function skipTo(page, seconds) {
    await page.evaluate((rest) => {
        const { left } = document.getElementById("session").dataset;
        window.clock += (Number(left) - rest) * 1000;
    }, seconds);
}

for (const kind of BROWSERS) {
    describe(`the pages of a board in ${kind}`, () => {
        let board;
        let browser;
        let page;

        provide((started) => ({ board, browser } = started), [DESCRIPTION], ["en", kind]);
        beforeEach(async () => {
            page = await browser.newPage();
            await stopClock(page);
        });

        async function sessionFile() {
            const cookies = await page.browserContext().cookies();
            const { value } = cookies.find(({ name }) => name === "session");
            return board.path("var/lib/session", value.split("-")[0]);
        }

        async function noticeShows(words) {
            await eventually(async () =>
                assert.match(await textOf(page, "#session_notice"), words));
        }

        test("every page names the board", async () => {
            const shown = async (target) => {
                await page.goto(board.url(target));
                assert.ok((await page.title()).includes(` - ${NAME} - `), target);
                assert.equal(await textOf(page, "header .board-name"), NAME, target);
            };
            await shown("/login.cgi");
            await shown(BACKUP_PAGE);  // the error page, because nobody is logged in
            await logIn(page, board);
            for (const target of ["/", "/activity.cgi", BACKUP_PAGE, RESTORE_PAGE, `${BACKUP_PAGE}9`]) {
                await shown(target);
                assert.equal(await textOf(page, "header strong"), "admin", target);
                assert.match(await textOf(page, "#session"), /^Session ends in (29|30) min \(\d\d:\d\d\)$/);
            }
        });

        // Only Chromium can emulate printing.
        test("a printed page names board and user and has no controls", { skip: kind !== "chromium" }, async () => {
            await logIn(page, board);
            await page.goto(board.url(BACKUP_PAGE));
            await page.emulateMediaType("print");
            const isShown = (selector) =>
                page.$eval(selector, (element) => element.getClientRects().length > 0);
            for (const selector of [".board-name", "header strong", "table"]) {
                assert.equal(await isShown(selector), true, selector);
            }
            for (const selector of ["header nav", "header button", "#session", "#backup"]) {
                assert.equal(await isShown(selector), false, selector);
            }
            // Browsers do not print backgrounds, so the text must be dark.
            assert.equal(await page.$eval("header", (header) => getComputedStyle(header).color), "rgb(0, 0, 0)");
        });

        test("the button on a screen of the program logs out", async () => {
            await logIn(page, board);
            await page.goto(board.url(RESTORE_PAGE));
            const file = await sessionFile();
            await Promise.all([page.waitForNavigation(), page.click("header button")]);
            assert.equal(new URL(page.url()).pathname, "/login.cgi");
            await assert.rejects(stat(file), /ENOENT/);
            assert.equal(await page.$("#session"), null);
        });

        test("the page offers to stay one minute before the session ends", async () => {
            await logIn(page, board);
            await page.goto(board.url(RESTORE_PAGE));
            const file = await sessionFile();
            assert.equal(await textOf(page, "#session_notice"), "");
            await skipTo(page, 90);
            await eventually(async () =>
                assert.match(await textOf(page, "#session"), /in 1 min/));
            assert.equal(await textOf(page, "#session_notice"), "");
            const then = new Date(Date.now() - (IDLE_SECONDS / 2) * 1000);
            await utimes(file, then, then);
            await page.evaluate(() => { window.clock += 40000; });
            await noticeShows(/Your session ends in one minute/);
            assert.equal(await page.$eval("#session_notice", (each) => each.ariaLive), "assertive");
            assert.match(await textOf(page, "#session"), /in < 1 min/);
            if (kind === "chromium") {
                await assertAccessible(page);
            }
            await page.focus("#session_notice button");
            await page.keyboard.press("Enter");
            await noticeShows(/^You stay logged in\.$/);
            assert.match(await textOf(page, "#session"), /in (29|30) min/);
            assert.ok((await stat(file)).mtimeMs > then.getTime());
            assert.ok(page.url().includes("functionID=106"));
        });

        test("a session at the end of its life cannot be prolonged", async () => {
            await logIn(page, board);
            const file = await sessionFile();
            const text = await readFile(file, "utf8");
            const created = Math.floor(Date.now() / 1000) - LIFE_SECONDS + 600;
            await writeFile(file, text.replace(/created=\d+/, `created=${created}`));
            await page.goto(board.url("/"));
            assert.match(await textOf(page, "#session"), /in (9|10) min/);
            await skipTo(page, 30);
            await noticeShows(/lasts 12 hours at most/);
            assert.equal(await page.$("#session_notice button"), null);
        });

        test("an ended session is reported and a login leads back", async () => {
            await logIn(page, board);
            await page.goto(board.url(RESTORE_PAGE));
            await page.deleteCookie(...(await page.cookies()));
            await skipTo(page, 0);
            await noticeShows(/Your session has ended/);
            await Promise.all([page.waitForNavigation(), page.click("#session_notice a")]);
            await page.type("input[name=user]", "admin");
            await page.type("input[name=password]", "admin");
            await Promise.all([page.waitForNavigation(), page.keyboard.press("Enter")]);
            assert.equal(page.url(), board.url(RESTORE_PAGE));
        });

        test("a failed attempt to stay is reported", async () => {
            await logIn(page, board);
            await skipTo(page, 30);
            await noticeShows(/ends in one minute/);
            await page.deleteCookie(...(await page.cookies()));
            await page.click("#session_notice button");
            await noticeShows(/did not confirm/);
        });

        test("a use extends the session on the browser's other pages", async () => {
            await logIn(page, board);
            await skipTo(page, 150);
            await eventually(async () =>
                assert.match(await textOf(page, "#session"), /in 2 min/));
            const other = await page.browserContext().newPage();
            await stopClock(other, await page.evaluate(() => window.clock));
            await other.goto(board.url("/"));
            await eventually(async () =>
                assert.match(await textOf(page, "#session"), /in (29|30) min/));
        });

        test("a bookmark leads through the login to its page", async () => {
            for (const target of [BACKUP_PAGE, RESTORE_PAGE]) {
                page = await browser.newPage();
                await page.goto(board.url(target));
                await Promise.all([page.waitForNavigation(), page.click("main a")]);
                await page.type("input[name=user]", "admin");
                await page.type("input[name=password]", "admin");
                await Promise.all([page.waitForNavigation(), page.keyboard.press("Enter")]);
                assert.equal(page.url(), board.url(target));
            }
        });

        test("activity and menu show what was done", async () => {
            await (await Client.loggedIn(board)).backUp(5);
            await logIn(page, board);
            await upload(page, board, "a.dat", FILE);
            await restoreTo(page, [3]);
            await Promise.all([page.waitForNavigation(), page.click('header a[href="/activity.cgi"]')]);
            const rows = await page.$$eval("tbody tr", (elements) =>
                elements.map((row) => row.textContent.replace(/\s+/g, " ").trim()));
            assert.match(rows[0], /admin.*Restore.*3.*Saved from partition 3, BIOS version 1\.23 B.*Done/);
            assert.match(rows[1], /Upload of a file.*Done/);
            assert.ok(rows.some((row) => /admin127.*Backup5Saved from partition 5/.test(row)));
            await page.goto(board.url("/"));
            const state = await page.$$eval("tbody tr", (elements) =>
                elements.map((row) => [...row.cells].map((cell) => cell.textContent)));
            const installed = [...demoPartitions()].filter(([, partition]) => partition.installed);
            assert.deepEqual(
                state.map(([number, name]) => [number, name]),
                installed.map(([number, partition]) => [String(number), partition.name]));
            assert.match(state[2][4], /Less than a day ago.*by admin/);
            assert.match(state[3][3], /Less than a day ago.*by admin/);
            assert.match(state[4][3], /None in the log/);
        });

        test("the menu is usable while the back-end is silent", async () => {
            await logIn(page, board);
            await board.control("silent");
            await page.goto(board.url("/"));
            assert.match(await textOf(page, "main [role=alert]"), /does not answer.*\[9394-2002\]/);
            assert.ok(await page.$(`main a[href="${BACKUP_PAGE}"]`));
        });
    });
}

describe("the pages of a board in both languages", () => {
    let board;

    provide((started) => ({ board } = started), [DESCRIPTION], null);

    for (const language of LANGUAGES) {
        test(`are accessible in ${language}`, async () => {
            const browser = await Browser.start(language);
            try {
                const page = await browser.newPage();
                await logIn(page, board);
                await upload(page, board, "a.dat", FILE);
                await restoreTo(page, [3]);
                await upload(page, board, "a.dat", FILE);
                await restoreTo(page, [7]);
                for (const theme of THEMES) {
                    for (const width of WIDTHS) {
                        await show(page, theme, width);
                        for (const target of ["/", "/activity.cgi", RESTORE_PAGE]) {
                            await page.goto(board.url(target));
                            await assertAccessible(page);
                        }
                    }
                }
            } finally {
                await browser.stop();
            }
        });
    }

    test("the audit log names the board in every line", async () => {
        const names = (await readdir(board.path("var/log"))).filter((name) =>
            /^audit\.log/.test(name));
        const texts = await Promise.all(
            names.map((name) => readFile(board.path("var/log", name), "utf8")));
        const lines = texts.join("").trim().split("\n");
        assert.ok(lines.length > 3);
        for (const line of lines) {
            assert.equal(JSON.parse(line).board, NAME);
        }
    });
});
