// SPDX-License-Identifier: AGPL-3.0-only
// Puts the page into one file: node build.mjs CHAIN LICENCES RELEASE SOURCE_ADDRESS RESULT. The same parts give the
// same bytes.
import { createHash } from 'node:crypto';
import { mkdirSync, readFileSync, renameSync, writeFileSync } from 'node:fs';
import { dirname, join, relative } from 'node:path';
import { fileURLToPath } from 'node:url';

import { modeNames } from './common/modes.js';

const web = dirname(fileURLToPath(import.meta.url));
const importLine = /^import \{[^}]*\} from '(\.[^']*)';\n/gm;

/**
 * A module and those that it imports, each once and ahead of those that use it, as one script. They share its scope,
 * so that no two may give one name to different things; node and browsers refuse a script that does.
 *
 * @param {string} path below this folder
 * @param {Set<string>} [taken]
 * @returns {string}
 */
export function bundle(path, taken = new Set()) {
    if (taken.has(path)) return '';

    taken.add(path);
    const text = readFileSync(join(web, path), 'utf8');
    const imported = [...text.matchAll(importLine)].map(([, other]) =>
        bundle(relative(web, join(web, dirname(path), other)), taken),
    );
    const own = text
        .replace(importLine, '')
        .replace(/^export (?=const|function|async|class)/gm, '')
        .replace(/^\/\/ SPDX.*\n/, '');

    if (/^(import|export) /m.test(own))
        throw new Error(`${path} imports or exports in a way that this script does not know`);

    return `${imported.join('')}\n// ${path}\n${own}`;
}

/** @param {string} text @returns {string} as a Content-Security-Policy names it */
function hashOf(text) {
    return `'sha256-${createHash('sha256').update(text).digest('base64')}'`;
}

/** @param {string} text @returns {string} */
function escaped(text) {
    return text.replace(/[&<>"]/g, letter => `&#${letter.charCodeAt(0)};`);
}

/** @param {string} script @returns {string} the same, if it can stand inside a script element */
function checked(script) {
    if (/<\/script|<!--/i.test(script)) throw new Error('a script holds what would end its element');

    return script;
}

/** @returns {import('./page/advice.js').LevelAdvice[]} what tools/meter/LevelAdvice.h has for all programs */
export function levelAdvice() {
    const text = readFileSync(join(web, '../tools/meter/LevelAdvice.h'), 'utf8');
    const row = /\{ \.mode = "(\w+)", \.lowestPeak = (-\d+), \.highestPeak = (-\d+), \.highestRoom = (-\d+) \}/g;
    const rows = [...text.matchAll(row)].map(([, mode, lowestPeak, highestPeak, highestRoom]) => ({
        mode,
        lowestPeak: Number(lowestPeak),
        highestPeak: Number(highestPeak),
        highestRoom: Number(highestRoom),
    }));

    if (rows.map(({ mode }) => mode).join() !== modeNames.slice(1).join())
        throw new Error('LevelAdvice.h has not one row for each mode in the shape that this script knows');

    return rows;
}

/**
 * @param {{ chain: Buffer, licences: string, release: string, sourceAddress: string }} parts
 * @returns {string} the page
 */
export function page({ chain, licences, release, sourceAddress }) {
    const script = checked(`'use strict';\n${bundle('page/app.js')}`);
    const style = readFileSync(join(web, 'page.css'), 'utf8');
    /** @type {Record<string, string>} */
    const contents = {
        // Nothing is fetched from anywhere. Scripts are this one, the compiled chain, the worker out of this file, and
        // the audio worklet, which browsers take from a data: address only.
        policy:
            `default-src 'none'; script-src ${hashOf(script)} 'wasm-unsafe-eval' data:; worker-src blob:; ` +
            `style-src ${hashOf(style)}; img-src data:; media-src blob:; form-action 'none'; base-uri 'none'`,
        style,
        source: sourceAddress ? ` <a href="${escaped(sourceAddress)}" data-text="source"></a>` : '',
        release: escaped(release),
        licences: escaped(licences),
        capture: checked(bundle('worklet/capture.js')),
        worker: checked(`'use strict';\n${bundle('worker/worker.js')}`),
        chain: chain.toString('base64'),
        levelAdvice: JSON.stringify(levelAdvice()),
        page: script,
    };

    return readFileSync(join(web, 'page.html'), 'utf8').replace(/\{\{(\w+)\}\}/g, (_, name) => contents[name]);
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
    const [chain, licences, release, sourceAddress, result] = process.argv.slice(2);
    const text = page({ chain: readFileSync(chain), licences: readFileSync(licences, 'utf8'), release, sourceAddress });
    mkdirSync(dirname(result), { recursive: true });
    writeFileSync(`${result}.new`, text);
    renameSync(`${result}.new`, result);
}
