// SPDX-License-Identifier: AGPL-3.0-only
// Whether everybody can read and work it: contrast, names and roles by axe-core, keys, phones, large letters,
// languages.
import assert from 'node:assert/strict';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, test } from 'node:test';

import { addressOf, choose, focusOf, kinds, listenTo, open, openRecording, waitForStatus, waitUntil } from './support/browsers.mjs';
import { speechLike, wavFile } from './support/sounds.mjs';
import { inBrowser } from './support/suite.mjs';

/** @typedef {import('puppeteer-core').Page} Page */

const axe = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
const speech = wavFile([speechLike(96000, 48000, 1)], { rate: 48000, encoding: 'pcm16' });
const folder = mkdtempSync(join(tmpdir(), 'larkspire-page-'));
const voice = join(folder, 'voice.wav');
writeFileSync(voice, speech);
after(() => rmSync(folder, { recursive: true, force: true }));

/** @param {Page} page @param {string} folder */
async function openSpeech(page, folder) {
    writeFileSync(join(folder, 'speech.wav'), speech);
    await openRecording(page, join(folder, 'speech.wav'));
}

/** @param {Page} page @param {string} state */
async function expectNoViolation(page, state) {
    await page.evaluate(axe);
    const violations = await page.evaluate(async () => {
        const { violations: found } = await /** @type {any} */ (globalThis).axe.run();
        return found.map(
            (/** @type {any} */ { id, nodes }) =>
                `${id}: ${nodes.map((/** @type {any} */ node) => node.html).join(' ')}`,
        );
    });
    assert.deepEqual(violations, [], state);
}

/**
 * What does not fit: the page where it is wider than the window, and buttons and cells with cut-off words.
 *
 * @param {Page} page
 */
function whatDoesNotFit(page) {
    return page.evaluate(() => {
        const root = /** @type {Element} */ (document.scrollingElement);
        const parts = [...document.querySelectorAll('button, .button, label, h1, h2, p, td, th, #time')];
        return [
            ...(root.scrollWidth > innerWidth ? [`the page: ${root.scrollWidth} of ${innerWidth}`] : []),
            ...parts
                .filter(
                    part =>
                        !part.classList.contains('unseen') &&
                        part.scrollWidth > part.clientWidth + 1 &&
                        part.clientWidth > 0,
                )
                .map(part => part.outerHTML),
            ...parts
                .filter(part => part.getBoundingClientRect().right > innerWidth + 1)
                .map(part => `outside: ${part.outerHTML}`),
        ];
    });
}

/** Runs in the page. @returns {boolean} whether there is a line around what the keyboard is at */
function isFocusShown() {
    for (let part = document.activeElement; part; part = part.parentElement) {
        const { outlineStyle, outlineWidth } = getComputedStyle(part);

        if (outlineStyle === 'solid' && parseFloat(outlineWidth) >= 3) return true;
    }

    return false;
}

