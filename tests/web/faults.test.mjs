// SPDX-License-Identifier: AGPL-3.0-only
// What goes wrong is said in a sentence, and the page works on.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync, truncateSync, writeFileSync } from 'node:fs';
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
    save,
    statusOf,
    untilHeard,
    waitForStatus,
    waitUntil,
} from './support/browsers.mjs';
import { render } from './support/renderer.mjs';
import { speechLike, wavFile } from './support/sounds.mjs';
import { inBrowser } from './support/suite.mjs';

const rate = 48000;
const speech = speechLike(rate, rate, 1);

/** A WAV file of silence that takes no room on disk. @param {string} file @param {number} seconds */
function writeLongWav(file, seconds) {
    const size = 2 * 8000 * seconds;
    const head = wavFile([new Float32Array(0)], { rate: 8000, encoding: 'pcm16', statedSize: size });
    head.writeUInt32LE(size + 36, 4);
    writeFileSync(file, head);
    truncateSync(file, head.length + size);
}

/** @param {string} file @param {number} hertz @param {string[]} effects of sox */
function sox(file, hertz, ...effects) {
    execFileSync('sox', ['-D', '-n', '-r', String(hertz), ...effects.slice(0, 2), file, ...effects.slice(2)]);
}

/** What cannot be opened, and what is said of it. @type {[string, (file: string) => void, RegExp][]} */
const badFiles = [
    [
        'text.wav',
        file => writeFileSync(file, 'This is no sound.\n'.repeat(100)),
        /^text\.wav is no recording that this browser can read\.$/,
    ],
    [
        'picture.mp3',
        file => writeFileSync(file, Buffer.from('89504e470d0a1a0a0000000d49484452', 'hex')),
        /no recording/,
    ],
    ['nothing.wav', file => writeFileSync(file, ''), /^nothing\.wav is empty/],
    [
        'no-samples.wav',
        file => writeFileSync(file, wavFile([new Float32Array(0)], { rate, encoding: 'pcm16' })),
        /is empty/,
    ],
    [
        'cut-in-head.wav',
        file => writeFileSync(file, wavFile([speech], { rate, encoding: 'pcm16' }).subarray(0, 30)),
        /no recording/,
    ],
    [
        'six.wav',
        file => writeFileSync(file, wavFile(Array(6).fill(speech), { rate, encoding: 'pcm16' })),
        /^six\.wav has 6 channels\. Larkspire takes mono and stereo/,
    ],
    ['six.flac', file => sox(file, 8000, '-c', '6', 'synth', '1', 'sine', '300'), /has 6 channels/],
    ['two-hours.wav', file => writeLongWav(file, 7200), /is 120 minutes long\. This page takes up to 90 minutes\.$/],
    [
        'two-hours.flac',
        file => sox(file, 8000, '-c', '1', 'trim', '0', '7200'),
        /is 120 minutes long\. In this format this page takes up to 30 minutes/,
    ],
    [
        'twenty-minutes-at-96-kHz.flac',
        file => sox(file, 96000, '-c', '1', 'trim', '0', '1200'),
        /is 20 minutes long\. In this format this page takes up to 15 minutes, as WAV 90\.$/,
    ],
    [
        'slow.wav',
        file => writeFileSync(file, wavFile([speech], { rate: 4000, encoding: 'pcm16' })),
        /sample rate of 4000 Hz\. This page takes 8 to 192 kHz/,
    ],
];

