// Tests of uploads that no browser sends: each answer says what is wrong, and an earlier staged
// file is kept or removed as it should be.

import assert from "node:assert/strict";
import { once } from "node:events";
import { readFile } from "node:fs/promises";
import net from "node:net";
import { beforeEach, describe, test } from "node:test";
import { Client as WebClient, assertErrorPage, downloadLink } from "./support/client.js";
import { makeConfigurationFile, parseConfigurationFile } from "./support/configurationFile.js";
import { DirectClient } from "./support/directClient.js";
import { eventually, timeLimit } from "./support/eventually.js";
import { provide } from "./support/fixture.js";
import { BOUNDARY, END, MULTIPART, field, file, part, uploadBody } from "./support/multipart.js";

const SCREEN = "/maintenance/efi_backup_restore.cgi";
const LARGEST_FILE = 393216;

const WAYS = {
    "through the web server": WebClient,
    "directly, through a pipe": DirectClient.from("pipe"),
    "directly, from a file": DirectClient.from("file"),
};

function makeFile(payload, more = {}) {
    return makeConfigurationFile({
        saveTime: 1772884800,
        partition: 3,
        version: "1.23 B",
        name: "R&D",
        payload: Buffer.from(payload),
        ...more,
    });
}

for (const [way, Client] of Object.entries(WAYS)) {
    describe(`uploads ${way}`, () => {
        // For tests that need a connection to the web server.
        const connectionTest = Client === WebClient ? test : () => {};
        let board;
        let client;
        let staged;

        provide((started) => ({ board } = started), [], null);
        beforeEach(async () => {
            client = await Client.loggedIn(board);
            const identifier = client.cookie.slice("session=".length).split("-")[0];
            staged = board.path("var/tmp", `restored_eficonf${identifier}`);
        });

        function post(body, headers = { "content-type": MULTIPART }) {
            return client.request(SCREEN, { method: "POST", body, headers });
        }

        function step(status, more = {}) {
            return client.post(SCREEN, { functionID: "106", hidden_status: status, ...more });
        }

        async function stagedBytes() {
            return readFile(staged).catch(() => null);
        }

        // Expects only whole files of sessions and the lock. Waits for the web server and the program,
        // which remove their temporary files shortly after the answer.
        async function assertNoLeftovers() {
            const expected = /^(restored_eficonf|efi_backup)([0-9a-f]{16}|\.lock)$/;
            await eventually(async () => {
                const names = await board.temporaryFiles();
                assert.deepEqual(names.filter((name) => !expected.test(name)), []);
            });
        }

        test("a file of the largest size is staged, a larger one is not", async () => {
            const room = LARGEST_FILE - makeFile("").length;
            const largest = makeFile(Buffer.alloc(room, 7));
            assert.equal(largest.length, LARGEST_FILE);
            assert.match((await post(uploadBody(largest))).text, /id="file_pid">3</);
            assert.deepEqual(await stagedBytes(), largest);
            for (const size of [LARGEST_FILE + 1, 8 * 1024 * 1024]) {
                const answer = await post(uploadBody(Buffer.alloc(size)));
                assert.equal(answer.status, 200);
                assert.match(answer.text, /\[63-1028\]/);
                assert.match(await board.trace(), new RegExp(`Illegal file size:${size}\n`));
                assert.deepEqual(await stagedBytes(), largest);
            }
            await assertNoLeftovers();
        });

        connectionTest("a request beyond the web server's limit gets an error page", async () => {
            const answer = await post(uploadBody(Buffer.alloc(20 * 1024 * 1024)));
            assertErrorPage(answer, 413, /The request is too large/);
            await assertNoLeftovers();
        });

        for (const [name, accepted] of [
            ["a.dat", true],
            [".dat", true],
            ["a.dat.dat", true],
            ["abc", true],
            ["a.DAT", false],
            ["a.dat.txt", false],
            ["BIOS", false],
            ["a", false],
            ["ab", false],
            ["abcd", false],
        ]) {
            test(`the name ${name} is ${accepted ? "accepted" : "refused"}`, async () => {
                const answer = await post(uploadBody(makeFile("x"), name));
                if (accepted) {
                    assert.match(answer.text, /id="file_pid"/);
                } else {
                    assert.match(answer.text, /\[63-1026\]/);
                    assert.equal(await stagedBytes(), null);
                }
            });
        }

        test("an empty file is refused", async () => {
            assert.match((await post(uploadBody(""))).text, /\[33-1028\]/);
            assert.match(await board.trace(), /Uploading BIOS Conf\.\(File Size=0\)/);
        });

        test("a file damaged in any byte is refused and not kept", async () => {
            const whole = makeFile("Boot=1\n");
            for (let i = 0; i < whole.length; ++i) {
                const damaged = Buffer.from(whole);
                damaged[i] ^= 0x20;
                const answer = await post(uploadBody(damaged));
                assert.match(answer.text, /\[64-1026\]/, `byte ${i}`);
                assert.equal(await stagedBytes(), null, `byte ${i}`);
            }
        });

        test("a truncated body is refused and the staged file is kept", async () => {
            const first = makeFile("first");
            assert.equal((await post(uploadBody(first))).status, 200);
            const body = uploadBody(makeFile("second"));
            for (let length = 0; length < body.length - END.length; length += 7) {
                const answer = await post(body.subarray(0, length));
                assertErrorPage(answer, 400, /arrived damaged or incomplete.*\[30-1107\]/);
                assert.deepEqual(await stagedBytes(), first);
            }
            await assertNoLeftovers();
        });

        const good = [field("hidden_status", "1"), field("functionID", "106")];
        const noName = "Content-Disposition: form-data";
        for (const [what, body, type, status] of [
            ["no boundary", uploadBody("x"), "multipart/form-data", 400],
            ["an empty boundary", uploadBody("x"), "multipart/form-data; boundary=", 400],
            ["an endless boundary", uploadBody("x"), `multipart/form-data; boundary=${"b".repeat(71)}`, 400],
            ["another boundary", uploadBody("x"), "multipart/form-data; boundary=other", 400],
            ["two files", Buffer.concat([...good, file("filename", "x"), file("filename", "y"), END])],
            ["a part without a name", Buffer.concat([...good, part(noName, "x"), END])],
            ["a part without a header", Buffer.concat([...good, part("", "x"), END])],
            ["a folded header", Buffer.concat([...good, part(`${noName};\r\n name="a"`, "x"), END])],
            ["a header line without a colon", Buffer.concat([...good, part("nonsense", "x"), END])],
            ["an endless header", Buffer.concat([...good, part(`X: ${"x".repeat(5000)}`, "x"), END]), MULTIPART, 413],
            ["thousands of parts", Buffer.concat([...good, ...Array(3000).fill(field("a", "b")), END]), MULTIPART, 413],
            ["an endless value", Buffer.concat([field("a", "b".repeat(5000)), END]), MULTIPART, 413],
            ["text after a boundary", Buffer.from(`--${BOUNDARY}junk\r\n\r\n`)],
        ]) {
            test(`${what} is refused and the staged file is kept`, async () => {
                const first = makeFile("first");
                await post(uploadBody(first));
                const answer = await post(body, { "content-type": type ?? MULTIPART });
                assertErrorPage(answer, status ?? 400, /arrived damaged or incomplete|larger than the board accepts/);
                assert.deepEqual(await stagedBytes(), first);
                await assertNoLeftovers();
            });
        }

        connectionTest("an upload may arrive in pieces of any size", async () => {
            const bytes = makeFile("in pieces");
            const body = uploadBody(bytes);
            for (const size of [1, 2, 4, body.length]) {
                await step(3);
                const socket = net.connect(new URL(board.origin).port, "127.0.0.1");
                socket.setNoDelay(true);
                let answer = "";
                socket.on("data", (data) => (answer += data));
                socket.write(
                    `POST ${SCREEN} HTTP/1.1\r\nHost: 127.0.0.1\r\nCookie: ${client.cookie}\r\n` +
                        `Content-Type: ${MULTIPART}\r\nContent-Length: ${body.length}\r\n` +
                        "Connection: close\r\n\r\n",
                );
                for (let i = 0; i < body.length; i += size) {
                    socket.write(body.subarray(i, i + size));
                }
                await once(socket, "close", timeLimit());
                assert.match(answer, /id="file_pid">3</, `pieces of ${size}`);
                assert.deepEqual(await stagedBytes(), bytes);
            }
        });

        connectionTest("an aborted upload leaves nothing", async () => {
            const body = uploadBody(Buffer.alloc(200000));
            for (let round = 0; round < 5; ++round) {
                const socket = net.connect(new URL(board.origin).port, "127.0.0.1");
                socket.write(
                    `POST ${SCREEN} HTTP/1.1\r\nHost: 127.0.0.1\r\nCookie: ${client.cookie}\r\n` +
                        `Content-Type: ${MULTIPART}\r\nContent-Length: ${body.length}\r\n\r\n`,
                );
                socket.write(body.subarray(0, 100000));
                await eventually(async () => assert.equal((await board.programs()).length, 1));
                socket.destroy();
                await eventually(async () => assert.deepEqual(await board.programs(), []));
            }
            // The session is still usable.
            assert.equal((await client.get(`${SCREEN}?functionID=106`)).status, 200);
            await assertNoLeftovers();
            assert.equal(await stagedBytes(), null);
        });

        test("an upload without a session is refused and not stored", async () => {
            const stranger = new Client(board);
            const answer = await stranger.request(SCREEN, {
                method: "POST",
                body: uploadBody(makeFile("x")),
                headers: { "content-type": MULTIPART },
            });
            assertErrorPage(answer, 403, /[Ll]og in/);
            await assertNoLeftovers();
        });

        test("two sessions never share a file", async () => {
            const other = await Client.loggedIn(board);
            const [mine, theirs] = [makeFile("mine"), makeFile("theirs", { partition: 7 })];
            assert.match((await post(uploadBody(mine))).text, /id="file_pid">3</);
            const answer = await other.request(SCREEN, {
                method: "POST",
                body: uploadBody(theirs),
                headers: { "content-type": MULTIPART },
            });
            assert.match(answer.text, /id="file_pid">7</);
            assert.match((await step(2, { pid5: "5" })).text, /was restored/);
            const link = downloadLink(await client.backUp(5));
            assert.equal(parseConfigurationFile((await client.get(link)).bytes).payload.toString(), "mine");
            assert.deepEqual(await stagedBytes(), mine);
        });

        describe("steps out of order", () => {
            test("a restore without an upload is refused by the board", async () => {
                assert.match((await step(2, { pid3: "3" })).text, /\[64-1539\]/);
            });

            test("a restore without a partition is refused", async () => {
                await post(uploadBody(makeFile("x")));
                assert.match((await step(2)).text, /No partition was changed.*\[71-\d+\]/);
                assert.notEqual(await stagedBytes(), null);
            });

            test("the posted value counts, not the field's name", async () => {
                await post(uploadBody(makeFile("by value")));
                // 259 is 3 modulo 256.
                assert.match((await step(2, { pid1: "259" })).text, /was restored/);
                const link = downloadLink(await client.backUp(3));
                const { payload } = parseConfigurationFile((await client.get(link)).bytes);
                assert.equal(payload.toString(), "by value");
            });

            test("select-all overrides single partitions", async () => {
                await post(uploadBody(makeFile("x")));
                // Partition 7 is running and partition 0 has another version, so none is restored.
                assert.match((await step(2, { check_box: "", pid3: "3" })).text, /\[(73|353)-\d+\]/);
            });

            for (const status of ["0", "abc", "4", "-1", ""]) {
                test(`step ${status || "empty"} shows the upload form`, async () => {
                    const answer = await step(status);
                    assert.match(answer.text, /name="hidden_status" value="0"/);
                });
            }

            test("a post without a step shows an empty page", async () => {
                const answer = await client.post(SCREEN, { functionID: "106" });
                assert.equal(answer.status, 200);
                assert.doesNotMatch(answer.text, /type="file"/);
                assert.match(answer.text, /did not say what to do/);
            });

            test("a discard without a file is only traced", async () => {
                const answer = await step(3);
                assert.match(answer.text, /type="file"/);
                assert.doesNotMatch(answer.text, /role="alert"/);
                assert.match(await board.trace(), /remove\(.*restored_eficonf[0-9a-f]+\) failed \(errno 2\)/);
            });

            test("the file remains after a restore until it is discarded", async () => {
                await post(uploadBody(makeFile("x")));
                assert.match((await step(2, { pid3: "3" })).text, /was restored/);
                assert.notEqual(await stagedBytes(), null);
                await step(3);
                assert.equal(await stagedBytes(), null);
            });

            test("an empty field \"message\" shows the notice again", async () => {
                const answer = await client.get(`${SCREEN}?functionID=106&message=`);
                assert.match(answer.text, /data-message="70"[^>]*>The BIOS configuration was restored/);
            });
        });

        test("a user without authority sees the reason and changes nothing", async () => {
            const viewer = await Client.loggedIn(board, "viewer");
            const link = downloadLink(await client.backUp(3));
            const before = parseConfigurationFile((await client.get(link)).bytes).payload;
            await assertNoLeftovers();
            const files = (await board.temporaryFiles()).length;
            for (const send of [
                () =>
                    viewer.request(SCREEN, {
                        method: "POST",
                        body: uploadBody(makeFile("never")),
                        headers: { "content-type": MULTIPART },
                    }),
                () => viewer.post(SCREEN, { functionID: "106", hidden_status: "2", pid3: "3" }),
                () => viewer.backUp(3),
            ]) {
                const answer = await send();
                assertErrorPage(answer, 403, /\[12-1033\]/);
                // The header has a form too, to log out.
                const page = answer.text.slice(answer.text.indexOf("<main>"));
                assert.doesNotMatch(page, /<form|configuration was restored|download_link/);
            }
            const again = downloadLink(await client.backUp(3));
            assert.deepEqual(parseConfigurationFile((await client.get(again)).bytes).payload, before);
            // Logging out removes the viewer's upload and the backup's empty file.
            await assertNoLeftovers();
            assert.ok((await board.temporaryFiles()).length <= files + 2);
            await viewer.post("/logout.cgi", {});
            assert.equal((await board.temporaryFiles()).length, files);
        });
    });
}
