// SPDX-License-Identifier: AGPL-3.0-only
// Puts the parts together.

import { amplitudeDecibels } from '../common/decibels.js';
import { Fault } from '../common/fault.js';
import { longestTakeSeconds } from '../common/limits.js';
import { modeNames } from '../common/modes.js';
import { advice } from './advice.js';
import { decode } from './decode.js';
import { download } from './download.js';
import { element, partOfThisFile } from './elements.js';
import { Engine } from './engine.js';
import { gainsFor } from './equal-loudness.js';
import { showFigures } from './figures.js';
import { Microphone } from './microphone.js';
import { Panel } from './panel.js';
import { Player } from './player.js';
import { onPress } from './press.js';
import { Status } from './status.js';
import { Waveform } from './waveform.js';
import { language, words, writeFixedWords, written, writtenTime } from './words.js';

/**
 * @typedef {import('./engine.js').Opened} Opened
 * @typedef {import('./engine.js').Heard} Heard
 */

/** @type {import('./advice.js').LevelAdvice[]} */
const levelAdvice = JSON.parse(partOfThisFile('level-advice'));

const stillMotion = matchMedia('(prefers-reduced-motion: reduce)');
const stillFramesPerSecond = 4;
const lowestLevel = -60; // dBFS, as far down as the meter of the microphone goes

class App {
    #recordButton = element('record', HTMLButtonElement);
    #file = element('file', HTMLInputElement);
    #playButton = element('play', HTMLButtonElement);
    #saveButton = element('save', HTMLButtonElement);
    #position = element('position', HTMLInputElement);
    #originalChoice = element('choose-original', HTMLInputElement);
    #listening = element('listening', HTMLFieldSetElement);
    #status = new Status();
    #waveform = new Waveform(element('waveform', HTMLCanvasElement));
    #panel = new Panel(mode => this.#listenTo(mode));
    #engine;
    #player;
    /** @type {Microphone | undefined} */
    #microphone;
    /** @type {(Opened & { name: string }) | undefined} */
    #recording;
    /** @type {Heard[]} by mode */
    #heard = [];
    #heardMode = -1;
    #isToPlay = false;
    #lastShown = 0;
    #turn = Promise.resolve();

    constructor() {
        const wasm = Uint8Array.from(atob(partOfThisFile('chain')), letter => letter.charCodeAt(0));
        this.#engine = new Engine(partOfThisFile('worker-script'), wasm);
        this.#player = new Player(
            (mode, piece) => this.#engine.piece(mode, piece),
            error => this.#ended(error),
        );
        this.#recordButton.textContent = words.record;
        this.#showPlaying();
        showFigures(this.#panel.mode);

        onPress(this.#recordButton, () =>
            this.#microphone ? this.#endTake(this.#microphone) : this.#beginTake(),
        );
        this.#file.addEventListener('change', () => this.#openChosen());
        this.#playButton.addEventListener('click', () => this.#playOrPause());
        onPress(this.#saveButton, () => this.#save());
        this.#position.addEventListener('input', () => this.#seek(Number(this.#position.value)));
        this.#listening.addEventListener('change', () => this.#switchSound());
        this.#takeDrops();
        this.#engine.started.then(
            () => this.#status.say(words.fixed.start),
            error => this.#status.sayFault(error),
        );
    }

    #takeDrops() {
        const { body } = document;
        const isFile = (/** @type {DragEvent} */ event) => event.dataTransfer?.types.includes('Files') ?? false;

        body.addEventListener('dragover', event => {
            if (isFile(event)) {
                event.preventDefault();
                body.classList.add('dropping');
            }
        });
        body.addEventListener('dragleave', event => body.classList.toggle('dropping', event.relatedTarget !== null));
        body.addEventListener('drop', event => {
            event.preventDefault();
            body.classList.remove('dropping');
            const file = event.dataTransfer?.files[0];

            if (file && !this.#microphone) this.#inTurn(() => this.#openFile(file));
        });
    }

