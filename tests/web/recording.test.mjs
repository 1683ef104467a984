// SPDX-License-Identifier: AGPL-3.0-only
// Recording from a microphone that plays a file.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import test, { after } from 'node:test';

import {
    addressOf,
    chooseMode,
    focusOf,
    kinds,
    open,
    openRecording,
    places,
    save,
    statusOf,
    untilHeard,
    waitForStatus,
    waitUntil,
} from './support/browsers.mjs';
import { realVoice } from './support/sounds.mjs';
import { inBrowser } from './support/suite.mjs';

const folder = mkdtempSync(join(tmpdir(), 'larkspire-voice-'));
const voiceFile = join(folder, 'voice.wav');
writeFileSync(join(folder, 'recorded.wav'), realVoice());
// At the rate of Chromium's stand-in for a microphone.
execFileSync('sox', ['-D', join(folder, 'recorded.wav'), voiceFile, 'rate', '44100']);
const voice = readFileSync(voiceFile);
after(() => rmSync(folder, { recursive: true, force: true }));

/** @param {Buffer} wav of 24 bits, mono @returns {Float64Array} */
function samplesOf(wav) {
    return Float64Array.from({ length: ((wav.length - 44) / 3) | 0 }, (_, i) => wav.readIntLE(44 + 3 * i, 3) / 2 ** 23);
}

/** @param {Float64Array} samples @param {number} from @param {number} to */
function levelOf(samples, from, to) {
    return Math.sqrt(samples.subarray(from, to).reduce((sum, x) => sum + x * x, 0) / (to - from));
}

/** Runs in the page ahead of its script: keeps what it gets from the microphone, and lets the browser go on asking. */
function keepMicrophones() {
    const state = Object.assign(/** @type {any} */ (globalThis), { microphones: [], isAsking: false });
    const getUserMedia = navigator.mediaDevices.getUserMedia.bind(navigator.mediaDevices);
    navigator.mediaDevices.getUserMedia = async wishes => {
        const stream = await getUserMedia(wishes);
        state.microphones.push(stream);
        const [track] = stream.getTracks();
        // Firefox hands on no such event but its own.
        track.addEventListener = (/** @type {string} */ kind, /** @type {any} */ action) => {
            if (kind === 'ended') state.unplug = action;
        };

        while (state.isAsking) await new Promise(resolve => setTimeout(resolve, 20));

        return stream;
    };
}

