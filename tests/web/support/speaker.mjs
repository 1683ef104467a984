// SPDX-License-Identifier: AGPL-3.0-only
// What goes to the speaker, sample by sample.

/** Runs in the page ahead of its script: whatever is connected to the speaker is written down too. */
export function listenIn() {
    const recorder = `registerProcessor('listen-in', class extends AudioWorkletProcessor {
        process([input]) {
            this.port.postMessage({ frame: currentFrame, samples: input.map(samples => samples.slice()) });
            return true;
        }
    });`;
    /** @type {WeakMap<BaseAudioContext, Promise<AudioNode>>} */
    const listeners = new WeakMap();
    /** @type {{ frame: number, samples: Float32Array[] }[]} */
    const heard = [];
    Object.assign(globalThis, { heardAtSpeaker: heard });

    /** @param {BaseAudioContext} context @returns {Promise<AudioNode>} */
    async function listenerFor(context) {
        await context.audioWorklet.addModule(`data:text/javascript,${encodeURIComponent(recorder)}`);
        const node = new AudioWorkletNode(context, 'listen-in', { numberOfOutputs: 0 });
        node.port.onmessage = ({ data }) => heard.push(data);
        return node;
    }

    const { connect } = AudioNode.prototype;
    AudioNode.prototype.connect = function (/** @type {any} */ ...target) {
        if (target[0] instanceof AudioDestinationNode) {
            const listener = listeners.get(this.context) ?? listenerFor(this.context);
            listeners.set(this.context, listener);
            listener.then(node => /** @type {(node: AudioNode) => void} */ (connect).call(this, node));
        }

        return /** @type {any} */ (connect.apply(this, /** @type {any} */ (target)));
    };
}

/** @param {import('puppeteer-core').Page} page forgets what was heard so far */
export async function forgetHeard(page) {
    await page.evaluate(() => {
        /** @type {any} */ (globalThis).heardAtSpeaker.length = 0;
    });
}

/** @param {import('puppeteer-core').Page} page @returns {Promise<number>} the browser's frame that was heard last */
export function latestFrame(page) {
    return page.evaluate(() => /** @type {any} */ (globalThis).heardAtSpeaker.at(-1).frame);
}

/**
 * @param {import('puppeteer-core').Page} page
 * @returns {Promise<{ frame: number, samples: Float32Array }>} the left channel since it was forgotten, from its first
 *     sound to its last; frames are the browser's
 */
export async function heardAtSpeaker(page) {
    const { first, base64 } = await page.evaluate(() => {
        const blocks = /** @type {{ frame: number, samples: Float32Array[] }[]} */ (
            /** @type {any} */ (globalThis).heardAtSpeaker
        ).filter(({ samples }) => samples.length > 0);
        const start = blocks[0].frame;
        const whole = new Float32Array(/** @type {any} */ (blocks.at(-1)).frame + 128 - start);
        blocks.forEach(({ frame, samples }) => whole.set(samples[0], frame - start));
        const from = whole.findIndex(x => x !== 0);
        const to = whole.findLastIndex(x => x !== 0) + 1;
        const bytes = new Uint8Array(whole.slice(from, to).buffer);
        let letters = '';

        for (let i = 0; i < bytes.length; i += 30000) letters += String.fromCharCode(...bytes.subarray(i, i + 30000));

        return { first: start + from, base64: btoa(letters) };
    });
    const bytes = new Uint8Array(Buffer.from(base64, 'base64'));
    return { frame: first, samples: new Float32Array(bytes.buffer) };
}

/**
 * Looks for a sound in another one.
 *
 * @param {Float32Array} part
 * @param {Float32Array} whole
 * @param {number} tolerance
 * @returns {number} where it begins, or -1
 */
export function placeOf(part, whole, tolerance) {
    for (let at = 0; at + part.length <= whole.length; ++at) {
        let i = 0;

        while (i < part.length && Math.abs(part[i] - whole[at + i]) <= tolerance) ++i;

        if (i === part.length) return at;
    }

    return -1;
}
