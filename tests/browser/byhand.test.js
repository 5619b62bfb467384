// The program runs by hand, without a web server, and leaves nothing behind.

import assert from "node:assert/strict";
import { readdir } from "node:fs/promises";
import { after, before, describe, test } from "node:test";
import { Board } from "./support/board.js";
import { DirectClient } from "./support/directClient.js";

describe("the program by hand", () => {
    let board;
    let client;

    before(async () => {
        board = await Board.start();
        client = await DirectClient.loggedIn(board);
    });
    after(() => board?.remove());

    // Runs the screen's program, or `command`, which ends in it, as a shell would.
    async function run(command, environment, body = "") {
        const program = board.path("usr/local/www/htdocs/maintenance/efi_backup_restore.cgi");
        const { status, output, errors } = await client.run(
            [...command, program],
            { BOARD_ROOT: board.root, HTTP_COOKIE: client.cookie, ...environment },
            Buffer.from(body),
        );
        return { status, output: output.toString(), errors };
    }

    const backup = "functionID=105&hidden_status=BACKUP&radio_button=3";

    test("answers one page on standard output", async () => {
        const { status, output, errors } = await run([], {
            REQUEST_METHOD: "GET",
            QUERY_STRING: "functionID=105",
        });
        assert.equal(status, 0);
        assert.equal(errors, "");
        const [header, page] = output.split("\r\n\r\n");
        assert.match(header, /^Status: 200 OK\r\n/);
        assert.match(header, new RegExp(`\r\nContent-Length: ${Buffer.byteLength(page)}$`));
        assert.match(page, /name="radio_button" value="3"/);
        assert.match(page, /<\/html>\s*$/);
    });

    test("reads a posted form from standard input, with and without its length", async () => {
        for (const length of [{ CONTENT_LENGTH: String(backup.length) }, {}]) {
            const { status, output } = await run([], { REQUEST_METHOD: "POST", ...length }, backup);
            assert.equal(status, 0);
            assert.match(output, /filename=Partition3_\d{8}_123B\.dat/);
        }
    });

    test("an unknown function number ends with an error page and not with 0", async () => {
        const { status, output } = await run([], {
            REQUEST_METHOD: "GET",
            QUERY_STRING: "functionID=1",
        });
        assert.notEqual(status, 0);
        assert.match(output, /^Status: 400 /);
    });

    for (const [what, environment, body, made] of [
        ["a display", { REQUEST_METHOD: "GET", QUERY_STRING: "functionID=105" }, "", 0],
        ["a backup", { REQUEST_METHOD: "POST" }, backup, 1],
    ]) {
        test(`${what} leaves no child, no descriptor and no temporary file`, async () => {
            client = await DirectClient.loggedIn(board);
            const before = await readdir(board.path("var/tmp"));
            const { status, errors } = await run(
                ["valgrind", "--tool=none", "--trace-children=yes", "--track-fds=yes"],
                environment,
                body,
            );
            assert.equal(status, 0, errors);
            const open = [...errors.matchAll(/FILE DESCRIPTORS: (\d+) open \((\d+) std\)/g)];
            assert.equal(open.length, 1, "one process, and no child");
            const inherited = errors.match(/<inherited from parent>/g)?.length ?? 0;
            assert.equal(Number(open[0][1]), Number(open[0][2]) + inherited, errors);
            const left = (await readdir(board.path("var/tmp"))).filter(
                (name) => !before.includes(name),
            );
            assert.equal(left.length, made);
            assert.ok(left.every((name) => /^efi_backup[0-9a-f]{16}$/.test(name)), left.join());
        });
    }
});
