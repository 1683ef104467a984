// SPDX-License-Identifier: AGPL-3.0-only
// What the page says, in English and in German; advice.js has what it says about level.

/** @typedef {import('../common/fault.js').FaultKind} FaultKind */
/** @typedef {'en' | 'de'} Language */

/**
 * @typedef {object} Words
 * @property {Record<string, string>} fixed what stands on the page all the time, by the element's data-text or
 *     data-label
 * @property {readonly string[]} modes what each position is for
 * @property {string} play
 * @property {string} pause
 * @property {string} record
 * @property {string} stopRecording
 * @property {string} recording
 * @property {(seconds: string, most: string) => string} recorded
 * @property {string} ownVoice the name of what was recorded here, which results are called after too
 * @property {(name: string) => string} reading
 * @property {(name: string, length: string, rate: string, isStereo: boolean) => string} opened
 * @property {string} cut
 * @property {string} microphoneGone
 * @property {string} decoded
 * @property {string} saving
 * @property {(name: string) => string} saved
 * @property {(at: string, length: string) => string} position
 * @property {string} none
 * @property {Record<FaultKind, (details: Record<string, string | number>) => string>} faults
 */

/** @type {Words} */
const english = {
    fixed: {
        title: 'Quendal Larkspire: hear it on your own voice',
        lead: 'Hear what one knob does to your own voice.',
        privacy: 'Nothing is installed, and nothing you record or open leaves this page.',
        chooseHeading: 'Your voice',
        choose: 'Open a recording',
        drop: 'Or drop one here.',
        kinds: 'WAV, FLAC, MP3 and M4A up to half an hour, WAV up to an hour and a half.',
        start: 'Record a few sentences, or open a recording.',
        knobHeading: 'The knob',
        amount: 'Amount',
        byName: 'Amount, by name',
        listenHeading: 'Listen',
        compare: 'What you hear',
        original: 'Original',
        result: 'With Larkspire',
        equal: 'Both play equally loud, so that you compare the sound and not the level.',
        position: 'Position',
        save: 'Save as WAV',
        figures: 'Before and after',
        loudness: 'Loudness, LUFS',
        truePeak: 'True peak, dBTP',
        working: 'Progress',
        plugin:
            'Larkspire is a plug-in for recording programs. This page runs its own code: what you hear and save is, bit for ' +
            'bit, what it gives there.',
        licence: 'Free software under the GNU AGPL, version 3: whoever gives you this page also gives you its source.',
        source: 'Source',
        licences: 'Licences of the parts that others wrote',
    },
    modes: [
        'Nothing is changed.',
        'For a good recording: makes it level, and comes back slowly after a loud word.',
        'For most recordings: evens out the level from phrase to phrase.',
        'For a distant or uneven voice: evens out the level from syllable to syllable, with more body.',
    ],
    play: 'Play',
    pause: 'Pause',
    record: 'Record your voice',
    stopRecording: 'Stop and listen',
    recording: 'Speak now, as you would in a recording.',
    recorded: (seconds, most) => `${seconds} of ${most} s`,
    ownVoice: 'Your voice',
    reading: name => `Reading ${name}…`,
    opened: (name, length, rate, isStereo) => `${name}: ${length}, ${rate} kHz, ${isStereo ? 'stereo' : 'mono'}.`,
    cut: 'The file was cut off; this is what there is of it.',
    microphoneGone: 'The microphone went away; this is what there was until then.',
    decoded: 'The browser has decoded it to this rate.',
    saving: 'Writing the file…',
    saved: name => `${name} is saved where your browser keeps downloads.`,
    position: (at, length) => `${at} of ${length}`,
    none: '–',
    faults: {
        oldBrowser: () =>
            'This browser is too old for this page: it has no WebAssembly. Any browser from 2024 on will do.',
        notSound: ({ name }) => `${name} is no recording that this browser can read.`,
        empty: ({ name }) => `${name} is empty: there is no sound in it.`,
        tooManyChannels: ({ name, channels }) => `${name} has ${channels} channels. Larkspire takes mono and stereo.`,
        tooLong: ({ name, minutes, most }) =>
            `${name} is ${minutes} minutes long. This page takes up to ${most} minutes.`,
        tooLongToDecode: ({ name, minutes, most, mostOfWav }) =>
            `${name} is ${minutes} minutes long. In this format this page takes up to ${most} minutes, as WAV ${mostOfWav}.`,
        strangeRate: ({ name, rate }) => `${name} has a sample rate of ${rate} Hz. This page takes 8 to 192 kHz.`,
        noMicrophone: () => 'No microphone was found. Plug one in, or open a recording instead.',
        microphoneRefused: () =>
            'The browser may not use the microphone. Allow it with the icon beside the address, or open a recording.',
        microphoneBusy: () => 'The microphone cannot be opened. Another program may be using it.',
        microphoneNeedsSafePage: () =>
            'Browsers give the microphone only to pages from disk or from https. Open a recording instead.',
        nothingRecorded: () => 'Nothing was recorded. Try once more, a little longer.',
        notPlayable: ({ rate }) => `This browser plays nothing at ${rate} Hz. Saving works all the same.`,
        noLoudspeaker: () =>
            'This browser finds no loudspeaker and no headphones, and without one it neither plays nor records. Saving works ' +
            'all the same.',
        fileGone: ({ name }) => `${name} can no longer be read. It may have been changed or moved; open it once more.`,
        noSpace: () => 'There is no disk space left for the file.',
        unexpected: ({ what }) => `That did not work: ${what}`,
    },
};

