// Tests of restores in real browsers.

import assert from "node:assert/strict";
import { createHash } from "node:crypto";
import { writeFile } from "node:fs/promises";
import { beforeEach, describe, test } from "node:test";
import { Board } from "./support/board.js";
import {
    BROWSERS,
    RESTORE_PAGE,
    countPosts,
    logIn,
    textOf,
} from "./support/browser.js";
import { Client, downloadLink } from "./support/client.js";
import { makeConfigurationFile, parseConfigurationFile } from "./support/configurationFile.js";
import { demoPartitions, demoUsers } from "./support/demoBoard.js";
import { eventually } from "./support/eventually.js";
import { provide } from "./support/fixture.js";
import { chooseFile, restoreTo, upload } from "./support/restorePage.js";

const SAVED = Date.UTC(2026, 2, 7, 12) / 1000;

// Parts of a board description; the second partition is installed later.
const [PARTITION_0, PARTITION_1] = [0, 1].map(
    (number) =>
        `[[partition]]\nnumber = ${number}\nname = "P${number}"\nnode_ids = [${number}]\n` +
        `[[system_board]]\nnumber = ${number}\nhome = true\nbios_version = "1.0"\n`,
);

function sha256(bytes) {
    return createHash("sha256").update(bytes).digest("hex");
}

