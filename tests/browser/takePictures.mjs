// Takes pictures of every page of a board that it starts itself. tools/draw runs it.
//
// Usage: takePictures.mjs [--variants] FOLDER

import { mkdir } from "node:fs/promises";
import path from "node:path";
import { parseArgs } from "node:util";
import { Board } from "./support/board.js";
import { BACKUP_PAGE, Browser, RESTORE_PAGE, chooseAndBackUp, logIn } from "./support/browser.js";
import { LANGUAGES } from "./support/catalogue.js";
import { makeConfigurationFile } from "./support/configurationFile.js";
import { upload } from "./support/restorePage.js";

const { values, positionals } = parseArgs({
    options: { variants: { type: "boolean" } },
    allowPositionals: true,
});
const [folder] = positionals;
if (!folder || positionals.length > 1) {
    console.error("Usage: takePictures.mjs [--variants] FOLDER");
    process.exit(2);
}

const FILE = makeConfigurationFile({
    saveTime: Date.UTC(2026, 10, 14, 12) / 1000,
    partition: 5,
    version: "1.23 B",
    name: "Spare",
    payload: Buffer.from("Boot mode=UEFI\n"),
});

async function select(page, board) {
    await upload(page, board, "Partition5_20261114_123B.dat", FILE);
    await page.click("#pid5");
}

// Each page, in an order that gives the later ones content.
const PAGES = {
    login: (page, board) => page.goto(board.url("/login.cgi")),
    upload: (page, board) => page.goto(board.url(RESTORE_PAGE)),
    selection: select,
    result: async (page, board) => {
        await select(page, board);
        await Promise.all([page.waitForNavigation(), page.click("#restore")]);
    },
    refusal: async (page, board) => {
        await upload(page, board, "Partition5_20261114_123B.dat", FILE);
        await page.click("#pid0");
        await Promise.all([page.waitForNavigation(), page.click("#restore")]);
    },
    backup: async (page, board) => {
        await page.goto(board.url(BACKUP_PAGE));
        await chooseAndBackUp(page, 0);
    },
    activity: (page, board) => page.goto(board.url("/activity.cgi")),
    menu: (page, board) => page.goto(board.url("/")),
    error: (page, board) => page.goto(board.url("/nothing")),
};

const PLAIN = { name: "", language: "en", theme: "light", width: 1000 };
const VARIANTS = [
    { ...PLAIN, name: "-dark", theme: "dark" },
    { ...PLAIN, name: "-narrow", width: 360 },
    { ...PLAIN, name: "-print", print: true },
    ...LANGUAGES.filter((language) => language !== "en").flatMap((language) => [
        { ...PLAIN, name: `-${language}`, language },
        { ...PLAIN, name: `-${language}-narrow`, language, width: 360 },
    ]),
];

async function takePictures(board, variant) {
    const browser = await Browser.start(variant.language);
    try {
        for (const [name, open] of Object.entries(PAGES)) {
            const page = await browser.newPage();
            await page.setViewport({ width: variant.width, height: 600 });
            await page.emulateMediaFeatures([
                { name: "prefers-color-scheme", value: variant.theme },
            ]);
            if (name !== "login") {
                await logIn(page, board);
            }
            await open(page, board);
            const file = path.join(folder, `${name}${variant.name}`);
            if (variant.print) {
                await page.pdf({ path: `${file}.pdf` });
            } else {
                await page.screenshot({ path: `${file}.png`, fullPage: true });
            }
            await page.close();
        }
    } finally {
        await browser.stop();
    }
}

await mkdir(folder, { recursive: true });
const board = await Board.start();
try {
    for (const variant of values.variants ? [PLAIN, ...VARIANTS] : [PLAIN]) {
        await takePictures(board, variant);
    }
} finally {
    await board.remove();
}
