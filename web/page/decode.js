// SPDX-License-Identifier: AGPL-3.0-only
// What is no WAV file: FLAC, MP3, M4A, Ogg and whatever else the browser knows.

import { Fault } from '../common/fault.js';
import { longestDecodedSeconds, longestFileSeconds, mostDecodedFrames } from '../common/limits.js';

/** @typedef {{ samples: Float32Array<ArrayBuffer>[], rate: number }} Decoded */

const usualRate = 48000;

/** @param {Blob} file @returns {Promise<number>} the rate of a FLAC file; of others the browser tells none */
async function rateOf(file) {
    const head = new DataView(await file.slice(0, 42).arrayBuffer());
    const isFlac = head.byteLength === 42 && head.getUint32(0) === 0x664c6143;
    return isFlac ? head.getUint32(18) >>> 12 : usualRate;
}

/**
 * @param {number} rate in Hz
 * @returns {OfflineAudioContext} one that decodes to that rate
 * @throws {Fault} strangeRate
 */
function decoderAt(rate) {
    try {
        return new OfflineAudioContext(1, 1, rate);
    } catch {
        throw new Fault('strangeRate', { rate });
    }
}

/** @param {Blob} file @returns {Promise<number>} its length in seconds, without decoding it; NaN if it is no sound */
function lengthOf(file) {
    return new Promise(resolve => {
        const url = URL.createObjectURL(file);
        const media = new Audio();
        const done = (/** @type {number} */ seconds) => {
            URL.revokeObjectURL(url);
            resolve(seconds);
        };
        media.onloadedmetadata = () => {
            // What was written while it was recorded states no length: the end of it has to be looked for.
            if (media.duration === Infinity) media.currentTime = 2 * longestFileSeconds;
            else done(media.duration);
        };
        media.onseeked = () => done(media.currentTime);
        media.onerror = () => done(NaN);
        media.preload = 'metadata';
        media.src = url;
    });
}

/**
 * @param {Blob} file
 * @returns {Promise<Decoded>}
 * @throws {Fault} notSound, tooLongToDecode, strangeRate
 */
export async function decode(file) {
    const rate = await rateOf(file);
    const decoder = decoderAt(rate);
    const seconds = await lengthOf(file);

    const longestSeconds = Math.min(longestDecodedSeconds, mostDecodedFrames / rate);

    if (seconds > longestSeconds)
        throw new Fault('tooLongToDecode', {
            minutes: Math.round(seconds / 60),
            most: Math.floor(longestSeconds / 60),
            mostOfWav: longestFileSeconds / 60,
        });

    const sound = await decoder.decodeAudioData(await file.arrayBuffer()).catch(() => {
        throw new Fault('notSound');
    });

    return {
        rate,
        samples: Array.from({ length: sound.numberOfChannels }, (_, channel) => sound.getChannelData(channel).slice()),
    };
}
