// SPDX-License-Identifier: AGPL-3.0-only

import { amplitudeDecibels } from '../common/decibels.js';

const reach = 16; // samples on either side that a value between two of them is made of
const enoughPoints = 192000; // a second, the samples themselves included
const beta = 9; // of the window

/** A run of samples so short that most of a voice's runs lie far below its peak. */
const runFrames = 32;

/** The modified Bessel function of the first kind, of order 0: the sum of (x / 2)^2n / n!^2. @param {number} x */
function besselI0(x) {
    let sum = 1;

    for (let n = 1, term = 1; term > sum * 1e-17; ++n) {
        term *= (x / 2 / n) ** 2;
        sum += term;
    }

    return sum;
}

/**
 * How much each sample around counts for a value between two of them: sin (pi t) / (pi t) under a Kaiser window, brought
 * to a sum of 1.
 *
 * @param {number} offset from the first of the two, 0 to 1
 * @returns {Float64Array}
 */
function weightsAt(offset) {
    const weights = Float64Array.from({ length: 2 * reach }, (_, i) => {
        const t = i - reach + 1 - offset;
        return (besselI0(beta * Math.sqrt(Math.max(0, 1 - (t / reach) ** 2))) * Math.sin(Math.PI * t)) / (Math.PI * t);
    });
    const sum = weights.reduce((total, weight) => total + weight, 0);
    return weights.map(weight => weight / sum);
}

/**
 * True peak after ITU-R BS.1770: the largest of the samples and of what lies between them. It looks as closely as
 * larkspire-render does.
 */
export class TruePeak {
    /** The weights at each place between two samples. @type {Float64Array[]} */
    #phases;
    #bound; // how much larger than the largest sample around it a value can be
    #tails;
    #peak = 0;

    /** @param {number} rate in Hz @param {number} channels */
    constructor(rate, channels) {
        const points = Math.ceil(enoughPoints / rate);
        this.#phases = Array.from({ length: points - 1 }, (_, phase) => weightsAt((phase + 1) / points));
        this.#bound = Math.max(1, ...this.#phases.map(phase => phase.reduce((sum, w) => sum + Math.abs(w), 0)));
        this.#tails = Array.from({ length: channels }, () => new Float32Array(2 * reach));
    }

    /** @param {Float32Array[]} channels finite samples, linear with full scale 1.0 */
    add(channels) {
        this.#tails = channels.map((samples, c) => {
            const joined = new Float32Array(this.#tails[c].length + samples.length);
            joined.set(this.#tails[c]);
            joined.set(samples, this.#tails[c].length);

            for (let from = 0; from < samples.length; from += runFrames)
                this.#addRun(joined, from, Math.min(samples.length, from + runFrames));

            return joined.slice(samples.length);
        });
    }

    /** @returns {number | null} dBTP; null for silence */
    level() {
        return amplitudeDecibels(this.#peak);
    }

    /**
     * Takes the places whose samples begin from one to another.
     *
     * @param {Float32Array} samples
     * @param {number} from
     * @param {number} to
     */
    #addRun(samples, from, to) {
        let largest = 0;

        for (let i = from; i < to + 2 * reach; ++i) largest = Math.max(largest, Math.abs(samples[i]));

        if (largest * this.#bound <= this.#peak) return;

        this.#peak = Math.max(this.#peak, largest);

        for (const phase of this.#phases)
            for (let place = from; place < to; ++place) {
                let value = 0;

                for (let i = 0; i < phase.length; ++i) value += phase[i] * samples[place + i];

                this.#peak = Math.max(this.#peak, Math.abs(value));
            }
    }
}
