// SPDX-License-Identifier: AGPL-3.0-only

import { Fault } from '../common/fault.js';
import { Stream, secondsToStart } from './stream.js';
import { wake } from './wake.js';

/**
 * @typedef {import('../worker/studio.js').Opened} Opened
 * @typedef {import('../worker/studio.js').Piece} Piece
 * @typedef {import('./stream.js').Clock} Clock
 * @typedef {import('./stream.js').Gains} Gains
 */

/** Plays a recording and its renderings, and switches between them while they play. */
export class Player {
    #read;
    #ended;
    /** @type {AudioContext | undefined} */
    #context;
    /** @type {Opened | undefined} */
    #recording;
    /** The one that is heard, or will be as soon as it has begun. @type {Stream | undefined} */
    #stream;
    /** With those that are heard until then. @type {Set<Stream>} */
    #streams = new Set();
    /** @type {Clock | undefined} */
    #clock;
    #restingFrame = 0;
    #mode = 0;
    /** @type {Gains} */
    #gains = { original: 0, result: 1 };

    /**
     * @param {(mode: number, piece: number) => Promise<Piece>} read
     * @param {(error?: unknown) => void} ended called when the recording is at its end, or cannot be read on
     */
    constructor(read, ended) {
        this.#read = read;
        this.#ended = ended;
    }

    get isPlaying() {
        return this.#stream !== undefined;
    }

    /** The frame that is heard, or that will be. */
    get frame() {
        if (!this.#clock || !this.#context || !this.#recording) return this.#restingFrame;

        const { frame, time, rate } = this.#clock;
        return Math.min(
            this.#recording.frames,
            frame + Math.max(0, Math.round((this.#context.currentTime - time) * rate)),
        );
    }

    /** @param {Opened} recording which takes the place of the present one, from its beginning */
    take(recording) {
        this.pause();
        this.#recording = recording;
        this.#restingFrame = 0;
    }

    /** @throws {Fault} notPlayable, at a rate that the browser does not play; noLoudspeaker */
    async play() {
        const recording = this.#recording;

        if (!recording || this.isPlaying) return;

        const context = this.#contextAt(recording.rate);
        const from = this.#restingFrame < recording.frames ? this.#restingFrame : 0;
        this.#clock = { frame: from, time: Infinity, rate: recording.rate };
        this.#start(context, recording, this.#clock, from);
        await wake(context);
    }

    pause() {
        this.#restingFrame = this.frame;
        this.#clock = undefined;
        this.#stream = undefined;
        this.#streams.forEach(stream => stream.stop());
        this.#streams.clear();
    }

    /** @param {number} frame */
    async seek(frame) {
        const wasPlaying = this.isPlaying;
        this.pause();
        this.#restingFrame = frame;

        if (wasPlaying) await this.play();
    }

    /** Goes on at the same place in another mode's rendering. @param {number} mode @param {Gains} gains */
    setMode(mode, gains) {
        const isAnother = mode !== this.#mode;
        this.#mode = mode;

        if (!isAnother || !this.#clock || !this.#context || !this.#recording) return this.setGains(gains);

        this.#gains = gains;
        const isHeard = this.#clock.time !== Infinity;
        const from = this.frame + (isHeard ? Math.round(secondsToStart * this.#clock.rate) : 0);
        this.#start(this.#context, this.#recording, this.#clock, from);
        return undefined;
    }

    /** @param {Gains} gains */
    setGains(gains) {
        this.#gains = gains;
        this.#stream?.setGains(gains);
    }

    /**
     * @param {AudioContext} context
     * @param {Opened} recording
     * @param {Clock} clock
     * @param {number} from
     */
    async #start(context, recording, clock, from) {
        const mode = this.#mode;
        const stream = new Stream(context, context.destination, recording.channels, clock, this.#gains);
        this.#stream = stream;
        this.#streams.add(stream);

        try {
            const isAtEnd = await stream.play(
                from,
                recording.frames,
                piece => this.#read(mode, piece),
                time => this.#stopOthers(stream, time),
            );

            if (isAtEnd && stream === this.#stream) {
                this.pause();
                this.#restingFrame = 0;
                this.#ended();
            }
        } catch (error) {
            if (stream === this.#stream) {
                this.pause();
                this.#ended(error);
            }
        }
    }

    /** @param {Stream} stream @param {number} time by the audio context */
    #stopOthers(stream, time) {
        this.#streams.forEach(other => other !== stream && other.stop(time));
        this.#streams = new Set([stream]);
    }

    /** @param {number} rate in Hz @returns {AudioContext} one that plays it without resampling */
    #contextAt(rate) {
        if (this.#context?.sampleRate === rate) return this.#context;

        this.#context?.close();
        this.#context = undefined;

        try {
            this.#context = new AudioContext({ sampleRate: rate });
        } catch {
            throw new Fault('notPlayable', { rate });
        }

        return this.#context;
    }
}
