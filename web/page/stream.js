// SPDX-License-Identifier: AGPL-3.0-only

import { pieceFrames } from '../common/limits.js';

/**
 * Which frame of the recording is heard when: the same for all streams of a recording that is playing.
 *
 * @typedef {object} Clock
 * @property {number} frame
 * @property {number} time of that frame, by the audio context; Infinity until the first sound is on its way
 * @property {number} rate in Hz
 */

/** @typedef {import('../worker/studio.js').Piece} Piece */
/** @typedef {{ original: number, result: number }} Gains */

const secondsAhead = 4; // as much as is handed to the browser's audio thread
/** What lies between a piece's arrival and the moment at which it is heard. */
export const secondsToStart = 0.05;
// The least of it: what reaches a busy machine's audio thread too late begins late and is out of step.
const secondsToHandOver = 0.04;

const fadeSeconds = 0.01;

/** @param {Clock} clock @param {number} frame @returns {number} when it is heard, by the audio context */
function timeOf(clock, frame) {
    return clock.time + (frame - clock.frame) / clock.rate;
}

/** @param {number} seconds */
function sleep(seconds) {
    return new Promise(resolve => {
        setTimeout(resolve, 1000 * seconds);
    });
}

/**
 * A recording and its rendering in one mode on their way to the speaker. Both are channels of one and the same buffer,
 * so that they are in step at each sample; what is heard is a matter of two gains.
 *
 *     buffer ─▶ splitter ─┬─▶ merger ─▶ gain of the original ─┬─▶ fade ─▶ output
 *                         └─▶ merger ─▶ gain of the result   ─┘
 */
export class Stream {
    #context;
    #clock;
    #splitter;
    #original;
    #result;
    #fade;
    #isStopped = false;
    /** @type {Set<AudioBufferSourceNode>} */
    #sources = new Set();

    /**
     * @param {AudioContext} context
     * @param {AudioNode} output
     * @param {number} channels of the recording
     * @param {Clock} clock
     * @param {Gains} gains
     */
    constructor(context, output, channels, clock, gains) {
        this.#context = context;
        this.#clock = clock;
        this.#splitter = context.createChannelSplitter(2 * channels);
        this.#original = new GainNode(context, { gain: gains.original });
        this.#result = new GainNode(context, { gain: gains.result });
        this.#fade = new GainNode(context, { gain: 0 });
        this.#fade.connect(output);

        [this.#original, this.#result].forEach((gain, side) => {
            const merger = context.createChannelMerger(channels);

            for (let channel = 0; channel < channels; ++channel)
                this.#splitter.connect(merger, side * channels + channel, channel);

            merger.connect(gain).connect(this.#fade);
        });
    }

    /** @param {Gains} gains which are reached within a moment, without a click */
    setGains(gains) {
        const now = this.#context.currentTime;

        for (const [{ gain }, target] of /** @type {[GainNode, number][]} */ ([
            [this.#original, gains.original],
            [this.#result, gains.result],
        ])) {
            gain.cancelScheduledValues(now);
            gain.setValueAtTime(gain.value, now);
            gain.linearRampToValueAtTime(target, now + fadeSeconds);
        }
    }

    /**
     * Plays from a frame on to the end, and keeps as much ahead as a busy machine needs.
     *
     * @param {number} from
     * @param {number} frames of the whole recording
     * @param {(piece: number) => Promise<Piece>} read
     * @param {(time: number) => void} begun called when the first sound is on its way, with when it is heard
     * @returns {Promise<boolean>} whether it came to the end; false if it was stopped
     */
    async play(from, frames, read, begun) {
        for (let frame = from; frame < frames && !this.#isStopped;) {
            const index = Math.floor(frame / pieceFrames);
            const piece = await read(index);

            if (this.#isStopped) return false;

            if (this.#clock.time === Infinity)
                Object.assign(this.#clock, { frame, time: this.#context.currentTime + secondsToStart });

            const start = this.#schedule(piece, frame - index * pieceFrames, frame);

            if (frame === from) {
                this.#fadeIn(start);
                begun(start);
            }

            frame = (index + 1) * pieceFrames;
            await this.#until(timeOf(this.#clock, Math.min(frame, frames)) - (frame < frames ? secondsAhead : 0));
        }

        return !this.#isStopped;
    }

    /** Falls silent within a moment. @param {number} [time] from when on, by the audio context */
    stop(time = this.#context.currentTime) {
        const { gain } = this.#fade;
        this.#isStopped = true;
        gain.cancelScheduledValues(time);
        gain.setValueAtTime(gain.value, time);
        gain.linearRampToValueAtTime(0, time + fadeSeconds);
        this.#sources.forEach(source => source.stop(time + 2 * fadeSeconds));
        setTimeout(() => this.#fade.disconnect(), 1000);
    }

    /** @param {number} start by the audio context */
    #fadeIn(start) {
        this.#fade.gain.setValueAtTime(0, start);
        this.#fade.gain.linearRampToValueAtTime(1, start + fadeSeconds);
    }

    /**
     * Hands a piece to the browser's audio thread; of one that comes late, what is still to be heard.
     *
     * @param {Piece} piece
     * @param {number} from where in the piece it begins
     * @param {number} frame that this is
     * @returns {number} when it is heard, by the audio context
     */
    #schedule({ original, result }, from, frame) {
        const { rate } = this.#clock;
        const soonest = this.#context.currentTime + secondsToHandOver;
        const late = Math.max(0, Math.ceil((soonest - timeOf(this.#clock, frame)) * rate));
        const start = timeOf(this.#clock, frame + late);
        const count = original[0].length - from - late;

        if (count <= 0) return start;

        const buffer = new AudioBuffer({ length: count, numberOfChannels: 2 * original.length, sampleRate: rate });
        [...original, ...result].forEach((samples, c) => buffer.copyToChannel(samples.subarray(from + late), c));

        const source = new AudioBufferSourceNode(this.#context, { buffer });
        source.connect(this.#splitter);
        source.onended = () => this.#sources.delete(source);
        source.start(start);
        this.#sources.add(source);
        return start;
    }

    /** @param {number} time by the audio context */
    async #until(time) {
        while (!this.#isStopped && this.#context.currentTime < time)
            await sleep(Math.min(0.25, Math.max(0.01, time - this.#context.currentTime)));
    }
}
