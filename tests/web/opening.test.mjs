// SPDX-License-Identifier: AGPL-3.0-only
// The ways in which a recording comes onto the page.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';
import { setTimeout as sleep } from 'node:timers/promises';

import {
    addressOf,
    choose,
    chooseMode,
    kinds,
    open,
    openRecording,
    statusOf,
    untilHeard,
    waitForStatus,
    waitUntil,
} from './support/browsers.mjs';
import { speechLike, wavFile } from './support/sounds.mjs';
import { inBrowser } from './support/suite.mjs';

const rate = 48000;

/** @param {import('puppeteer-core').Page} page @param {string} id */
function textOf(page, id) {
    return page.$eval(`#${id}`, part => part.textContent ?? '');
}

for (const kind of kinds)
    inBrowser(kind, { isHeard: true }, stage => {
        /** @param {string} name @param {(page: import('puppeteer-core').Page) => Promise<void>} body */
        const onPage = (name, body) =>
            test(name, async () => {
                const { page, errors } = await open(stage.browser, addressOf('disk', stage.server));
                await body(page);
                assert.deepEqual(errors, []);
                await page.close();
            });

        /** @param {string} name @param {number} seconds @param {number} [peak] */
        const speechFile = (name, seconds, peak) => {
            const file = join(stage.folder, name);
            writeFileSync(file, wavFile([speechLike(seconds * rate, rate, 1, peak)], { rate, encoding: 'pcm16' }));
            return file;
        };

        onPage('a recording can be dropped anywhere', async page => {
            const bytes = wavFile([speechLike(rate, rate, 1)], { rate, encoding: 'pcm16' }).toString('base64');
            await page.evaluate(base64 => {
                const data = new DataTransfer();
                data.items.add(
                    new File([Uint8Array.from(atob(base64), letter => letter.charCodeAt(0))], 'dropped.wav'),
                );
                const over = new DragEvent('dragover', { dataTransfer: data, bubbles: true, cancelable: true });
                document.querySelector('footer')?.dispatchEvent(over);
                Object.assign(globalThis, {
                    isWelcome: over.defaultPrevented && document.body.classList.contains('dropping'),
                });
                document
                    .querySelector('footer')
                    ?.dispatchEvent(new DragEvent('drop', { dataTransfer: data, bubbles: true, cancelable: true }));
            }, bytes);
            await waitForStatus(page, /^dropped\.wav: 1 s, 48\.0 kHz, mono\./);
            assert.ok(await page.evaluate(() => /** @type {any} */ (globalThis).isWelcome));
            await untilHeard(page);
        });

        onPage(
            'what is no WAV file the browser decodes, at its own rate if it tells it, and that is said',
            async page => {
                for (const [name, sampleRate, said] of /** @type {const} */ ([
                    ['tone.flac', '44100', '44\\.1'],
                    ['tone.ogg', '44100', '48\\.0'],
                ])) {
                    const file = join(stage.folder, name);
                    execFileSync('sox', [
                        '-D',
                        '-n',
                        '-r',
                        sampleRate,
                        '-c',
                        '2',
                        file,
                        'synth',
                        '2',
                        'sine',
                        '300',
                        'gain',
                        '-12',
                    ]);
                    await choose(page, file);
                    await waitForStatus(
                        page,
                        new RegExp(
                            `^${name.replace('.', '\\.')}: [12] s, ${said} kHz, stereo\\. The browser has decoded it to this rate\\.$`,
                        ),
                    );
                    await untilHeard(page);
                    // -15 dBFS of power in each of two channels.
                    assert.match(await textOf(page, 'loudness-before'), /^−1[12]\.\d$/);
                    assert.match(await textOf(page, 'true-peak-before'), /^−1[12]\.\d$/);
                }
            },
        );

        if (kind === 'chrome')
            onPage('a recording of another page, which states no length, is opened', async page => {
                await page.click('h1'); // browsers let no page make a sound that nobody has touched
                await page.evaluate(async () => {
                    const context = new AudioContext();
                    const tone = new OscillatorNode(context);
                    const end = new MediaStreamAudioDestinationNode(context);
                    tone.connect(end);
                    tone.start();
                    const recorder = new MediaRecorder(end.stream, { mimeType: 'audio/webm' });
                    /** @type {Blob[]} */
                    const parts = [];
                    recorder.ondataavailable = ({ data }) => {
                        parts.push(data);

                        if (new Blob(parts).size > 10000 && recorder.state === 'recording') recorder.stop();
                    };
                    recorder.onstop = () => {
                        const transfer = new DataTransfer();
                        transfer.items.add(new File(parts, 'memo.webm'));
                        document.body.dispatchEvent(new DragEvent('drop', { dataTransfer: transfer }));
                    };
                    recorder.start(100); // in parts, the first of which knows nothing of the length
                });
                await waitForStatus(page, /^memo\.webm: \d s, 48\.0 kHz/);
                await untilHeard(page);
            });

        onPage('what is dropped and is no file changes nothing', async page => {
            const said = await statusOf(page);
            const isTaken = await page.evaluate(() => {
                const data = new DataTransfer();
                data.setData('text/plain', 'some words');
                const over = new DragEvent('dragover', { dataTransfer: data, bubbles: true, cancelable: true });
                document.body.dispatchEvent(over);
                const drop = new DragEvent('drop', { dataTransfer: data, bubbles: true, cancelable: true });
                document.body.dispatchEvent(drop);
                return over.defaultPrevented || document.body.classList.contains('dropping');
            });
            assert.equal(isTaken, false);
            assert.equal(await statusOf(page), said);
        });

        onPage('no level is written as minus zero', async page => {
            const file = join(stage.folder, 'full.wav');
            const tone = Float32Array.from({ length: rate }, (_, i) => 0.997 * Math.sin(i / 20));
            writeFileSync(file, wavFile([tone], { rate, encoding: 'pcm24' }));
            await openRecording(page, file);
            assert.equal(await textOf(page, 'true-peak-before'), '0.0');
        });

        onPage('another recording takes the place of the first, also while that is heard through', async page => {
            await choose(page, speechFile('slow.wav', 300, 0.1));
            await waitForStatus(page, /^slow\.wav: /);
            await openRecording(page, speechFile('quick.wav', 2, 0.05));
            await sleep(500);
            assert.equal(await textOf(page, 'time'), '0 s of 2 s');
            assert.match(await textOf(page, 'advice'), /^This voice peaks at −2\d/);
            assert.ok(await page.$eval('#progress', bar => /** @type {HTMLElement} */ (bar).hidden));
        });

        onPage('another recording takes the place of the first, also while that plays', async page => {
            await openRecording(page, speechFile('first.wav', 5));
            await page.click('#play');
            await waitUntil(
                page,
                () => Number(/** @type {HTMLInputElement} */ (document.getElementById('position')).value) > 0.2,
            );
            await openRecording(page, speechFile('second.wav', 2, 0.05));
            assert.equal(await textOf(page, 'play'), 'Play');
            assert.equal(await textOf(page, 'time'), '0 s of 2 s');
            assert.match(await textOf(page, 'advice'), /^This voice peaks at −2\d/);
            await page.click('#play');
            await waitUntil(page, () => document.getElementById('time')?.textContent?.startsWith('1 s'));
            await waitUntil(page, () => document.getElementById('play')?.textContent === 'Play'); // at its end
            assert.equal(await textOf(page, 'time'), '0 s of 2 s');
        });

        onPage('the same file can be chosen once more', async page => {
            const file = speechFile('again.wav', 1);
            await openRecording(page, file);
            writeFileSync(file, wavFile([speechLike(3 * rate, rate, 1)], { rate, encoding: 'pcm16' }));
            await choose(page, file);
            await waitForStatus(page, /^again\.wav: 3 s/);
        });

        onPage('a knob that is turned on and on ends at the last mode, in sound, picture and figures', async page => {
            await openRecording(page, speechFile('long.wav', 120, 0.1));
            await page.click('#play');

            for (const mode of ['Gentle', 'Powerful', 'bypass', 'Gentle', 'Powerful']) await chooseMode(page, mode);

            await waitUntil(page, () => document.getElementById('lane-mode')?.textContent === 'Powerful');
            assert.equal(await textOf(page, 'figures-mode'), 'Powerful');
            assert.match(await statusOf(page), /^long\.wav/);
            assert.equal(await textOf(page, 'play'), 'Pause');
        });
    });
