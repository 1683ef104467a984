// SPDX-License-Identifier: AGPL-3.0-only

/** A sound's picture: the largest sample in each of many parts of equal length. */
export class Outline {
    #frames;
    #framesHeard = 0;

    /** @param {number} frames of the whole sound @param {number} columns at most */
    constructor(frames, columns) {
        this.#frames = frames;
        this.peaks = new Float32Array(Math.min(columns, frames));
    }

    /** @param {Float32Array[]} channels finite samples, linear with full scale 1.0 */
    add(channels) {
        const { peaks } = this;

        for (const samples of channels)
            for (let i = 0; i < samples.length; ++i) {
                const column = Math.floor(((this.#framesHeard + i) * peaks.length) / this.#frames);
                const size = Math.abs(samples[i]);

                if (size > peaks[column]) peaks[column] = size;
            }

        this.#framesHeard += channels[0].length;
    }
}
