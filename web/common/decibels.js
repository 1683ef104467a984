// SPDX-License-Identifier: AGPL-3.0-only

/** @param {number} ratio of amplitudes @returns {number | null} dB; null for zero, which has no level */
export function amplitudeDecibels(ratio) {
    return ratio > 0 ? 20 * Math.log10(ratio) : null;
}

/** @param {number} ratio of powers @returns {number | null} */
export function powerDecibels(ratio) {
    return ratio > 0 ? 10 * Math.log10(ratio) : null;
}

/** @param {number} decibels @returns {number} the ratio of amplitudes */
export function amplitude(decibels) {
    return 10 ** (decibels / 20);
}
