// Tests of a board with missing partitions or misplaced files.

import assert from "node:assert/strict";
import { mkdir } from "node:fs/promises";
import { test } from "node:test";
import { Board } from "./support/board.js";
import { Client, assertErrorPage } from "./support/client.js";
import { makeConfigurationFile } from "./support/configurationFile.js";
import { demoUsers } from "./support/demoBoard.js";
import { MULTIPART, uploadBody } from "./support/multipart.js";

const SCREEN = "/maintenance/efi_backup_restore.cgi";

const FILE = makeConfigurationFile({
    saveTime: 1772884800,
    partition: 0,
    version: "1",
    name: "x",
    payload: Buffer.from("x"),
});

// Runs `use` with a board and a logged-in client.
async function withBoard(description, use) {
    const board = await Board.start(description);
    try {
        await use(board, await Client.loggedIn(board));
    } finally {
        await board.remove();
    }
}

function upload(client) {
    return client.request(SCREEN, {
        method: "POST",
        body: uploadBody(FILE),
        headers: { "content-type": MULTIPART },
    });
}

test("backup and restore are refused without an installed partition", () =>
    withBoard(`max_partitions = 4\n${demoUsers()}`, async (board, client) => {
        const words = /No partition is installed.*\[46-1026\]/;
        assertErrorPage(await client.get(`${SCREEN}?functionID=105`), 400, words);
        assertErrorPage(await upload(client), 400, words);
    }));

test("an upload that cannot be locked is refused", () =>
    withBoard(undefined, async (board, client) => {
        await mkdir(board.path("var/tmp/restored_eficonf.lock"));
        const locked = await upload(client);
        assert.match(locked.text, /lock file of uploads.*\[45-1102\]/);
        assert.match(await board.trace(), /AbstractBackupRestorePage::upload failed/);
    }));

test("a folder in place of a session's file stops the request", () =>
    withBoard(undefined, async (board, client) => {
        const identifier = client.cookie.slice("session=".length).split("-")[0];
        await mkdir(board.path("var/tmp", `restored_eficonf${identifier}`));
        assertErrorPage(await upload(client), 500, /that it did not make. Nothing was changed.*\[9021-1114\]/);
        assert.match(await board.trace(), /Not a file of the board's own: .*restored_eficonf/);
    }));
