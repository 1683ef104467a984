// SPDX-License-Identifier: AGPL-3.0-only
// What the README's first step says about level, about one recording. The README, docs/sound.md and this go together.

/** Where the voice should peak, in dBFS. */
const bestPeak = { lowest: -18, highest: -6 };

/** Below this the expander closes on the room, in dBFS; Gentle's does later. */
const highestRoom = -61;
const highestRoomOfGentle = -67;

/** @typedef {(decibels: number) => string} Written */

/**
 * The sentences of a language. Levels come written, in dBFS.
 *
 * @typedef {object} AdviceTexts
 * @property {string} silent
 * @property {(peak: string, lowest: string, highest: string, difference: string) => string} tooLoud
 * @property {(peak: string, lowest: string, highest: string, difference: string) => string} tooSoft
 * @property {(peak: string, lowest: string, highest: string) => string} good
 * @property {(room: string, highest: string, highestOfGentle: string) => string} roomTooLoud
 * @property {(room: string, highestOfGentle: string) => string} roomTooLoudForGentle
 * @property {(room: string) => string} roomQuiet
 */

/** @type {Record<import('./words.js').Language, AdviceTexts>} */
const texts = {
    en: {
        silent: 'There is nothing to be heard in this recording.',
        tooLoud: (peak, lowest, highest, difference) =>
            `This voice peaks at ${peak} dBFS. Turn it down by ${difference} dB ahead of ` +
            `Larkspire, so that it peaks between ${lowest} and ${highest}: a hotter voice does not come out louder, only duller.`,
        tooSoft: (peak, lowest, highest, difference) =>
            `This voice peaks at ${peak} dBFS. Turn it up by ${difference} dB ahead of ` +
            `Larkspire, so that it peaks between ${lowest} and ${highest}.`,
        good: (peak, lowest, highest) =>
            `This voice peaks at ${peak} dBFS. That is a good level: between ${lowest} and ${highest} is best.`,
        roomTooLoud: (room, highest, highestOfGentle) =>
            `The room lies at ${room} dBFS. It should lie below ${highest}, for Gentle below ` +
            `${highestOfGentle}, or the noise between the words is not lowered.`,
        roomTooLoudForGentle: (room, highestOfGentle) =>
            `The room lies at ${room} dBFS. For Gentle it should lie below ${highestOfGentle}.`,
        roomQuiet: room => `The room lies at ${room} dBFS, which is quiet enough.`,
    },
    de: {
        silent: 'In dieser Aufnahme ist nichts zu hören.',
        tooLoud: (peak, lowest, highest, difference) =>
            `Diese Stimme hat Spitzen von ${peak} dBFS. Vor Larkspire ${difference} dB leiser ` +
            `gestellt, läge sie zwischen ${lowest} und ${highest}: Eine heißere Stimme wird nicht lauter, nur dumpfer.`,
        tooSoft: (peak, lowest, highest, difference) =>
            `Diese Stimme hat Spitzen von ${peak} dBFS. Vor Larkspire ${difference} dB lauter ` +
            `gestellt, läge sie zwischen ${lowest} und ${highest}, wo es am besten ist.`,
        good: (peak, lowest, highest) =>
            `Diese Stimme hat Spitzen von ${peak} dBFS. Das ist ein guter Pegel: Am besten ist es zwischen ` +
            `${lowest} und ${highest}.`,
        roomTooLoud: (room, highest, highestOfGentle) =>
            `Der Raum liegt bei ${room} dBFS. Er sollte unter ${highest} liegen, für Gentle unter ` +
            `${highestOfGentle}, sonst wird das Rauschen zwischen den Wörtern nicht leiser.`,
        roomTooLoudForGentle: (room, highestOfGentle) =>
            `Der Raum liegt bei ${room} dBFS. Für Gentle sollte er unter ${highestOfGentle} liegen.`,
        roomQuiet: room => `Der Raum liegt bei ${room} dBFS, das ist leise genug.`,
    },
};

/** @param {number} level @returns {number} */
function toTenth(level) {
    return Math.round(10 * level) / 10;
}

/**
 * @param {import('../worker/meter.js').Figures} original
 * @param {import('./words.js').Language} language
 * @param {Written} write a level as people of that language read it, to a tenth
 * @returns {string} a sentence or two about the level of this recording
 */
export function advice(original, language, write) {
    const say = texts[language];

    if (original.peak === null) return say.silent;

    const peak = toTenth(original.peak); // what is written and what is said about it agree
    const quietestTenth = original.quietestTenth === null ? null : toTenth(original.quietestTenth);
    const { lowest, highest } = bestPeak;
    const range = /** @type {const} */ ([write(lowest), write(highest)]);
    const aboutVoice =
        peak > highest
            ? say.tooLoud(write(peak), ...range, write(Math.ceil(peak - highest)))
            : peak < lowest
              ? say.tooSoft(write(peak), ...range, write(Math.ceil(lowest - peak)))
              : say.good(write(peak), ...range);

    if (quietestTenth === null) return aboutVoice;

    const aboutRoom =
        quietestTenth > highestRoom
            ? say.roomTooLoud(write(quietestTenth), write(highestRoom), write(highestRoomOfGentle))
            : quietestTenth > highestRoomOfGentle
              ? say.roomTooLoudForGentle(write(quietestTenth), write(highestRoomOfGentle))
              : say.roomQuiet(write(quietestTenth));
    return `${aboutVoice} ${aboutRoom}`;
}
