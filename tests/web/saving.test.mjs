// SPDX-License-Identifier: AGPL-3.0-only
// What the page saves is what larkspire-render writes, in each browser, from a web server and from disk.
import assert from 'node:assert/strict';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, test } from 'node:test';

import { modeNames } from '../../web/common/modes.js';
import { addressOf, chooseMode, kinds, open, openRecording, places, save } from './support/browsers.mjs';
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
    });
