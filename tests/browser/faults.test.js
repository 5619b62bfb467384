// Tests of every failure of the back-end: the operator always gets a page with the right message,
// the trace has its line, and the staged file is kept or removed as it should be.

import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { beforeEach, describe, test } from "node:test";
import { Client, assertErrorPage, downloadLink } from "./support/client.js";
import { makeConfigurationFile, parseConfigurationFile } from "./support/configurationFile.js";
import { PATIENCE_MILLISECONDS } from "./support/eventually.js";
import { provide } from "./support/fixture.js";
import { MULTIPART, uploadBody } from "./support/multipart.js";

const SCREEN = "/maintenance/efi_backup_restore.cgi";
const PARTITIONS = "0x0201002F";
const HARDWARE = "0x02010021";
const VERSIONS = "0x02010201";
const BACKUP = "0x020100A3";
const RESTORE = "0x020100A4";

const FILE = makeConfigurationFile({
    saveTime: 1772884800,
    partition: 3,
    version: "1.23 B",
    name: "R&D",
    payload: Buffer.from("Boot=1\n"),
});

describe("a failing back-end", () => {
    let board;
    let client;
    let staged;

    provide((started) => ({ board } = started), [], null);
    beforeEach(async () => {
        await board.control("reset");
        client = await Client.loggedIn(board);
        const identifier = client.cookie.slice("session=".length).split("-")[0];
        staged = board.path("var/tmp", `restored_eficonf${identifier}`);
    });

    function upload() {
        return client.request(SCREEN, {
            method: "POST",
            body: uploadBody(FILE),
            headers: { "content-type": MULTIPART },
        });
    }

    function restore(more = { pid3: "3" }) {
        return client.post(SCREEN, { functionID: "106", hidden_status: "2", ...more });
    }

    async function isStaged() {
        return (await readFile(staged).catch(() => null))?.equals(FILE) ?? false;
    }

    async function payloadOf(partition) {
        const link = downloadLink(await client.backUp(partition));
        return parseConfigurationFile((await client.get(link)).bytes).payload.toString();
    }

    for (const [code, words] of [
        [1047, /busy with another restore.*\[250-1047\]/],
        [1539, /not a usable BIOS configuration file.*\[64-1539\]/],
        [1549, /partition is running.*\[73-1549\]/],
        [1551, /does not fit.*\[353-1551\]/],
        [1540, /It is not known whether the partitions were changed.*\[71-1540\]/],
    ]) {
        test(`a restore refused with ${code} shows the reason and keeps the file`, async () => {
            await upload();
            await board.control("refuse", RESTORE, code);
            const page = await restore();
            assert.equal(page.status, 200);
            assert.match(page.text, words);
            assert.match(page.text, /name="hidden_status" value="2"/);
            assert.ok(await isStaged());
        });
    }

    for (const [code, words] of [
        [1047, /\[250-1047\]/],
        [1540, /backup failed.*\[72-1540\]/],
    ]) {
        test(`a backup refused with ${code} shows the reason and offers no download`, async () => {
            await board.control("refuse", BACKUP, code);
            const page = await client.backUp(3);
            assert.match(page.text, words);
            assert.match(page.text, /<table/);
            assert.doesNotMatch(page.text, /download_link/);
        });
    }

    test("a backup accepted but not written gives an error page without a link", async () => {
        // Refusing with code 0 makes the back-end report success without writing, so the file that
        // the program created remains empty.
        await board.control("refuse", BACKUP, 0);
        assertErrorPage(await client.backUp(3), 500, /not certain/);
        assert.match(await board.trace(), /\[1104\]/);
    });

    test("a missing partition table hides the selection and keeps the file", async () => {
        await board.control("refuse", PARTITIONS, 1609);
        assertErrorPage(await upload(), 503, /Failed to obtain the partition status/);
        assert.ok(await isStaged());
        assert.match(await board.trace(), /Failed to obtain the partition status/);
    });

    test("missing hardware data hides the selection and keeps the file", async () => {
        await board.control("refuse", HARDWARE, 1609);
        assertErrorPage(await upload(), 503, /Failed to obtain the system status/);
        assert.ok(await isStaged());
        assert.match(await board.trace(), /Failed to obtain the system status/);
    });

    test("missing versions appear as dashes without a message", async () => {
        await board.control("refuse", VERSIONS, 1609);
        const page = await upload();
        assert.doesNotMatch(page.text, /role="alert"/);
        const versions = [...page.text.matchAll(/class="version"[^>]*>([^<]*)</g)];
        assert.deepEqual(versions.map(([, version]) => version), ["-", "-", "-", "-", "-"]);
    });

    test("a partition without a home board shows no version and is traced", async () => {
        const page = await upload();
        assert.match(page.text, /class="version"[^>]*>10\.20\.30</);
        assert.match(await board.trace(), /Home SB absent:PID5\n/);
    });

    test("select-all without the partition table sends nothing", async () => {
        await upload();
        const before = await payloadOf(3);
        await board.control("refuse", PARTITIONS, 1609);
        const page = await restore({ check_box: "" });
        assertErrorPage(page, 503, /Failed to obtain the partition status/);
        assert.equal(await payloadOf(3), before);
        assert.ok(await isStaged());
    });

    test("the program waits for a slow back-end", async () => {
        await board.control("slow", 1500);
        assert.equal((await client.get(`${SCREEN}?functionID=105`)).status, 200);
    });

    test("a silent back-end causes a timeout", async () => {
        await board.control("silent");
        assertErrorPage(
            await client.get(`${SCREEN}?functionID=105`),
            503,
            /Failed to obtain the partition status/,
        );
    });

    test("a reply torn at any byte gives an error page", async () => {
        for (let bytes = 1; bytes <= 40; ++bytes) {
            await board.control("torn", bytes);
            assertErrorPage(
                await client.get(`${SCREEN}?functionID=105`),
                503,
                /Failed to obtain the partition status/,
            );
        }
    });

    test("a restore with a torn reply takes effect and is reported as unknown", async () => {
        await upload();
        await board.control("torn", 3);
        const page = await restore();
        assert.match(page.text, /It is not known whether the partitions were changed.*\[71-2003\]/);
        assert.equal(await payloadOf(3), "Boot=1\n");
    });

    test("a restarted back-end has lost nothing", async () => {
        await upload();
        assert.match((await restore()).text, /was restored/);
        await board.control("die", "--back-in", "300");
        const deadline = Date.now() + PATIENCE_MILLISECONDS;
        let page = await client.get(`${SCREEN}?functionID=105`);
        assert.ok([200, 503].includes(page.status));
        while (page.status !== 200 && Date.now() < deadline) {
            page = await client.get(`${SCREEN}?functionID=105`);
        }
        assert.equal(page.status, 200);
        assert.equal(await payloadOf(3), "Boot=1\n");
        assert.ok(await isStaged());
    });

    test("a running partition refuses a restore until it is off", async () => {
        await upload();
        await board.control("partition", 3, "on");
        assert.match((await restore()).text, /\[73-1549\]/);
        await board.control("partition", 3, "off");
        assert.match((await restore()).text, /was restored/);
    });

    test("boardctl explains itself and refuses invalid orders", async () => {
        assert.match(await board.control("--help"), /refuse[\s\S]*partition[\s\S]*Exit status/);
        await board.control("slow", 5, "--times", 2);
        assert.match(await board.control("status"), /wait 5 ms, 2 times/);
        await assert.rejects(board.control("partition", 3, "maybe"), { code: 2 });
        await assert.rejects(board.control("nonsense"), { code: 2 });
        await assert.rejects(board.control("slow", 99999999), { code: 1 });
    });
});
