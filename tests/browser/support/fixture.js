// The board and the browser of a suite.

import { after, before } from "node:test";
import { Board } from "./board.js";
import { Browser } from "./browser.js";

// Starts a board and a browser before the tests of a suite, passes them to `use` as { board, browser },
// and stops them after the tests. `boardOptions` are those of Board.start(), `browserOptions` those of
// Browser.start(); null starts no browser.
export function provide(use, boardOptions = [], browserOptions = []) {
    const started = {};
    before(async () => {
        started.board = await Board.start(...boardOptions);
        started.browser = browserOptions && (await Browser.start(...browserOptions));
        await use(started);
    });
    after(async () => {
        await started.browser?.stop();
        await started.board?.remove();
    });
}
