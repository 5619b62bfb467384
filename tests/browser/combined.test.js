// Tests of the combined page in a real browser. No board builds it, but it shares its skeleton with
// the backup page.

import assert from "node:assert/strict";
import { after, before, beforeEach, describe, test } from "node:test";
import { THEMES, WIDTHS, assertAccessible, show } from "./support/accessibility.js";
import { Board } from "./support/board.js";
import { Browser, countPosts, logIn, markupOf, textOf } from "./support/browser.js";
import { makeConfigurationFile, parseConfigurationFile } from "./support/configurationFile.js";
import { eventually } from "./support/eventually.js";
import { chooseFile } from "./support/restorePage.js";

const PAGE = "/maintenance/efi_backup_restore.cgi";

function makeFile(payload, more = {}) {
    return makeConfigurationFile({
        saveTime: Date.UTC(2026, 2, 7, 12) / 1000,
        partition: 3,
        version: "10.20.30",
        name: "R&D",
        payload: Buffer.from(payload),
        ...more,
    });
}

describe("the combined page", () => {
    let board;
    let browser;
    let page;

    before(async () => {
        board = await Board.start();
        await board.replaceScreen("tests/combined/combined_page");
        browser = await Browser.start();
    });
    after(async () => {
        await browser?.stop();
        await board?.remove();
    });
    beforeEach(async () => {
        page = await browser.newPage();
        await logIn(page, board);
        await page.goto(board.url(PAGE));
    });

    async function backUp() {
        await Promise.all([page.waitForNavigation(), page.click("#download")]);
        return browser.nextDownload();
    }

    // Uploads a file and answers the page's question; the page then submits the next step itself.
    async function uploadAndAnswer(bytes, accept) {
        page.accept = accept;
        await chooseFile(page, "a.dat", bytes);
        const answered = new Promise((resolve) => {
            let loads = 0;
            page.on("load", () => ++loads === 2 && resolve());
        });
        // Clicks later, because the page navigates by itself while the click is still running.
        await page.$eval("#install", (button) => setTimeout(() => button.click()));
        await answered;
        await waitForNoStagedFile();
    }

    async function stagedFiles() {
        const names = await board.temporaryFiles();
        return names.filter((name) => /^restored_eficonf[0-9a-f]+$/.test(name));
    }

    async function waitForNoStagedFile() {
        await eventually(async () => assert.deepEqual(await stagedFiles(), []));
    }

    test("backs up partition 0 under a name without its number", async () => {
        const { name, bytes } = await backUp();
        assert.match(name, /^BIOS_\d{8}_102030\.dat$/);
        assert.equal(parseConfigurationFile(bytes).partition, 0);
    });

    test("asks about an uploaded file, restores it to partition 0 and removes it", async () => {
        await uploadAndAnswer(makeFile("Boot=0\n"), true);
        const question = page.alerts.find((text) => text.includes("Restore this file"));
        assert.match(question, /\?:\nSaved on: 2026-03-07\nBIOS version: 10\.20\.30$/);
        await page.waitForAlert(/was restored/);
        await page.goto(board.url(PAGE));
        const { bytes } = await backUp();
        assert.equal(parseConfigurationFile(bytes).payload.toString(), "Boot=0\n");
    });

    test("discards the file when the answer is no", async () => {
        await uploadAndAnswer(makeFile("never"), false);
        await page.goto(board.url(PAGE));
        const { bytes } = await backUp();
        assert.notEqual(parseConfigurationFile(bytes).payload.toString(), "never");
    });

    test("a hostile version remains text in the question", async () => {
        const version = "9.\"</script><script>alert('in')</script>\\";
        await uploadAndAnswer(makeFile("x", { version }), false);
        assert.ok(page.alerts.some((text) => text.includes(version)), page.alerts.join("|"));
        assert.ok(!page.alerts.includes("in"));
    });

    test("a version adds no line to the question", async () => {
        const ask = async (version) => {
            page.alerts.length = 0;
            await page.goto(board.url(PAGE));
            await uploadAndAnswer(makeFile("x", { version }), false);
            return page.alerts.find((text) => text.includes("Restore this file")).split("\n");
        };
        const harmless = await ask("9.9");
        const lines = await ask(`9.9\\n\\n${"\t".repeat(30)}Nothing will be overwritten.\n\u202eB`);
        assert.equal(lines.length, harmless.length);
        assert.doesNotMatch(lines.at(-1), /[^\S ]| {2}|[\p{Cc}\p{Cf}]/u);
        assert.ok(lines.at(-1).includes("9.9\\n\\n Nothing"), lines.at(-1));
    });

    test("refuses a file that is not a configuration file and keeps nothing", async () => {
        await chooseFile(page, "a.dat", Buffer.from("no configuration"));
        await Promise.all([page.waitForNavigation(), page.click("#install")]);
        await page.waitForAlert(/not a usable BIOS configuration file.*\[64-1026\]/);
        assert.deepEqual(await stagedFiles(), []);
        assert.equal((await page.$$("#install")).length, 1);
    });

    test("asks for a file before sending anything", async () => {
        const posts = countPosts(page);
        await page.click("#install");
        await page.waitForAlert(/Select a configuration file .* first/);
        await posts.assertNone();
    });

    test("a reload shows the form and sends no step again", async () => {
        await chooseFile(page, "a.dat", Buffer.from("no configuration"));
        await Promise.all([page.waitForNavigation(), page.click("#install")]);
        await page.waitForAlert(/\[64-1026\]/);
        assert.equal(page.url(), board.url(`${PAGE}?functionID=105`));
        page.alerts.length = 0;
        const methods = [];
        page.on("request", (request) => methods.push(request.method()));
        await page.reload();
        assert.ok(!methods.includes("POST"), methods.join());
        assert.deepEqual(page.alerts, []);
    });

    for (const [what, button, label, busy, prepare] of [
        ["a backup", "#download", "Back up partition 0", "Backing up…", async () => {}],
        ["an upload", "#install", "Upload", "Uploading…",
            () => chooseFile(page, "a.dat", makeFile("x"))],
    ]) {
        test(`the button of ${what} shows progress and is sent once`, async () => {
            assert.equal(await textOf(page, button), label);
            await prepare();
            // The form is not sent, so that the page remains.
            const seen = await page.$eval(button, (element) => {
                const form = document.getElementById("form_name");
                let sent = 0;
                form.submit = () => { ++sent; };
                element.click();
                element.click();
                return { sent, text: element.textContent, busy: element.ariaDisabled };
            });
            assert.deepEqual(seen, { sent: 1, text: busy, busy: "true" });
        });
    }

    test("a posted message shows that the file was restored, without an alert", async () => {
        await page.$eval("#form_name", (form) => {
            const field = document.createElement("input");
            field.name = "message";
            form.append(field);
        });
        await Promise.all([
            page.waitForNavigation(),
            page.$eval("#form_name", (form) => setTimeout(() => form.submit())),
        ]);
        assert.match(await textOf(page, ".notice"), /was restored/);
        assert.deepEqual(page.alerts, []);
        assert.equal((await page.$$("#install")).length, 1);
    });

    // A platform's error page may return; the program then prints a page without components.
    test("an error page causes no script error", async () => {
        const viewer = await browser.newPage();
        const mistakes = [];
        viewer.on("pageerror", (error) => mistakes.push(error.message));
        await logIn(viewer, board, "viewer");
        await viewer.goto(board.url(`${PAGE}?error_page_returns=1`), { waitUntil: "load" });
        assert.equal((await viewer.$$("#form_name")).length, 1);
        assert.equal((await viewer.$$("#install, #backup")).length, 0);
        assert.deepEqual(mistakes, []);
        await viewer.close();
    });

    test("shows no part of the backup page and no placeholder", async () => {
        assert.equal((await page.$$("table")).length, 0);
        assert.equal((await page.$$("#backup")).length, 0);
        assert.match(await textOf(page, "h1"), /Backup\/Restore BIOS Configuration/);
        // Any remainder of a placeholder would contain one of these characters.
        assert.doesNotMatch(await markupOf(page), /[{}|]/);
    });

    for (const theme of THEMES) {
        for (const width of WIDTHS) {
            test(`is accessible: ${theme}, ${width} pixels`, async () => {
                await show(page, theme, width);
                await assertAccessible(page);
                await backUp();
                await assertAccessible(page);
            });
        }
    }
});
