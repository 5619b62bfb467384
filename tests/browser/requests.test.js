// Tests of requests that no page of the board sends: each answer says what is wrong.

import assert from "node:assert/strict";
import { unlink, writeFile } from "node:fs/promises";
import { before, describe, test } from "node:test";
import { Board } from "./support/board.js";
import { Client as WebClient, assertErrorPage, downloadLink } from "./support/client.js";
import { parseConfigurationFile } from "./support/configurationFile.js";
import { DirectClient } from "./support/directClient.js";
import { provide } from "./support/fixture.js";
import { MULTIPART, uploadBody } from "./support/multipart.js";

const SCREEN = "/maintenance/efi_backup_restore.cgi";

const WAYS = {
    "through the web server": WebClient,
    "directly, through a pipe": DirectClient.from("pipe"),
    "directly, from a file": DirectClient.from("file"),
};

for (const [way, Client] of Object.entries(WAYS)) {
    describe(`requests ${way}`, () => {
        let board;
        let client;

        provide(async (started) => {
            ({ board } = started);
            client = await Client.loggedIn(board);
        }, [], null);

        for (const [query, traced] of [
            ["functionID=107", /Illegal query string \(107\)/],
            ["functionID=-105", /Illegal query string \(-105\)/],
            ["functionID=", /Illegal query string \(0\)/],
            ["functionID=abc", /Illegal query string \(0\)/],
        ]) {
            test(`an unknown function number is refused and traced: ${query}`, async () => {
                assertErrorPage(await client.get(`${SCREEN}?${query}`), 400, /screen information/);
                assert.match(await board.trace(), traced);
            });
        }

        test("a missing function number is refused", async () => {
            assertErrorPage(await client.get(SCREEN), 400, /screen information/);
        });

        for (const number of ["0105", "105abc", "105"]) {
            test(`${number} reads as function 105`, async () => {
                const page = await client.get(`${SCREEN}?functionID=${number}`);
                assert.equal(page.status, 200);
                assert.ok(page.text.includes('<meta name="FRAME-ID" content="M-BACKUP_EFI_CONF-C-00">'));
            });
        }

        test("function 106 has its own frame", async () => {
            const page = await client.get(`${SCREEN}?functionID=106`);
            assert.equal(page.status, 200);
            assert.ok(page.text.includes('<meta name="FRAME-ID" content="M-RESTOR_EFI_CONF-C-00">'));
        });

        describe("a user without authority", () => {
            let viewer;

            before(async () => {
                viewer = await Client.loggedIn(board, "viewer");
            });

            const upload = (bytes, fileName) => () =>
                viewer.request(SCREEN, {
                    method: "POST",
                    body: uploadBody(bytes, fileName),
                    headers: { "content-type": MULTIPART },
                });
            const restoreStep = (fields) => () =>
                viewer.post(SCREEN, { functionID: "106", ...fields });
            const refusal = /\[12-1033\]/;

            for (const [what, send, words] of [
                ["opens the backup page", () => viewer.get(`${SCREEN}?functionID=105`), refusal],
                ["opens the restore page", () => viewer.get(`${SCREEN}?functionID=106`), refusal],
                ["backs up", () => viewer.backUp(3), refusal],
                ["backs up a partition that does not exist", () => viewer.backUp(99), refusal],
                [
                    "backs up no partition",
                    () => viewer.post(SCREEN, { functionID: "105", hidden_status: "BACKUP" }),
                    /screen information/,
                ],
                ["posts the backup form without a step", () => viewer.post(SCREEN, { functionID: "105" }), refusal],
                ["uploads", upload(Buffer.from("no configuration")), refusal],
                ["uploads an empty file", upload(Buffer.alloc(0)), refusal],
                ["uploads a file that is too large", upload(Buffer.alloc(400000)), refusal],
                ["uploads a file of another kind", upload(Buffer.from("x"), "a.txt"), refusal],
                ["restores", restoreStep({ hidden_status: "2", pid3: "3" }), refusal],
                ["restores every partition", restoreStep({ hidden_status: "2", check_box: "" }), refusal],
                ["discards", restoreStep({ hidden_status: "3" }), refusal],
                ["posts an unknown step", restoreStep({ hidden_status: "4" }), refusal],
                ["posts the restore form without a step", restoreStep({}), /<\/html>/],
            ]) {
                test(`is forbidden: ${what}`, async () => {
                    assertErrorPage(await send(), 403, words);
                });
            }

            test("is forbidden while the back-end is failing", async () => {
                const own = await Board.start();
                try {
                    const other = await Client.loggedIn(own, "viewer");
                    await own.control("refuse", "0x0201002F", 1603);
                    const answer = await other.post(SCREEN, {
                        functionID: "106",
                        hidden_status: "2",
                        check_box: "",
                    });
                    assertErrorPage(answer, 403, refusal);
                } finally {
                    await own.remove();
                }
            });
        });

        describe("an invalid session", () => {
            const token = "0123456789abcdef0123456789abcdef";
            for (const [what, cookie] of [
                ["no cookie", ""],
                ["a forged cookie", `session=0123456789abcdef-${token}`],
                ["a path as cookie", `session=../../../../etc/passwd-${token}`],
                ["an empty cookie", "session="],
                ["a long cookie", `session=${"a".repeat(4000)}`],
            ]) {
                test(`${what} leads to a request to log in`, async () => {
                    const stranger = new Client(board);
                    stranger.cookie = cookie;
                    for (const target of [
                        `${SCREEN}?functionID=105`,
                        "/common/download.cgi?functionID=5&filename=Partition3_20261114_123B.dat",
                    ]) {
                        assertErrorPage(await stranger.get(target), 403, /[Ll]og in/);
                    }
                });
            }

            test("an identifier without its secret leads to a request to log in", async () => {
                const [identifier] = client.cookie.slice("session=".length).split("-");
                for (const value of [identifier, `${identifier}-`, `${identifier}-${token}`]) {
                    const stranger = new Client(board);
                    stranger.cookie = `session=${value}`;
                    assertErrorPage(await stranger.get(`${SCREEN}?functionID=105`), 403, /[Ll]og in/);
                }
            });

            test("an expired session leads to a request to log in and loses its files", async () => {
                const own = await Board.start();
                try {
                    const idle = await Client.loggedIn(own);
                    assert.equal((await idle.backUp(3)).status, 200);
                    const staged = (await own.temporaryFiles()).length;
                    await own.ageSessions(24 * 60 * 60);
                    assertErrorPage(await idle.get(`${SCREEN}?functionID=105`), 403, /[Ll]og in/);
                    assert.equal((await own.temporaryFiles()).length, staged - 1);
                    assert.deepEqual(await own.sessions(), []);
                } finally {
                    await own.remove();
                }
            });
        });

        describe("a posted backup", () => {
            test("without a partition shows only the reason", async () => {
                const answer = await client.post(SCREEN, {
                    functionID: "105",
                    hidden_status: "BACKUP",
                });
                assertErrorPage(answer, 400, /Failed to obtain the screen information/);
                assert.doesNotMatch(answer.text, /<table/);
                assert.match(await board.trace(), /getFormData KEY_RADIO_BUTTON error!!/);
            });

            test("with a step in lower case shows the list and backs up nothing", async () => {
                const other = await Client.loggedIn(board);
                const page = await other.backUp(3, { hidden_status: "backup" });
                assert.equal(page.status, 200);
                assert.match(page.text, /<table/);
                assert.doesNotMatch(page.text, /id="download_link"/);
            });

            test("with a text as partition number backs up partition 0", async () => {
                const page = await client.backUp("abc");
                assert.match(downloadLink(page), /filename=Partition0_\d{8}_/);
            });

            for (const number of ["1", "8", "300", "-1", "4294967295"]) {
                test(`of partition ${number}, which is not installed, is refused`, async () => {
                    const page = await client.backUp(number);
                    assert.equal(page.status, 200);
                    assert.match(page.text, /not installed.*nothing was changed.*\[72-1602\]/);
                    assert.match(page.text, /<table/);
                    assert.doesNotMatch(page.text, /id="download_link"/);
                });
            }

            test("from another site is refused", async () => {
                for (const headers of [
                    { origin: "http://elsewhere.example" },
                    { origin: "null" },
                    { "sec-fetch-site": "cross-site" },
                ]) {
                    const answer = await client.post(
                        SCREEN,
                        { functionID: "105", hidden_status: "BACKUP", radio_button: "3" },
                        headers,
                    );
                    assertErrorPage(answer, 403, /another site/);
                }
            });
        });

        describe("a download", () => {
            test("delivers the backup of its own session byte for byte", async () => {
                const [one, other] = [await Client.loggedIn(board), await Client.loggedIn(board)];
                const oneLink = downloadLink(await one.backUp(0));
                const otherLink = downloadLink(await other.backUp(5));
                const file = await one.get(oneLink);
                assert.equal(file.status, 200);
                assert.equal(file.headers.get("content-type"), "application/octet-stream");
                assert.equal(file.headers.get("x-content-type-options"), "nosniff");
                assert.equal(file.headers.get("cache-control"), "no-store");
                assert.equal(Number(file.headers.get("content-length")), file.bytes.length);
                assert.equal(parseConfigurationFile(file.bytes).partition, 0);
                assertErrorPage(await one.get(otherLink), 404, /no backup of this name/);
                assert.equal(parseConfigurationFile((await other.get(otherLink)).bytes).partition, 5);
            });

            for (const query of [
                "",
                "functionID=5",
                "functionID=105&filename=Partition3_20261114_123B.dat",
                "functionID=5&filename=",
                "functionID=5&filename=../../etc/passwd",
                "functionID=5&filename=/etc/passwd",
                "functionID=5&filename=Partition3_20261114_..%2f..%2fx.dat",
                "functionID=5&filename=Partition3_20261114_123B.dat%0d%0aSet-Cookie:%20a=b",
                "functionID=5&filename=Partition3_20261114_%22.dat",
                "functionID=5&filename=efi_backup",
                "functionID=5&filename=passwd",
            ]) {
                test(`with a wrong query is refused: ${query || "no query"}`, async () => {
                    await client.backUp(3);
                    const answer = await client.get(`/common/download.cgi?${query}`);
                    assert.ok([400, 404].includes(answer.status));
                    assertErrorPage(answer, answer.status, /[Nn]othing was changed/);
                    assert.equal(answer.headers.get("set-cookie"), null);
                });
            }

            test("of a missing, empty or damaged file gives an error page", async () => {
                const own = await Client.loggedIn(board);
                const link = downloadLink(await own.backUp(3));
                const identifier = own.cookie.slice("session=".length).split("-")[0];
                const file = board.path("var/tmp", `efi_backup${identifier}`);
                const { bytes } = await own.get(link);
                for (const damaged of [Buffer.alloc(0), bytes.subarray(1), Buffer.from("text")]) {
                    await writeFile(file, damaged);
                    assertErrorPage(await own.get(link), 404, /backup/);
                }
                await unlink(file);
                assertErrorPage(await own.get(link), 404, /backup/);
            });
        });

        for (const method of ["PUT", "DELETE", "OPTIONS", "PATCH"]) {
            test(`${method} is not allowed`, async () => {
                const answer = await client.request(`${SCREEN}?functionID=105`, { method });
                assert.equal(answer.status, 405);
            });
        }

        test("HEAD answers with the header only", async () => {
            const answer = await client.request(`${SCREEN}?functionID=105`, { method: "HEAD" });
            assert.equal(answer.status, 200);
            assert.equal(answer.bytes.length, 0);
            assert.ok(Number(answer.headers.get("content-length")) > 1000);
        });
    });
}

