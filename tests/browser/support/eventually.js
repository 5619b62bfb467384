// Waiting for effects that follow shortly after an answer.

import { setTimeout as sleep } from "node:timers/promises";

// How long a test waits for something that must happen; far longer than a busy machine needs.
export const PATIENCE_MILLISECONDS = 120000;

// Calls `check` until it does not throw, and returns its result. After the time limit, throws its
// last error.
export async function eventually(check) {
    const deadline = Date.now() + PATIENCE_MILLISECONDS;
    for (;;) {
        try {
            return await check();
        } catch (error) {
            if (Date.now() >= deadline) {
                throw error;
            }
        }
        await sleep(20);
    }
}

// Returns an option for once() and fetch() that makes a long wait fail.
export function timeLimit() {
    return { signal: AbortSignal.timeout(PATIENCE_MILLISECONDS) };
}
