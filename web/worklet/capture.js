// SPDX-License-Identifier: AGPL-3.0-only

/** Hands on what it hears, in pieces of about a twentieth of a second. */
class Capture extends AudioWorkletProcessor {
    #piece = new Float32Array(2048);
    #count = 0;

    /** @param {Float32Array[][]} inputs */
    process([[samples]]) {
        if (samples) {
            this.#piece.set(samples, this.#count);
            this.#count += samples.length;
        }

        if (this.#count + 128 > this.#piece.length) {
            this.port.postMessage(this.#piece.slice(0, this.#count));
            this.#count = 0;
        }

        return true;
    }
}

registerProcessor('capture', Capture);
