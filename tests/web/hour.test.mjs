// SPDX-License-Identifier: AGPL-3.0-only
// An hour opens, plays and is saved without filling the memory and without freezing the page.
import assert from 'node:assert/strict';
import { createHash } from 'node:crypto';
import { closeSync, createReadStream, openSync, readFileSync, readdirSync, rmSync, writeSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';

import { addressOf, kinds, open, openRecording, save, waitUntil } from './support/browsers.mjs';
import { render } from './support/renderer.mjs';
import { speechLike, wavFile } from './support/sounds.mjs';
import { inBrowser } from './support/suite.mjs';

const rate = 48000;
const minutes = 60;
const mostMegabytes = 600;
const longestPauseMs = 1000; // of the page's own thread, on a machine that has other things to do

/** Writes an hour of speech, no minute like the other, without having it in memory. @param {string} file */
function writeHour(file) {
    const minute = speechLike(60 * rate, rate, 1, 0.3);
    const head = wavFile([new Float32Array(0)], { rate, encoding: 'pcm16' });
    const size = 2 * minutes * minute.length;
    head.writeUInt32LE(size + 36, 4);
    head.writeUInt32LE(size, 40);
    const out = openSync(file, 'w');
    writeSync(out, head);

    const louder = new Int16Array(minute.length);

    for (let i = 0; i < minutes; ++i) {
        minute.forEach((x, at) => {
            louder[at] = (x * (1 + i) * 32768) / minutes;
        });
        writeSync(out, new Uint8Array(louder.buffer));
    }

    closeSync(out);
}

/** @param {number} root @returns {number[]} the processes below it, and it */
function familyOf(root) {
    const parents = new Map(
        readdirSync('/proc')
            .filter(name => /^\d+$/.test(name))
            .map(name => {
                try {
                    return [
                        Number(name),
                        Number(
                            readFileSync(`/proc/${name}/stat`, 'utf8')
                                .replace(/^.*\) . /s, '')
                                .split(' ')[0],
                        ),
                    ];
                } catch {
                    return [Number(name), 0]; // it has ended
                }
            }),
    );
    const family = [root];

    for (let i = 0; i < family.length; ++i)
        for (const [child, parent] of parents) if (parent === family[i]) family.push(child);

    return family;
}

/** @param {number} root @returns {number} what its processes have in memory, each shared page once, in megabytes */
function memoryOf(root) {
    return familyOf(root).reduce((sum, id) => {
        try {
            const [, kilobytes] = /^Pss: +(\d+)/m.exec(readFileSync(`/proc/${id}/smaps_rollup`, 'utf8')) ?? [];
            return sum + Number(kilobytes ?? 0) / 1024;
        } catch {
            return sum;
        }
    }, 0);
}

/** @param {string} file @returns {Promise<string>} */
async function hashOf(file) {
    const hash = createHash('sha256');

    for await (const piece of createReadStream(file)) hash.update(piece);

    return hash.digest('hex');
}

for (const kind of kinds)
    inBrowser(kind, { isHeard: true }, stage => {
        test(`an hour takes less than ${mostMegabytes} MB, and the page stays awake`, async t => {
            const file = join(stage.folder, 'hour.wav');
            writeHour(file);
            const { page } = await open(stage.browser, addressOf('http', stage.server));
            await page.evaluate(() => {
                let last = performance.now();
                const look = () => {
                    const now = performance.now();
                    Object.assign(globalThis, {
                        longestPause: Math.max(/** @type {any} */ (globalThis).longestPause ?? 0, now - last),
                    });
                    last = now;
                    setTimeout(look, 10);
                };
                look();
            });

            const id = /** @type {number} */ (stage.browser.process()?.pid);
            const before = memoryOf(id);
            let most = 0;
            const watch = setInterval(() => {
                most = Math.max(most, memoryOf(id) - before);
            }, 200);

            const start = performance.now();
            await openRecording(page, file, 300000);
            const opened = performance.now();
            await page.$eval('#position', input => {
                /** @type {HTMLInputElement} */ (input).value = '3590';
                input.dispatchEvent(new Event('input'));
            });
            await page.click('#play');
            await waitUntil(
                page,
                () => Number(/** @type {HTMLInputElement} */ (document.getElementById('position')).value) > 3592,
            );
            const saving = performance.now();
            const saved = await save(page, stage.folder, 'hour-Medium.wav', 600000);
            const done = performance.now();
            clearInterval(watch);

            const pause = await page.evaluate(() => /** @type {any} */ (globalThis).longestPause);
            t.diagnostic(
                `${most.toFixed(0)} MB more than the empty page; opened in ${((opened - start) / 1000).toFixed(1)} s, saved in ` +
                    `${((done - saving) / 1000).toFixed(1)} s; the longest pause was ${pause.toFixed(0)} ms`,
            );
            render(file, join(stage.folder, 'expected.wav'));
            assert.equal(await hashOf(saved), await hashOf(join(stage.folder, 'expected.wav')));
            assert.ok(most < mostMegabytes, `${most} MB`);
            assert.ok(pause < longestPauseMs, `${pause} ms`);
            ['hour.wav', 'expected.wav', 'hour-Medium.wav'].forEach(name => rmSync(join(stage.folder, name)));
            await page.close();

            // What is on disk for the sake of a page goes when the next one is opened.
            const { page: next } = await open(stage.browser, addressOf('http', stage.server));
            await waitUntil(next, async () => (await indexedDB.databases()).length === 0);
            await next.close();
        });
    });
