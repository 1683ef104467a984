// SPDX-License-Identifier: AGPL-3.0-only
// Recording from a microphone that plays a file.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import test, { after } from 'node:test';
import { setTimeout as sleep } from 'node:timers/promises';

import {
    addressOf,
    chooseMode,
    kinds,
    open,
    places,
    save,
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

for (const kind of kinds)
    for (const place of places)
        inBrowser(kind, { voice: voiceFile, isHeard: true }, stage => {
            test(`from ${place}, what is spoken is recorded as it is`, async () => {
                const { page, errors } = await open(stage.browser, addressOf(place, stage.server));
                await page.click('#record');
                await waitForStatus(page, /^Speak now/);
                assert.equal(await page.$eval('#record', button => button.textContent), 'Stop and listen');
                assert.ok(await page.$eval('#listening', part => /** @type {HTMLFieldSetElement} */ (part).disabled));
                await sleep(3500);
                assert.match(await page.$eval('#take-time', line => line.textContent ?? ''), /^[1-9] of 60 s$/);
                assert.ok(await page.$eval('#file', input => /** @type {HTMLInputElement} */ (input).disabled));
                await page.click('#record');
                await waitForStatus(page, /^Your voice: [2-9] s, 4[48]\.[01] kHz, mono\./);
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
        });
