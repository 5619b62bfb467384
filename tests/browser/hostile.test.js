// Tests that text from a file, a partition's name or a version is never markup on a page.

import assert from "node:assert/strict";
import { describe, test } from "node:test";
import {
    BACKUP_PAGE,
    RESTORE_PAGE,
    chooseAndBackUp,
    logIn,
} from "./support/browser.js";
import { makeConfigurationFile, parseConfigurationFile } from "./support/configurationFile.js";
import { demoUsers } from "./support/demoBoard.js";
import { provide } from "./support/fixture.js";
import { chooseFile, upload } from "./support/restorePage.js";

const HOSTILE = [
    "<script>alert('in')</script>",
    "\"><img src=x onerror=alert('in')>",
    "'-alert('in')-'",
    "</script><script>alert('in')</script>",
    "</title></dl></td></table><h1>in</h1>",
    "\\\"; alert('in'); //",
    "`${alert('in')}`",
    "{{message}} {{table_pid}} {{if filepath}}",
    "line\nbreak\r\nand\ttab",
    "\u2028\u2029\u202Egnp.exe\u2066\u200F",
    "A\u200B\u2060\uFEFF\u{E0041}\u00ADB",
    "&lt;b&gt; &amp; &#60;",
    "1&filename=2?filename=3",
    "é ü 日本語 𝄞",
];

// Returns `text` as a board description can contain it: without control characters.
function onBoard(text) {
    return text.replaceAll(/[\x00-\x1f]/g, " ");
}

// Returns the description of a board with hostile partition names and versions.
function describeBoard() {
    const quote = (text) => JSON.stringify(text).replaceAll("\u007f", "");
    const parts = HOSTILE.map(
        (text, number) =>
            `[[partition]]\nnumber = ${number}\nname = ${quote(onBoard(text))}\nnode_ids = [${number}]\n` +
            `[[system_board]]\nnumber = ${number}\nhome = true\nbios_version = ${quote(onBoard(text))}\n`,
    );
    return `max_partitions = ${HOSTILE.length}\n${parts.join("\n")}\n${demoUsers()}`;
}

function makeFile(text) {
    return makeConfigurationFile({
        saveTime: 1772884800,
        partition: 0,
        version: text,
        name: text,
        payload: Buffer.from(text),
    });
}

// Returns `text` as a page shows it: with visible replacements for line ends, direction marks and
// invisible characters.
function asShown(text) {
    return text
        .replaceAll(/[\x00-\x08\x0a-\x1f]/g, (control) =>
            String.fromCharCode(0x2400 + control.charCodeAt(0)),
        )
        .replaceAll(/[\x80-\x9f\u2028\u2029\p{Cf}]/gu, "\ufffd");
}

