// SPDX-License-Identifier: AGPL-3.0-only

import { modeNames } from '../common/modes.js';
import { element } from './elements.js';
import { Knob } from './knob.js';
import { words } from './words.js';

/** The knob with the four names: two ways to the same position. */
export class Panel {
    #knob;
    #buttons;
    #changed;

    /** @param {(mode: number) => void} changed called when somebody has chosen another mode */
    constructor(changed) {
        this.#changed = changed;
        this.#knob = new Knob(element('knob', HTMLElement), () => this.#show(true));
        this.#buttons = modeNames.map((name, mode) => {
            const button = document.createElement('button');
            button.type = 'button';
            button.textContent = name;
            button.addEventListener('click', () => this.#choose(mode));
            return button;
        });
        element('modes', HTMLElement).append(...this.#buttons);
        this.#show(false);
    }

    get mode() {
        return this.#knob.mode;
    }

    /** @param {number} mode */
    #choose(mode) {
        if (mode === this.mode) return;

        this.#knob.mode = mode;
        this.#show(true);
    }

    /** @param {boolean} isNews */
    #show(isNews) {
        this.#buttons.forEach((button, mode) => button.setAttribute('aria-pressed', String(mode === this.mode)));
        element('mode-purpose', HTMLElement).textContent = words.modes[this.mode];
        document.documentElement.dataset.mode = modeNames[this.mode];

        if (isNews) this.#changed(this.mode);
    }
}