/** @type {Words} */
const german = {
    fixed: {
        title: 'Quendal Larkspire: an der eigenen Stimme hören',
        lead: 'Hören Sie, was ein Knopf aus Ihrer Stimme macht.',
        privacy: 'Nichts wird installiert, und nichts, was Sie aufnehmen oder öffnen, verlässt diese Seite.',
        chooseHeading: 'Ihre Stimme',
        choose: 'Aufnahme öffnen',
        drop: 'Oder hier ablegen.',
        kinds: 'WAV, FLAC, MP3 und M4A bis zu einer halben Stunde, WAV bis zu anderthalb Stunden.',
        start: 'Nehmen Sie ein paar Sätze auf, oder öffnen Sie eine Aufnahme.',
        knobHeading: 'Der Knopf',
        amount: 'Amount',
        byName: 'Amount, nach Namen',
        listenHeading: 'Hören',
        compare: 'Was Sie hören',
        original: 'Original',
        result: 'Mit Larkspire',
        equal: 'Beide werden gleich laut abgespielt, damit Sie den Klang vergleichen und nicht den Pegel.',
        position: 'Position',
        save: 'Als WAV speichern',
        figures: 'Vorher und nachher',
        loudness: 'Lautheit, LUFS',
        truePeak: 'True Peak, dBTP',
        working: 'Fortschritt',
        plugin:
            'Larkspire ist ein Plug-in für Aufnahmeprogramme. Auf dieser Seite läuft sein eigener Code: Was Sie hören und ' +
            'speichern, ist Bit für Bit, was es dort liefert.',
        licence:
            'Freie Software unter der GNU AGPL, Version 3: Wer Ihnen diese Seite gibt, gibt Ihnen auch ihren Quelltext.',
        source: 'Quelltext',
        licences: 'Lizenzen fremder Bestandteile',
    },
    modes: [
        'Nichts wird verändert.',
        'Für eine gute Aufnahme: gleicht den Pegel aus und kommt nach einem lauten Wort nur langsam zurück.',
        'Für die meisten Aufnahmen: gleicht den Pegel von Satz zu Satz aus.',
        'Für eine entfernte oder ungleichmäßige Stimme: gleicht den Pegel von Silbe zu Silbe aus, mit mehr Fülle.',
    ],
    play: 'Abspielen',
    pause: 'Pause',
    record: 'Stimme aufnehmen',
    stopRecording: 'Beenden und hören',
    recording: 'Sprechen Sie jetzt wie in einer Aufnahme.',
    recorded: (seconds, most) => `${seconds} von ${most} s`,
    ownVoice: 'Ihre Stimme',
    reading: name => `${name} wird gelesen…`,
    opened: (name, length, rate, isStereo) => `${name}: ${length}, ${rate} kHz, ${isStereo ? 'stereo' : 'mono'}.`,
    cut: 'Die Datei ist unvollständig; das ist, was von ihr da ist.',
    microphoneGone: 'Das Mikrofon ist nicht mehr da; bis dahin wurde aufgenommen.',
    decoded: 'Der Browser hat sie mit dieser Abtastrate dekodiert.',
    saving: 'Die Datei wird geschrieben…',
    saved: name => `${name} liegt dort, wo Ihr Browser Downloads ablegt.`,
    position: (at, length) => `${at} von ${length}`,
    none: '–',
    faults: {
        oldBrowser: () =>
            'Dieser Browser ist zu alt für diese Seite: Er hat kein WebAssembly. Jeder Browser ab 2024 genügt.',
        notSound: ({ name }) => `${name} ist keine Aufnahme, die dieser Browser lesen kann.`,
        empty: ({ name }) => `${name} ist leer: Sie enthält keinen Ton.`,
        tooManyChannels: ({ name, channels }) => `${name} hat ${channels} Kanäle. Larkspire verarbeitet Mono und Stereo.`,
        tooLong: ({ name, minutes, most }) =>
            `${name} ist ${minutes} Minuten lang. Diese Seite verarbeitet bis zu ${most} Minuten.`,
        tooLongToDecode: ({ name, minutes, most, mostOfWav }) =>
            `${name} ist ${minutes} Minuten lang. In diesem Format verarbeitet diese Seite bis zu ${most} Minuten, als WAV ${mostOfWav}.`,
        strangeRate: ({ name, rate }) => `${name} hat eine Abtastrate von ${rate} Hz. Diese Seite verarbeitet 8 bis 192 kHz.`,
        noMicrophone: () => 'Es wurde kein Mikrofon gefunden. Schließen Sie eines an, oder öffnen Sie eine Aufnahme.',
        microphoneRefused: () =>
            'Der Browser darf das Mikrofon nicht benutzen. Erlauben Sie es über das Symbol neben der Adresse, oder ' +
            'öffnen Sie eine Aufnahme.',
        microphoneBusy: () => 'Das Mikrofon lässt sich nicht öffnen. Vielleicht benutzt es ein anderes Programm.',
        microphoneNeedsSafePage: () =>
            'Browser geben das Mikrofon nur für Seiten frei, die von der Festplatte oder über https kommen. Öffnen Sie ' +
            'stattdessen eine Aufnahme.',
        nothingRecorded: () => 'Es wurde nichts aufgenommen. Versuchen Sie es noch einmal, etwas länger.',
        notPlayable: ({ rate }) => `Dieser Browser kann mit ${rate} Hz nichts abspielen. Speichern geht trotzdem.`,
        noLoudspeaker: () =>
            'Dieser Browser findet weder Lautsprecher noch Kopfhörer, und ohne spielt er nichts ab und nimmt nichts auf. ' +
            'Speichern geht trotzdem.',
        fileGone: ({ name }) =>
            `${name} lässt sich nicht mehr lesen. Vielleicht wurde die Datei geändert oder verschoben; öffnen Sie sie noch ` +
            'einmal.',
        noSpace: () => 'Für die Datei ist kein Speicherplatz mehr frei.',
        unexpected: ({ what }) => `Das ging nicht: ${what}`,
    },
};