describe("hostile text", () => {
    let board;
    let browser;
    let page;

    provide(async (started) => {
        ({ board, browser } = started);
        page = await browser.newPage();
        page.on("pageerror", (error) => page.alerts.push(`error: ${error.message}`));
        await logIn(page, board);
    }, [describeBoard()]);

    function cells(column) {
        return page.$$eval(
            "tbody tr",
            (rows, index) => rows.map((row) => row.cells[index].textContent),
            column,
        );
    }

    test("in partition names remains text on the backup page", async () => {
        await page.goto(board.url(BACKUP_PAGE));
        assert.deepEqual(await cells(2), HOSTILE.map(onBoard).map(asShown));
        assert.deepEqual(page.alerts, []);
    });

    for (const [number, text] of HOSTILE.entries()) {
        test(`in a version does no harm in a backup: ${JSON.stringify(text)}`, async () => {
            page.alerts.length = 0;
            await page.goto(board.url(BACKUP_PAGE));
            await chooseAndBackUp(page, number);
            const { name, bytes } = await browser.nextDownload();
            assert.equal(parseConfigurationFile(bytes).version, onBoard(text));
            assert.doesNotMatch(name, /[/\\"']/);
            const link = await page.$eval("#download_link", (element) => ({
                text: element.textContent,
                address: decodeURIComponent(element.href),
            }));
            const inName = asShown(onBoard(text)).replaceAll(/[. ]/g, "");
            assert.ok(link.text.endsWith(`_${inName}.dat`), link.text);
            assert.ok(link.address.endsWith(`filename=${link.text}`), link.address);
            assert.deepEqual(page.alerts, []);
        });

        test(`in a file remains text on the selection page: ${JSON.stringify(text)}`, async () => {
            page.alerts.length = 0;
            await upload(page, board, "a.dat", makeFile(text));
            const facts = await page.$$eval("dl.facts dd", (all) =>
                all.map((each) => each.textContent),
            );
            assert.equal(facts[1], asShown(text));
            assert.equal(facts[3], asShown(text));
            assert.deepEqual(await cells(2), HOSTILE.map(onBoard).map(asShown));
            assert.deepEqual(page.alerts, []);
            await page.click(`#pid${number}`);
            page.accept = false;
            await page.click("#restore");
            const question = await page.waitForAlert(/will be overwritten/);
            page.accept = true;
            assert.ok(question.includes(asShown(text).replaceAll(/\s+/g, " ")), question);
            assert.equal(page.alerts.length, 1);
        });
    }

    // Texts that could look like the dialog's own lines.
    for (const [what, text] of [
        ["tabs and blanks", `A${"\t".repeat(40)}${" ".repeat(80)}B`],
        ["blanks of other widths", `A${"\u00a0\u2003\u3000".repeat(30)}B`],
        ["line breaks", "A\r\n\n\u2028\u0085B"],
        ["direction marks", "A\u202e\u2066\u200f\u061cB"],
        ["invisible characters", "A\u200b\u2060\ufeff\u{e0041}\u00adB"],
        ["length", `A${"x".repeat(250)}B`],
    ]) {
        test(`in a file adds nothing to the question by ${what}`, async () => {
            const ask = async (bytes) => {
                page.alerts.length = 0;
                await upload(page, board, "a.dat", bytes);
                await page.click("#pid0");
                page.accept = false;
                await page.click("#restore");
                const question = await page.waitForAlert(/will be overwritten/);
                page.accept = true;
                return question.split("\n");
            };
            const harmless = await ask(makeFile("A B"));
            const lines = await ask(makeFile(text));
            assert.equal(lines.length, harmless.length);
            for (const [number, line] of lines.entries()) {
                assert.doesNotMatch(line, /[^\S ]| {2}|[\p{Cc}\p{Cf}]/u);
                assert.ok(line.length < harmless[number].length + 120, line);
            }
            assert.ok(lines.some((line) => /: A/.test(line)), lines.join("|"));
        });

        test(`in a file adds nothing to the result by ${what}`, async () => {
            await upload(page, board, "a.dat", makeFile(text));
            await page.click("#pid0");
            await Promise.all([page.waitForNavigation(), page.click("#restore")]);
            const plan = await page.$eval(".plan", (element) => element.textContent);
            assert.match(plan, /A/);
            assert.doesNotMatch(plan, /[^\S ]| {2}|[\p{Cc}\p{Cf}]/u);
            assert.ok(plan.length < 2000, plan.length);
        });
    }

    test("in the name of an uploaded file does no harm", async () => {
        for (const name of ["<script>alert('in')<.dat", "a'b\"c&d.dat", "日本語 {{message}}.dat"]) {
            page.alerts.length = 0;
            await page.goto(board.url(RESTORE_PAGE));
            await chooseFile(page, name.replaceAll("/", ""), makeFile("9.9"));
            await Promise.all([page.waitForNavigation(), page.click("#upload")]);
            assert.equal((await page.$$("#file_pid")).length, 1, name);
            assert.deepEqual(page.alerts, []);
        }
    });

    test("with malformed UTF-8 does no harm", async () => {
        page.alerts.length = 0;
        const bytes = makeFile("x".repeat(4));
        const broken = makeConfigurationFile({
            saveTime: 1772884800,
            partition: 0,
            version: Buffer.from([0xff, 0xfe, 0x80, 0x3c]),
            name: Buffer.from([0xc3, 0x28, 0xe2, 0x82]),
            payload: bytes,
        });
        await upload(page, board, "a.dat", broken);
        assert.equal((await page.$$("#file_pid")).length, 1);
        assert.equal((await page.$$("tbody tr")).length, HOSTILE.length);
        assert.deepEqual(page.alerts, []);
    });

    test("inserted as markup does not run", async () => {
        const pages = { [BACKUP_PAGE]: "#backup", [RESTORE_PAGE]: "#upload" };
        for (const [address, button] of Object.entries(pages)) {
            await page.goto(board.url(address));
            const ran = await page.evaluate((selector) => {
                const script = document.createElement("script");
                script.textContent = "window.ran = 'script'";
                document.body.append(script);
                const element = document.createElement("button");
                element.setAttribute("onclick", "window.ran = 'attribute'");
                document.body.append(element);
                element.click();
                return [window.ran ?? "nothing", document.querySelector(selector) !== null];
            }, button);
            assert.deepEqual(ran, ["nothing", true]);
        }
    });
});
