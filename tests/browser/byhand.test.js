// Tests that the program runs without a web server and leaves nothing open.

import assert from "node:assert/strict";
import { readFile, readdir } from "node:fs/promises";
import { describe, test } from "node:test";
import { DirectClient } from "./support/directClient.js";
import { provide } from "./support/fixture.js";

describe("the program without a web server", () => {
    let board;
    let client;

    provide(async (started) => {
        ({ board } = started);
        client = await DirectClient.loggedIn(board);
    }, [], null);

    // Runs the screen's program, with the words of `command` before it.
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

    test("prints one page to standard output", async () => {
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

    test("an unknown function number gives an error page and a non-zero status", async () => {
        const { status, output } = await run([], {
            REQUEST_METHOD: "GET",
            QUERY_STRING: "functionID=1",
        });
        assert.notEqual(status, 0);
        assert.match(output, /^Status: 400 /);
    });

    // The first file that the program opens would otherwise get the number of a closed standard
    // stream, and output for the stream would go into the file.
    for (const closed of ["<&-", ">&-", "2>&-", "<&- >&-", "<&- >&- 2>&-"]) {
        test(`a start with ${closed} harms nothing`, async () => {
            client = await DirectClient.loggedIn(board);
            const traced = (await board.trace()).length;
            const { status, output } = await run(
                ["/bin/sh", "-c", `exec "$0" ${closed}`],
                { REQUEST_METHOD: "POST", CONTENT_LENGTH: String(backup.length) },
                backup,
            );
            assert.equal(output.length > 0, !closed.split(" ").includes(">&-"));
            assert.equal(status === 0, closed === "2>&-");
            for (const name of await readdir(board.path("var/tmp"))) {
                const bytes = await readFile(board.path("var/tmp", name));
                assert.ok(!bytes.includes("Status:"), name);
            }
            assert.doesNotMatch((await board.trace()).slice(traced), /Status:/);
            // The back-end and the session still work.
            assert.match((await client.backUp(3)).text, /download_link/);
        });
    }

    const display = { REQUEST_METHOD: "GET", QUERY_STRING: "functionID=105" };
    for (const [what, environment] of [
        ["nothing at all", {}],
        ["no method", { REQUEST_METHOD: "" }],
        ["a length that is not a number", { REQUEST_METHOD: "POST", CONTENT_LENGTH: "abc" }],
        ["a negative length", { REQUEST_METHOD: "POST", CONTENT_LENGTH: "-1" }],
        ["an endless length", { REQUEST_METHOD: "POST", CONTENT_LENGTH: "9".repeat(40) }],
        ["an endless query", { ...display, QUERY_STRING: "a=".repeat(50000) }],
        ["an endless cookie", { ...display, HTTP_COOKIE: "session=".repeat(10000) }],
        ["a query of control characters", { ...display, QUERY_STRING: "functionID=105\n\r\u001b[2J" }],
        ["a language that is a path", { ...display, HTTP_ACCEPT_LANGUAGE: "../../../etc/passwd" }],
        ["a foreign locale", { ...display, LANG: "../x", LC_ALL: "%s%n", NLSPATH: "/tmp/%N" }],
        ["a time zone that is a file", { ...display, TZ: ":/etc/passwd" }],
        ["a host that is markup", { REQUEST_METHOD: "POST", HTTP_ORIGIN: "http://<i>", HTTP_HOST: "<i>" }],
        ["a root that is not there", { ...display, BOARD_ROOT: "/nowhere" }],
        ["an endless root", { ...display, BOARD_ROOT: `/${"x".repeat(20000)}` }],
    ]) {
        test(`an environment with ${what} is answered`, async () => {
            const { output, errors } = await run([], environment);
            assert.match(output, /^Status: \d{3} [^\r]*\r\n/);
            const end = output.indexOf("\r\n\r\n");
            const length = Number(output.slice(0, end).match(/\r\nContent-Length: (\d+)/)[1]);
            assert.equal(Buffer.byteLength(output.slice(end + 4)), length);
            assert.doesNotMatch(output, /<i>/);
            assert.equal(errors, "");
        });
    }

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
            assert.equal(open.length, 1, "expected one process without a child");
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
