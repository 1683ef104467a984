// SPDX-License-Identifier: AGPL-3.0-only
// The page's own reader and writer of WAV files, beside the renderer's.
import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';

import { Fault } from '../../web/common/fault.js';
import { Studio } from '../../web/worker/studio.js';
import { openWav } from '../../web/worker/wav-reader.js';
import { wavHead, wavSamples, wavSize, wavTail } from '../../web/worker/wav-writer.js';
import { chainOfThePage } from './support/page.mjs';
import { temporaryFolder } from './support/paths.mjs';
import { render } from './support/renderer.mjs';
import { chunk, floatSamples, randomNumbers, riff, speechLike, wavFile } from './support/sounds.mjs';

const random = randomNumbers(7);
const noise = [1, 2].map(() => Float32Array.from({ length: 1001 }, () => 2.4 * random() - 1.2));

/** @param {Buffer} bytes */
function blobOf(bytes) {
    return new Blob([new Uint8Array(bytes)]);
}

/** @param {Buffer} bytes */
async function opened(bytes) {
    const wav = await openWav(blobOf(bytes));
    assert.ok(wav, 'it is taken for no WAV file');
    return wav;
}

for (const encoding of ['pcm8', 'pcm16', 'pcm24', 'pcm32', 'float32', 'float64'])
    for (const channels of [1, 2])
        test(`${encoding} with ${channels} channels is read to the renderer's bits`, async t => {
            const folder = temporaryFolder(t);
            const bytes = wavFile(noise.slice(0, channels), { rate: 44100, encoding });
            writeFileSync(join(folder, 'in.wav'), bytes);
            const expected = floatSamples(
                render(join(folder, 'in.wav'), join(folder, 'out.wav'), '--mode', 'bypass', '--bits', '32f'),
            );
            const { recording, isCut } = await opened(bytes);
            assert.deepEqual(
                [recording.rate, recording.channels, recording.frames, isCut],
                [44100, channels, 1001, false],
            );

            const samples = await recording.read(0, 1001);
            samples.forEach((ofChannel, c) =>
                assert.deepEqual(
                    ofChannel,
                    expected.filter((_, i) => i % channels === c),
                ),
            );
            const [middle] = await recording.read(300, 50);
            assert.deepEqual(middle, samples[0].slice(300, 350));
        });

test('chunks ahead of the samples are passed over, odd ones with their pad byte', async () => {
    const ahead = Buffer.concat([chunk('LIST', Buffer.from('odd')), chunk('bext', Buffer.alloc(602))]);
    const { recording } = await opened(wavFile(noise, { rate: 48000, encoding: 'pcm16', ahead }));
    assert.equal(recording.frames, 1001);
    assert.ok(Math.abs((await recording.read(5, 1))[1][0] - Math.max(-1, Math.min(1, noise[1][5]))) < 1e-4);
});

test('the long form of the format chunk names its kind further behind', async () => {
    const plain = wavFile(noise, { rate: 48000, encoding: 'float32' });
    const format = Buffer.alloc(40);
    plain.copy(format, 0, 20, 36);
    format.writeUInt16LE(0xfffe, 0);
    format.writeUInt16LE(22, 16);
    format.writeUInt16LE(32, 18);
    format.writeUInt16LE(3, 24);
    const { recording } = await opened(riff(Buffer.concat([chunk('fmt ', format), plain.subarray(36)])));
    assert.deepEqual(await recording.read(0, 1001), noise);
});

test('the kind for long recordings, RF64, states the size of the samples in a chunk of its own', async t => {
    const folder = temporaryFolder(t);
    const plain = wavFile(noise, { rate: 48000, encoding: 'pcm16', statedSize: 0xffffffff });
    const sizes = Buffer.alloc(28);
    sizes.writeBigUInt64LE(4004n, 8);
    const file = Buffer.concat([
        Buffer.from('RF64\xff\xff\xff\xffWAVE', 'latin1'),
        chunk('ds64', sizes),
        plain.subarray(12),
        chunk('LIST', Buffer.from('behind the samples')),
    ]);
    writeFileSync(join(folder, 'in.wav'), file);
    const { recording, isCut } = await opened(file);
    assert.deepEqual([recording.frames, isCut], [1001, false]);
    const expected = floatSamples(
        render(join(folder, 'in.wav'), join(folder, 'out.wav'), '--mode', 'bypass', '--bits', '32f'),
    );
    assert.deepEqual(
        await recording.read(0, 1001),
        [0, 1].map(c => expected.filter((_, i) => i % 2 === c)),
    );
});

