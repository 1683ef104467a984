// SPDX-License-Identifier: AGPL-3.0-only

/**
 * One of the two sounds in the picture.
 *
 * @typedef {object} Lane
 * @property {Float32Array} peaks
 * @property {string} colour
 * @property {boolean} isHeard whether it is the one that plays
 */

const dimmed = 0.45;

/** The original above, the result below, and a line where it plays. */
export class Waveform {
    #canvas;
    /** @type {Lane[]} */
    #lanes = [];
    #position = 0;

    /** @param {HTMLCanvasElement} canvas */
    constructor(canvas) {
        this.#canvas = canvas;
        new ResizeObserver(() => this.#draw()).observe(canvas);
    }

    /** @param {Lane[]} lanes */
    show(lanes) {
        this.#lanes = lanes;
        this.#draw();
    }

    /** @param {number} position from 0 to 1 */
    moveTo(position) {
        this.#position = position;
        this.#draw();
    }

    #draw() {
        const canvas = this.#canvas;
        const scale = globalThis.devicePixelRatio || 1;
        const width = Math.round(canvas.clientWidth * scale);
        const height = Math.round(canvas.clientHeight * scale);
        const pen = /** @type {CanvasRenderingContext2D} */ (canvas.getContext('2d'));

        if (canvas.width !== width || canvas.height !== height) Object.assign(canvas, { width, height });

        pen.clearRect(0, 0, width, height);
        const laneHeight = height / 2;

        this.#lanes.forEach(({ peaks, colour, isHeard }, i) => {
            const middle = (i + 0.5) * laneHeight;
            const column = width / peaks.length;
            pen.fillStyle = colour;
            pen.globalAlpha = isHeard ? 1 : dimmed;

            for (let c = 0; c < peaks.length; ++c) {
                const reach = Math.max(scale / 2, Math.min(1, peaks[c]) * (laneHeight / 2 - 2 * scale));
                pen.fillRect(c * column, middle - reach, Math.max(column, 1), 2 * reach);
            }
        });

        pen.globalAlpha = 1;

        if (this.#lanes.length > 0) {
            pen.fillStyle = '#fff';
            pen.fillRect(Math.round(this.#position * (width - 2 * scale)), 0, Math.ceil(2 * scale), height);
        }
    }
}
