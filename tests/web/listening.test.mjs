// SPDX-License-Identifier: AGPL-3.0-only
// What is heard, measured ahead of the speaker.
import assert from 'node:assert/strict';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { setTimeout as sleep } from 'node:timers/promises';

import { modeNames } from '../../web/common/modes.js';
import { Chain } from '../../web/worker/chain.js';
import { Loudness } from '../../web/worker/loudness.js';
import { addressOf, kinds, listenTo, open, openRecording, waitUntil } from './support/browsers.mjs';
import { chainOfThePage } from './support/page.mjs';
import { speechLike, wavFile } from './support/sounds.mjs';
import { forgetHeard, heardAtSpeaker, latestFrame, listenIn, placeOf } from './support/speaker.mjs';
import { inBrowser } from './support/suite.mjs';

const rate = 48000;
const seconds = 6; // more than two pieces
const original = speechLike(seconds * rate, rate, 1, 0.1);

const folder = mkdtempSync(join(tmpdir(), 'larkspire-page-'));
const file = join(folder, 'speech.wav');
writeFileSync(file, wavFile([original], { rate, encoding: 'float32' }));
after(() => rmSync(folder, { recursive: true, force: true }));

/** @param {string} mode @returns {Float32Array} what the mode makes of the recording */
function resultOf(mode) {
    const chain = new Chain(chainOfThePage());
    chain.begin(rate, modeNames.indexOf(mode));
    return chain.process([original])[0];
}

/** @param {Float32Array} samples */
function loudnessOf(samples) {
    const meter = new Loudness(rate, 1);
    meter.add([samples]);
    return /** @type {number} */ (meter.integrated());
}

/** @param {Float32Array} samples @param {number} gain */
function scaled(samples, gain) {
    return samples.map(x => x * gain);
}

/** @param {number} decibels */
function amplitude(decibels) {
    return 10 ** (decibels / 20);
}

for (const kind of kinds)
    inBrowser(kind, { isHeard: true }, stage => {
        /** @type {import('puppeteer-core').Page} */
        let page;

        before(async () => {
            ({ page } = await open(stage.browser, addressOf('http', stage.server), listenIn));
            await openRecording(page, file);
            await page.click('#play'); // until the listener is there
            await sleep(1000);
            await page.click('#play');
        });

        async function rewind() {
            await page.$eval('#position', input => {
                /** @type {HTMLInputElement} */ (input).value = '0';
                input.dispatchEvent(new Event('input'));
            });
        }

        /** @param {number} seconds */
        function untilPosition(seconds) {
            return waitUntil(
                page,
                end => Number(/** @type {HTMLInputElement} */ (document.getElementById('position')).value) > end,
                seconds,
            );
        }

        /** Plays all of it. @param {string} mode @param {'original' | 'result'} sound */
        async function playThrough(mode, sound) {
            await listenTo(page, mode);
            await page.click(`label:has(#choose-${sound})`);
            await rewind();
            await forgetHeard(page);
            await page.click('#play');
            await waitUntil(page, word => document.getElementById('play')?.textContent === word, 'Play');
            await sleep(300);
            return heardAtSpeaker(page);
        }

        for (const mode of ['Gentle', 'Powerful'])
            test(`original and ${mode} are equally loud, and every sample is in its place`, async () => {
                const result = resultOf(mode);
                const difference = loudnessOf(result) - loudnessOf(original);
                assert.ok(difference > 3, 'the result has to be louder for this test to mean anything');

                const asOriginal = await playThrough(mode, 'original');
                const asResult = await playThrough(mode, 'result');
                assert.ok(
                    Math.abs(loudnessOf(asOriginal.samples) - loudnessOf(asResult.samples)) < 0.1,
                    `${loudnessOf(asOriginal.samples)} and ${loudnessOf(asResult.samples)} LUFS`,
                );

                // Behind the fade at the start both are what they should be to the end, across the seams of the pieces.
                for (const [heard, expected] of /** @type {const} */ ([
                    [asOriginal, original],
                    [asResult, scaled(result, amplitude(-difference))],
                ])) {
                    const tail = heard.samples.subarray(1000);
                    assert.ok(tail.length > seconds * rate - 2000, `${tail.length} samples were heard`);
                    assert.notEqual(placeOf(tail, expected, 2e-5), -1, 'it is not the sound that was expected');
                }
            });

        test('switched while it plays, original, result and another mode go on at the same sample', async () => {
            await listenTo(page, 'Medium');
            await page.click('label:has(#choose-result)');
            await rewind();
            await forgetHeard(page);
            await page.click('#play');
            await untilPosition(0.7);
            const mediumEnd = await latestFrame(page);
            await page.click('label:has(#choose-original)');
            await untilPosition(1.4);
            const originalEnd = await latestFrame(page);
            await page.click('label:has(#choose-result)');
            // On a busy machine, where what is to be heard comes later than it is wanted.
            await page.evaluate(() => {
                const { postMessage } = Worker.prototype;
                Worker.prototype.postMessage = function (/** @type {any} */ message, /** @type {any} */ transfer) {
                    setTimeout(() => postMessage.call(this, message, transfer), message.method === 'piece' ? 200 : 0);
                };
            });
            await listenTo(page, 'Powerful');
            await sleep(700); // and not to the end of the piece that came late
            const powerfulEnd = await latestFrame(page);
            await page.click('#play');
            await sleep(300);

            const { frame, samples } = await heardAtSpeaker(page);
            const [medium, powerful] = ['Medium', 'Powerful'].map(mode => {
                const result = resultOf(mode);
                return scaled(result, amplitude(loudnessOf(original) - loudnessOf(result)));
            });

            // What was heard last of each of the three says where in the recording the first sample was.
            const starts = /** @type {[Float32Array, number][]} */ ([
                [medium, mediumEnd],
                [original, originalEnd],
                [powerful, powerfulEnd],
            ]).map(([sound, end]) => {
                const from = end - frame - 6000;
                return placeOf(samples.subarray(from, from + 6000), sound, 2e-5) - from;
            });
            assert.ok(starts[0] >= 0, 'Medium was not heard');
            assert.deepEqual(starts, [starts[0], starts[0], starts[0]]);
        });

        test('of a recording in stereo each channel stays where it is', async () => {
            const sides = [original, speechLike(original.length, rate, 2, 0.1)].map(side => side.slice(0, 2 * rate));
            const stereo = join(folder, 'stereo.wav');
            writeFileSync(stereo, wavFile(sides, { rate, encoding: 'float32' }));
            await openRecording(page, stereo);
            const asOriginal = await playThrough('bypass', 'original');
            const asResult = await playThrough('bypass', 'result');

            for (const { samples } of [asOriginal, asResult])
                assert.notEqual(placeOf(samples.subarray(1000), sides[0], 2e-5), -1, 'this is not the left channel');
        });
    });
