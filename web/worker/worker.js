// SPDX-License-Identifier: AGPL-3.0-only
// What the worker does when it is asked. page/engine.js asks.

import { asFault } from '../common/fault.js';
import { sweepSpools } from './spool.js';
import { Studio } from './studio.js';

/**
 * @typedef {{ id: number } & (
 *     { method: 'start', wasm: BufferSource }
 *     | { method: 'openFile', file: Blob }
 *     | { method: 'openSamples', samples: Float32Array<ArrayBuffer>[], rate: number }
 *     | { method: 'hear', mode: number }
 *     | { method: 'piece', mode: number, piece: number }
 *     | { method: 'save', mode: number })} Request
 */

/** @type {Studio} */
let studio;

/** @param {Request} request @param {(done: number) => void} progress @returns {Promise<unknown>} */
async function answer(request, progress) {
    switch (request.method) {
        case 'start':
            studio = new Studio(new WebAssembly.Module(request.wasm));
            return sweepSpools();
        case 'openFile':
            return studio.openFile(request.file);
        case 'openSamples':
            return studio.openSamples(request.samples, request.rate);
        case 'hear':
            return studio.hear(request.mode, progress);
        case 'piece':
            return studio.piece(request.mode, request.piece);
        case 'save':
            return studio.save(request.mode, progress);
    }
}

self.onmessage = async (/** @type {MessageEvent<Request>} */ { data: request }) => {
    const { id } = request;

    try {
        self.postMessage({ id, result: await answer(request, done => self.postMessage({ id, done })) });
    } catch (error) {
        const { kind, details } = asFault(error);
        self.postMessage({ id, fault: { kind, details } });
    }
};
