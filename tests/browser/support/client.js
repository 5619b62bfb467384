// An HTTP client for requests that no page would send.

import assert from "node:assert/strict";
import { timeLimit } from "./eventually.js";

export class Client {
    constructor(board) {
        this.board = board;
        this.cookie = "";
    }

    static async loggedIn(board, user = "admin") {
        const client = new this(board);
        const answer = await client.post("/login.cgi", { user, password: user });
        assert.equal(answer.status, 303);
        client.cookie = answer.headers.get("set-cookie").split(";")[0];
        return client;
    }

    // Returns the answer with its body as `text` and `bytes`; does not follow redirections. Each
    // request has a new connection, because the server may close a kept one just as the next request
    // is sent on it.
    async request(target, options = {}) {
        const response = await fetch(this.board.url(target), {
            redirect: "manual",
            ...timeLimit(),
            ...options,
            headers: {
                connection: "close",
                ...(this.cookie && { cookie: this.cookie }),
                ...options.headers,
            },
        });
        const bytes = Buffer.from(await response.arrayBuffer());
        return { status: response.status, headers: response.headers, bytes, text: bytes.toString() };
    }

    get(target, headers = {}) {
        return this.request(target, { headers });
    }

    post(target, fields, headers = {}) {
        return this.request(target, {
            method: "POST",
            body: new URLSearchParams(fields),
            headers,
        });
    }

    // Posts the backup form.
    backUp(partition, more = {}) {
        return this.post("/maintenance/efi_backup_restore.cgi", {
            functionID: "105",
            hidden_status: "BACKUP",
            radio_button: String(partition),
            ...more,
        });
    }
}

// Expects a complete HTML page with this status and text, and no download.
export function assertErrorPage(answer, status, words) {
    assert.equal(answer.status, status, answer.text);
    assert.match(answer.headers.get("content-type"), /^text\/html/);
    assert.equal(answer.headers.get("content-disposition"), null);
    assert.match(answer.text, /<\/html>\s*$/);
    assert.match(answer.text, words);
}

// Returns the download link of a backup page, unescaped.
export function downloadLink(page) {
    const link = page.text.match(/id="download_link" href="([^"]*)"/);
    assert.ok(link, page.text);
    return link[1].replaceAll("&amp;", "&");
}
