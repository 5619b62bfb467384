// Tests that a page shows the outcome of a request in words, by icon and colour, and in attributes
// that do not depend on the language.

import assert from "node:assert/strict";
import { beforeEach, describe, test } from "node:test";
import { BROWSERS, BACKUP_PAGE, RESTORE_PAGE, logIn, textOf } from "./support/browser.js";
import { LANGUAGES, textIn } from "./support/catalogue.js";
import { makeConfigurationFile } from "./support/configurationFile.js";
import { provide } from "./support/fixture.js";
import { restoreWithoutScript, upload, uploadWithoutScript } from "./support/restorePage.js";

const RESTORE = "0x020100A4";

const FILE = makeConfigurationFile({
    saveTime: Date.UTC(2026, 2, 7, 12) / 1000,
    partition: 3,
    version: "1.23 B",
    name: "R&D",
    payload: Buffer.from("x"),
});

// Each outcome of a restore: the boardctl order that causes it, and what the page shows: `word` is a
// caption, `text` is the English text.
const OUTCOMES = [
    { order: ["reset"], outcome: "done", style: "success", message: "70", code: "0",
        word: 9012, text: /was restored\./ },
    { order: ["refuse", RESTORE, 1602], outcome: "refused", style: "error", message: "71",
        code: "1602", word: 9013,
        text: /not installed.*No partition was changed/ },
    { order: ["torn", 3], outcome: "unknown", style: "unknown", message: "71", code: "2003",
        word: 9014,
        text: /It is not known whether the partitions were changed.*Activity page/ },
    { order: ["refuse", RESTORE, 1999], outcome: "unknown", style: "unknown", message: "71",
        code: "1999", word: 9014, text: /It is not known/ },
];

function noticeOf(page) {
    return page.$eval(".notice", (notice) => {
        const line = notice.querySelector("[data-message]");
        return {
            outcome: notice.dataset.outcome,
            role: notice.getAttribute("role"),
            classes: [...notice.classList],
            ground: getComputedStyle(notice).backgroundColor,
            word: notice.querySelector(".outcome").lastChild.textContent.trim(),
            icon: notice.querySelector(".outcome [aria-hidden=true]").textContent,
            message: line.dataset.message,
            code: line.dataset.code,
            text: line.textContent,
            link: notice.querySelector("a")?.getAttribute("href"),
        };
    });
}

function assertOutcome(seen, expected, language) {
    assert.equal(seen.outcome, expected.outcome);
    assert.ok(seen.classes.includes(expected.style), seen.classes.join());
    assert.equal(seen.role, "alert");
    assert.equal(seen.word, textIn(language, 2, expected.word));
    assert.equal(seen.message, expected.message);
    assert.equal(seen.code, expected.code);
    const ownText = textIn(language, expected.message, expected.code);
    assert.ok(seen.text.startsWith(ownText ?? textIn(language, 1, expected.message)), seen.text);
    if (language === "en") {
        assert.match(seen.text, expected.text);
    }
    assert.match(seen.text, expected.code === "0"
        ? /[^\d\]]$/ : new RegExp(`^[^\\[]* \\[${expected.message}-${expected.code}\\]$`));
    assert.equal(seen.link, expected.outcome === "unknown" ? "/activity.cgi" : undefined);
}

for (const kind of BROWSERS) {
    for (const language of LANGUAGES) {
        describe(`outcomes in ${kind}, ${language}`, () => {
            let board;
            let browser;
            let page;

            provide((started) => ({ board, browser } = started), [], [language, kind]);
            beforeEach(async () => {
                await board.control("reset");
                page = await browser.newPage();
                await logIn(page, board);
            });

            test("of a restore differ in word, icon, colour and attributes", async () => {
                const looks = new Map();
                for (const expected of OUTCOMES) {
                    await board.control("reset");
                    await upload(page, board, "a.dat", FILE);
                    await page.click("#pid3");
                    await board.control(...expected.order);
                    await Promise.all([page.waitForNavigation(), page.click("#restore")]);
                    const seen = await noticeOf(page);
                    assertOutcome(seen, expected, language);
                    looks.set(seen.outcome, [seen.ground, seen.icon, seen.word]);
                    // The requested restore, in the words of the selection page.
                    const list = await page.$$eval(".plan dd", (all) =>
                        all.map((each) => each.textContent));
                    assert.deepEqual(list.slice(0, 3), ["a.dat", "3", "R&D"]);
                    assert.match(list.at(-1), /^3: R&D .*1\.23 B\)$/);
                }
                for (const aspect of [0, 1, 2]) {
                    const values = [...looks.values()].map((look) => look[aspect]);
                    assert.equal(new Set(values).size, 3, values.join());
                }
            });

            test("of a failed back-end are named in the reader's language", async () => {
                await board.control("refuse", "0x0201002F", 1609);
                await page.goto(board.url(BACKUP_PAGE));
                const seen = await noticeOf(page);
                assert.deepEqual([seen.outcome, seen.message, seen.code], ["refused", "107", "1609"]);
                assert.equal(seen.text, `${textIn(language, 107, 1609)} [107-1609]`);
                assert.match(await textOf(page, ".detail[lang=en]"), /^Failed to obtain the partition status/);
            });
        });
    }
}

for (const kind of BROWSERS) {
    describe(`outcomes in ${kind} without scripts`, () => {
        let board;
        let browser;

        provide((started) => ({ board, browser } = started), [], ["en", kind, { scripts: false }]);

        test("of a restore are shown", async () => {
            const page = await browser.newPage();
            await logIn(page, board);
            for (const expected of OUTCOMES) {
                await board.control("reset");
                await uploadWithoutScript(page, board, "a.dat", FILE);
                await board.control(...expected.order);
                await restoreWithoutScript(page, 3);
                assertOutcome(await noticeOf(page), expected, "en");
                assert.equal(await page.$(".plan"), null);  // made by a script
            }
        });
    });
}
