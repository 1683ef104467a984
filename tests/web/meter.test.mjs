// SPDX-License-Identifier: AGPL-3.0-only
// The page's meters beside the renderer's, which are those of a library that others wrote.
import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';

import { levelAdvice } from '../../web/build.mjs';
import { advice } from '../../web/page/advice.js';
import { gainsFor } from '../../web/page/equal-loudness.js';
import { Meter } from '../../web/worker/meter.js';
import { Studio } from '../../web/worker/studio.js';
import { chainOfThePage, partOfThePage } from './support/page.mjs';
import { temporaryFolder } from './support/paths.mjs';
import { measure } from './support/renderer.mjs';
import { randomNumbers, realVoice, speechLike, wavFile } from './support/sounds.mjs';

/** @param {Float32Array[]} channels @param {number} rate @param {number} [pieceFrames] */
function figuresOf(channels, rate, pieceFrames = 10007) {
    const frames = channels[0].length;
    const meter = new Meter({ rate, channels: channels.length, frames });

    for (let from = 0; from < frames; from += pieceFrames)
        meter.add(channels.map(samples => samples.slice(from, from + pieceFrames)));

    return meter.figures();
}

/** @param {number | null} ours @param {number} theirs @param {number} tolerance @param {string} what */
function expectNear(ours, theirs, tolerance, what) {
    assert.ok(ours !== null && Math.abs(ours - theirs) <= tolerance, `${what}: ${ours} and not ${theirs}`);
}

const random = randomNumbers(3);

/**
 * Sounds whose peaks lie between samples, whose loudness is gated, and in stereo.
 *
 * @type {[string, number, Float32Array[]][]}
 */
const sounds = [
    ['speech', 48000, [speechLike(200000, 48000, 1)]],
    ['speech in stereo', 44100, [speechLike(200000, 44100, 2), speechLike(200000, 44100, 3, 0.05)]],
    [
        'a tone of a quarter of the rate between its samples',
        48000,
        [Float32Array.from({ length: 96000 }, (_, i) => 0.5 * Math.sin(Math.PI * (i / 2 + 0.25)))],
    ],
    ['noise at twice the rate', 96000, [Float32Array.from({ length: 200000 }, () => random() - 0.5)]],
    [
        'a loud and a soft part',
        32000,
        [Float32Array.from({ length: 200000 }, (_, i) => (i < 90000 ? 0.4 : 0.004) * Math.sin(i / 7))],
    ],
];

for (const [name, rate, channels] of sounds)
    test(`${name}: loudness, true peak and quietest tenth are the renderer's`, async t => {
        const folder = temporaryFolder(t);
        const bytes = wavFile(channels, { rate, encoding: 'float32' });
        writeFileSync(join(folder, 'in.wav'), bytes);
        const { before, after } = measure(join(folder, 'in.wav'), join(folder, 'out.wav'), 'Powerful');
        const studio = new Studio(chainOfThePage());
        await studio.openFile(new Blob([new Uint8Array(bytes)]));
        const heard = await studio.hear(3, () => {});

        for (const [ours, theirs] of /** @type {const} */ ([
            [heard?.original, before],
            [heard?.result, after],
        ])) {
            expectNear(ours?.loudness ?? null, theirs.integrated_lufs, 0.002, 'loudness');
            expectNear(ours?.truePeak ?? null, theirs.true_peak_dbtp, 0.002, 'true peak');
        }

        expectNear(heard?.original.quietestTenth ?? null, before.quietest_tenth_dbfs, 0.002, 'quietest tenth');
    });

test('the figures do not depend on the pieces', () => {
    const [, rate, channels] = sounds[1];
    assert.deepEqual(figuresOf(channels, rate, 77), figuresOf(channels, rate, 1 << 20));
});

test('silence has no figures, and what is no number is heard as silence', () => {
    const { outline, ...figures } = figuresOf(
        [Float32Array.from({ length: 48000 }, (_, i) => (i % 3 ? 0 : NaN))],
        48000,
    );
    assert.deepEqual(figures, { loudness: null, truePeak: null, peak: null, quietestTenth: null });
    assert.ok(outline.every(x => x === 0));
});

