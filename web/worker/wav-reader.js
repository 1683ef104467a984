// SPDX-License-Identifier: AGPL-3.0-only
// Browsers read WAV files too, but resample them, and one of them takes positive samples of 16 bits for a little more
// than they are. Here they come as they stand in the file.

import { Fault } from '../common/fault.js';

/** @typedef {import('./recording.js').Recording} Recording */

/**
 * @typedef {object} WavFile
 * @property {Recording} recording
 * @property {boolean} isCut whether it ends before it should
 */

const mostChunks = 1000; // a recording has a dozen
const pcm = 1;
const float = 3;
const extensible = 0xfffe;

/**
 * How a sample is read, by kind and width.
 *
 * @type {Record<string, (view: DataView, at: number) => number>}
 */
const sampleReaders = {
    [`${pcm}/8`]: (view, at) => (view.getUint8(at) - 128) / 2 ** 7,
    [`${pcm}/16`]: (view, at) => view.getInt16(at, true) / 2 ** 15,
    [`${pcm}/24`]: (view, at) => (view.getInt8(at + 2) * 2 ** 16 + view.getUint16(at, true)) / 2 ** 23,
    [`${pcm}/32`]: (view, at) => view.getInt32(at, true) / 2 ** 31,
    [`${float}/32`]: (view, at) => view.getFloat32(at, true),
    [`${float}/64`]: (view, at) => view.getFloat64(at, true),
};

/** @param {Blob} file @param {number} from @param {number} size @returns {Promise<DataView>} what there is of it */
async function bytesOf(file, from, size) {
    try {
        return new DataView(await file.slice(from, from + size).arrayBuffer());
    } catch {
        throw new Fault('fileGone');
    }
}

/** @param {DataView} view @param {number} at @returns {string} four letters */
function tag(view, at) {
    return String.fromCharCode(...[0, 1, 2, 3].map(i => view.getUint8(at + i)));
}

/**
 * Whether a size is what programs write that do not know it: the largest of 32 bits or of 31, or 0x7f000000, from which
 * some subtract their header.
 *
 * @param {number} size
 */
function isUnknown(size) {
    return [0xffffffff, 0x80000000, 0x7f000000].some(largest => size + 0x1100 >= largest && size <= largest + 0x100);
}

/** Whether a chunk begins here that fits into the file, or the file ends. @param {Blob} file @param {number} at */
async function isChunk(file, at) {
    const head = await bytesOf(file, at, 8);
    return (
        file.size === at ||
        (head.byteLength === 8 && /^[ -~]{4}$/.test(tag(head, 0)) && at + 8 + head.getUint32(4, true) <= file.size)
    );
}

/** @param {DataView} chunk */
function readFormat(chunk) {
    const stated = chunk.getUint16(0, true);
    const kind = stated === extensible && chunk.byteLength >= 26 ? chunk.getUint16(24, true) : stated;
    return {
        channels: chunk.getUint16(2, true),
        rate: chunk.getUint32(4, true),
        bits: chunk.getUint16(14, true),
        readSample: sampleReaders[`${kind}/${chunk.getUint16(14, true)}`],
    };
}

/**
 * Finds the format and the samples. Chunks begin at even places. A recorder that was stopped hard leaves 0 as the size
 * of the samples; in the kind for long recordings, RF64, their size stands in a chunk of its own.
 *
 * @param {Blob} file
 */
async function findChunks(file) {
    let format;
    let longSize;

    for (let at = 12, count = 0; at + 8 <= file.size && count < mostChunks; ++count) {
        const head = await bytesOf(file, at, 8);
        const stated = head.getUint32(4, true);
        const size = tag(head, 0) === 'data' && stated === 0xffffffff ? (longSize ?? stated) : stated;

        if (tag(head, 0) === 'ds64' && size >= 16 && at + 24 <= file.size)
            longSize = Number((await bytesOf(file, at + 8, 16)).getBigUint64(8, true));

        if (tag(head, 0) === 'fmt ' && size >= 16 && at + 24 <= file.size)
            format = readFormat(await bytesOf(file, at + 8, Math.min(size, 40)));

        if (tag(head, 0) === 'data')
            return { format, from: at + 8, size, isUnfinished: size === 0 && !(await isChunk(file, at + 8)) };

        at += 8 + size + (size % 2);
    }

    return undefined;
}

/**
 * Opens a WAV file: whole numbers of 8 to 32 bits and floats, any number of channels.
 *
 * @param {Blob} file
 * @returns {Promise<WavFile | undefined>} nothing for what is no WAV file, or one of a kind that the browser may know
 * @throws {Fault} fileGone
 */
export async function openWav(file) {
    const head = await bytesOf(file, 0, 12);

    if (head.byteLength < 12 || !/^(RIFF|RF64)$/.test(tag(head, 0)) || tag(head, 8) !== 'WAVE') return undefined;

    const chunks = await findChunks(file);

    if (!chunks?.format?.readSample || chunks.format.channels < 1) return undefined;

    const {
        format: { channels, rate, bits, readSample },
        from,
        size,
        isUnfinished,
    } = chunks;
    const frameBytes = (channels * bits) / 8;
    const bytesThere = file.size - from;
    const bytes = isUnfinished ? bytesThere : Math.min(size, bytesThere);

    /** @type {Recording['read']} */
    async function read(first, count) {
        const view = await bytesOf(file, from + first * frameBytes, count * frameBytes);

        if (view.byteLength < count * frameBytes) throw new Fault('fileGone');

        return Array.from({ length: channels }, (_, channel) => {
            const samples = new Float32Array(count);

            for (let i = 0, at = (channel * bits) / 8; i < count; ++i, at += frameBytes)
                samples[i] = readSample(view, at);

            return samples;
        });
    }

    return {
        recording: { rate, channels, frames: Math.floor(bytes / frameBytes), read },
        isCut: isUnfinished || (size > bytesThere && !isUnknown(size)),
    };
}
