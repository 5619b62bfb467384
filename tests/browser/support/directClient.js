// A client that starts the board's programs itself, because a web server could hide errors in a
// request from them. Standard input is a pipe or a file, and empty without a body.

import { spawn } from "node:child_process";
import { once } from "node:events";
import { open, rm } from "node:fs/promises";
import path from "node:path";
import { buffer, text } from "node:stream/consumers";
import { Client } from "./client.js";
import { PATIENCE_MILLISECONDS } from "./eventually.js";

const HEADER_END = "\r\n\r\n";

export class DirectClient extends Client {
    // `input` is "pipe" or "file".
    static from(input) {
        return class extends DirectClient {
            input = input;
        };
    }

    async request(target, { method = "GET", headers = {}, body } = {}) {
        const url = new URL(target, this.board.origin);
        const program = url.pathname.endsWith("/") ? `${url.pathname}index.cgi` : url.pathname;
        const form = body instanceof URLSearchParams;
        const bytes = body === undefined ? undefined : Buffer.from(form ? String(body) : body);
        const environment = {
            BOARD_ROOT: this.board.root,
            TZ: process.env.TZ ?? ":/etc/localtime",
            REQUEST_METHOD: method,
            QUERY_STRING: url.search.slice(1),
            HTTP_HOST: url.host,
            REMOTE_ADDR: "127.0.0.1",
            ...(this.cookie && { HTTP_COOKIE: this.cookie }),
            ...(bytes && { CONTENT_LENGTH: String(bytes.length) }),
            ...(form && { CONTENT_TYPE: "application/x-www-form-urlencoded" }),
        };
        for (const [name, value] of Object.entries(headers)) {
            const variable = name.toUpperCase().replaceAll("-", "_");
            environment[variable === "CONTENT_TYPE" ? variable : `HTTP_${variable}`] = value;
        }
        const { output } = await this.run(
            [this.board.path("usr/local/www/htdocs", program)],
            environment,
            bytes,
        );
        return parseResponse(output);
    }

    // Runs a command; without `bytes` its standard input is empty.
    async run([program, ...words], environment, bytes) {
        const file = bytes && this.input === "file" ? await this.inputFile(bytes) : undefined;
        const input = bytes === undefined ? "ignore" : (file?.fd ?? "pipe");
        const child = spawn(program, words, {
            env: environment,
            stdio: [input, "pipe", "pipe"],
            timeout: PATIENCE_MILLISECONDS,
            killSignal: "SIGKILL",
        });
        // A program that does not read the body may exit before all of it is written.
        child.stdin?.on("error", () => {});
        child.stdin?.end(bytes);
        const [output, errors] = await Promise.all([buffer(child.stdout), text(child.stderr)]);
        if (child.exitCode === null && child.signalCode === null) {
            await once(child, "exit");
        }
        await file?.close();
        return { status: child.exitCode, output, errors };
    }

    // Returns an open file with the given bytes and no name.
    async inputFile(bytes) {
        const name = path.join(this.board.root, `body-${process.pid}`);
        const writer = await open(name, "w");
        await writer.writeFile(bytes);
        await writer.close();
        const reader = await open(name, "r");
        await rm(name);
        return reader;
    }
}

function parseResponse(output) {
    const end = output.indexOf(HEADER_END);
    const lines = output.subarray(0, end).toString().split("\r\n");
    const headers = new Headers(lines.map((line) => line.split(/: (.*)/s).slice(0, 2)));
    const bytes = output.subarray(end + HEADER_END.length);
    return {
        status: Number.parseInt(headers.get("status"), 10),
        headers,
        bytes,
        text: bytes.toString(),
    };
}