for (const kind of BROWSERS) {
    describe(`restore in ${kind}`, () => {
        let board;
        let browser;
        let page;
        let observer;

        provide((started) => ({ board, browser } = started), [], ["en", kind]);
        beforeEach(async () => {
            page = await browser.newPage();
            await logIn(page, board);
            // New for each test, because a user's oldest session ends when there are too many.
            observer = await Client.loggedIn(board);
        });

        // Returns the board's current configuration of a partition.
        async function payloadOf(partition) {
            const file = await observer.get(downloadLink(await observer.backUp(partition)));
            return parseConfigurationFile(file.bytes).payload;
        }

        function stagedFiles() {
            return board.temporaryFiles().then((names) =>
                names.filter((name) => /^restored_eficonf[0-9a-f]+$/.test(name)),
            );
        }

        function makeFile(payload, more = {}) {
            return makeConfigurationFile({
                saveTime: SAVED,
                partition: 3,
                version: "1.23 B",
                name: "R&D",
                payload: Buffer.from(payload),
                ...more,
            });
        }

        test("a file is restored only to the two selected partitions", async () => {
            const before = await payloadOf(0);
            await upload(page, board, "Partition3.dat", makeFile("Boot=1\n", { version: "-" }));
            assert.deepEqual(
                await page.$$eval("dl.facts dd", (all) => all.map((each) => each.textContent)),
                ["3", "R&D", "2026-03-07 (local time of the board)", "-"],
            );
            await restoreTo(page, [3, 5]);
            await page.waitForAlert(/The BIOS configuration was restored\./);
            assert.match(await textOf(page, "[role=alert]"), /was restored/);
            assert.equal((await payloadOf(3)).toString(), "Boot=1\n");
            assert.equal((await payloadOf(5)).toString(), "Boot=1\n");
            assert.deepEqual(await payloadOf(0), before);
            assert.equal((await stagedFiles()).length, 1);
        });

        test("the question before a restore names the file and every target", async () => {
            await upload(page, board, "a.dat", makeFile("x"));
            await page.click("#pid3");
            await page.click("#pid5");
            page.accept = false;
            const posts = countPosts(page);
            await page.click("#restore");
            const question = await page.waitForAlert(/will be overwritten/);
            await posts.assertNone();
            const partitions = demoPartitions();
            for (const words of [
                "2026-03-07",
                "1.23 B",
                "R&D",
                `3: ${partitions.get(3).name}`,
                `5: ${partitions.get(5).name}`,
            ]) {
                assert.ok(question.includes(words), `${words} in ${question}`);
            }
            assert.ok(!question.includes(partitions.get(0).name));
            assert.equal((await page.$$("#restore")).length, 1);
        });

        test("the question of select-all counts installed and later partitions", async () => {
            await upload(page, board, "a.dat", makeFile("x"));
            page.accept = false;
            await page.click("#check_box");
            await page.click("#restore");
            const question = await page.waitForAlert(/will be overwritten/);
            assert.match(question, /All installed partitions: 5 now, and any installed before/);
            for (const [number, { name }] of demoPartitions()) {
                assert.ok(question.includes(`${number}: ${name}`), question);
            }
            // Rows selected one by one post these rows only.
            await page.click("#pid0");
            await page.click("#pid0");
            await page.click("#restore");
            assert.doesNotMatch(await page.waitForAlert(/Partitions to restore: 5\n/),
                /All installed/);
        });

        test("select-all includes a partition installed after the page was made", async () => {
            const own = await Board.start(`max_partitions = 4\n${PARTITION_0}${demoUsers()}`);
            try {
                const visitor = await browser.newPage();
                await logIn(visitor, own);
                await upload(visitor, own, "a.dat", makeFile("Boot=1\n", { version: "-" }));
                await writeFile(own.path("test.toml"),
                    `max_partitions = 4\n${PARTITION_0}${PARTITION_1}${demoUsers()}`);
                // The back-end reads the description when it starts.
                await own.control("die", "--back-in", "10");
                const client = await eventually(() => Client.loggedIn(own));
                await visitor.click("#check_box");
                await Promise.all([visitor.waitForNavigation(), visitor.click("#restore")]);
                await visitor.waitForAlert(/was restored/);
                assert.match(await textOf(visitor, ".plan"), /All installed partitions: 1 now, and any/);
                const file = await client.get(downloadLink(await client.backUp(1)));
                assert.equal(parseConfigurationFile(file.bytes).payload.toString(), "Boot=1\n");
                await visitor.close();
            } finally {
                await own.remove();
            }
        });

        test("the upload form posts its step once", async () => {
            await page.goto(board.url(RESTORE_PAGE));
            await chooseFile(page, "a.dat", makeFile("x"));
            // The form is not sent; its data is read instead.
            const steps = await page.$eval("#upload", (button) => {
                let posted;
                button.form.addEventListener("submit", (event) => {
                    posted = new FormData(button.form, event.submitter).getAll("hidden_status");
                    event.preventDefault();
                });
                button.click();
                return posted;
            });
            assert.deepEqual(steps, ["1"]);
        });

        test("nothing is selected at first and an empty selection is refused", async () => {
            await upload(page, board, "a.dat", makeFile("x"));
            assert.equal((await page.$$("input:checked")).length, 0);
            const posts = countPosts(page);
            await page.click("#restore");
            await page.waitForAlert(/Select a partition first/);
            await posts.assertNone();
            assert.equal((await page.$$("#restore")).length, 1);
        });

        test("select-all and the rows follow each other", async () => {
            await upload(page, board, "a.dat", makeFile("x"));
            const state = () =>
                page.evaluate(() => ({
                    all: selectAll.checked,
                    mixed: selectAll.indeterminate,
                    rows: tickedBoxes().length,
                }));
            await page.click("#pid3");
            assert.deepEqual(await state(), { all: false, mixed: true, rows: 1 });
            await page.click("#check_box");
            assert.deepEqual(await state(), { all: true, mixed: false, rows: 5 });
            assert.match(await textOf(page, "#ticked"), /5 of 5/);
            await page.click("#pid0");
            assert.deepEqual(await state(), { all: false, mixed: true, rows: 4 });
            await page.click("#check_box");
            await page.click("#check_box");
            assert.deepEqual(await state(), { all: false, mixed: false, rows: 0 });
        });

        test("rows mark the file's partition and differing versions", async () => {
            await upload(page, board, "a.dat", makeFile("x"));
            const remarks = await page.$$eval("tbody tr", (rows) =>
                rows.map((row) => [row.cells[1].textContent, row.cells[4].textContent]),
            );
            for (const [number, text] of remarks) {
                assert.equal(/saved from this partition/.test(text), number === "3", text);
                const version = demoPartitions().get(Number(number)).shownVersion;
                assert.equal(/version differs/.test(text), !["1.23 B", "-"].includes(version), number);
                assert.equal(/version unknown/.test(text), version === "-", number);
            }
        });

        test("a file with an unknown version is not marked as differing", async () => {
            await upload(page, board, "a.dat", makeFile("x", { version: "-" }));
            const remarks = await page.$$eval("tbody tr", (rows) =>
                rows.map((row) => row.cells[4].textContent));
            assert.ok(remarks.every((text) => /version unknown/.test(text)), remarks.join("|"));
            assert.ok(!remarks.some((text) => /differs/.test(text)), remarks.join("|"));
        });

        test("the button of a discard shows progress and is sent once", async () => {
            await upload(page, board, "a.dat", makeFile("x"));
            // The form is not sent, so that the page remains.
            const seen = await page.evaluate(() => {
                let sent = 0;
                addEventListener("submit", (event) => {
                    sent += event.defaultPrevented ? 0 : 1;
                    event.preventDefault();
                });
                const button = document.getElementById("discard");
                button.click();
                button.click();
                return { sent, text: button.textContent, busy: button.ariaDisabled };
            });
            assert.deepEqual(seen, { sent: 1, text: "Discarding…", busy: "true" });
        });

        test("a discarded file is gone", async () => {
            const before = (await stagedFiles()).length;
            await upload(page, board, "a.dat", makeFile("x"));
            assert.equal((await stagedFiles()).length, before + 1);
            await Promise.all([page.waitForNavigation(), page.click("#discard")]);
            assert.equal((await stagedFiles()).length, before);
            assert.equal((await page.$$("#upload")).length, 1);
            assert.deepEqual(page.alerts, []);
        });

        test("another file can be uploaded from the selection page", async () => {
            await upload(page, board, "a.dat", makeFile("first"));
            await chooseFile(page, "b.dat", makeFile("second", { partition: 7 }));
            await Promise.all([page.waitForNavigation(), page.click("#install")]);
            assert.equal(await textOf(page, "#file_pid"), "7");
            await restoreTo(page, [3]);
            assert.equal((await payloadOf(3)).toString(), "second");
        });

        test("a window is marked outdated after an upload in another window", async () => {
            const before = await payloadOf(3);
            await upload(page, board, "a.dat", makeFile("a"));
            await page.click("#pid3");
            const other = await browser.newWindow(page.browserContext());
            await upload(other, board, "b.dat", makeFile("b"));
            const warning = () => textOf(page, "#outdated");
            await eventually(async () => assert.match(await warning(), /out of date/));
            await page.bringToFront();
            const posts = countPosts(page);
            await page.click("#restore");
            await page.waitForAlert(/out of date/);
            await page.click("#discard");
            await posts.assertNone();
            assert.deepEqual(await payloadOf(3), before);
            await other.bringToFront();
            await restoreTo(other, [3]);
            assert.equal((await payloadOf(3)).toString(), "b");
        });

        test("a window is marked outdated after a discard in another window", async () => {
            await upload(page, board, "a.dat", makeFile("a"));
            const other = await browser.newWindow(page.browserContext());
            await upload(other, board, "a.dat", makeFile("a"));
            await Promise.all([other.waitForNavigation(), other.click("#discard")]);
            await eventually(async () =>
                assert.match(await textOf(page, "#outdated"), /out of date/));
        });

        test("a backup is restored unchanged to another partition", async () => {
            const original = await observer.get(downloadLink(await observer.backUp(2)));
            await upload(page, board, "x.dat", original.bytes);
            await restoreTo(page, [3]);
            await page.waitForAlert(/was restored/);
            assert.equal(
                sha256(await payloadOf(3)),
                sha256(parseConfigurationFile(original.bytes).payload),
            );
        });

        for (const [what, name, bytes, words] of [
            ["an empty file", "a.dat", Buffer.alloc(0), /The file is empty.*\[33-1028\]/],
            ["a large file", "a.dat", Buffer.alloc(393217), /at most 393216.*\[63-1028\]/],
            ["a wrong name", "a.DAT", Buffer.from("x"), /must end in \.dat.*\[63-1026\]/],
        ]) {
            test(`${what} is refused by the page and by the board in the same words`, async () => {
                await page.goto(board.url(RESTORE_PAGE));
                const posts = countPosts(page);
                await chooseFile(page, name, bytes);
                await page.click("#upload");
                const own = await page.waitForAlert(words);
                await posts.assertNone();
                page.alerts.length = 0;
                await Promise.all([
                    page.waitForNavigation(),
                    page.evaluate(() => {
                        document.querySelector("input[name=hidden_status]").value = "1";
                        document.getElementById("form_name").submit();
                    }),
                ]);
                assert.equal(await page.waitForAlert(words), own);
            });
        }

        test("a missing file is refused", async () => {
            await page.goto(board.url(RESTORE_PAGE));
            const posts = countPosts(page);
            await page.click("#upload");
            await page.waitForAlert(/Select a configuration file .* first/);
            await posts.assertNone();
        });

        test("a file that is not a configuration file is refused and not kept", async () => {
            const before = (await stagedFiles()).length;
            await upload(page, board, "a.dat", Buffer.from("no configuration"));
            await page.waitForAlert(/not a usable BIOS configuration file.*\[64-1026\]/);
            assert.equal((await stagedFiles()).length, before);
            assert.equal((await page.$$("#upload")).length, 1);
        });

        test("a refused restore changes nothing and shows the reason", async () => {
            const running = [...demoPartitions()].find(([, each]) => each.running)[0];
            const before = [await payloadOf(running), await payloadOf(3)];
            await upload(page, board, "a.dat", makeFile("never", { version: "-" }));
            await restoreTo(page, [3, running]);
            await page.waitForAlert(/partition is running.*\[73-1549\]/);
            assert.deepEqual([await payloadOf(running), await payloadOf(3)], before);

            await upload(page, board, "a.dat", makeFile("never", { version: "77.1" }));
            await restoreTo(page, [3]);
            await page.waitForAlert(/does not fit.*\[353-1551\]/);
            assert.deepEqual(await payloadOf(3), before[1]);
        });

        test("Reload after a restore restores nothing", async () => {
            await upload(page, board, "a.dat", makeFile("once"));
            await restoreTo(page, [3]);
            await page.waitForAlert(/was restored/);
            const posts = countPosts(page);
            await page.reload();
            await posts.assertNone();
            assert.equal((await page.$$("#upload")).length, 1);
            assert.equal(page.alerts.filter((text) => /was restored/.test(text)).length, 1);
        });

        test("Back and Forward after a restore restore nothing", async () => {
            await upload(page, board, "a.dat", makeFile("once"));
            await restoreTo(page, [3]);
            await page.waitForAlert(/was restored/);
            await upload(page, board, "b.dat", makeFile("twice"));
            await restoreTo(page, [3]);
            const posts = countPosts(page);
            const steps = await page.evaluate(() => history.length - 1);
            for (const go of ["goBack", "goForward"]) {
                for (let step = 0; step < steps; ++step) {
                    await page[go]().catch(() => {});
                    await page.waitForFunction(() => document.readyState === "complete");
                }
            }
            await posts.assertNone();
            assert.equal((await payloadOf(3)).toString(), "twice");
            assert.equal(page.alerts.filter((text) => /was restored/.test(text)).length, 2);
        });
    });
}

