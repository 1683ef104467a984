// SPDX-License-Identifier: AGPL-3.0-only

import { Fault } from '../common/fault.js';
import { longestTakeSeconds } from '../common/limits.js';
import { wake } from './wake.js';

/** @type {Record<string, import('../common/fault.js').FaultKind>} by the name of the browser's error */
const faults = {
    NotAllowedError: 'microphoneRefused',
    SecurityError: 'microphoneRefused',
    NotFoundError: 'noMicrophone',
    OverconstrainedError: 'noMicrophone',
    NotReadableError: 'microphoneBusy',
    AbortError: 'microphoneBusy',
};

async function openMicrophone() {
    if (!navigator.mediaDevices?.getUserMedia || !globalThis.AudioWorkletNode)
        throw new Fault('microphoneNeedsSafePage');

    try {
        // Browsers level and clean voices themselves unless they are told not to, and one would hear that.
        return await navigator.mediaDevices.getUserMedia({
            audio: { channelCount: 1, echoCancellation: false, noiseSuppression: false, autoGainControl: false },
        });
    } catch (error) {
        const name = error instanceof Error ? error.name : '';
        throw new Fault(faults[name] ?? 'microphoneBusy');
    }
}

/** What was recorded. @typedef {{ samples: Float32Array<ArrayBuffer>, rate: number }} Take */

/** A microphone while it records, up to a minute. */
export class Microphone {
    #stream;
    #context;
    #heard;
    /** @type {Float32Array[]} */
    #pieces = [];
    #frames = 0;

    /**
     * Asks for the microphone and begins.
     *
     * @param {string} script of the audio worklet
     * @param {(seconds: number, peak: number) => void} heard called with what there is so far and the latest peak
     * @param {() => void} gone called if the microphone is unplugged, or its permission taken back
     * @throws {Fault}
     */
    static async open(script, heard, gone) {
        const stream = await openMicrophone();
        let context;

        try {
            // At the microphone's own rate nothing is resampled.
            const [track] = stream.getAudioTracks();
            const { sampleRate } = track.getSettings();
            context = new AudioContext(sampleRate ? { sampleRate } : {});
            // From a file on disk, Chromium takes no worklet from a blob, but one from a data: address.
            await context.audioWorklet.addModule(`data:text/javascript,${encodeURIComponent(script)}`);
            await wake(context);
            track.addEventListener('ended', gone);
            return new Microphone(stream, context, heard);
        } catch (error) {
            stream.getTracks().forEach(track => track.stop());
            await context?.close();
            throw error;
        }
    }

    /**
     * @param {MediaStream} stream
     * @param {AudioContext} context
     * @param {(seconds: number, peak: number) => void} heard
     */
    constructor(stream, context, heard) {
        this.#stream = stream;
        this.#context = context;
        this.#heard = heard;
        const capture = new AudioWorkletNode(context, 'capture', {
            numberOfOutputs: 0,
            channelCount: 1,
            channelCountMode: 'explicit',
        });
        capture.port.onmessage = ({ data }) => this.#take(data);
        new MediaStreamAudioSourceNode(context, { mediaStream: stream }).connect(capture);
    }

    /** Ends it. @returns {Promise<Take>} @throws {Fault} nothingRecorded */
    async close() {
        this.#stream.getTracks().forEach(track => track.stop());
        await this.#context.close();

        if (this.#frames === 0) throw new Fault('nothingRecorded');

        const samples = new Float32Array(this.#frames);
        this.#pieces.reduce((at, piece) => {
            samples.set(piece, at);
            return at + piece.length;
        }, 0);
        return { samples, rate: this.#context.sampleRate };
    }

    /** @param {Float32Array} piece */
    #take(piece) {
        const room = longestTakeSeconds * this.#context.sampleRate - this.#frames;
        const taken = piece.subarray(0, room);
        this.#pieces.push(taken);
        this.#frames += taken.length;
        this.#heard(
            this.#frames / this.#context.sampleRate,
            piece.reduce((peak, x) => Math.max(peak, Math.abs(x)), 0),
        );
    }
}
