// SPDX-License-Identifier: AGPL-3.0-only
// Nothing leaves the page, and the browser itself sees to it.
import assert from 'node:assert/strict';
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';
import { setTimeout as sleep } from 'node:timers/promises';

import { addressOf, kinds, listenTo, open, openRecording, places, save, waitUntil } from './support/browsers.mjs';
import { speechLike, wavFile } from './support/sounds.mjs';
import { inBrowser } from './support/suite.mjs';

for (const kind of kinds)
    inBrowser(kind, { isHeard: true }, stage => {
        for (const place of places)
            test(`from ${place}, all of it works without a request but the one for the page`, async () => {
                stage.server.requests.length = 0;
                const address = addressOf(place, stage.server);
                const { page, requests, errors } = await open(stage.browser, address);
                const file = join(stage.folder, 'speech.wav');
                writeFileSync(file, wavFile([speechLike(96000, 48000, 1)], { rate: 48000, encoding: 'pcm16' }));
                await openRecording(page, file);
                await listenTo(page, 'Gentle');
                await page.click('#play');
                await waitUntil(
                    page,
                    () => Number(/** @type {HTMLInputElement} */ (document.getElementById('position')).value) > 0.3,
                );
                await save(page, stage.folder, 'speech-Gentle.wav');
                await sleep(300);
                assert.deepEqual(
                    requests.filter(url => !/^(data|blob):/.test(url) && url !== address),
                    [],
                );
                assert.deepEqual(stage.server.requests, place === 'http' ? ['/larkspire.html'] : []);
                assert.deepEqual(errors, []);
                await page.close();
            });

        test('what a script tries to send is stopped by the browser', async () => {
            const { page } = await open(stage.browser, addressOf('http', stage.server));
            stage.server.requests.length = 0;
            const outcomes = await page.evaluate(async () => {
                /** @param {Element} element @param {string} name */
                const loads = (element, name) =>
                    new Promise(resolve => {
                        element.addEventListener('load', () => resolve(`${name} loaded`));
                        element.addEventListener('error', () => resolve(`${name} refused`));
                        document.body.append(element);
                    });
                return Promise.all([
                    fetch('/away').then(
                        () => 'fetch sent',
                        () => 'fetch refused',
                    ),
                    loads(Object.assign(new Image(), { src: '/away.png' }), 'image'),
                    loads(Object.assign(document.createElement('script'), { src: '/away.js' }), 'script'),
                    loads(
                        Object.assign(document.createElement('link'), { rel: 'stylesheet', href: '/away.css' }),
                        'style',
                    ),
                    new Promise(resolve => {
                        const inline = document.createElement('script');
                        inline.textContent = 'globalThis.hasRun = true';
                        document.body.append(inline);
                        setTimeout(() => resolve(`inline script ${'hasRun' in globalThis ? 'run' : 'refused'}`), 100);
                    }),
                    new Promise(resolve => {
                        const worker = new Worker(
                            URL.createObjectURL(
                                new Blob([
                                    "fetch('/away').then(() => postMessage('sent'), () => postMessage('refused'))",
                                ]),
                            ),
                        );
                        worker.onmessage = ({ data }) => resolve(`fetch of a worker ${data}`);
                    }),
                ]);
            });
            assert.deepEqual(outcomes, [
                'fetch refused',
                'image refused',
                'script refused',
                'style refused',
                'inline script refused',
                'fetch of a worker refused',
            ]);
            assert.deepEqual(stage.server.requests, []);
            await page.close();
        });
    });
