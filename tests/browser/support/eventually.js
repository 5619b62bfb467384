// Waiting for what comes about a little later than the answer that a test has.

import { setTimeout as sleep } from "node:timers/promises";

// How long a test waits for what must happen; far above what it takes on a busy machine.
export const PATIENCE_MILLISECONDS = 120000;

// The result of `check`, which is called again until it throws nothing. When the time is over, its
// last error is the test's.
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

// Ends a wait for an event with an error when it takes too long: an option of once() and fetch().
export function timeLimit() {
    return { signal: AbortSignal.timeout(PATIENCE_MILLISECONDS) };
}
