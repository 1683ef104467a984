// SPDX-License-Identifier: AGPL-3.0-only

import { powerDecibels } from '../common/decibels.js';

const offset = -0.691; // dB, so that a tone of 1 kHz has the loudness of its level
const absoluteGate = -70; // LUFS
const relativeGate = -10; // LU below the mean
const stepsInBlock = 4; // blocks of 0.4 s, one every 0.1 s

/**
 * The two filters of the weighting, for any rate: the numbers of ITU-R BS.1770 stand for 48 kHz and are these, designed
 * by the bilinear transform. First a shelf that stands for the head, then a high-pass.
 *
 * @param {number} rate in Hz
 */
function designWeighting(rate) {
    const high = { frequency: 1681.974450955533, gain: 3.999843853973347, q: 0.7071752369554196 };
    const low = { frequency: 38.13547087602444, q: 0.5003270373238773 };

    const k = Math.tan((Math.PI * high.frequency) / rate);
    const vh = 10 ** (high.gain / 20);
    const vb = vh ** 0.4996667741545416;
    const a0 = 1 + k / high.q + k * k;
    const shelf = {
        b: [(vh + (vb * k) / high.q + k * k) / a0, (2 * (k * k - vh)) / a0, (vh - (vb * k) / high.q + k * k) / a0],
        a: [(2 * (k * k - 1)) / a0, (1 - k / high.q + k * k) / a0],
    };

    const l = Math.tan((Math.PI * low.frequency) / rate);
    const l0 = 1 + l / low.q + l * l;
    return { shelf, highPass: { a: [(2 * (l * l - 1)) / l0, (1 - l / low.q + l * l) / l0] } };
}

/** @param {number[]} powers @returns {number} */
function mean(powers) {
    return powers.reduce((sum, power) => sum + power, 0) / powers.length;
}

/** Integrated loudness after ITU-R BS.1770 and EBU R 128. One channel counts once. */
export class Loudness {
    #weighting;
    #memories;
    #stepFrames;
    #sum = 0;
    #framesInStep = 0;
    /** @type {number[]} mean squares of the steps */
    #steps = [];

    /** @param {number} rate in Hz @param {number} channels */
    constructor(rate, channels) {
        this.#weighting = designWeighting(rate);
        this.#memories = Array.from({ length: channels }, () => new Float64Array(4));
        this.#stepFrames = Math.round(rate / 10);
    }

    /** @param {Float32Array[]} channels finite samples, linear with full scale 1.0 */
    add(channels) {
        for (let from = 0; from < channels[0].length;) {
            const to = Math.min(channels[0].length, from + this.#stepFrames - this.#framesInStep);
            channels.forEach((samples, c) => {
                this.#sum += this.#weightedPower(samples, from, to, this.#memories[c]);
            });
            this.#framesInStep += to - from;
            from = to;

            if (this.#framesInStep === this.#stepFrames) {
                this.#steps.push(this.#sum / this.#stepFrames);
                this.#sum = 0;
                this.#framesInStep = 0;
            }
        }
    }

    /** @returns {number | null} LUFS; null for silence and for less than 0.4 s */
    integrated() {
        const blocks = this.#steps
            .map((_, end) => mean(this.#steps.slice(Math.max(0, end + 1 - stepsInBlock), end + 1)))
            .slice(stepsInBlock - 1);
        const loud = blocks.filter(power => power >= 10 ** ((absoluteGate - offset) / 10));

        if (loud.length === 0) return null;

        const gate = mean(loud) * 10 ** (relativeGate / 10);
        const level = powerDecibels(mean(loud.filter(power => power >= gate)));
        return level === null ? null : level + offset;
    }

    /**
     * @param {Float32Array} samples
     * @param {number} from
     * @param {number} to
     * @param {Float64Array} memory of the two filters
     * @returns {number} the sum of the weighted squares
     */
    #weightedPower(samples, from, to, memory) {
        const {
            shelf: {
                b: [b0, b1, b2],
                a: [a1, a2],
            },
            highPass: {
                a: [c1, c2],
            },
        } = this.#weighting;
        let [v1, v2, w1, w2] = memory;
        let sum = 0;

        for (let i = from; i < to; ++i) {
            const v = samples[i] - a1 * v1 - a2 * v2;
            const lifted = b0 * v + b1 * v1 + b2 * v2;
            v2 = v1;
            v1 = v;

            const w = lifted - c1 * w1 - c2 * w2;
            const weighted = w - 2 * w1 + w2;
            w2 = w1;
            w1 = w;
            sum += weighted * weighted;
        }

        memory.set([v1, v2, w1, w2]);
        return sum;
    }
}
