// SPDX-License-Identifier: AGPL-3.0-only

import { Fault } from '../common/fault.js';

const longestSeconds = 4;

/**
 * Lets an audio context run. Without a sound card some browsers never do.
 *
 * @param {AudioContext} context
 * @throws {Fault} noLoudspeaker
 */
export async function wake(context) {
    const tooLong = new Promise((_, reject) => {
        setTimeout(() => reject(new Fault('noLoudspeaker')), 1000 * longestSeconds);
    });
    await Promise.race([context.resume(), tooLong]);
}