for (const [name, statedSize, isCut, frames] of /** @type {[string, number, boolean, number][]} */ ([
    ['of the true size', 2002, false, 1001],
    ['shorter than its head says', 4000, true, 1001],
    ['with sound behind its end', 1000, false, 500],
    ['of unknown size', 0xffffffff, false, 1001],
    ['of unknown size, less the head', 0x7fffffff - 36, false, 1001],
    ['of a recorder that was stopped hard', 0, true, 1001],
]))
    test(`a file ${name} is taken as far as it goes`, async () => {
        const wav = await opened(wavFile(noise.slice(0, 1), { rate: 48000, encoding: 'pcm16', statedSize }));
        assert.deepEqual([wav.recording.frames, wav.isCut], [frames, isCut]);
    });

test('what is no WAV file, or a kind that browsers know better, is left to them', async () => {
    const aLaw = wavFile(noise, { rate: 8000, encoding: 'pcm8' });
    aLaw.writeUInt16LE(6, 20);

    for (const bytes of [
        Buffer.from('RIFF'),
        Buffer.from('fLaC and so on, and on, and on, and on'),
        riff(chunk('fmt ', Buffer.alloc(16))),
        aLaw,
    ])
        assert.equal(await openWav(blobOf(bytes)), undefined);
});

test('numbers are rounded to the nearest, of two to the even one, and limited', () => {
    const step = 2 ** -23;
    const samples = Float32Array.from([0, 0.5, 1.5, 2.5, -0.5, -1.5, 0.75].map(x => x * step).concat(1, 3, -1, -3));
    const bytes = Buffer.from(wavSamples([samples]));
    const numbers = Array.from(samples, (_, i) => bytes.readIntLE(3 * i, 3));
    const largest = 2 ** 23;
    assert.deepEqual(numbers, [0, 0, 2, 2, 0, -2, 1, largest - 1, largest - 1, -largest, -largest]);
});

for (const [channels, frames] of [
    [1, 1000],
    [1, 1001],
    [2, 1001],
    [1, 1],
])
    test(`a file of ${channels} channels and ${frames} frames has the renderer's bytes`, async t => {
        const folder = temporaryFolder(t);
        const samples = noise.slice(0, channels).map(ofChannel => ofChannel.slice(0, frames));
        writeFileSync(join(folder, 'in.wav'), wavFile(samples, { rate: 48000, encoding: 'float32' }));
        const expected = render(join(folder, 'in.wav'), join(folder, 'out.wav'), '--mode', 'bypass');
        const bytes = Buffer.concat([wavHead(48000, channels, frames), wavSamples(samples), wavTail(channels, frames)]);
        assert.deepEqual(bytes, expected);
        assert.equal(wavSize(channels, frames), expected.length);
    });

test('a recording of several pieces is saved as the renderer writes it', async t => {
    const folder = temporaryFolder(t);
    const channels = [speechLike(300001, 48000, 8), speechLike(300001, 48000, 9)];
    const bytes = wavFile(channels, { rate: 48000, encoding: 'pcm24' });
    writeFileSync(join(folder, 'in.wav'), bytes);
    const studio = new Studio(chainOfThePage());
    await studio.openFile(blobOf(bytes));
    /** @type {number[]} */
    const progress = [];
    const saved = await studio.save(1, done => progress.push(done));
    assert.deepEqual(
        Buffer.from(await saved.arrayBuffer()),
        render(join(folder, 'in.wav'), join(folder, 'out.wav'), '--mode', 'Gentle'),
    );
    assert.deepEqual(progress, [1 / 3, 2 / 3, 1]);
});

