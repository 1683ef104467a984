// SPDX-License-Identifier: AGPL-3.0-only

import { modeNames } from '../common/modes.js';
import { element } from './elements.js';
import { words, written } from './words.js';

/** @param {number | null} [value] */
function figure(value) {
    return value === null || value === undefined ? words.none : written(value, 1);
}

/**
 * Writes the table of what was and what has become of it.
 *
 * @param {number} mode
 * @param {import('./engine.js').Heard} [heard]
 */
export function showFigures(mode, heard) {
    element('figures-mode', HTMLElement).textContent = modeNames[mode];

    for (const [id, figures] of /** @type {const} */ ([
        ['before', heard?.original],
        ['after', heard?.result],
    ])) {
        element(`loudness-${id}`, HTMLElement).textContent = figure(figures?.loudness);
        element(`true-peak-${id}`, HTMLElement).textContent = figure(figures?.truePeak);
    }
}