test('the outline has each part its largest sample', () => {
    const samples = new Float32Array(120000);
    samples[50] = -0.5;
    samples[119999] = 0.25;
    const { outline, peak } = figuresOf([samples], 48000);
    assert.equal(outline.length, 1200);
    assert.deepEqual([outline[0], outline[1], outline[1199]], [0.5, 0, 0.25]);
    expectNear(peak, -6.0206, 0.001, 'peak');
    assert.equal(figuresOf([samples.slice(0, 100)], 48000).outline.length, 100);
});

test('the louder one is lowered to the softer, and none is raised', () => {
    const figures = figuresOf([speechLike(96000, 48000, 1)], 48000);
    const [soft, loud, silent] = [-30, -20, null].map(loudness => ({ ...figures, loudness }));
    expectNear(gainsFor({ original: soft, result: loud }, false).result, 10 ** (-10 / 20), 1e-9, 'result');
    assert.deepEqual(gainsFor({ original: soft, result: loud }, true), { original: 1, result: 0 });
    expectNear(gainsFor({ original: loud, result: soft }, true).original, 10 ** (-10 / 20), 1e-9, 'original');
    assert.deepEqual(gainsFor({ original: loud, result: soft }, false), { original: 0, result: 1 });
    assert.deepEqual(gainsFor({ original: silent, result: loud }, true), { original: 1, result: 0 });
});

const [bypass, gentle, medium, powerful] = [0, 1, 2, 3];

for (const [mode, peak, quietestTenth, expected] of /** @type {[number, number | null, number | null, RegExp][]} */ ([
    [
        medium,
        -2.5,
        -70,
        /^This voice peaks at −2.5 dBFS\. For Medium, turn it down by 22 dB .* between −27 and −24: .* The room lies at −70 dBFS, and then at −92, which is low enough\.$/,
    ],
    [gentle, -11.97, -68, /For Gentle that is a good level: between −24 and −12 is best\. .* −68 dBFS, which is low/],
    [gentle, -11.9, -68, /turn it down by 1 dB .* −68 dBFS, and then at −69, which is low enough\.$/],
    [gentle, -12, -66.9, /good level.* −66.9 dBFS\. For Gentle it should lie below −67, or it is not held down/],
    [powerful, -27, -61, /For Powerful that is a good level.* −61 dBFS, which is low enough\.$/],
    [powerful, -27, -60.9, /For Powerful that is a good level.* below −61, or it is not held down/],
    [
        powerful,
        -30.2,
        -63,
        /turn it up by 4 dB .* between −27 and −24: .* −63 dBFS, and then at −59\. For Powerful it should lie below −61/,
    ],
    [medium, -25, null, /good level: between −27 and −24 is best\.$/],
    [bypass, -2.5, -70, /^This voice peaks at −2.5 dBFS\. Bypass leaves it as it is\.$/],
    [medium, null, null, /nothing to be heard/],
]))
    test(`in mode ${mode} a peak of ${peak} and a room of ${quietestTenth} dBFS are spoken of truly`, () => {
        const figures = { ...figuresOf([new Float32Array(10)], 48000), peak, quietestTenth };
        /** @param {import('../../web/page/words.js').Language} language */
        const said = language =>
            advice(levelAdvice(), mode, figures, language, level => String(level).replace('-', '−'));
        assert.match(said('en'), expected);
        /** @param {string} text */
        const numbersIn = text => text.match(/[\d.]*\d/g)?.sort();
        assert.deepEqual(numbersIn(said('de')), numbersIn(said('en')));
    });

test('the page has the levels that the other programs have', () => {
    assert.deepEqual(partOfThePage('level-advice'), JSON.stringify(levelAdvice()));
});

test('a real voice is spoken of as the renderer measures it', async () => {
    const studio = new Studio(chainOfThePage());
    await studio.openFile(new Blob([new Uint8Array(realVoice())]));
    const heard = await studio.hear(2, () => {});
    assert.match(
        advice(levelAdvice(), gentle, /** @type {any} */ (heard).original, 'en', level => level.toFixed(1)),
        /room lies at -65\.3 dBFS/,
    );
});
