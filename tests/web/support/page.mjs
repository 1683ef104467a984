// SPDX-License-Identifier: AGPL-3.0-only
import { readFileSync } from 'node:fs';

import { pageFile } from './paths.mjs';

/** @returns {WebAssembly.Module} the chain that the page holds, byte for byte */
export function chainOfThePage() {
    const [, base64] = /<script type="text\/plain" id="chain">([^<]*)</.exec(readFileSync(pageFile, 'utf8')) ?? [];
    return new WebAssembly.Module(Buffer.from(base64, 'base64'));
}
