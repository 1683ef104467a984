// SPDX-License-Identifier: AGPL-3.0-only

import { secondsToSave } from '../common/limits.js';

/** Hands a file to the browser's downloads. @param {Blob} file @param {string} name */
export function download(file, name) {
    const url = URL.createObjectURL(file);
    const link = document.createElement('a');
    link.href = url;
    link.download = name;
    link.click();
    setTimeout(() => URL.revokeObjectURL(url), 1000 * secondsToSave);
}
