// SPDX-License-Identifier: AGPL-3.0-only

import { Chain } from './chain.js';
import { pieceCount, readPiece } from './recording.js';

/** @typedef {import('./recording.js').Recording} Recording */

/**
 * A recording in one mode. Its samples are kept nowhere: they are rendered whenever they are wanted, in pieces, from
 * what the chain remembered ahead of each. So an hour takes no more memory than a minute.
 */
export class Rendering {
    #recording;
    #chain;
    /** @type {Uint8Array[]} ahead of each piece, as far as it was rendered */
    #bookmarks;

    /** @param {WebAssembly.Module} module @param {Recording} recording @param {number} mode */
    constructor(module, recording, mode) {
        this.#recording = recording;
        this.#chain = new Chain(module);
        this.#chain.begin(recording.rate, mode);
        this.#bookmarks = [this.#chain.bookmark()];
    }

    /**
     * @param {number} piece its number
     * @param {Float32Array<ArrayBuffer>[]} [original] that piece of the recording, if it has been read already
     * @returns {Promise<Float32Array<ArrayBuffer>[]>}
     */
    async piece(piece, original) {
        for (let ahead = this.#bookmarks.length - 1; ahead < piece; ++ahead)
            this.#process(ahead, await readPiece(this.#recording, ahead));

        return this.#process(piece, original ?? (await readPiece(this.#recording, piece)));
    }

    /**
     * @returns {AsyncGenerator<{ piece: number, original: Float32Array<ArrayBuffer>[], result:
     *     Float32Array<ArrayBuffer>[] }>} all of it, in order
     */
    async *pieces() {
        for (let piece = 0; piece < pieceCount(this.#recording); ++piece) {
            const original = await readPiece(this.#recording, piece);
            yield { piece, original, result: await this.piece(piece, original) };
        }
    }

    /** @param {number} piece @param {Float32Array<ArrayBuffer>[]} original @returns {Float32Array<ArrayBuffer>[]} */
    #process(piece, original) {
        this.#chain.goOnFrom(this.#bookmarks[piece]);
        const result = this.#chain.process(original);
        this.#bookmarks[piece + 1] = this.#chain.bookmark();
        return result;
    }
}
