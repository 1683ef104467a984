// SPDX-License-Identifier: AGPL-3.0-only

import { amplitudeDecibels } from '../common/decibels.js';
import { Loudness } from './loudness.js';
import { Outline } from './outline.js';
import { QuietestTenth } from './quietest-tenth.js';
import { TruePeak } from './true-peak.js';

/**
 * What is known of a sound. A figure is null where there is none, as of silence.
 *
 * @typedef {object} Figures
 * @property {number | null} loudness LUFS
 * @property {number | null} truePeak dBTP
 * @property {number | null} peak of the samples, dBFS
 * @property {number | null} quietestTenth dBFS
 * @property {Float32Array} outline
 */

const outlineColumns = 1200;

/**
 * @param {Float32Array<ArrayBuffer>[]} channels
 * @returns {Float32Array<ArrayBuffer>[]} with silence in place of what is no number
 */
export function finiteSamples(channels) {
    return channels.map(samples =>
        samples.every(Number.isFinite) ? samples : samples.map(x => (Number.isFinite(x) ? x : 0)),
    );
}

/** Hears a sound, piece by piece. */
export class Meter {
    #loudness;
    #truePeak;
    #quietestTenth;
    #outline;

    /** @param {{ rate: number, channels: number, frames: number }} sound its rate in Hz and how much there is of it */
    constructor({ rate, channels, frames }) {
        this.#loudness = new Loudness(rate, channels);
        this.#truePeak = new TruePeak(rate, channels);
        this.#quietestTenth = new QuietestTenth(rate);
        this.#outline = new Outline(frames, outlineColumns);
    }

    /** @param {Float32Array<ArrayBuffer>[]} channels */
    add(channels) {
        const samples = finiteSamples(channels);

        for (const meter of [this.#loudness, this.#truePeak, this.#quietestTenth, this.#outline]) meter.add(samples);
    }

    /** @returns {Figures} */
    figures() {
        return {
            loudness: this.#loudness.integrated(),
            truePeak: this.#truePeak.level(),
            peak: amplitudeDecibels(this.#outline.peaks.reduce((largest, peak) => Math.max(largest, peak), 0)),
            quietestTenth: this.#quietestTenth.level(),
            outline: this.#outline.peaks,
        };
    }
}
