// SPDX-License-Identifier: AGPL-3.0-only

import { amplitude } from '../common/decibels.js';

/** @typedef {import('./stream.js').Gains} Gains */

/**
 * Brings the louder of the two down to the softer, so that nothing is amplified.
 *
 * @param {import('./engine.js').Heard} heard
 * @returns {Gains} linear; both 1 where one of them has no loudness
 */
function equalGains({ original, result }) {
    if (original.loudness === null || result.loudness === null) return { original: 1, result: 1 };

    const difference = amplitude(result.loudness - original.loudness);
    return { original: Math.min(1, difference), result: Math.min(1, 1 / difference) };
}

/** @param {import('./engine.js').Heard} heard @param {boolean} isOriginal which of them is heard @returns {Gains} */
export function gainsFor(heard, isOriginal) {
    const gains = equalGains(heard);
    return { original: isOriginal ? gains.original : 0, result: isOriginal ? 0 : gains.result };
}
