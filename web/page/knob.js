// SPDX-License-Identifier: AGPL-3.0-only
// The knob of the plug-in's window: the same picture, the same ways to turn it.

import { defaultMode, lastMode, modeNames } from '../common/modes.js';

const startDegrees = -144;
const degreesInAll = 288;
const pixelsInAll = 250; // of a drag from end to end
const finePixelsInAll = 2500; // with Alt held at its start
const wheelPixels = 60; // what a wheel is turned for one position; a touchpad sends many small turns

/** @param {number} mode @returns {string} an SVG rotation */
function rotation(mode) {
    return `rotate(${startDegrees + (degreesInAll * mode) / lastMode})`;
}

/** The ticks of the scale stand beside their axis, as in the window. @returns {string} SVG */
function ticks() {
    return modeNames
        .map((_, mode) => `<rect x="-2.8" y="-96" width="2.8" height="10" transform="${rotation(mode)}"/>`)
        .join('');
}

// In a circle of radius 100; 4 is the unit of strokes and shadows.
const picture = `
    <svg viewBox="-112 -112 224 224" aria-hidden="true">
        <defs>
            <radialGradient id="knob-face" gradientUnits="userSpaceOnUse" cx="0" cy="-60" r="160">
                <stop offset="0" stop-color="#a0a0a0"/><stop offset="1" stop-color="#707070"/>
            </radialGradient>
            <filter id="knob-blur"><feGaussianBlur stdDeviation="2"/></filter>
        </defs>
        <circle class="knob-well" r="102" cy="-2.6" filter="url(#knob-blur)"/>
        <g class="knob-ticks">${ticks()}</g>
        <circle class="knob-ring" r="102"/>
        <circle r="80" cy="4" filter="url(#knob-blur)"/>
        <circle r="80" cy="-2.2" fill="#fff"/>
        <circle r="80" cy="2.2"/>
        <circle r="80" fill="url(#knob-face)"/>
        <g class="knob-pointer">
            <rect x="-6" y="-70" width="12" height="40" filter="url(#knob-blur)"/>
            <rect x="-6" y="-72" width="12" height="40" fill="#f0f0f0"/>
        </g>
    </svg>`;

/** A knob in an element that holds a range input, which keyboards and screen readers turn. */
export class Knob {
    #input;
    #changed;
    #pointer;
    #mode = -1;
    #wheel = 0;

    /** @param {HTMLElement} element @param {(mode: number) => void} changed called when somebody has turned it */
    constructor(element, changed) {
        this.#input = /** @type {HTMLInputElement} */ (element.querySelector('input'));
        this.#changed = changed;
        element.insertAdjacentHTML('afterbegin', picture);
        this.#pointer = /** @type {SVGGElement} */ (element.querySelector('.knob-pointer'));
        Object.assign(this.#input, { min: '0', max: String(lastMode), step: '1' });
        this.#input.addEventListener('input', () => this.#turn(Number(this.#input.value)));
        element.addEventListener('pointerdown', event => this.#press(element, event));
        element.addEventListener('dblclick', () => this.#turn(defaultMode));
        element.addEventListener('wheel', event => this.#roll(event), { passive: false });
        this.mode = defaultMode;
    }

    get mode() {
        return this.#mode;
    }

    /** Turns it without a word to the listener. */
    set mode(mode) {
        this.#mode = mode;
        this.#input.value = String(mode);
        this.#input.setAttribute('aria-valuetext', modeNames[mode]);
        this.#pointer.setAttribute('transform', rotation(mode));
    }

    /** @param {number} mode */
    #turn(mode) {
        const wanted = Math.min(lastMode, Math.max(0, mode));

        if (wanted === this.#mode) return;

        this.mode = wanted;
        this.#changed(wanted);
    }

    /** @param {HTMLElement} element @param {PointerEvent} event */
    #press(element, event) {
        event.preventDefault();
        this.#input.focus({ preventScroll: true });

        if (event.ctrlKey) return this.#turn(defaultMode);

        const start = { y: event.clientY, mode: this.#mode };
        const pixels = event.altKey ? finePixelsInAll : pixelsInAll;
        const move = (/** @type {PointerEvent} */ { clientY }) =>
            this.#turn(Math.round(start.mode + ((start.y - clientY) * lastMode) / pixels));
        const end = () => element.removeEventListener('pointermove', move);

        element.setPointerCapture(event.pointerId);
        element.addEventListener('pointermove', move);
        element.addEventListener('lostpointercapture', end, { once: true });
        return undefined;
    }

    /** @param {WheelEvent} event */
    #roll(event) {
        event.preventDefault();
        const isByPixels = event.deltaMode === WheelEvent.DOM_DELTA_PIXEL;
        const turned = isByPixels ? event.deltaY : Math.sign(event.deltaY) * wheelPixels;
        this.#wheel = Math.sign(turned) === Math.sign(this.#wheel) ? this.#wheel + turned : turned;

        if (Math.abs(this.#wheel) >= wheelPixels) {
            this.#turn(this.#mode - Math.sign(this.#wheel));
            this.#wheel = 0;
        }
    }
}