    #openChosen() {
        const file = this.#file.files?.[0];
        this.#file.value = ''; // so that the same file can be chosen once more

        if (file) this.#inTurn(() => this.#openFile(file));
    }

    /**
     * Opens one recording after the other, so that page and worker agree on which is the last.
     *
     * @param {() => Promise<void>} open
     */
    #inTurn(open) {
        this.#turn = this.#turn.then(open);
    }

    /** @param {File} file */
    async #openFile(file) {
        const { name } = file;
        this.#status.say(words.reading(name));

        try {
            const opened = await this.#engine.openFile(file);

            if (opened) {
                this.#opened(name, opened, opened.isCut ? words.cut : '');
            } else {
                const { samples, rate } = await decode(file);
                this.#opened(name, await this.#engine.openSamples(samples, rate), words.decoded);
            }
        } catch (error) {
            this.#status.sayFault(error, name);
        }
    }

    async #beginTake() {
        try {
            this.#microphone = await Microphone.open(
                partOfThisFile('capture-script'),
                (seconds, peak) => this.#hearTake(seconds, peak),
                () => this.#microphone && this.#endTake(this.#microphone, words.microphoneGone),
            );
            this.#player.pause(); // only now: while the browser asked, something may have begun to play
            this.#showPlaying();
            this.#recordButton.textContent = words.stopRecording;
            this.#status.say(words.recording);
        } catch (error) {
            this.#status.sayFault(error);
        }

        this.#showTake();
    }

    /** @param {number} seconds @param {number} peak */
    #hearTake(seconds, peak) {
        if (!this.#microphone) return; // the last pieces come when it is closed already

        element('take-time', HTMLElement).textContent = words.recorded(String(Math.floor(seconds)), String(longestTakeSeconds));
        element('take-level', HTMLMeterElement).value = amplitudeDecibels(peak) ?? lowestLevel;

        if (seconds >= longestTakeSeconds) this.#endTake(this.#microphone);
    }

    /** @param {Microphone} microphone @param {string} [remark] */
    #endTake(microphone, remark = '') {
        this.#microphone = undefined;
        this.#recordButton.textContent = words.record;
        this.#showTake();
        this.#inTurn(() => this.#openTake(microphone, remark));
    }

    /** @param {Microphone} microphone @param {string} remark */
    async #openTake(microphone, remark) {
        try {
            const { samples, rate } = await microphone.close();
            this.#opened(words.ownVoice, await this.#engine.openSamples([samples], rate), remark, true);
        } catch (error) {
            this.#status.sayFault(error, words.ownVoice);
        }
    }

    #showTake() {
        const isTaking = this.#microphone !== undefined;
        element('take', HTMLElement).hidden = !isTaking;
        this.#file.disabled = isTaking;
        this.#listening.disabled = isTaking || this.#heardMode < 0;
    }

    /**
     * @param {string} name
     * @param {Opened} opened
     * @param {string} remark
     * @param {boolean} [isToPlay] as soon as it can
     */
    #opened(name, opened, remark, isToPlay = false) {
        const { rate, channels, frames } = opened;
        const description = words.opened(name, writtenTime(frames / rate), written(rate / 1000, 1), channels > 1);
        this.#recording = { ...opened, name };
        this.#heard = [];
        this.#heardMode = -1;
        this.#isToPlay = isToPlay;
        this.#player.take(opened);
        this.#listening.disabled = true;
        this.#position.max = String(frames / rate);
        this.#showPlaying();
        this.#status.say(`${description} ${remark}`);
        this.#listenTo(this.#panel.mode);
    }

    /** @param {number} mode */
    async #listenTo(mode) {
        const recording = this.#recording;

        if (!recording) {
            showFigures(mode);
            return;
        }

        try {
            this.#status.begin();
            const heard =
                this.#heard[mode] ??
                (await this.#engine.hear(mode, done => mode === this.#panel.mode && this.#status.progress(done)));

            if (!heard || recording !== this.#recording) return;

            this.#heard[mode] = heard;

            if (mode === this.#panel.mode) this.#show(mode);
        } catch (error) {
            this.#status.sayFault(error, recording.name);
        }
    }

    /** @param {number} mode that was heard */
    #show(mode) {
        this.#heardMode = mode;
        this.#player.setMode(mode, this.#gains());
        this.#showTake();
        this.#drawWaveforms();
        showFigures(mode, this.#heard[mode]);
        element('advice', HTMLElement).textContent = advice(
            levelAdvice,
            mode,
            this.#heard[mode].original,
            language,
            level => written(level, level % 1 ? 1 : 0),
        );

        if (this.#isToPlay && !this.#microphone) {
            this.#isToPlay = false;
            this.#playButton.focus();
            this.#playOrPause();
        }
    }

    #gains() {
        return gainsFor(this.#heard[this.#heardMode], this.#originalChoice.checked);
    }

    #switchSound() {
        this.#player.setGains(this.#gains());
        this.#drawWaveforms();
    }

    #drawWaveforms() {
        const { original, result } = this.#heard[this.#heardMode];
        const isOriginal = this.#originalChoice.checked;
        const style = getComputedStyle(document.documentElement);
        this.#waveform.show([
            { peaks: original.outline, colour: style.getPropertyValue('--original'), isHeard: isOriginal },
            { peaks: result.outline, colour: style.getPropertyValue('--mode'), isHeard: !isOriginal },
        ]);
        element('lane-original', HTMLElement).textContent = words.fixed.original;
        element('lane-mode', HTMLElement).textContent = modeNames[this.#heardMode];
    }

    #playOrPause() {
        if (this.#player.isPlaying) this.#player.pause();
        else this.#player.play().catch(error => this.#stopFor(error));

        this.#showPlaying();
    }

    /** @param {number} seconds */
    async #seek(seconds) {
        const { rate, frames } = /** @type {Opened} */ (this.#recording);
        const frame = Math.min(frames - 1, Math.round(seconds * rate));
        await this.#player.seek(frame).catch(error => this.#stopFor(error));
        this.#showPosition();
    }

    /** @param {unknown} error that keeps it from playing */
    #stopFor(error) {
        this.#player.pause();
        this.#ended(error);
    }

    /** @param {unknown} [error] */
    #ended(error) {
        if (error) this.#status.sayFault(error, this.#recording?.name);

        this.#showPlaying();
    }

    #showPlaying() {
        this.#playButton.textContent = this.#player.isPlaying ? words.pause : words.play;
        this.#showPosition();

        if (this.#player.isPlaying) requestAnimationFrame(now => this.#follow(now));
    }

    /** @param {number} now in ms */
    #follow(now) {
        if (!this.#player.isPlaying) return;

        if (!stillMotion.matches || now - this.#lastShown > 1000 / stillFramesPerSecond) {
            this.#lastShown = now;
            this.#showPosition();
        }

        requestAnimationFrame(next => this.#follow(next));
    }

    #showPosition() {
        const { rate, frames } = this.#recording ?? { rate: 1, frames: 1 };
        const seconds = this.#player.frame / rate;
        const text = words.position(writtenTime(seconds), writtenTime(frames / rate));
        this.#position.value = String(seconds);
        this.#position.setAttribute('aria-valuetext', text);
        element('time', HTMLElement).textContent = this.#recording ? text : '';
        this.#waveform.moveTo(this.#player.frame / frames);
    }

    async #save() {
        const { name } = /** @type {{ name: string }} */ (this.#recording);
        const mode = this.#panel.mode;
        const fileName = `${name.replace(/\.[^.]*$/, '')}-${modeNames[mode]}.wav`;

        try {
            this.#status.begin();
            this.#status.say(words.saving);
            download(await this.#engine.save(mode, done => this.#status.progress(done)), fileName);
            this.#status.say(words.saved(fileName));
        } catch (error) {
            this.#status.sayFault(error, name);
        }
    }
}

writeFixedWords(document);

if (globalThis.WebAssembly) new App();
else new Status().sayFault(new Fault('oldBrowser'));
