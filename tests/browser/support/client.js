// A client without a browser, for requests that no page would send.

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

    // The answer with its body as `text` and `bytes`; redirections are not followed. Each request
    // has a connection of its own: the server may close one that was left open just when the next
    // request is sent on it.
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

    // The posted backup form.
    backUp(partition, more = {}) {
        return this.post("/maintenance/efi_backup_restore.cgi", {
            functionID: "105",
            hidden_status: "BACKUP",
            radio_button: String(partition),
            ...more,
        });
    }
}

// An answer that an operator can read: whole, HTML, and never a download.
export function assertErrorPage(answer, status, words) {
    assert.equal(answer.status, status, answer.text);
    assert.match(answer.headers.get("content-type"), /^text\/html/);
    assert.equal(answer.headers.get("content-disposition"), null);
    assert.match(answer.text, /<\/html>\s*$/);
    assert.match(answer.text, words);
}

// The link of a backup page, as the browser follows it.
export function downloadLink(page) {
    const link = page.text.match(/id="download_link" href="([^"]*)"/);
    assert.ok(link, page.text);
    return link[1].replaceAll("&amp;", "&");
}