for (const kind of kinds) {
    inBrowser(kind, {}, stage => {
        /**
         * @param {string} name
         * @param {(page: import('puppeteer-core').Page) => Promise<void>} body
         * @param {() => void} [ahead]
         * @param {RegExp} [expected] what the browser writes down
         */
        const onPage = (name, body, ahead, expected = /decod|media resource/i) =>
            test(name, async () => {
                const { page, errors } = await open(stage.browser, addressOf('disk', stage.server), ahead);
                await body(page);
                assert.deepEqual(
                    errors.filter(error => !expected.test(error)),
                    [],
                );
                await page.close();
            });

        onPage(
            'files that cannot be opened get a sentence each, and the next one is opened all the same',
            async page => {
                const good = join(stage.folder, 'good.wav');
                writeFileSync(good, wavFile([speech], { rate, encoding: 'pcm16' }));

                for (const [name, write, sentence] of badFiles) {
                    const file = join(stage.folder, name);
                    write(file);
                    await choose(page, file);
                    await waitForStatus(page, sentence);
                    assert.ok(await page.$eval('#status', line => line.classList.contains('fault')), name);
                }

                await openRecording(page, good);
                assert.ok(await page.$eval('#status', line => !line.classList.contains('fault')));

                // What was open stays open.
                await choose(page, join(stage.folder, 'text.wav'));
                await waitForStatus(page, /no recording/);
                const saved = readFileSync(await save(page, stage.folder, 'good-Medium.wav'));
                assert.ok(saved.equals(render(good, join(stage.folder, 'expected.wav'))));
            },
        );

        onPage('a file that was cut off is taken as far as it goes', async page => {
            const file = join(stage.folder, 'cut.wav');
            writeFileSync(file, wavFile([speech], { rate, encoding: 'pcm16' }).subarray(0, 44 + rate));
            await choose(page, file);
            await waitForStatus(
                page,
                /^cut\.wav: 0 s, 48\.0 kHz, mono\. The file was cut off; this is what there is of it\.$/,
            );
            await untilHeard(page);
            const saved = readFileSync(await save(page, stage.folder, 'cut-Medium.wav'));
            assert.ok(saved.equals(render(file, join(stage.folder, 'expected.wav'), '--allow-truncated')));
        });

        onPage('silence, and less than a tenth of a second, have no figures and break nothing', async page => {
            for (const [name, frames] of /** @type {const} */ ([
                ['silence', 2 * rate],
                ['one-frame', 1],
                ['blink', 300],
            ])) {
                writeFileSync(
                    join(stage.folder, `${name}.wav`),
                    wavFile([new Float32Array(frames)], { rate, encoding: 'pcm16' }),
                );
                await openRecording(page, join(stage.folder, `${name}.wav`));
                assert.deepEqual(await page.$$eval('tbody td', cells => cells.map(cell => cell.textContent)), [
                    '–',
                    '–',
                    '–',
                    '–',
                ]);
                assert.match(await page.$eval('#advice', line => line.textContent ?? ''), /nothing to be heard/);
                await save(page, stage.folder, `${name}-Medium.wav`);
            }
        });

        onPage(
            'a browser without WebAssembly is told what is missing',
            async page => {
                assert.match(await statusOf(page), /^This browser is too old for this page: it has no WebAssembly/);
            },
            () => {
                Reflect.deleteProperty(globalThis, 'WebAssembly');
            },
        );

        onPage(
            'a worker that breaks down keeps nobody waiting, then or later',
            async page => {
                await waitForStatus(page, /^That did not work: .*broken on purpose/);
                await choose(page, join(stage.folder, 'good.wav'));
                await sleep(300); // it is said once more
                assert.match(await statusOf(page), /^That did not work: .*broken on purpose/);
            },
            () => {
                const Thread = Worker;
                globalThis.Worker = class extends Thread {
                    constructor() {
                        super(URL.createObjectURL(new Blob(["throw new Error('broken on purpose')"])));
                    }
                };
            },
            /broken on purpose/,
        );

        if (kind === 'chrome')
            onPage('a file that is changed while it is open is said to be gone', async page => {
                const file = join(stage.folder, 'changing.wav');
                writeFileSync(file, wavFile([speech], { rate, encoding: 'pcm16' }));
                await openRecording(page, file);
                writeFileSync(file, wavFile([speech.slice(1000)], { rate, encoding: 'pcm16' }));
                await chooseMode(page, 'Powerful');
                await waitForStatus(page, /^changing\.wav can no longer be read/);
            });

        if (kind === 'chrome')
            onPage('what stops half-way leaves no bar behind', async page => {
                const file = join(stage.folder, 'stopping.wav');
                const isBarHidden = () =>
                    /** @type {HTMLElement} */ (document.getElementById('progress')).hidden;
                writeLongWav(file, 5000);
                await choose(page, file);
                await waitUntil(page, () => !(/** @type {HTMLElement} */ (document.getElementById('progress')).hidden));
                writeLongWav(file, 4000);
                await waitForStatus(page, /^stopping\.wav can no longer be read/);
                assert.ok(await page.evaluate(isBarHidden));
            });

        if (kind === 'chrome')
            test('without a script there is a sentence', async () => {
                const page = await stage.browser.newPage();
                await page.setJavaScriptEnabled(false);
                await page.goto(addressOf('disk', stage.server));
                assert.match(await statusOf(page), /^This page needs a browser of 2024 or later with JavaScript\.$/);
                await page.close();
            });

        if (kind === 'firefox')
            onPage('where there is no sound card, that is said, and nothing waits for ever', async page => {
                await openRecording(page, join(stage.folder, 'good.wav'));
                await page.click('#play');
                await waitForStatus(page, /^This browser finds no loudspeaker/);
                assert.equal(await page.$eval('#play', button => button.textContent), 'Play');
            });
    });

    inBrowser(kind, { voice: '/dev/null', isRefused: true }, stage => {
        test('a microphone that is refused is spoken of', async () => {
            const { page } = await open(stage.browser, addressOf('http', stage.server));

            if (kind === 'chrome')
                await stage.browser
                    .defaultBrowserContext()
                    .overridePermissions(`http://127.0.0.1:${stage.server.port}`, []);

            await page.click('#record');
            await waitForStatus(page, /^The browser may not use the microphone\. Allow it with the icon/);
            assert.equal(await page.$eval('#record', button => button.textContent), 'Record your voice');
            await page.close();
        });
    });
}

inBrowser('chrome', { more: ['--use-fake-ui-for-media-stream'] }, stage => {
    test('no microphone', async () => {
        const { page } = await open(stage.browser, addressOf('http', stage.server));
        await page.click('#record');
        await waitForStatus(page, /^No microphone was found/);
        await page.close();
    });
});

inBrowser('chrome', { more: ['--host-resolver-rules=MAP voice.test 127.0.0.1'] }, stage => {
    test('a page from plain http plays and saves, and says why it cannot record', async () => {
        const { page } = await open(stage.browser, `http://voice.test:${stage.server.port}/larkspire.html`);
        await page.click('#record');
        await waitForStatus(page, /^Browsers give the microphone only to pages from disk or from https/);
        const file = join(stage.folder, 'speech.wav');
        writeFileSync(file, wavFile([speech], { rate, encoding: 'pcm16' }));
        await openRecording(page, file);
        await page.click('#play');
        await waitUntil(
            page,
            () => Number(/** @type {HTMLInputElement} */ (document.getElementById('position')).value) > 0.2,
        );
        await save(page, stage.folder, 'speech-Medium.wav');
        await page.close();
    });
});