test('pieces asked for in any order are those of the whole', async () => {
    const studio = new Studio(chainOfThePage());
    const samples = speechLike(400000, 48000, 10);
    studio.openSamples([Float32Array.from(samples)], 48000);
    const last = await studio.piece(3, 3);
    const first = await studio.piece(3, 0);
    const other = new Studio(chainOfThePage());
    other.openSamples([Float32Array.from(samples)], 48000);
    assert.deepEqual(await other.piece(3, 0), first);
    await other.piece(3, 1);
    await other.piece(3, 2);
    assert.deepEqual(await other.piece(3, 3), last);
    assert.deepEqual(last.original, [samples.slice(3 * 131072)]);
});

for (const [kind, bytes] of /** @type {[string, Buffer][]} */ ([
    ['empty', Buffer.alloc(0)],
    ['empty', wavFile([new Float32Array(0)], { rate: 48000, encoding: 'pcm16' })],
    [
        'empty',
        riff(
            Buffer.concat([
                wavFile([new Float32Array(0)], { rate: 48000, encoding: 'pcm16' }).subarray(12),
                chunk('LIST', Buffer.from('behind no samples')),
            ]),
        ),
    ],
    ['tooManyChannels', wavFile(Array(6).fill(noise[0]), { rate: 48000, encoding: 'pcm16' })],
    ['strangeRate', wavFile(noise, { rate: 4000, encoding: 'pcm16' })],
    ['strangeRate', wavFile(noise, { rate: 0, encoding: 'pcm16' })],
    ['strangeRate', wavFile(noise, { rate: 352800, encoding: 'pcm16' })],
]))
    test(`a file of ${bytes.length} bytes is refused as ${kind}`, async () => {
        await assert.rejects(
            new Studio(chainOfThePage()).openFile(blobOf(bytes)),
            error => error instanceof Fault && error.kind === kind,
        );
    });

for (const [rate, channels, most] of [
    [48000, 2, 90],
    [192000, 1, 90],
    [192000, 2, 62],
])
    test(`of ${channels} channels at ${rate} Hz up to ${most} minutes are taken, whose result fits into a WAV file`, async () => {
        const ofMinutes = (/** @type {number} */ minutes) => {
            const size = minutes * 60 * rate * channels * 2;
            const head = blobOf(
                wavFile(noise.slice(0, channels), { rate, encoding: 'pcm16', statedSize: size }).subarray(0, 44),
            );
            return /** @type {Blob} */ (/** @type {unknown} */ ({ size: 44 + size, slice: head.slice.bind(head) }));
        };
        const studio = new Studio(chainOfThePage());
        assert.equal((await studio.openFile(ofMinutes(most)))?.frames, most * 60 * rate);
        await assert.rejects(
            studio.openFile(ofMinutes(most + 1)),
            error =>
                error instanceof Fault &&
                error.kind === 'tooLong' &&
                error.details.minutes === most + 1 &&
                error.details.most === most,
        );
    });

test('what is no number in a recording does not get to the speaker', async () => {
    const studio = new Studio(chainOfThePage());
    studio.openSamples([Float32Array.from([0.5, NaN, Infinity, -0.5])], 48000);
    const { original, result } = await studio.piece(0, 0);
    assert.deepEqual(original, [Float32Array.from([0.5, 0, 0, -0.5])]);
    assert.ok(result[0].every(Number.isFinite));
});

test('a file that has become shorter is said to be gone', async () => {
    const bytes = wavFile(noise, { rate: 48000, encoding: 'pcm16' });
    const slice = (/** @type {number} */ from, /** @type {number} */ to) =>
        blobOf(bytes.subarray(0, from < 44 ? bytes.length : 1000)).slice(from, to);
    const wav = await openWav(/** @type {any} */ ({ size: bytes.length, slice }));
    await assert.rejects(
        /** @type {any} */ (wav).recording.read(0, 1001),
        error => error instanceof Fault && error.kind === 'fileGone',
    );
});

test('a later wish ends the hearing before it', async () => {
    const studio = new Studio(chainOfThePage());
    studio.openSamples([Float32Array.from(speechLike(600000, 48000, 11))], 48000);
    const ended = studio.hear(1, () => {});
    const heard = await studio.hear(2, () => {});
    assert.equal(await ended, undefined);
    assert.ok(heard);
});
