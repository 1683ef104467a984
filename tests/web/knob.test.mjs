// SPDX-License-Identifier: AGPL-3.0-only
// The knob is turned as the one in the plug-in's window, and by keyboard, touch and name.
import assert from 'node:assert/strict';
import test from 'node:test';

import { modeNames } from '../../web/common/modes.js';
import { addressOf, chooseMode, kinds, open, waitUntil } from './support/browsers.mjs';
import { inBrowser } from './support/suite.mjs';

/** @typedef {import('puppeteer-core').Page} Page */

/** @param {Page} page @returns {Promise<string>} the mode, which all that shows it agrees on */
async function modeOf(page) {
    const shown = await page.evaluate(() => {
        const input = /** @type {HTMLInputElement} */ (document.getElementById('amount'));
        const pressed = [...document.querySelectorAll('#modes [aria-pressed="true"]')].map(
            button => button.textContent,
        );
        const angle = Number(
            /rotate\(([-\d.]+)\)/.exec(document.querySelector('.knob-pointer')?.getAttribute('transform') ?? '')?.[1],
        );
        return { value: input.value, text: input.getAttribute('aria-valuetext'), pressed, angle };
    });
    assert.deepEqual(shown, {
        value: shown.value,
        text: modeNames[Number(shown.value)],
        pressed: [modeNames[Number(shown.value)]],
        angle: -144 + 96 * Number(shown.value),
    });
    return modeNames[Number(shown.value)];
}

/** @param {Page} page @returns {Promise<{ x: number, y: number }>} */
async function middleOfKnob(page) {
    const { x, y, width, height } = /** @type {import('puppeteer-core').BoundingBox} */ (
        await (await page.$('#knob'))?.boundingBox()
    );
    return { x: x + width / 2, y: y + height / 2 };
}

/** @param {Page} page @param {number} up in pixels */
async function drag(page, up) {
    const { x, y } = await middleOfKnob(page);
    await page.mouse.move(x, y);
    await page.mouse.down();
    await page.mouse.move(x, y - up, { steps: 5 });
    await page.mouse.up();
    await page.mouse.move(x, up > 0 ? 0 : 800); // a mouse that is no longer pressed turns nothing
}

for (const kind of kinds)
    inBrowser(kind, {}, stage => {
        /** @param {string} name @param {(page: Page) => Promise<void>} body */
        const onPage = (name, body) =>
            test(name, async () => {
                const { page, errors } = await open(stage.browser, addressOf('http', stage.server));
                await page.$eval('main', main => {
                    main.style.marginTop = '500px';
                }); // room to drag
                await page.setViewport({ width: 1200, height: 1400 });
                await body(page);
                assert.deepEqual(errors, []);
                await page.close();
            });

        onPage('it begins at Medium', async page => {
            assert.equal(await modeOf(page), 'Medium');
            assert.match(await page.$eval('#mode-purpose', line => line.textContent ?? ''), /most recordings/);
        });

        onPage('a drag of 250 pixels turns it from end to end, upwards to the right', async page => {
            await drag(page, 84);
            assert.equal(await modeOf(page), 'Powerful');
            await drag(page, -250);
            assert.equal(await modeOf(page), 'bypass');
            await drag(page, 84);
            assert.equal(await modeOf(page), 'Gentle');
            await drag(page, 40);
            assert.equal(await modeOf(page), 'Gentle');
            await drag(page, 500);
            assert.equal(await modeOf(page), 'Powerful');
        });

        onPage('with Alt held at its start a drag is ten times finer', async page => {
            await page.keyboard.down('Alt');
            await drag(page, 300);
            assert.equal(await modeOf(page), 'Medium');
            await drag(page, 450);
            await page.keyboard.up('Alt');
            assert.equal(await modeOf(page), 'Powerful');
        });

        onPage('a double-click or a click with Ctrl returns to Medium', async page => {
            const { x, y } = await middleOfKnob(page);
            await chooseMode(page, 'bypass');
            await page.mouse.click(x, y, { count: 2 });
            assert.equal(await modeOf(page), 'Medium');
            await chooseMode(page, 'Powerful');
            await page.keyboard.down('Control');
            await page.mouse.click(x, y);
            await page.keyboard.up('Control');
            assert.equal(await modeOf(page), 'Medium');
        });

        onPage('the wheel turns it and leaves the page where it is', async page => {
            await page.setViewport({ width: 1200, height: 1000 });
            const { x, y } = await middleOfKnob(page);
            await page.mouse.move(x, y);
            await page.mouse.wheel({ deltaY: -120 });
            await waitUntil(page, () => document.documentElement.dataset.mode === 'Powerful');
            await page.mouse.wheel({ deltaY: 120 });
            await page.mouse.wheel({ deltaY: 120 });
            await waitUntil(page, () => document.documentElement.dataset.mode === 'Gentle');
            assert.equal(await modeOf(page), 'Gentle');
            assert.equal(await page.evaluate(() => scrollY), 0);
        });

        onPage('keys turn it, and a screen reader hears name and position', async page => {
            await page.focus('#amount');

            for (const [key, mode] of /** @type {const} */ ([
                ['ArrowUp', 'Powerful'],
                ['ArrowUp', 'Powerful'],
                ['ArrowLeft', 'Medium'],
                ['Home', 'bypass'],
                ['ArrowRight', 'Gentle'],
                ['End', 'Powerful'],
                ['ArrowDown', 'Medium'],
            ])) {
                await page.keyboard.press(key);
                assert.equal(await modeOf(page), mode, key);
            }

            assert.equal(await page.$eval('#amount', input => input.getAttribute('aria-label')), 'Amount');
        });

        onPage('each name chooses its position', async page => {
            for (const name of modeNames) {
                await chooseMode(page, name);
                assert.equal(await modeOf(page), name);
            }
        });

        if (kind === 'chrome')
            onPage('a finger turns it and does not scroll', async page => {
                await page.setViewport({ width: 390, height: 500, hasTouch: true, isMobile: true });
                await page.$eval('#knob', knob => knob.scrollIntoView({ block: 'center' }));
                const before = await page.evaluate(() => scrollY);
                const { x, y } = await middleOfKnob(page);
                await page.touchscreen.touchStart(x, y);
                await page.touchscreen.touchMove(x, y - 60);
                await page.touchscreen.touchMove(x, y - 90);
                await page.touchscreen.touchEnd();
                assert.equal(await modeOf(page), 'Powerful');
                assert.equal(await page.evaluate(() => scrollY), before);
            });
    });