for (const kind of kinds)
    for (const place of places)
        inBrowser(kind, { voice: voiceFile, isHeard: true }, stage => {
            test(`from ${place}, what is spoken is recorded as it is`, async () => {
                const { page, errors } = await open(stage.browser, addressOf(place, stage.server));
                await page.focus('#record');
                await page.keyboard.press('Enter');
                await waitForStatus(page, /^Speak now/);
                assert.equal(await focusOf(page), 'record', 'the next key would not stop it');
                assert.equal(await page.$eval('#record', button => button.textContent), 'Stop and listen');
                assert.ok(await page.$eval('#listening', part => /** @type {HTMLFieldSetElement} */ (part).disabled));
                await waitUntil(
                    page,
                    () => /** @type {HTMLMeterElement} */ (document.getElementById('take-level')).value > -30,
                );
                await waitUntil(page, () =>
                    /^[3-9] of 60 s$/.test(document.getElementById('take-time')?.textContent ?? ''),
                );
                assert.ok(await page.$eval('#file', input => /** @type {HTMLInputElement} */ (input).disabled));
                await page.keyboard.press('Enter');
                await waitForStatus(page, /^Your voice: [3-9] s, 4[48]\.[01] kHz, mono\./);
                await untilHeard(page);
                assert.ok(await page.$eval('#take', line => /** @type {HTMLElement} */ (line).hidden));

                // "Stop and listen": it plays at once.
                await waitUntil(page, () => {
                    const play = document.getElementById('play');
                    return play?.textContent === 'Pause' && play === document.activeElement;
                });
                await waitUntil(
                    page,
                    () => Number(/** @type {HTMLInputElement} */ (document.getElementById('position')).value) > 0.2,
                );
                await chooseMode(page, 'bypass');
                const saved = readFileSync(await save(page, stage.folder, 'Your voice-bypass.wav'));
                const recorded = samplesOf(saved);
                assert.ok(recorded.length > 2 * saved.readUInt32LE(24), 'it is too short');

                if (kind === 'chrome') {
                    // The microphone's samples, neither levelled nor cleaned: the loudest stretch is found in the file.
                    const spoken = Float64Array.from(
                        { length: ((voice.length - 44) / 2) | 0 },
                        (_, i) => voice.readInt16LE(44 + 2 * i) / 2 ** 15,
                    );
                    assert.equal(saved.readUInt32LE(24), 44100);
                    const loudest = recorded.findIndex(x => Math.abs(x) > 0.1);
                    assert.ok(loudest > 0, 'nothing was spoken');
                    const part = recorded.subarray(loudest, loudest + 2000);
                    const isHere = (/** @type {number} */ at) =>
                        part.every((x, i) => Math.abs(x - spoken[at + i]) < 2e-4);
                    assert.ok(
                        spoken.some((_, at) => isHere(at)),
                        'it is not what was spoken',
                    );
                } else {
                    // Firefox's is a tone, which has one level from beginning to end.
                    const [early, late] = [
                        levelOf(recorded, 20000, 40000),
                        levelOf(recorded, recorded.length - 30000, recorded.length - 10000),
                    ];
                    assert.ok(early > 0.01 && Math.abs(early / late - 1) < 0.02, `${early} and ${late}`);
                }

                assert.deepEqual(errors, []);
                await page.close();
            });

            if (place === 'http')
                test('after a minute it ends by itself', async () => {
                    const { page } = await open(stage.browser, addressOf(place, stage.server), () => {
                        // Lets the test speak faster than a microphone does.
                        const Node = AudioWorkletNode;
                        globalThis.AudioWorkletNode = class extends Node {
                            /**
                             * @param {BaseAudioContext} context
                             * @param {string} name
                             * @param {AudioWorkletNodeOptions} [options]
                             */
                            constructor(context, name, options) {
                                super(context, name, options);
                                Object.assign(globalThis, { capturing: this });
                            }
                        };
                    });
                    await page.click('#record');
                    await waitForStatus(page, /^Speak now/);
                    await page.evaluate(() => {
                        const { capturing } = /** @type {any} */ (globalThis);
                        capturing.port.onmessage({
                            data: new Float32Array(58.5 * capturing.context.sampleRate).fill(0.01),
                        });
                    });
                    await waitForStatus(page, /^Your voice: 1:00 min/);
                    await untilHeard(page);
                    assert.equal(await page.$eval('#record', button => button.textContent), 'Record your voice');
                    assert.equal(
                        await page.$eval('#position', input => /** @type {HTMLInputElement} */ (input).max),
                        '60',
                    );
                    await page.close();
                });

            // Firefox takes a microphone at the rate of the sound card alone.
            if (place === 'http' && kind === 'chrome')
                test('it is recorded at the rate that the microphone states', async () => {
                    const { page } = await open(stage.browser, addressOf(place, stage.server), () => {
                        MediaStreamTrack.prototype.getSettings = () => ({ sampleRate: 32000 });
                    });
                    await page.click('#record');
                    await waitUntil(page, () => /^1/.test(document.getElementById('take-time')?.textContent ?? ''));
                    await page.click('#record');
                    await waitForStatus(page, /^Your voice: \d s, 32\.0 kHz, mono\./);
                    await page.close();
                });

            if (place === 'http') {
                test('a microphone that is unplugged ends the recording, and what there is of it is kept', async () => {
                    const { page, errors } = await open(stage.browser, addressOf(place, stage.server), keepMicrophones);
                    await page.click('#record');
                    await waitForStatus(page, /^Speak now/);
                    await page.evaluate(() => {
                        const data = new DataTransfer();
                        data.items.add(new File(['what is dropped now'], 'other.wav'));
                        document.body.dispatchEvent(new DragEvent('drop', { dataTransfer: data }));
                    });
                    await waitUntil(page, () => /^[2-9]/.test(document.getElementById('take-time')?.textContent ?? ''));
                    assert.match(await statusOf(page), /^Speak now/);
                    await page.evaluate(() => /** @type {any} */ (globalThis).unplug());
                    await waitForStatus(page, /^Your voice: [1-9] s, .* The microphone went away/);
                    await untilHeard(page);
                    assert.equal(await page.$eval('#record', button => button.textContent), 'Record your voice');
                    assert.deepEqual(errors, []);
                    await page.close();
                });

                test('while the browser asks, a second click asks no second time; then nothing plays', async () => {
                    const { page } = await open(stage.browser, addressOf(place, stage.server), keepMicrophones);
                    await openRecording(page, voiceFile);
                    await page.evaluate(() => {
                        /** @type {any} */ (globalThis).isAsking = true;
                    });
                    await page.click('#record');
                    await page.click('#record');
                    await page.click('#play');
                    await waitUntil(page, () => document.getElementById('play')?.textContent === 'Pause');
                    await page.evaluate(() => {
                        /** @type {any} */ (globalThis).isAsking = false;
                    });
                    await waitForStatus(page, /^Speak now/);
                    assert.equal(await page.$eval('#play', button => button.textContent), 'Play');
                    assert.equal(await page.evaluate(() => /** @type {any} */ (globalThis).microphones.length), 1);
                    await page.close();
                });

                test('a recording that is ready only while the next one is made stays silent', async () => {
                    const { page } = await open(stage.browser, addressOf(place, stage.server), () => {
                        // A slow machine.
                        const { postMessage } = Worker.prototype;
                        Worker.prototype.postMessage = function (/** @type {any} */ message, /** @type {any} */ transfer) {
                            setTimeout(
                                () => postMessage.call(this, message, transfer),
                                message.method === 'hear' ? 2000 : 0,
                            );
                        };
                    });
                    await page.click('#record');
                    await waitForStatus(page, /^Speak now/);
                    await waitUntil(page, () => /^[2-9]/.test(document.getElementById('take-time')?.textContent ?? ''));
                    await page.click('#record');
                    await waitForStatus(page, /^Your voice/);
                    await page.click('#record');
                    await waitForStatus(page, /^Speak now/);
                    await waitUntil(page, () => document.getElementById('lane-mode')?.textContent === 'Medium');
                    assert.equal(await page.$eval('#play', button => button.textContent), 'Play');
                    await page.close();
                });
            }
        });