describe("restore by keyboard, by double press and in Japanese", () => {
    let board;
    let browser;
    let page;

    provide((started) => ({ board, browser } = started));
    beforeEach(async () => {
        page = await browser.newPage();
        await logIn(page, board);
    });

    const facts = { saveTime: SAVED, partition: 3, version: "1.23 B", name: "R&D" };
    const file = makeConfigurationFile({ ...facts, payload: Buffer.from("x") });

    test("works with the keyboard alone", async () => {
        await page.goto(board.url(RESTORE_PAGE));
        await chooseFile(page, "a.dat", file);
        await page.focus("#filename");
        await page.keyboard.press("Tab");
        await Promise.all([page.waitForNavigation(), page.keyboard.press("Enter")]);
        await page.focus("#check_box");
        // Moves past partitions 0 and 2 to partition 3.
        for (let i = 0; i < 3; ++i) {
            await page.keyboard.press("Tab");
        }
        await page.keyboard.press("Space");
        assert.equal(await page.$eval("#pid3", (box) => box.checked), true);
        await Promise.all([page.waitForNavigation(), page.keyboard.press("Enter")]);
        await page.waitForAlert(/was restored/);
    });

    test("a second press while a restore is under way sends nothing", async () => {
        await upload(page, board, "a.dat", file);
        await page.click("#pid3");
        const posts = countPosts(page);
        await Promise.all([
            page.waitForNavigation(),
            page.evaluate(() => {
                const button = document.getElementById("restore");
                button.click();
                window.setTimeout(() => button.click());
                button.click();
            }),
        ]);
        await page.waitForAlert(/was restored/);
        assert.equal(posts.count, 1);
        assert.match(await textOf(page, ".plan"), /3: R&D/);
    });

    test("every page uses the language chosen on the menu", async () => {
        await page.goto(board.url("/"));
        await Promise.all([page.waitForNavigation(), page.click("button[value=ja]")]);
        await upload(page, board, "a.dat", file);
        assert.equal(await page.$eval("html", (element) => element.lang), "ja");
        await restoreTo(page, [3]);
        await page.waitForAlert(/復元しました/);
    });
});
