// Helpers for the pages of a restore.

import { mkdtemp, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import path from "node:path";
import { RESTORE_PAGE } from "./browser.js";

// Calls `use` with the path of a temporary file with this name and content.
export async function withFile(name, bytes, use) {
    const folder = await mkdtemp(path.join(tmpdir(), "upload-"));
    try {
        const file = path.join(folder, name);
        await writeFile(file, bytes);
        return await use(file);
    } finally {
        await rm(folder, { recursive: true });
    }
}

// Opens the upload form, uploads a file and waits for the next page.
export async function upload(page, board, name, bytes) {
    await page.goto(board.url(RESTORE_PAGE));
    await chooseFile(page, name, bytes);
    await Promise.all([page.waitForNavigation(), page.click("#upload")]);
}

// Presses a key on an element: page.click() needs scripts in Firefox.
async function press(page, selector, key) {
    await page.focus(selector);
    await page.keyboard.press(key);
}

// Follows a link or posts a form on a page that runs no scripts.
export async function followWithoutScript(page, selector) {
    await Promise.all([page.waitForNavigation(), press(page, selector, "Enter")]);
}

// Like upload(), for a page without scripts.
export async function uploadWithoutScript(page, board, name, bytes) {
    await page.goto(board.url(RESTORE_PAGE));
    await withFile(name, bytes, async (file) => {
        await (await page.$("#filename")).uploadFile(file);
        await followWithoutScript(page, "#upload");
    });
}

// Like restoreTo(), for a page without scripts.
export async function restoreWithoutScript(page, partition) {
    await press(page, `#pid${partition}`, " ");
    await followWithoutScript(page, "#restore");
}

export async function chooseFile(page, name, bytes) {
    await withFile(name, bytes, async (file) => {
        const chooser = await page.$("#filename");
        await chooser.uploadFile(file);
        // The browser reads the file when it sends the form. A copy in memory outlives the file.
        await page.evaluate(async () => {
            const input = document.getElementById("filename");
            const kept = new File([await input.files[0].arrayBuffer()], input.files[0].name);
            const transfer = new DataTransfer();
            transfer.items.add(kept);
            input.files = transfer.files;
        });
    });
}

export async function restoreTo(page, partitions) {
    for (const partition of partitions) {
        await page.click(`#pid${partition}`);
    }
    await Promise.all([page.waitForNavigation(), page.click("#restore")]);
}
