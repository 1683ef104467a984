// SPDX-License-Identifier: AGPL-3.0-only

/**
 * Why something could not be done, as people are told it; the sentence of each is among the texts.
 *
 * @typedef {'oldBrowser' | 'notSound' | 'empty' | 'tooManyChannels' | 'tooLong' | 'tooLongToDecode' | 'strangeRate'
 *     | 'noMicrophone' | 'microphoneRefused' | 'microphoneBusy' | 'microphoneNeedsSafePage' | 'nothingRecorded'
 *     | 'notPlayable' | 'noLoudspeaker' | 'fileGone' | 'noSpace' | 'unexpected'} FaultKind
 */

/** What went wrong, with the numbers or names that its sentence mentions. */
export class Fault extends Error {
    /**
     * @param {FaultKind} kind
     * @param {Record<string, string | number>} [details]
     */
    constructor(kind, details = {}) {
        super(kind);
        this.kind = kind;
        this.details = details;
    }
}

/** @param {unknown} error @returns {Fault} anything that was thrown, as a fault */
export function asFault(error) {
    return error instanceof Fault ? error : new Fault('unexpected', { what: String(error) });
}
