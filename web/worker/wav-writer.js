// SPDX-License-Identifier: AGPL-3.0-only
// The same bytes as larkspire-render writes: 24 bits, to the nearest number, ties to the even one, limited to full
// scale.

const sampleBytes = 3;
const headBytes = 44;
const scale = 2 ** 23;

/** @param {number} value @returns {number} the nearest whole number; of two the even one */
function roundToEven(value) {
    const rounded = Math.round(value);
    return rounded - value === 0.5 && rounded % 2 !== 0 ? rounded - 1 : rounded;
}

/** @param {number} channels @param {number} frames @returns {number} how large the file becomes, in bytes */
export function wavSize(channels, frames) {
    const size = channels * frames * sampleBytes;
    return headBytes + size + (size % 2);
}

/**
 * @param {number} rate in Hz
 * @param {number} channels
 * @param {number} frames
 * @returns {Uint8Array<ArrayBuffer>} all that stands ahead of the samples
 */
export function wavHead(rate, channels, frames) {
    const frameBytes = channels * sampleBytes;
    const bytes = new Uint8Array(headBytes);
    const view = new DataView(bytes.buffer);
    let at = 0;

    const text = (/** @type {string} */ letters) =>
        [...letters].forEach(letter => view.setUint8(at++, letter.charCodeAt(0)));
    const number = (/** @type {number} */ value) => {
        view.setUint32(at, value, true);
        at += 4;
    };
    const shortNumber = (/** @type {number} */ value) => {
        view.setUint16(at, value, true);
        at += 2;
    };

    text('RIFF');
    number(wavSize(channels, frames) - 8);
    text('WAVEfmt ');
    number(16);
    shortNumber(1); // whole numbers
    shortNumber(channels);
    number(rate);
    number(rate * frameBytes);
    shortNumber(frameBytes);
    shortNumber(8 * sampleBytes);
    text('data');
    number(frames * frameBytes);
    return bytes;
}

/**
 * @param {Float32Array[]} channels one piece of a sound
 * @returns {Uint8Array<ArrayBuffer>}
 */
export function wavSamples(channels) {
    const bytes = new Uint8Array(channels.length * channels[0].length * sampleBytes);

    channels.forEach((samples, channel) => {
        let at = channel * sampleBytes;

        for (const sample of samples) {
            const value = Math.max(-scale, Math.min(scale - 1, roundToEven(sample * scale)));
            bytes[at] = value;
            bytes[at + 1] = value >> 8;
            bytes[at + 2] = value >> 16;
            at += channels.length * sampleBytes;
        }
    });

    return bytes;
}

/** @param {number} channels @param {number} frames @returns {Uint8Array<ArrayBuffer>} what stands behind the samples */
export function wavTail(channels, frames) {
    return new Uint8Array((channels * frames * sampleBytes) % 2);
}
