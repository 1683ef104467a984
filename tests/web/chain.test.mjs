// SPDX-License-Identifier: AGPL-3.0-only
// The compiled chain in the page beside the built library.
import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';

import { modeNames } from '../../web/common/modes.js';
import { Chain } from '../../web/worker/chain.js';
import { chainOfThePage } from './support/page.mjs';
import { temporaryFolder } from './support/paths.mjs';
import { render } from './support/renderer.mjs';
import { floatSamples, randomNumbers, speechLike, wavFile } from './support/sounds.mjs';

const module = chainOfThePage();

/** @param {Float32Array[]} channels @returns {Float32Array} */
function interleaved(channels) {
    return Float32Array.from(
        { length: channels.length * channels[0].length },
        (_, i) => channels[i % channels.length][Math.floor(i / channels.length)],
    );
}

/** Each sample as the whole number that its bits are. @param {Float32Array} samples */
function bitsOf(samples) {
    return new Uint32Array(samples.buffer, samples.byteOffset, samples.length);
}

// The library counts denormals as zero where a browser cannot. What that leaves is in the last of a decay, where
// samples are smaller than the first of these, and the difference is smaller than the second.
const endOfDecay = 1e-30;
const denormalDifference = 1e-35;

/** @param {Float32Array} ours @param {Float32Array} librarys @param {string} what */
function expectSameBits(ours, librarys, what) {
    assert.equal(ours.length, librarys.length, what);
    const [a, b] = [bitsOf(ours), bitsOf(librarys)];

    for (let i = 0; i < ours.length; ++i)
        if (
            a[i] !== b[i] &&
            !(Math.abs(librarys[i]) < endOfDecay && Math.abs(ours[i] - librarys[i]) < denormalDifference)
        )
            assert.fail(`${what}: sample ${i} is ${ours[i]} in the page and ${librarys[i]} in the library`);
}

/** @param {(i: number) => number} sample @param {number} length */
function made(sample, length = 40000) {
    return Float32Array.from({ length }, (_, i) => sample(i));
}

const random = randomNumbers(1);
const bad = [NaN, -NaN, Infinity, -Infinity, 1e30, -1e30, -25];

/** @type {Record<string, Float32Array[]>} */
const sounds = {
    'white noise': [made(() => 2 * random() - 1)],
    'noise in stereo, louder than the chain takes': [made(() => 80 * random() - 40), made(() => 80 * random() - 40)],
    'speech in stereo': [speechLike(150000, 48000, 2), speechLike(150000, 48000, 3, 0.1)],
    'noise with bad samples': [
        made(i => (i % 500 < 7 ? bad[i % 500] : 0.2 * random())),
        made(i => (i % 900 < 7 ? bad[i % 900] : 0.2 * random())),
    ],
    denormals: [
        made(i => (random() - 0.5) * 2 ** (-120 - (i % 40))),
        made(i => (random() - 0.5) * 2 ** (-120 - (i % 50))),
    ],
    'a click and then silence': [made(i => (i === 5 ? 1 : 0), 400000)],
};

for (const [name, channels] of Object.entries(sounds))
    for (const rate of [44100, 48000, 96000])
        for (const [mode, modeName] of modeNames.entries())
            test(`${name} at ${rate} Hz in ${modeName} has the library's bits`, t => {
                const folder = temporaryFolder(t);
                writeFileSync(join(folder, 'in.wav'), wavFile(channels, { rate, encoding: 'float32' }));
                const librarys = floatSamples(
                    render(join(folder, 'in.wav'), join(folder, 'out.wav'), '--bits', '32f', '--mode', modeName),
                );
                const chain = new Chain(module);
                chain.begin(rate, mode);
                expectSameBits(interleaved(chain.process(channels)), librarys, name);
            });

// At one rate the C library of the page rounds a coefficient of Gentle's otherwise than that of Linux.
const roundedOtherwise = { rate: 176400, mode: 'Gentle', difference: 2e-6 };

for (const rate of [8000, 11025, 16000, 22050, 24000, 32000, 64000, 88200, 128000, 176400, 192000])
    test(`at ${rate} Hz too`, t => {
        const folder = temporaryFolder(t);
        const speech = speechLike(rate, rate, 7);
        writeFileSync(join(folder, 'in.wav'), wavFile([speech], { rate, encoding: 'float32' }));

        for (const [mode, modeName] of modeNames.entries()) {
            const librarys = floatSamples(
                render(join(folder, 'in.wav'), join(folder, 'out.wav'), '--bits', '32f', '--mode', modeName),
            );
            const chain = new Chain(module);
            chain.begin(rate, mode);
            const [ours] = chain.process([speech]);

            if (rate === roundedOtherwise.rate && modeName === roundedOtherwise.mode)
                assert.ok(ours.every((x, i) => Math.abs(x - librarys[i]) < roundedOtherwise.difference));
            else expectSameBits(ours, librarys, modeName);
        }
    });

test('a recording cut into pieces, each begun from its bookmark, has the same bits', () => {
    const whole = [speechLike(50000, 48000, 4), speechLike(50000, 48000, 5)];

    for (const mode of modeNames.keys()) {
        const chain = new Chain(module);
        chain.begin(48000, mode);
        const expected = chain.process(whole);

        chain.begin(48000, mode);
        const cuts = [0, 1, 4096, 4100, 9000, 41000, 50000];
        const bookmarks = cuts.slice(1).map((to, i) => {
            const bookmark = chain.bookmark();
            chain.process(whole.map(samples => samples.subarray(cuts[i], to)));
            return bookmark;
        });

        // From behind, so that nothing but the bookmark says where the chain was.
        for (let i = bookmarks.length - 1; i >= 0; --i) {
            chain.goOnFrom(bookmarks[i]);
            const piece = chain.process(whole.map(samples => samples.subarray(cuts[i], cuts[i + 1])));
            piece.forEach((samples, c) => assert.deepEqual(samples, expected[c].slice(cuts[i], cuts[i + 1])));
        }
    }
});

test('it asks nothing of the page but to be called', () => {
    assert.deepEqual(WebAssembly.Module.imports(module), []);
});

test('silence behind a voice costs what the voice costs', () => {
    const rate = 48000;
    const voice = speechLike(20 * rate, rate, 6);
    const silence = new Float32Array(20 * rate);
    const chain = new Chain(module);
    const seconds = (/** @type {Float32Array} */ samples) => {
        const start = process.hrtime.bigint();
        chain.process([samples]);
        return Number(process.hrtime.bigint() - start) / 1e9;
    };

    chain.begin(rate, 3);
    chain.process([voice]);
    chain.process([silence]); // until the memories have died away
    const ratios = Array.from({ length: 7 }, () => seconds(silence) / seconds(voice)).sort((a, b) => a - b);
    // With memories that hang at denormals it is 1.5 and more.
    assert.ok(ratios[3] < 1.25, `silence takes ${ratios[3].toFixed(2)} times as long`);
});
