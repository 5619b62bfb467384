// A real browser with its own profile and download folder, and helpers for its pages.

import assert from "node:assert/strict";
import { mkdtemp, readFile, readdir, rm } from "node:fs/promises";
import { tmpdir } from "node:os";
import path from "node:path";
import { setTimeout as sleep } from "node:timers/promises";
import puppeteer from "puppeteer-core";
import { PATIENCE_MILLISECONDS } from "./eventually.js";

const CHROMIUM = {
    executablePath: "/usr/bin/chromium",
    args: [
        "--no-sandbox",
        "--disable-gpu",
        "--no-first-run",
        "--disable-background-networking",
        "--disable-component-update",
        "--disable-sync",
    ],
};

const FIREFOX = {
    browser: "firefox",
    executablePath: "/usr/bin/firefox-esr",
};

// TEST_BROWSERS limits the tests to the browsers that it lists.
export const BROWSERS = process.env.TEST_BROWSERS?.split(",") ?? ["chromium", "firefox"];

const PATIENCE = {
    timeout: PATIENCE_MILLISECONDS,
    protocolTimeout: PATIENCE_MILLISECONDS,
};

export class Browser {
    // `words` are added to Chromium's command line. With `scripts` false, pages run no scripts.
    static async start(language = "en", kind = "chromium", { words = [], scripts = true } = {}) {
        const browser = new Browser();
        browser.scripts = scripts;
        browser.folder = await mkdtemp(path.join(tmpdir(), "browser-"));
        browser.downloads = await mkdtemp(path.join(browser.folder, "downloads-"));
        const profile = path.join(browser.folder, "profile");
        browser.chromium = kind === "chromium";
        browser.process = await puppeteer.launch(
            browser.chromium
                ? {
                      ...CHROMIUM,
                      ...PATIENCE,
                      args: [...CHROMIUM.args, `--accept-lang=${language}`, ...words],
                      userDataDir: profile,
                      downloadBehavior: { policy: "allow", downloadPath: browser.downloads },
                  }
                : {
                      ...FIREFOX,
                      ...PATIENCE,
                      userDataDir: profile,
                      extraPrefsFirefox: {
                          "intl.accept_languages": language,
                          "javascript.enabled": scripts,
                      },
                  },
        );
        return browser;
    }

    async stop() {
        await this.process.close();
        await rm(this.folder, { recursive: true, force: true, maxRetries: 30 });
    }

    // Opens a page in a new context, so that tests do not share cookies. `page.alerts` collects the
    // texts of all dialogs, which are accepted at once, or dismissed while `page.accept` is false.
    async newPage() {
        const context = await this.process.createBrowserContext(
            this.chromium
                ? { downloadBehavior: { policy: "allow", downloadPath: this.downloads } }
                : {},
        );
        return this.newWindow(context);
    }

    // Opens a page in an existing context; it shares the cookies of the context's other pages.
    async newWindow(context) {
        const page = await context.newPage();
        page.setDefaultTimeout(PATIENCE_MILLISECONDS);
        if (this.chromium && !this.scripts) {
            await page.setJavaScriptEnabled(false);
        }
        page.alerts = [];
        page.accept = true;
        // Waits until the newest alert matches and returns its text: alerts reach the test shortly
        // after the action that raised them.
        page.waitForAlert = async (words) => {
            const deadline = Date.now() + PATIENCE_MILLISECONDS;
            while (!words.test(page.alerts.at(-1) ?? "") && Date.now() < deadline) {
                await sleep(20);
            }
            assert.match(page.alerts.at(-1) ?? "no alert", words);
            return page.alerts.at(-1);
        };
        page.on("dialog", async (dialog) => {
            page.alerts.push(dialog.message());
            await (page.accept ? dialog.accept() : dialog.dismiss());
        });
        return page;
    }

    // Waits for a complete download and returns its name and bytes; each is returned once.
    async nextDownload() {
        const deadline = Date.now() + PATIENCE_MILLISECONDS;
        while (Date.now() < deadline) {
            const names = await readdir(this.downloads);
            const name = names.find((each) => each.endsWith(".dat"));
            if (name && !names.some((each) => each.endsWith(".crdownload"))) {
                const bytes = await readFile(path.join(this.downloads, name));
                await rm(path.join(this.downloads, name));
                return { name, bytes };
            }
            await sleep(50);
        }
        throw new Error("No file was downloaded.");
    }

    // Expects no download besides those already returned; waits for one that starts after the page
    // has loaded.
    async assertNoDownload() {
        await sleep(500);
        assert.deepEqual(await readdir(this.downloads), []);
    }
}

// Logs in through the login page; ends on the menu.
export async function logIn(page, board, user = "admin", password = user) {
    await page.goto(board.url("/login.cgi"));
    await page.type("input[name=user]", user);
    await page.type("input[name=password]", password);
    await Promise.all([page.waitForNavigation(), page.keyboard.press("Enter")]);
}

export const BACKUP_PAGE = "/maintenance/efi_backup_restore.cgi?functionID=105";
export const RESTORE_PAGE = "/maintenance/efi_backup_restore.cgi?functionID=106";

// Returns the text of the first matching element, with white space collapsed.
export function textOf(page, selector) {
    return page.$eval(selector, (element) => element.textContent.replace(/\s+/g, " ").trim());
}

export async function chooseAndBackUp(page, partition) {
    await page.click(`input[name=radio_button][value="${partition}"]`);
    await Promise.all([page.waitForNavigation(), page.click("button[type=submit]#backup")]);
}

// Counts the page's POST requests from now on. `posts.assertNone()` first waits for a request that
// the page may be about to send, because it reaches the test after an alert does.
export function countPosts(page) {
    const posts = { count: 0 };
    page.on("request", (request) => (posts.count += request.method() === "POST" ? 1 : 0));
    posts.assertNone = async () => {
        // Fails early if the page navigates.
        await page.evaluate(() => new Promise((done) => setTimeout(done, 200))).catch(() => {});
        assert.equal(posts.count, 0);
    };
    return posts;
}

// Returns the page's markup without its scripts.
export function markupOf(page) {
    return page.evaluate(() => {
        const copy = document.documentElement.cloneNode(true);
        copy.querySelectorAll("script").forEach((script) => script.remove());
        return copy.outerHTML;
    });
}
