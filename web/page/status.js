// SPDX-License-Identifier: AGPL-3.0-only

import { asFault } from '../common/fault.js';
import { element } from './elements.js';
import { words } from './words.js';

const secondsUntilShown = 0.3; // what takes less needs no bar

/** The line that says what happens, which screen readers say too, and the bar below it. */
export class Status {
    #line = element('status', HTMLElement);
    #bar = element('progress', HTMLProgressElement);
    #begun = 0;

    /** @param {string} sentence */
    say(sentence) {
        this.#line.classList.remove('fault');
        this.#line.textContent = sentence;
    }

    /** @param {unknown} error @param {string} [name] of the recording that it is about */
    sayFault(error, name = '') {
        const { kind, details } = asFault(error);
        this.#bar.hidden = true;
        this.#line.classList.add('fault');
        this.#line.textContent = words.faults[kind]({ name, ...details });
    }

    /** Begins something that may take a while. */
    begin() {
        this.#begun = performance.now();
        this.#bar.hidden = true;
    }

    /** @param {number} done from 0 to 1 */
    progress(done) {
        this.#bar.value = done;
        this.#bar.hidden = done >= 1 || performance.now() - this.#begun < 1000 * secondsUntilShown;
    }
}
