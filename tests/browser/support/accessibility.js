// Checks the accessibility of a page with axe-core.

import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { createRequire } from "node:module";

const AXE = await readFile(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

export const THEMES = ["light", "dark"];

// In pixels: a phone and a wide screen.
export const WIDTHS = [360, 1440];

// Sets the theme and width in which `page` is shown from now on.
export async function show(page, theme, width) {
    await page.setViewport({ width, height: 900 });
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: theme }]);
}

// Expects that axe-core finds no violation and that the page does not scroll sideways.
export async function assertAccessible(page) {
    await page.evaluate(AXE);
    const { violations } = await page.evaluate(() => window.axe.run());
    assert.deepEqual(
        violations.map(({ id, nodes }) => [id, nodes.map((node) => node.html)]),
        [],
    );
    const overflow = await page.evaluate(
        () => document.documentElement.scrollWidth - window.innerWidth,
    );
    assert.ok(overflow <= 0, `the page is ${overflow} pixels too wide`);
}
