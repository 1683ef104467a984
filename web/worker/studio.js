// SPDX-License-Identifier: AGPL-3.0-only

import { Fault } from '../common/fault.js';
import { highestRate, largestInMemory, longestFileSeconds, lowestRate, mostChannels } from '../common/limits.js';
import { lastMode } from '../common/modes.js';
import { Meter, finiteSamples } from './meter.js';
import { pieceCount, readPiece, recordingInMemory } from './recording.js';
import { Rendering } from './rendering.js';
import { Spool } from './spool.js';
import { openWav } from './wav-reader.js';
import { wavHead, wavSamples, wavSize, wavTail } from './wav-writer.js';

/**
 * @typedef {import('./meter.js').Figures} Figures
 * @typedef {import('./recording.js').Recording} Recording
 */

/**
 * What is said of a recording once it is open.
 *
 * @typedef {object} Opened
 * @property {number} rate in Hz
 * @property {number} channels
 * @property {number} frames
 * @property {boolean} isCut whether the file ends before it should
 */

/** @typedef {{ original: Figures, result: Figures }} Heard */
/** @typedef {{ original: Float32Array<ArrayBuffer>[], result: Float32Array<ArrayBuffer>[] }} Piece */
/** @typedef {(done: number) => void} Progress from 0 to 1 */

const largestWav = 2 ** 32; // bytes; its head has no room for a larger number

/** @param {Recording} recording @throws {Fault} */
function refuseWhatDoesNotFit({ rate, channels, frames }) {
    if (frames === 0) throw new Fault('empty');

    if (channels > mostChannels) throw new Fault('tooManyChannels', { channels });

    if (!(rate >= lowestRate && rate <= highestRate)) throw new Fault('strangeRate', { rate });

    const longestSeconds = Math.min(longestFileSeconds, largestWav / wavSize(channels, rate));

    if (frames > longestSeconds * rate)
        throw new Fault('tooLong', { minutes: Math.round(frames / rate / 60), most: Math.floor(longestSeconds / 60) });
}

/** One recording and its renderings, away from the page's own thread. */
export class Studio {
    #module;
    /** @type {Recording | undefined} */
    #recording;
    /** @type {Rendering[]} by mode, as they are asked for */
    #renderings = [];
    /** @type {Figures | undefined} */
    #original;
    #spool = new Spool();
    #hearings = 0;

    /** @param {WebAssembly.Module} module */
    constructor(module) {
        this.#module = module;
    }

    /**
     * Opens a file that this page can read itself.
     *
     * @param {Blob} file
     * @returns {Promise<Opened | undefined>} nothing for one that the browser has to decode
     * @throws {Fault}
     */
    async openFile(file) {
        if (file.size === 0) throw new Fault('empty');

        const wav = await openWav(file);
        return wav && this.#take(wav.recording, wav.isCut);
    }

    /**
     * @param {Float32Array<ArrayBuffer>[]} samples of each channel
     * @param {number} rate in Hz
     * @returns {Opened}
     * @throws {Fault}
     */
    openSamples(samples, rate) {
        return this.#take(recordingInMemory(samples, rate), false);
    }

    /**
     * Hears all of the recording and of what a mode makes of it. A later call ends this one.
     *
     * @param {number} mode
     * @param {Progress} progress
     * @returns {Promise<Heard | undefined>} nothing if it was ended
     */
    async hear(mode, progress) {
        const recording = this.#opened();
        const hearing = ++this.#hearings;
        const known = this.#original;
        const originalMeter = known ? undefined : new Meter(recording);
        const resultMeter = new Meter(recording);

        for await (const { piece, original, result } of this.#rendering(mode).pieces()) {
            if (hearing !== this.#hearings) return undefined;

            originalMeter?.add(original);
            resultMeter.add(result);
            progress((piece + 1) / pieceCount(recording));
        }

        const original = known ?? /** @type {Meter} */ (originalMeter).figures();
        this.#original = original;
        return { original, result: resultMeter.figures() };
    }

    /**
     * @param {number} mode
     * @param {number} piece its number
     * @returns {Promise<Piece>} both, of that piece, as they can be played
     */
    async piece(mode, piece) {
        const original = await readPiece(this.#opened(), piece);
        return { original: finiteSamples(original), result: await this.#rendering(mode).piece(piece, original) };
    }

    /**
     * @param {number} mode
     * @param {Progress} progress
     * @returns {Promise<Blob>} what the mode makes of the recording, as a WAV file
     * @throws {Fault} noSpace
     */
    async save(mode, progress) {
        const recording = this.#opened();
        const { rate, channels, frames } = recording;
        const spool = await this.#newSpool(wavSize(channels, frames));
        await spool.add(wavHead(rate, channels, frames));

        for await (const { piece, result } of this.#rendering(mode).pieces()) {
            await spool.add(wavSamples(result));
            progress((piece + 1) / pieceCount(recording));
        }

        await spool.add(wavTail(channels, frames));
        return spool.file('audio/wav');
    }

    /** @param {number} size of the file, in bytes */
    async #newSpool(size) {
        this.#spool.close();
        this.#spool = new Spool();
        await this.#spool.open(size > largestInMemory);
        return this.#spool;
    }

    /** @param {Recording} recording @param {boolean} isCut @returns {Opened} */
    #take(recording, isCut) {
        refuseWhatDoesNotFit(recording);
        ++this.#hearings;
        this.#recording = recording;
        this.#renderings = [];
        this.#original = undefined;
        const { rate, channels, frames } = recording;
        return { rate, channels, frames, isCut };
    }

    #opened() {
        if (!this.#recording) throw new Error('there is no recording yet');

        return this.#recording;
    }

    /** @param {number} mode */
    #rendering(mode) {
        if (!(mode >= 0 && mode <= lastMode)) throw new RangeError(`there is no mode ${mode}`);

        this.#renderings[mode] ??= new Rendering(this.#module, this.#opened(), mode);
        return this.#renderings[mode];
    }
}
