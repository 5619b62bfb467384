// Starts and stops a board for a test, in a new folder and on a free port.

import assert from "node:assert/strict";
import { execFile as execFileCallback, spawn } from "node:child_process";
import { once } from "node:events";
import {
    copyFile,
    mkdtemp,
    readFile,
    readdir,
    readlink,
    rm,
    utimes,
    writeFile,
} from "node:fs/promises";
import { tmpdir } from "node:os";
import path from "node:path";
import readline from "node:readline";
import { fileURLToPath } from "node:url";
import { promisify } from "node:util";
import { eventually, timeLimit } from "./eventually.js";

const execFile = promisify(execFileCallback);

const project = fileURLToPath(new URL("../../..", import.meta.url));

export class Board {
    // Starts `./serve` without building; BOARD_PRESET names the build to serve. `description` is the
    // text of a board description, by default the demo board's; `options` are passed to `./serve`.
    static async start(description, options = []) {
        const board = new Board();
        board.root = await mkdtemp(path.join(tmpdir(), "board-"));
        board.options = [...options];
        if (description !== undefined) {
            await writeFile(board.path("test.toml"), description, { mode: 0o600 });
            board.options.push("--board", board.path("test.toml"));
        }
        try {
            await board.serve();
        } catch (error) {
            await board.remove();
            throw error;
        }
        return board;
    }

    async serve() {
        const preset = process.env.BOARD_PRESET ?? "release";
        this.process = spawn(
            path.join(project, "serve"),
            ["--port", "0", "--root", this.root, "--no-build", "--preset", preset, ...this.options],
            { stdio: ["ignore", "pipe", "pipe"] },
        );
        let output = "";
        this.process.stderr.on("data", (data) => (output += data));
        const lines = readline.createInterface({ input: this.process.stdout });
        for await (const line of lines) {
            output += `${line}\n`;
            const match = line.match(/^Serving (https?:\/\/127\.0\.0\.1:\d+)\/$/);
            if (match) {
                this.origin = match[1];
                this.process.stdout.resume();
                return;
            }
        }
        throw new Error(`The board did not start:\n${output}`);
    }

    async stop() {
        if (this.process.exitCode === null && this.process.signalCode === null) {
            this.process.kill("SIGTERM");
            await once(this.process, "exit", timeLimit());
        }
    }

    async remove() {
        await this.stop();
        await rm(this.root, { recursive: true, force: true, maxRetries: 30 });
    }

    url(target) {
        return this.origin + target;
    }

    // Returns a path below the board's root.
    path(...parts) {
        return path.join(this.root, ...parts);
    }

    trace() {
        return readFile(this.path("var/log/trace.log"), "utf8").catch(() => "");
    }

    // Returns the names in "/var/tmp". Waits until the web server has removed its own files, which
    // it does shortly after the answer.
    async temporaryFiles() {
        return eventually(async () => {
            const names = await readdir(this.path("var/tmp"));
            assert.deepEqual(names.filter((name) => name.startsWith("lighttpd-upload-")), []);
            return names;
        });
    }

    // Returns the process numbers of the CGI programs that are running.
    async programs() {
        const folder = this.path("usr/local/www/htdocs/");
        const numbers = [];
        for (const name of await readdir("/proc")) {
            const program = await readlink(`/proc/${name}/exe`).catch(() => "");
            if (program.startsWith(folder)) {
                numbers.push(Number(name));
            }
        }
        return numbers;
    }

    sessions() {
        return readdir(this.path("var/lib/session"));
    }

    // Makes every session look as if it was last used `seconds` ago.
    async ageSessions(seconds) {
        const then = new Date(Date.now() - seconds * 1000);
        for (const name of await this.sessions()) {
            await utimes(this.path("var/lib/session", name), then, then);
        }
    }

    // Replaces the screen's program with `program`, a path below the build's folder.
    async replaceScreen(program) {
        const preset = process.env.BOARD_PRESET ?? "release";
        const screen = this.path("usr/local/www/htdocs/maintenance/efi_backup_restore.cgi");
        await rm(screen);
        await copyFile(path.join(project, "build", preset, program), screen);
    }

    // Runs boardctl with the given order and returns its output.
    async control(...words) {
        const { stdout } = await execFile(this.path("usr/local/bin/boardctl"), [
            "--root",
            this.root,
            ...words.map(String),
        ]);
        return stdout;
    }

    // Returns the process number of this board's back-end; throws if none runs.
    async backendProcess() {
        for (const name of await readdir("/proc")) {
            const words = await readFile(`/proc/${name}/cmdline`, "utf8").catch(() => "");
            if (words.includes("efi_backend\0") && words.includes(this.root)) {
                return Number(name);
            }
        }
        throw new Error("No back-end runs.");
    }
}
