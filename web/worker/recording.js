// SPDX-License-Identifier: AGPL-3.0-only

import { pieceFrames } from '../common/limits.js';

/**
 * A sound that can be read from any place.
 *
 * @typedef {object} Recording
 * @property {number} rate in Hz
 * @property {number} channels 1 or 2
 * @property {number} frames
 * @property {(from: number, count: number) => Promise<Float32Array<ArrayBuffer>[]>} read gives each channel's samples,
 *     linear with full scale 1.0
 */

/**
 * @param {Float32Array<ArrayBuffer>[]} samples of each channel
 * @param {number} rate in Hz
 * @returns {Recording}
 */
export function recordingInMemory(samples, rate) {
    return {
        rate,
        channels: samples.length,
        frames: samples[0].length,
        read: async (from, count) => samples.map(channel => channel.slice(from, from + count)),
    };
}

/** @param {Recording} recording @returns {number} */
export function pieceCount(recording) {
    return Math.ceil(recording.frames / pieceFrames);
}

/** @param {Recording} recording @param {number} piece its number @returns {Promise<Float32Array<ArrayBuffer>[]>} */
export function readPiece(recording, piece) {
    const from = piece * pieceFrames;
    return recording.read(from, Math.min(pieceFrames, recording.frames - from));
}
