// SPDX-License-Identifier: AGPL-3.0-only

/**
 * What the compiled chain offers; source/web/PageVoice.cpp says what each does.
 *
 * @typedef {object} ChainCode
 * @property {WebAssembly.Memory} memory
 * @property {() => void} [_initialize]
 * @property {() => number} leftChannel
 * @property {() => number} rightChannel
 * @property {() => number} maxFrames
 * @property {() => number} voiceMemory
 * @property {() => number} voiceSize
 * @property {(rate: number, mode: number) => void} beginVoice
 * @property {(frames: number, isStereo: number) => void} processFrames
 */

/** The plug-in's chain: one rendering at a time. */
export class Chain {
    #code;
    #channels;
    #voice;
    #blockFrames;

    /** @param {WebAssembly.Module} module */
    constructor(module) {
        this.#code = /** @type {ChainCode} */ (/** @type {unknown} */ (new WebAssembly.Instance(module).exports));
        this.#code._initialize?.();
        const { memory, leftChannel, rightChannel, maxFrames, voiceMemory, voiceSize } = this.#code;
        this.#blockFrames = maxFrames();
        this.#channels = [leftChannel(), rightChannel()].map(
            at => new Float32Array(memory.buffer, at, this.#blockFrames),
        );
        this.#voice = new Uint8Array(memory.buffer, voiceMemory(), voiceSize());
    }

    /** Begins a recording, as a new instance of the plug-in would. @param {number} rate in Hz @param {number} mode */
    begin(rate, mode) {
        this.#code.beginVoice(rate, mode);
    }

    /** @returns {Uint8Array} all that the chain remembers now; goOnFrom takes it */
    bookmark() {
        return this.#voice.slice();
    }

    /** @param {Uint8Array} bookmark */
    goOnFrom(bookmark) {
        this.#voice.set(bookmark);
    }

    /**
     * Renders samples, linear with full scale 1.0; the next call goes on where this one ends.
     *
     * @param {Float32Array[]} channels one or two, which stay as they are
     * @returns {Float32Array<ArrayBuffer>[]} as many
     */
    process(channels) {
        const frames = channels[0].length;
        const results = channels.map(() => new Float32Array(frames));

        for (let from = 0; from < frames; from += this.#blockFrames) {
            const count = Math.min(this.#blockFrames, frames - from);
            channels.forEach((samples, c) => this.#channels[c].set(samples.subarray(from, from + count)));
            this.#code.processFrames(count, channels.length - 1);
            results.forEach((samples, c) => samples.set(this.#channels[c].subarray(0, count), from));
        }

        return results;
    }
}