for (const kind of kinds)
    for (const language of ['en-US', 'de-AT'])
        inBrowser(kind, { language, voice, isHeard: true }, stage => {
            test('axe-core finds nothing, in any state', async () => {
                const { page } = await open(stage.browser, addressOf('http', stage.server));
                await expectNoViolation(page, 'empty');
                await page.click('summary');
                await expectNoViolation(page, 'with the licences open');
                await openSpeech(page, stage.folder);

                for (const mode of ['bypass', 'Gentle', 'Medium', 'Powerful']) {
                    await listenTo(page, mode);
                    await page.click('label:has(#choose-original)');
                    await expectNoViolation(page, `${mode}, original`);
                    await page.click('label:has(#choose-result)');
                    await expectNoViolation(page, mode);
                }

                writeFileSync(join(stage.folder, 'bad.wav'), 'no sound');
                await choose(page, join(stage.folder, 'bad.wav'));
                await waitForStatus(page, /bad\.wav/);
                await expectNoViolation(page, 'with a fault');
                await page.setViewport({ width: 390, height: 844 });
                await page.click('#record');
                await waitUntil(page, () => !(/** @type {HTMLElement} */ (document.getElementById('take')).hidden));
                await expectNoViolation(page, 'while it records');
                assert.deepEqual(await whatDoesNotFit(page), [], 'while it records');
                await page.close();
            });

            test('it speaks the language of the browser, and all of it', async () => {
                const { page } = await open(stage.browser, addressOf('http', stage.server));
                await openSpeech(page, stage.folder);
                const [expected, play, advice] =
                    language === 'de-AT' ? ['de', 'Abspielen', /^Diese Stimme/] : ['en', 'Play', /^This voice/];
                assert.equal(await page.evaluate(() => document.documentElement.lang), expected);
                assert.equal(await page.$eval('#play', button => button.textContent), play);
                assert.match(
                    await page.$eval('#advice', line => line.textContent ?? ''),
                    /** @type {RegExp} */ (advice),
                );
                const empty = await page.$$eval('[data-text], [data-label]', parts =>
                    parts
                        .filter(
                            part =>
                                (part.hasAttribute('data-text') && !part.textContent?.trim()) ||
                                (part.hasAttribute('data-label') && !part.ariaLabel?.trim()),
                        )
                        .map(part => part.outerHTML),
                );
                assert.deepEqual(empty, []);
                assert.equal(
                    (await page.content()).match(/undefined|NaN(?! )/g)?.length ?? 0,
                    (await page.evaluate(() => [...document.scripts].map(script => script.textContent).join(''))).match(
                        /undefined|NaN(?! )/g,
                    )?.length ?? 0,
                );
                await page.close();
            });

            for (const [width, letters] of [
                [1280, 16],
                [1280, 32],
                [768, 16],
                [390, 16],
                [390, 32],
                [320, 24],
            ])
                test(`at ${width} pixels and letters of ${letters} everything can be read`, async () => {
                    const { page } = await open(stage.browser, addressOf('http', stage.server));
                    await page.setViewport({ width, height: 844 });
                    await page.evaluate(size => {
                        document.documentElement.style.fontSize = `${size}px`;
                    }, letters);
                    assert.deepEqual(await whatDoesNotFit(page), [], 'empty');
                    await openSpeech(page, stage.folder);
                    assert.deepEqual(await whatDoesNotFit(page), [], 'with a recording');
                    await page.close();
                });

            if (language === 'en-US') {
                test('the Tab key reaches everything in the order in which it stands', async () => {
                    const { page } = await open(stage.browser, addressOf('http', stage.server));
                    await openSpeech(page, stage.folder);
                    await page.evaluate(() => document.body.focus());
                    const reached = [];

                    for (let i = 0; i < 12; ++i) {
                        await page.keyboard.press('Tab');
                        reached.push(await focusOf(page));
                        assert.ok(await page.evaluate(isFocusShown), `nothing shows that ${reached.at(-1)} is reached`);
                    }

                    assert.deepEqual(reached, [
                        'record',
                        'file',
                        'amount',
                        'bypass',
                        'Gentle',
                        'Medium',
                        'Powerful',
                        'position',
                        'play',
                        'choose-result',
                        'save',
                        'Licences of the parts that others wrote',
                    ]);
                    await page.close();
                });

                test('keys play, switch between original and result, and move on', async () => {
                    const { page } = await open(stage.browser, addressOf('http', stage.server));
                    await openSpeech(page, stage.folder);
                    await page.focus('#choose-result');
                    await page.keyboard.press('ArrowLeft');
                    assert.equal(
                        await page.$eval('#choose-original', input => /** @type {HTMLInputElement} */ (input).checked),
                        true,
                    );
                    await page.focus('#position');
                    await page.keyboard.press('End');
                    assert.match(
                        await page.$eval('#position', input => input.getAttribute('aria-valuetext') ?? ''),
                        /^[12] s of 2 s$/,
                    );
                    await page.close();
                });

                if (kind === 'chrome')
                    test('who wants no motion gets none', async () => {
                        const { page } = await open(stage.browser, addressOf('http', stage.server));
                        const duration = () =>
                            page.$eval('.knob-pointer', pointer => getComputedStyle(pointer).transitionDuration);
                        assert.notEqual(await duration(), '0s');
                        await page.emulateMediaFeatures([{ name: 'prefers-reduced-motion', value: 'reduce' }]);
                        assert.equal(await duration(), '0s');
                        await page.close();
                    });
            }
        });