/** @type {Language} the browser's, as far as there are words */
export const language = navigator.language.toLowerCase().startsWith('de') ? 'de' : 'en';

export const words = language === 'de' ? german : english;

/** @param {number} value @param {number} digits behind the point @returns {string} with a true minus */
export function written(value, digits) {
    return new Intl.NumberFormat(language, {
        signDisplay: 'negative', // none at what is rounded to zero
        minimumFractionDigits: digits,
        maximumFractionDigits: digits,
        useGrouping: false,
    })
        .format(value)
        .replace('-', '−');
}

/** @param {number} seconds @returns {string} such as 7 s or 61:05 min */
export function writtenTime(seconds) {
    const whole = Math.floor(seconds);
    return whole < 60 ? `${whole} s` : `${Math.floor(whole / 60)}:${String(whole % 60).padStart(2, '0')} min`;
}

/** Writes the fixed words into a page. @param {Document} page */
export function writeFixedWords(page) {
    page.documentElement.lang = language;

    for (const element of page.querySelectorAll('[data-text]'))
        element.textContent = words.fixed[element.getAttribute('data-text') ?? ''];

    for (const element of page.querySelectorAll('[data-label]'))
        element.setAttribute('aria-label', words.fixed[element.getAttribute('data-label') ?? '']);
}
