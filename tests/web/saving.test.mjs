// SPDX-License-Identifier: AGPL-3.0-only
// What the page saves is what larkspire-render writes, in each browser, from a web server and from disk.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, test } from 'node:test';

import { modeNames } from '../../web/common/modes.js';
import {
    addressOf,
    choose,
    chooseMode,
    focusOf,
    kinds,
    open,
    openRecording,
    places,
    save,
    waitForStatus,
    waitUntil,
} from './support/browsers.mjs';
import { render } from './support/renderer.mjs';
import { realVoice, speechLike, wavFile } from './support/sounds.mjs';
import { inBrowser } from './support/suite.mjs';

const folder = mkdtempSync(join(tmpdir(), 'larkspire-page-'));
after(() => rmSync(folder, { recursive: true, force: true }));

/** @type {string[]} the names of the recordings, without their ends */
const recordings = ['voice'];
writeFileSync(join(folder, 'voice.wav'), realVoice());

for (const channels of [1, 2])
    for (const encoding of ['pcm16', 'pcm24', 'float32'])
        for (const rate of [44100, 48000]) {
            const name = `${channels === 1 ? 'mono' : 'stereo'}-${encoding}-${rate}`;
            const sound = [speechLike(60001, rate, 1), speechLike(60001, rate, 2, 0.2)].slice(0, channels);
            writeFileSync(join(folder, `${name}.wav`), wavFile(sound, { rate, encoding }));
            recordings.push(name);
        }

for (const kind of kinds)
    inBrowser(kind, {}, stage => {
        for (const place of places)
            for (const name of recordings)
                test(`from ${place}, ${name} is saved with the renderer's bytes in each mode`, async () => {
                    const { page, errors } = await open(stage.browser, addressOf(place, stage.server));
                    const file = join(folder, `${name}.wav`);
                    await openRecording(page, file);

                    for (const mode of modeNames) {
                        await chooseMode(page, mode);
                        const saved = await save(page, stage.folder, `${name}-${mode}.wav`);
                        const expected = render(file, join(folder, 'expected.wav'), '--mode', mode);
                        assert.ok(readFileSync(saved).equals(expected), `${mode}: these are not the renderer's bytes`);
                        rmSync(saved);
                    }

                    assert.deepEqual(errors, []);
                    await page.close();
                });

        test('what is saved is what was to be saved, whatever is chosen or opened meanwhile', async () => {
            const { page } = await open(stage.browser, addressOf('disk', stage.server));
            const file = join(folder, 'long.wav');
            writeFileSync(file, wavFile([speechLike(60 * 48000, 48000, 3)], { rate: 48000, encoding: 'pcm16' }));
            await openRecording(page, file);
            const saving = save(page, stage.folder, 'long-Medium.wav');
            await waitForStatus(page, /^Writing/);
            assert.equal(await focusOf(page), 'save', 'the keyboard has lost its place');
            await chooseMode(page, 'Powerful');
            await choose(page, join(folder, 'mono-pcm16-48000.wav'));
            const expected = render(file, join(folder, 'expected.wav'), '--mode', 'Medium');
            assert.ok(readFileSync(await saving).equals(expected));
            await page.close();
        });

        test('what was saved or looked into is let go of', async () => {
            const { page } = await open(stage.browser, addressOf('disk', stage.server), () => {
                const addresses = new Set();
                const { createObjectURL, revokeObjectURL } = URL;
                const wait = setTimeout;
                Object.assign(globalThis, { addresses });
                URL.createObjectURL = object => {
                    const address = createObjectURL(object);
                    addresses.add(address);
                    return address;
                };
                URL.revokeObjectURL = address => {
                    addresses.delete(address);
                    revokeObjectURL(address);
                };
                // A minute, and whatever is longer, passes in a second.
                Object.assign(globalThis, {
                    setTimeout: (/** @type {() => void} */ action, /** @type {number} */ time) =>
                        wait(action, time < 60000 ? time : 1000),
                });
            });
            const living = () => page.evaluate(() => /** @type {any} */ (globalThis).addresses.size);
            const atFirst = await living();
            execFileSync('sox', ['-D', join(folder, 'mono-pcm16-48000.wav'), join(folder, 'some.flac')]);
            await openRecording(page, join(folder, 'some.flac'));
            assert.equal(await living(), atFirst);
            await save(page, stage.folder, 'some-Medium.wav');
            assert.equal(await living(), atFirst + 1);
            await waitUntil(page, count => /** @type {any} */ (globalThis).addresses.size === count, atFirst);
            await page.close();
        });
    });
