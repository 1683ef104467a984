// SPDX-License-Identifier: AGPL-3.0-only
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

import { project } from './paths.mjs';

/** @param {number} seed @returns {() => number} from 0 to 1, the same numbers for the same seed */
export function randomNumbers(seed) {
    let state = seed >>> 0;
    return () => {
        state = (state + 0x6d2b79f5) >>> 0;
        let t = Math.imul(state ^ (state >>> 15), state | 1);
        t ^= t + Math.imul(t ^ (t >>> 7), t | 61);
        return ((t ^ (t >>> 14)) >>> 0) / 2 ** 32;
    };
}

/**
 * Something like speech: noise and a tone that swell and fall four times a second, over a little noise.
 *
 * @param {number} frames
 * @param {number} rate in Hz
 * @param {number} seed
 * @param {number} [peak]
 * @returns {Float32Array}
 */
export function speechLike(frames, rate, seed, peak = 0.5) {
    const random = randomNumbers(seed);
    return Float32Array.from({ length: frames }, (_, i) => {
        const swell = Math.max(0, Math.sin((2 * Math.PI * 4 * i) / rate)) ** 2;
        const tone = Math.sin((2 * Math.PI * 180 * i) / rate);
        return peak * (swell * (0.6 * tone + 0.4 * (2 * random() - 1)) + 0.0005 * (2 * random() - 1));
    });
}

/**
 * @type {Record<string, { kind: number, bits: number, write: (view: DataView, at: number, sample: number) => void }>}
 */
const encodings = {
    pcm8: { kind: 1, bits: 8, write: (view, at, x) => view.setUint8(at, 128 + limited(x, 7)) },
    pcm16: { kind: 1, bits: 16, write: (view, at, x) => view.setInt16(at, limited(x, 15), true) },
    pcm24: {
        kind: 1,
        bits: 24,
        write: (view, at, x) => {
            view.setUint16(at, limited(x, 23) & 0xffff, true);
            view.setInt8(at + 2, limited(x, 23) >> 16);
        },
    },
    pcm32: { kind: 1, bits: 32, write: (view, at, x) => view.setInt32(at, limited(x, 31), true) },
    float32: { kind: 3, bits: 32, write: (view, at, x) => view.setFloat32(at, x, true) },
    float64: { kind: 3, bits: 64, write: (view, at, x) => view.setFloat64(at, x, true) },
};

/** @param {number} x @param {number} bits @returns {number} */
function limited(x, bits) {
    return Math.max(-(2 ** bits), Math.min(2 ** bits - 1, Math.round(x * 2 ** bits)));
}

/**
 * A WAV file.
 *
 * @param {Float32Array[]} channels
 * @param {object} options
 * @param {number} options.rate in Hz
 * @param {string} options.encoding such as pcm16 or float32
 * @param {Buffer} [options.ahead] chunks that stand ahead of the samples
 * @param {number} [options.statedSize] what the head says about the samples, in bytes, in place of the truth
 * @returns {Buffer}
 */
export function wavFile(channels, { rate, encoding, ahead = Buffer.alloc(0), statedSize }) {
    const { kind, bits, write } = encodings[encoding];
    const frameBytes = (channels.length * bits) / 8;
    const size = channels[0].length * frameBytes;
    const data = Buffer.alloc(size + (size % 2));
    const view = new DataView(data.buffer, data.byteOffset, data.length);
    channels.forEach((samples, c) =>
        samples.forEach((sample, i) => write(view, i * frameBytes + (c * bits) / 8, sample)),
    );

    const format = Buffer.alloc(24);
    format.write('fmt ');
    format.writeUInt32LE(16, 4);
    format.writeUInt16LE(kind, 8);
    format.writeUInt16LE(channels.length, 10);
    format.writeUInt32LE(rate, 12);
    format.writeUInt32LE(rate * frameBytes, 16);
    format.writeUInt16LE(frameBytes, 20);
    format.writeUInt16LE(bits, 22);
    return riff(Buffer.concat([format, ahead, chunk('data', data, statedSize ?? size)]));
}

/**
 * @param {string} name
 * @param {Buffer} contents
 * @param {number} [statedSize]
 * @returns {Buffer} a chunk of a WAV file
 */
export function chunk(name, contents, statedSize = contents.length) {
    const head = Buffer.alloc(8);
    head.write(name);
    head.writeUInt32LE(statedSize, 4);
    return Buffer.concat([head, contents, Buffer.alloc(contents.length % 2)]);
}

/** @param {Buffer} chunks @returns {Buffer} */
export function riff(chunks) {
    return chunk('RIFF', Buffer.concat([Buffer.from('WAVE'), chunks]));
}

/**
 * @param {Buffer} file a WAV file of floats, as the renderer writes it
 * @returns {Float32Array} its samples, interleaved
 */
export function floatSamples(file) {
    let at = 12;

    while (file.toString('latin1', at, at + 4) !== 'data')
        at += 8 + file.readUInt32LE(at + 4) + (file.readUInt32LE(at + 4) % 2);

    const size = file.readUInt32LE(at + 4);
    return new Float32Array(file.buffer.slice(file.byteOffset + at + 8, file.byteOffset + at + 8 + size));
}

/** @returns {Buffer} a real voice, 48 kHz, mono, 16 bits, as the demo has it */
export function realVoice() {
    const folder = mkdtempSync(join(tmpdir(), 'larkspire-voice-'));

    try {
        execFileSync(join(project, 'scripts/voice'), [join(folder, 'voice.wav')]);
        return readFileSync(join(folder, 'voice.wav'));
    } finally {
        rmSync(folder, { recursive: true });
    }
}
