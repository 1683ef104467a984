// SPDX-License-Identifier: AGPL-3.0-only

import { powerDecibels } from '../common/decibels.js';

/**
 * The level that a tenth of all windows of 50 ms do not exceed, digital silence left out: of speech in a room the noise
 * between words. In dBFS, where a sine of full scale has 0 (AES17). The same figure as in larkspire-render --report.
 */
export class QuietestTenth {
    #windowFrames;
    #sum = 0;
    #framesInWindow = 0;
    /** @type {number[]} mean squares of the windows */
    #powers = [];

    /** @param {number} rate in Hz */
    constructor(rate) {
        this.#windowFrames = Math.round(0.05 * rate);
    }

    /** @param {Float32Array[]} channels finite samples, linear with full scale 1.0 */
    add(channels) {
        for (let from = 0; from < channels[0].length;) {
            const to = Math.min(channels[0].length, from + this.#windowFrames - this.#framesInWindow);

            for (const samples of channels) for (let i = from; i < to; ++i) this.#sum += samples[i] * samples[i];

            this.#framesInWindow += to - from;
            from = to;

            if (this.#framesInWindow === this.#windowFrames) {
                this.#powers.push(this.#sum / (this.#windowFrames * channels.length));
                this.#sum = 0;
                this.#framesInWindow = 0;
            }
        }
    }

    /** @returns {number | null} null for silence and for less than a window */
    level() {
        const powers = this.#powers.filter(power => power > 0).sort((a, b) => a - b);
        return powers.length === 0 ? null : powerDecibels(2 * powers[Math.ceil(powers.length / 10) - 1]);
    }
}