describe("the board", () => {
    let board;
    let client;

    provide(async (started) => {
        ({ board } = started);
        client = await WebClient.loggedIn(board);
    }, [], null);

    for (const target of [
        "/usr/local/www/skel/skeleton_efi_backup.txt",
        "/../skel/skeleton_efi_backup.txt",
        "/%2e%2e/skel/skeleton_efi_backup.txt",
        "/var/log/trace.log",
        "/maintenance/",
        "/common/",
    ]) {
        test(`only served files are delivered: ${target}`, async () => {
            const answer = await client.get(target);
            assert.ok([403, 404].includes(answer.status), String(answer.status));
        });
    }

    test("an absent back-end is reported at login and on the page", async () => {
        const own = await Board.start();
        try {
            const user = await WebClient.loggedIn(own);
            await unlink(own.path("var/run/backend.sock"));
            assertErrorPage(
                await user.get(`${SCREEN}?functionID=105`),
                503,
                /Failed to obtain the partition status/,
            );
            const posted = await user.backUp(3);
            assertErrorPage(posted, 503, /cannot be reached[^<]*\[72-2001\]/);
            assert.match(posted.text, /Failed to obtain the partition status/);
            const login = await user.post("/login.cgi", { user: "admin", password: "admin" });
            assertErrorPage(login, 503, /back-end/);
        } finally {
            await own.remove();
        }
    });

    test("a board keeps sessions and partitions over a restart", async () => {
        const own = await Board.start();
        try {
            const user = await WebClient.loggedIn(own);
            const payloadOf = async () => {
                const file = await user.get(downloadLink(await user.backUp(7)));
                return parseConfigurationFile(file.bytes).payload;
            };
            const before = await payloadOf();
            await own.stop();
            await own.serve();
            assert.deepEqual(await payloadOf(), before);
        } finally {
            await own.remove();
        }
    });
});
