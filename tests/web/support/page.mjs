// SPDX-License-Identifier: AGPL-3.0-only
import { readFileSync } from 'node:fs';

import { pageFile } from './paths.mjs';

/** @param {string} id @returns {string} a part of the page that is text, as it stands there */
export function partOfThePage(id) {
    const [, part] =
        new RegExp(`<script type="text/plain" id="${id}">([^<]*)<`).exec(readFileSync(pageFile, 'utf8')) ?? [];

    if (part === undefined) throw new Error(`the page has no part ${id}`);

    return part;
}

/** @returns {WebAssembly.Module} the chain that the page holds, byte for byte */
export function chainOfThePage() {
    return new WebAssembly.Module(Buffer.from(partOfThePage('chain'), 'base64'));
}
