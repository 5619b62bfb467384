// Tests of the defences against outsiders.

import assert from "node:assert/strict";
import { once } from "node:events";
import { chmod, readFile, readdir } from "node:fs/promises";
import net from "node:net";
import { describe, test } from "node:test";
import { Board } from "./support/board.js";
import { Client, assertErrorPage } from "./support/client.js";
import { timeLimit } from "./support/eventually.js";
import { provide } from "./support/fixture.js";

const SCREEN = "/maintenance/efi_backup_restore.cgi";

describe("security", () => {
    let board;
    let client;

    provide(async (started) => {
        ({ board } = started);
        client = await Client.loggedIn(board);
    }, [], null);

    for (const [what, ask, status] of [
        ["the backup page", () => client.get(`${SCREEN}?functionID=105`), 200],
        ["the restore page", () => client.get(`${SCREEN}?functionID=106`), 200],
        ["an error page", () => client.get(`${SCREEN}?functionID=1`), 400],
        ["a page without a login", () => new Client(board).get(`${SCREEN}?functionID=105`), 403],
        ["the login page", () => client.get("/login.cgi"), 200],
        ["a refused login", () => client.post("/login.cgi", { user: "x", password: "y" }), 403],
        ["the menu", () => client.get("/"), 200],
        ["the redirection to the login page", () => new Client(board).get("/"), 303],
        ["a download without a name", () => client.get("/common/download.cgi"), 400],
        ["another method", () => client.request("/login.cgi", { method: "DELETE" }), 405],
        ["another site's post", () => client.post("/logout.cgi", {}, { origin: "http://x" }), 403],
        ["the style sheet", () => client.get("/default.css"), 200],
        ["the script", () => client.get("/maintenance/efi_pages.js"), 200],
        ["a missing file", () => client.get("/nothing"), 404],
        ["a missing program", () => client.get("/nothing.cgi"), 404],
        ["a refused file", () => client.get("/x.conf"), 403],
        ["a post to a file", () => client.post("/default.css", {}), 403],
    ]) {
        test(`${what} has the security headers`, async () => {
            const answer = await ask();
            assert.equal(answer.status, status);
            const header = (name) => answer.headers.get(name) ?? "";
            assert.equal(header("x-content-type-options"), "nosniff");
            assert.equal(header("x-frame-options"), "DENY");
            assert.match(header("cache-control"), /^no-(store|cache)$/);
            assert.doesNotMatch(header("server"), /\d/);
            const policy =
                header("content-security-policy") ||
                answer.text.match(/http-equiv="Content-Security-Policy" content="([^"]*)"/)?.[1];
            assert.match(policy, /default-src 'none'/);
            assert.doesNotMatch(policy, /(script|default)-src[^;]*'unsafe/);
        });
    }

    test("guessing passwords slows down only the guesser", async () => {
        const own = await Board.start();
        try {
            const logIn = async (user, password, cookie = "") => {
                const browser = new Client(own);
                browser.cookie = cookie;
                return browser.post("/login.cgi", { user, password });
            };
            const first = await logIn("admin", "admin");
            const device = first.headers.getSetCookie().find((each) => each.startsWith("device="));
            assert.match(device, /^device=[0-9a-f]{32}; .*HttpOnly; SameSite=Strict$/);
            const start = Date.now();
            const guesses = Array.from({ length: 40 }, (_, i) => logIn("admin", `wrong${i}`));
            // A browser that has logged in before, then another account.
            const known = await logIn("admin", "admin", device.split(";")[0]);
            assert.equal(known.status, 303);
            assert.ok(!known.headers.get("set-cookie").includes("device="));
            assert.equal((await logIn("viewer", "viewer")).status, 303);
            const answers = await Promise.all(guesses);
            const lookedAt = answers.filter((each) => each.status === 403);
            const waited = answers.filter((each) => each.status === 429);
            assert.equal(lookedAt.length + waited.length, answers.length);
            assert.ok(lookedAt.length <= 6 + (Date.now() - start) / 7500, lookedAt.length);
            assertErrorPage(lookedAt[0], 403, /user name or the password/);
            assertErrorPage(waited[0], 429, /Too many attempts/);
        } finally {
            await own.remove();
        }
    });

    test("a login is accepted only in the body of a request", async () => {
        const user = new Client(board);
        const answer = await user.post("/login.cgi?user=admin&password=admin", {});
        assertErrorPage(answer, 400, /malformed/);
        assert.equal(answer.headers.get("set-cookie"), null);
    });

    test("a login gets a new session, which ends with the logout", async () => {
        const user = new Client(board);
        user.cookie = `session=${"0".repeat(16)}-${"0".repeat(32)}`;
        const answer = await user.post("/login.cgi", { user: "admin", password: "admin" });
        const cookie = answer.headers.get("set-cookie").split(";")[0];
        assert.notEqual(cookie, user.cookie);
        user.cookie = cookie;
        assert.equal((await user.backUp(3)).status, 200);
        const identifier = cookie.slice("session=".length).split("-")[0];
        assert.ok((await readdir(board.path("var/tmp"))).includes(`efi_backup${identifier}`));
        await user.post("/logout.cgi", {});
        assert.ok(!(await readdir(board.path("var/tmp"))).includes(`efi_backup${identifier}`));
        assertErrorPage(await user.get(`${SCREEN}?functionID=105`), 403, /[Ll]og in/);
    });

    test("logs contain no secret and no forged line", async () => {
        const token = client.cookie.slice("session=".length).split("-")[1];
        const forged = "\nforged line";
        await client.get(`${SCREEN}?functionID=105${encodeURIComponent(forged)}`);
        await client.post("/login.cgi", { user: `admin${forged}`, password: "t0p secret" });
        await client.post(SCREEN, { functionID: `1${forged}` });
        await client.get("/nothing", { "user-agent": "forged\tline", cookie: client.cookie });
        const folder = board.path("var/log");
        for (const name of await readdir(folder)) {
            const text = await readFile(`${folder}/${name}`, "utf8");
            assert.ok(!text.includes(token), name);
            assert.ok(!text.includes("t0p secret"), name);
            assert.doesNotMatch(text, /^forged line/m, name);
        }
    });

    test("an unusable program gives an error page without its content", async () => {
        const own = await Board.start();
        try {
            await chmod(own.path("usr/local/www/htdocs/login.cgi"), 0o600);
            const answer = await new Client(own).get("/login.cgi");
            assert.ok([403, 500].includes(answer.status), String(answer.status));
            assert.match(answer.headers.get("content-type"), /^text\/html/);
            assert.doesNotMatch(answer.text, /ELF/);
        } finally {
            await own.remove();
        }
    });

    for (const [what, request] of [
        ["a request that is not HTTP", "nonsense\r\n\r\n"],
        ["a header without a colon", "GET / HTTP/1.1\r\nHost: localhost\r\nnonsense\r\n\r\n"],
        ["two lengths", "POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n"],
        ["a path above the root", "GET /../../etc/passwd HTTP/1.1\r\nHost: localhost\r\n\r\n"],
        ["an encoded path", "GET /%2e%2e/%2e%2e/etc/passwd HTTP/1.1\r\nHost: localhost\r\n\r\n"],
        ["a NUL in the path", "GET /default.css%00.html HTTP/1.1\r\nHost: localhost\r\n\r\n"],
        ["a path after a program", "GET /login.cgi/../default.css HTTP/1.1\r\nHost: localhost\r\n\r\n"],
    ]) {
        test(`${what} is refused by the web server`, async () => {
            const socket = net.connect(new URL(board.origin).port, "127.0.0.1");
            let answer = "";
            socket.on("data", (data) => (answer += data));
            socket.end(request);
            await once(socket, "close", timeLimit());
            assert.match(answer, /^HTTP\/1\.[01] 4\d\d /);
            assert.doesNotMatch(answer, /^Server:.*\d/im);
            assert.doesNotMatch(answer, /root:/);
        });
    }
});
