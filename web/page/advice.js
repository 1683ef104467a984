// SPDX-License-Identifier: AGPL-3.0-only
// What a mode wants of the level ahead of it, said about one recording.

/**
 * At what level a mode wants a recording, in dBFS: the voice by its peak, the room by its RMS. tools/meter/LevelAdvice.h
 * has these numbers for all programs, and the page carries them as a part.
 *
 * @typedef {{ mode: string, lowestPeak: number, highestPeak: number, highestRoom: number }} LevelAdvice
 */

/** @typedef {(decibels: number) => string} Written */

/**
 * The sentences of a language. Levels come written, in dBFS.
 *
 * @typedef {object} AdviceTexts
 * @property {string} silent
 * @property {(peak: string) => string} peak
 * @property {string} bypass
 * @property {(mode: string, lowest: string, highest: string, difference: string) => string} tooLoud
 * @property {(mode: string, lowest: string, highest: string, difference: string) => string} tooSoft
 * @property {(mode: string, lowest: string, highest: string) => string} good
 * @property {(room: string) => string} room
 * @property {(room: string) => string} roomThen once the gain is as it was asked for
 * @property {string} roomQuiet
 * @property {(mode: string, highest: string) => string} roomTooLoud
 */

/** @type {Record<import('./words.js').Language, AdviceTexts>} */
const texts = {
    en: {
        silent: 'There is nothing to be heard in this recording.',
        peak: peak => `This voice peaks at ${peak} dBFS.`,
        bypass: 'Bypass leaves it as it is.',
        tooLoud: (mode, lowest, highest, difference) =>
            `For ${mode}, turn it down by ${difference} dB ahead of Larkspire, so that it peaks between ${lowest} and ` +
            `${highest}: the hotter it goes in, the nearer the room comes.`,
        tooSoft: (mode, lowest, highest, difference) =>
            `For ${mode}, turn it up by ${difference} dB ahead of Larkspire, so that it peaks between ${lowest} and ` +
            `${highest}: softer, it does not come out as loud.`,
        good: (mode, lowest, highest) => `For ${mode} that is a good level: between ${lowest} and ${highest} is best.`,
        room: room => `The room lies at ${room} dBFS`,
        roomThen: room => `, and then at ${room}`,
        roomQuiet: ', which is low enough.',
        roomTooLoud: (mode, highest) =>
            `. For ${mode} it should lie below ${highest}, or it is not held down between the words.`,
    },
    de: {
        silent: 'In dieser Aufnahme ist nichts zu hören.',
        peak: peak => `Diese Stimme hat Spitzen von ${peak} dBFS.`,
        bypass: 'Bypass lässt sie, wie sie ist.',
        tooLoud: (mode, lowest, highest, difference) =>
            `Stellen Sie sie für ${mode} vor Larkspire um ${difference} dB leiser, auf Spitzen zwischen ${lowest} und ` +
            `${highest}: Je lauter sie hineingeht, desto näher kommt das Raumgeräusch.`,
        tooSoft: (mode, lowest, highest, difference) =>
            `Stellen Sie sie für ${mode} vor Larkspire um ${difference} dB lauter, auf Spitzen zwischen ${lowest} und ` +
            `${highest}: Geht sie leiser hinein, kommt sie auch leiser heraus.`,
        good: (mode, lowest, highest) =>
            `Für ${mode} ist das ein guter Pegel: Am besten liegt sie zwischen ${lowest} und ${highest}.`,
        room: room => `Das Raumgeräusch liegt bei ${room} dBFS`,
        roomThen: room => `, dann bei ${room}`,
        roomQuiet: ', das ist leise genug.',
        roomTooLoud: (mode, highest) =>
            `. Für ${mode} sollte es unter ${highest} liegen, sonst wird es zwischen den Wörtern nicht leiser.`,
    },
};

/** @param {number} level @returns {number} */
function toTenth(level) {
    return Math.round(10 * level) / 10;
}

/**
 * @param {LevelAdvice} wanted
 * @param {number} peak in dBFS
 * @returns {number} the gain that brings a voice to where it is wanted, in whole dB
 */
function wantedGain({ lowestPeak, highestPeak }, peak) {
    if (peak > highestPeak) return -Math.ceil(toTenth(peak - highestPeak));

    return peak < lowestPeak ? Math.ceil(toTenth(lowestPeak - peak)) : 0;
}

/**
 * @param {LevelAdvice[]} levels a row a mode, without bypass
 * @param {number} mode
 * @param {import('../worker/meter.js').Figures} original
 * @param {import('./words.js').Language} language
 * @param {Written} write a level as people of that language read it, to a tenth
 * @returns {string} a sentence or two about the level of this recording
 */
export function advice(levels, mode, original, language, write) {
    const say = texts[language];

    if (original.peak === null) return say.silent;

    const peak = toTenth(original.peak); // what is written and what is said about it agree
    const wanted = levels[mode - 1]; // none for bypass

    if (!wanted) return `${say.peak(write(peak))} ${say.bypass}`;

    const gain = wantedGain(wanted, peak);
    const range = /** @type {const} */ ([wanted.mode, write(wanted.lowestPeak), write(wanted.highestPeak)]);
    const aboutVoice =
        gain < 0
            ? say.tooLoud(...range, write(-gain))
            : gain > 0
              ? say.tooSoft(...range, write(gain))
              : say.good(...range);
    const sentences = `${say.peak(write(peak))} ${aboutVoice}`;

    if (original.quietestTenth === null) return sentences;

    const room = toTenth(original.quietestTenth);
    const aboutRoom =
        room + gain > wanted.highestRoom ? say.roomTooLoud(wanted.mode, write(wanted.highestRoom)) : say.roomQuiet;
    return `${sentences} ${say.room(write(room))}${gain ? say.roomThen(write(toTenth(room + gain))) : ''}${aboutRoom}`;
}
