// SPDX-License-Identifier: AGPL-3.0-only

import { Fault } from '../common/fault.js';

/**
 * @typedef {import('../worker/worker.js').Request} Request
 * @typedef {import('../worker/studio.js').Opened} Opened
 * @typedef {import('../worker/studio.js').Heard} Heard
 * @typedef {import('../worker/studio.js').Piece} Piece
 * @typedef {import('../worker/studio.js').Progress} Progress
 */

/** @template T @typedef {T extends unknown ? Omit<T, 'id'> : never} WithoutId */

/** @type {Progress} */
const unheeded = () => {};

/** The worker, as functions. Each gives what the worker's Studio gives, and throws its faults. */
export class Engine {
    #worker;
    /** @type {Map<number, { resolve: (result: any) => void, reject: (fault: unknown) => void, progress: Progress }>} */
    #waiting = new Map();
    #lastId = 0;
    /** Why it does nothing more. @type {Fault | undefined} */
    #end;

    /** @param {string} script the worker's whole text @param {Uint8Array<ArrayBuffer>} wasm the compiled chain */
    constructor(script, wasm) {
        this.#worker = new Worker(URL.createObjectURL(new Blob([script], { type: 'text/javascript' })));
        this.#worker.onmessage = ({ data }) => this.#answered(data);
        this.#worker.onerror = event => this.#broken(event.message);
        /** @type {Promise<void>} */
        this.started = this.#ask({ method: 'start', wasm });
    }

    /** @param {Blob} file @returns {Promise<Opened | undefined>} nothing for one that the browser has to decode */
    openFile(file) {
        return this.#ask({ method: 'openFile', file });
    }

    /**
     * @param {Float32Array<ArrayBuffer>[]} samples which the worker keeps
     * @param {number} rate in Hz
     * @returns {Promise<Opened>}
     */
    openSamples(samples, rate) {
        return this.#ask(
            { method: 'openSamples', samples, rate },
            unheeded,
            samples.map(channel => channel.buffer),
        );
    }

    /**
     * @param {number} mode
     * @param {Progress} progress
     * @returns {Promise<Heard | undefined>} nothing if a later call ended it
     */
    hear(mode, progress) {
        return this.#ask({ method: 'hear', mode }, progress);
    }

    /** @param {number} mode @param {number} piece @returns {Promise<Piece>} */
    piece(mode, piece) {
        return this.#ask({ method: 'piece', mode, piece });
    }

    /** @param {number} mode @param {Progress} progress @returns {Promise<Blob>} */
    save(mode, progress) {
        return this.#ask({ method: 'save', mode }, progress);
    }

    /**
     * @param {WithoutId<Request>} request
     * @param {Progress} [progress]
     * @param {Transferable[]} [transfer]
     * @returns {Promise<any>}
     */
    #ask(request, progress = unheeded, transfer = []) {
        return new Promise((resolve, reject) => {
            if (this.#end) throw this.#end;

            const id = ++this.#lastId;
            this.#waiting.set(id, { resolve, reject, progress });
            this.#worker.postMessage({ id, ...request }, transfer);
        });
    }

    /** @param {{ id: number, done?: number, fault?: Fault, result?: unknown }} answer */
    #answered({ id, done, fault, result }) {
        const waiting = this.#waiting.get(id);

        if (done !== undefined) return waiting?.progress(done);

        this.#waiting.delete(id);
        return fault ? waiting?.reject(new Fault(fault.kind, fault.details)) : waiting?.resolve(result);
    }

    /** @param {string} what */
    #broken(what) {
        const fault = new Fault('unexpected', { what });
        this.#end = fault;
        this.#waiting.forEach(({ reject }) => reject(fault));
        this.#waiting.clear();
    }
}
