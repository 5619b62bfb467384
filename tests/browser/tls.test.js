// Tests of the board over https in a browser.

import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { after, before, describe, test } from "node:test";
import { Board } from "./support/board.js";
import {
    BACKUP_PAGE,
    Browser,
    RESTORE_PAGE,
    chooseAndBackUp,
    logIn,
    textOf,
} from "./support/browser.js";

describe("over TLS", () => {
    let board;
    let browser;
    let page;

    before(async () => {
        board = await Board.start(undefined, ["--tls", "--hsts"]);
        browser = await Browser.start("en", "chromium", { words: [
            `--ignore-certificate-errors-spki-list=${keyOf(board)}`,
        ] });
    });
    after(async () => {
        await browser?.stop();
        await board?.remove();
    });

    // Returns the digest of the only public key that the browser accepts without an authority.
    function keyOf({ root }) {
        return execFileSync(
            "sh",
            [
                "-c",
                "openssl x509 -in \"$0\" -noout -pubkey | openssl pkey -pubin -outform DER | " +
                    "openssl dgst -sha256 -binary | base64",
                `${root}/var/lib/tls/certificate.pem`,
            ],
            { encoding: "utf8" },
        ).trim();
    }

    test("a configuration is backed up and the restore page is shown", async () => {
        page = await browser.newPage();
        await logIn(page, board);
        assert.equal(new URL(page.url()).protocol, "https:");
        await page.goto(board.url(BACKUP_PAGE));
        await chooseAndBackUp(page, 3);
        const { name } = await browser.nextDownload();
        assert.match(name, /^Partition3_\d{8}_.*\.dat$/);
        await page.goto(board.url(RESTORE_PAGE));
        assert.match(await textOf(page, "h1"), /Restore/);
    });

    test("a browser without the board's key does not show the board", async () => {
        const other = await Browser.start();
        try {
            const refused = await other.newPage();
            await assert.rejects(refused.goto(board.url("/login.cgi")), /ERR_CERT_AUTHORITY_INVALID/);
        } finally {
            await other.stop();
        }
    });

    test("pages fetch nothing without TLS", async () => {
        page = await browser.newPage();
        const fetched = [];
        page.on("request", (request) => fetched.push(request.url()));
        await logIn(page, board);
        await page.goto(board.url(BACKUP_PAGE));
        assert.ok(fetched.length > 3);
        assert.deepEqual(fetched.filter((url) => !url.startsWith(board.origin)), []);
    });
});

describe("under a foreign host name", () => {
    test("a page cannot speak to the board", async () => {
        const board = await Board.start(undefined, ["--host", "board.example"]);
        const browser = await Browser.start("en", "chromium", { words: [
            "--host-resolver-rules=MAP *.example 127.0.0.1",
        ] });
        try {
            const { port } = new URL(board.origin);
            const page = await browser.newPage();
            const evil = await page.goto(`http://evil.example:${port}/login.cgi`);
            assert.equal(evil.status(), 421);
            assert.match(await textOf(page, "main"), /does not use a name of this board/);
            const own = await page.goto(`http://board.example:${port}/login.cgi`);
            assert.equal(own.status(), 200);
            await page.type("input[name=user]", "admin");
            await page.type("input[name=password]", "admin");
            await Promise.all([page.waitForNavigation(), page.keyboard.press("Enter")]);
            assert.equal(new URL(page.url()).pathname, "/");
        } finally {
            await browser.stop();
            await board.remove();
        }
    });
});
