// Tests of backups in a real browser.

import assert from "node:assert/strict";
import { createHash } from "node:crypto";
import { beforeEach, describe, test } from "node:test";
import { Board } from "./support/board.js";
import {
    BACKUP_PAGE,
    Browser,
    RESTORE_PAGE,
    chooseAndBackUp,
    countPosts,
    logIn,
    textOf,
} from "./support/browser.js";
import { parseConfigurationFile } from "./support/configurationFile.js";
import { demoPartitions } from "./support/demoBoard.js";
import { provide } from "./support/fixture.js";

describe("backup", () => {
    let board;
    let browser;
    let page;

    provide((started) => ({ board, browser } = started));
    beforeEach(async () => {
        page = await browser.newPage();
    });

    test("saves a partition's configuration under a descriptive name", async () => {
        await logIn(page, board);
        await page.goto(board.url(BACKUP_PAGE));
        await chooseAndBackUp(page, 3);
        const { name, bytes } = await browser.nextDownload();

        const file = parseConfigurationFile(bytes);
        const saved = new Date(file.saveTime * 1000);
        // The name has the day of the page, which may be later than the backup's.
        const names = [saved, new Date()].map((day) => {
            const month = String(day.getMonth() + 1).padStart(2, "0");
            const date = String(day.getDate()).padStart(2, "0");
            return `Partition3_${day.getFullYear()}${month}${date}_123B.dat`;
        });
        assert.ok(names.includes(name), name);
        assert.ok(Math.abs(Date.now() - saved) < 10 * 60 * 1000);
        assert.equal(file.partition, 3);
        assert.equal(file.version, "1.23 B");
        const partition = demoPartitions().get(3);
        assert.equal(file.name, partition.name);
        for (const [setting, value] of partition.settings) {
            assert.ok(file.payload.includes(`${setting}=${value}\n`), setting);
        }
        assert.deepEqual(page.alerts, []);
        assert.ok((await textOf(page, ".notice")).includes(name));
        assert.equal((await page.$$("input[name=radio_button]")).length, 5);
    });

    test("the link on the page downloads the same file again", async () => {
        await logIn(page, board);
        await page.goto(board.url(BACKUP_PAGE));
        await chooseAndBackUp(page, 5);
        const first = await browser.nextDownload();
        await page.click("#download_link");
        const second = await browser.nextDownload();
        const digest = ({ bytes }) => createHash("sha256").update(bytes).digest("hex");
        assert.equal(second.name, first.name);
        assert.equal(digest(second), digest(first));
    });

    test("lists the installed partitions with their names, as text", async () => {
        await logIn(page, board);
        await page.goto(board.url(BACKUP_PAGE));
        const rows = await page.$$eval("tbody tr", (elements) =>
            elements.map((row) => [...row.cells].slice(1).map((cell) => cell.textContent)),
        );
        const expected = [...demoPartitions()]
            .filter(([, partition]) => partition.installed)
            .map(([number, partition]) => [String(number), partition.name]);
        assert.deepEqual(
            expected.map(([number]) => number),
            ["0", "2", "3", "5", "7"],
        );
        assert.deepEqual(rows, expected);
        assert.equal((await page.$$("input[name=radio_button]:checked")).length, 0);
    });

    test("asks for a partition before sending anything", async () => {
        await logIn(page, board);
        await page.goto(board.url(BACKUP_PAGE));
        const posts = countPosts(page);
        await page.click("#backup");
        await page.waitForAlert(/Select a partition first/);
        await posts.assertNone();
        assert.equal(page.alerts.length, 1);
        await browser.assertNoDownload();
    });

    test("works with the keyboard alone", async () => {
        await logIn(page, board);
        await page.goto(board.url(BACKUP_PAGE));
        await page.focus('input[name=radio_button][value="0"]');
        await page.keyboard.press("ArrowDown");
        await Promise.all([page.waitForNavigation(), page.keyboard.press("Enter")]);
        const { name } = await browser.nextDownload();
        assert.match(name, /^Partition2_/);
    });

    test("a second press during a backup sends nothing", async () => {
        await logIn(page, board);
        await page.goto(board.url(BACKUP_PAGE));
        await page.click('input[name=radio_button][value="2"]');
        const posts = countPosts(page);
        const [, underWay] = await Promise.all([
            page.waitForNavigation(),
            page.evaluate(() => {
                const button = document.getElementById("backup");
                const before = button.textContent;
                button.click();
                const label = button.textContent;
                button.click();
                button.click();
                return [before, label, button.getAttribute("aria-disabled")];
            }),
        ]);
        await browser.nextDownload();
        assert.equal(posts.count, 1);
        assert.deepEqual(underWay, ["Back up", "Backing up…", "true"]);
        assert.equal(await textOf(page, "#backup"), "Back up");
    });

    test("works without JavaScript, through the link", async () => {
        await logIn(page, board);
        await page.setJavaScriptEnabled(false);
        await page.goto(board.url(BACKUP_PAGE));
        await chooseAndBackUp(page, 3);
        await browser.assertNoDownload();
        await page.click("#download_link");
        const { name } = await browser.nextDownload();
        assert.match(name, /^Partition3_\d{8}_123B\.dat$/);
    });

    test("a user without authority sees the reason and no list", async () => {
        await logIn(page, board, "viewer");
        const links = await page.$$eval("a", (elements) => elements.map((each) => each.href));
        assert.ok(!links.some((link) => link.includes("functionID")));
        await page.goto(board.url(BACKUP_PAGE));
        assert.match(await textOf(page, "[role=alert]"), /do not have permission.*\[12-1033\]/);
        assert.equal((await page.$$("input")).length, 0);
        assert.match(await board.trace(), /EFIBackupPage::makeDispPage\(\): Authorization required\./);
    });

    test("logout closes every page of the session", async () => {
        await logIn(page, board);
        await page.goto(board.url(BACKUP_PAGE));
        await chooseAndBackUp(page, 3);
        await browser.nextDownload();
        const link = await page.$eval("#download_link", (element) => element.href);
        const before = (await board.temporaryFiles()).length;
        await page.goto(board.url("/"));
        await Promise.all([
            page.waitForNavigation(),
            page.$eval("form[action='/logout.cgi']", (form) => form.requestSubmit()),
        ]);
        for (const target of [board.url(BACKUP_PAGE), board.url(RESTORE_PAGE), link]) {
            const response = await page.goto(target);
            assert.equal(response.status(), 403);
            assert.match(await textOf(page, "main"), /[Ll]og in/);
        }
        assert.equal((await board.temporaryFiles()).length, before - 1);
        await browser.assertNoDownload();
    });

    test("speaks Japanese to a Japanese browser", async () => {
        const japanese = await Browser.start("ja");
        try {
            const tab = await japanese.newPage();
            await logIn(tab, board);
            await tab.goto(board.url(BACKUP_PAGE));
            assert.equal(await tab.$eval("html", (element) => element.lang), "ja");
            assert.match(await textOf(tab, "h1"), /バックアップ/);
            assert.equal(await textOf(tab, "#backup"), "バックアップ");
            await tab.click("#backup");
            await tab.waitForAlert(/パーティションを選択してください/);
        } finally {
            await japanese.stop();
        }
    });
});

describe("backup without an answer from the back-end", () => {
    test("shows the error and downloads nothing", async () => {
        const board = await Board.start();
        const browser = await Browser.start();
        try {
            const page = await browser.newPage();
            await logIn(page, board);
            await page.goto(board.url(BACKUP_PAGE));
            await page.click('input[name=radio_button][value="3"]');
            // A stopped back-end still accepts connections but never answers.
            process.kill(await board.backendProcess(), "SIGSTOP");
            try {
                await Promise.all([
                    page.waitForNavigation(),
                    page.click("#backup"),
                ]);
            } finally {
                process.kill(await board.backendProcess(), "SIGCONT");
            }
            const text = await textOf(page, "[role=alert]");
            assert.match(text, /did not answer in time.*\[72-2002\].*did not answer in time.*\[107-2002\]/);
            assert.match(text, /Failed to obtain the partition status/);
            await browser.assertNoDownload();
            assert.match(await board.trace(), /Failed to obtain the partition status/);
        } finally {
            await browser.stop();
            await board.remove();
        }
    });
});
