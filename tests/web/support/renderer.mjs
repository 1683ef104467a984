// SPDX-License-Identifier: AGPL-3.0-only
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';

import { renderer } from './paths.mjs';

/**
 * Takes a file through the plug-in, as larkspire-render does.
 *
 * @param {string} input
 * @param {string} output
 * @param {string[]} options
 * @returns {Buffer} the result's bytes
 */
export function render(input, output, ...options) {
    execFileSync(renderer, [...options, input, '-o', output], { stdio: ['ignore', 'ignore', 'pipe'] });
    return readFileSync(output);
}

/**
 * @typedef {{ integrated_lufs: number, true_peak_dbtp: number, quietest_tenth_dbfs: number }} Measured
 */

/**
 * @param {string} input
 * @param {string} output
 * @param {string} mode
 * @returns {{ before: Measured, after: Measured }} the renderer's figures
 */
export function measure(input, output, mode) {
    const report = execFileSync(renderer, ['--json', '--mode', mode, input, '-o', output], { encoding: 'utf8' });
    return JSON.parse(report).results[0];
}
