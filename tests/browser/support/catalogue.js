// The board's languages and their texts, as the message catalogues have them.

import { readFileSync, readdirSync } from "node:fs";

const FOLDER = new URL("../../../board/catalogue/", import.meta.url);

// The tags of all languages.
export const LANGUAGES = readdirSync(FOLDER).flatMap((name) =>
    /^messages_(.+)\.msg$/.exec(name)?.[1] ?? []);

// Returns text `number` of a set in a language; undefined if there is none.
export function textIn(language, set, number) {
    const catalogue = readFileSync(new URL(`messages_${language}.msg`, FOLDER), "utf8");
    const [, texts = ""] = catalogue.split(`\n$set ${set}\n`);
    return new RegExp(`^${number} "(.*)"$`, "m").exec(texts.split("\n$set ")[0])?.[1];
}
