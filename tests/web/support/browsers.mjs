// SPDX-License-Identifier: AGPL-3.0-only
// The page in real browsers: as Debian has them, without a window.
import { readFileSync, readdirSync, statSync } from 'node:fs';
import { createServer } from 'node:http';
import { join } from 'node:path';
import { setTimeout as sleep } from 'node:timers/promises';
import { pathToFileURL } from 'node:url';

import puppeteer from 'puppeteer-core';

import { pageFile } from './paths.mjs';

/** @typedef {'chrome' | 'firefox'} Kind */
/** @typedef {'http' | 'disk'} Place */

/** @type {readonly Kind[]} */
export const kinds = ['chrome', 'firefox'];

/** @type {readonly Place[]} */
export const places = ['http', 'disk'];

const programs = { chrome: '/usr/bin/chromium', firefox: '/usr/bin/firefox-esr' };

/**
 * @typedef {object} Wishes
 * @property {string} [language] such as de
 * @property {string} [voice] a WAV file that the microphone gives, in Chromium; Firefox has a tone
 * @property {boolean} [isRefused] whether the microphone is refused
 * @property {string} [downloads] the folder for what is saved
 * @property {Record<string, string>} [environment] in addition to this one's
 * @property {string[]} [more] more options of Chromium
 */

/** @param {Wishes} wishes @returns {string[]} */
function optionsOfChromium({ language = 'en-US', voice, isRefused, more = [] }) {
    return [
        '--disable-gpu',
        `--lang=${language}`,
        `--accept-lang=${language}`,
        ...(process.getuid?.() === 0 ? ['--no-sandbox'] : []),
        ...(voice ? ['--use-fake-device-for-media-stream', `--use-file-for-fake-audio-capture=${voice}%noloop`] : []),
        ...(voice && !isRefused ? ['--use-fake-ui-for-media-stream'] : []),
        ...more,
    ];
}

/** @param {Wishes} wishes @returns {Record<string, unknown>} */
function preferencesOfFirefox({ language = 'en-US', voice, isRefused, downloads }) {
    return {
        'intl.accept_languages': language,
        'media.navigator.streams.fake': voice !== undefined,
        'media.navigator.permission.disabled': !isRefused,
        'permissions.default.microphone': isRefused ? 2 : 1,
        'browser.download.folderList': 2,
        'browser.download.dir': downloads,
        'browser.download.useDownloadDir': true,
        'browser.download.always_ask_before_handling_new_types': false,
    };
}

/**
 * Starts a browser.
 *
 * @param {Kind} kind
 * @param {Wishes} [wishes]
 * @returns {Promise<import('puppeteer-core').Browser>}
 */
export async function start(kind, wishes = {}) {
    const browser = await puppeteer.launch({
        browser: kind,
        executablePath: programs[kind],
        headless: true,
        protocolTimeout: 60000,
        args: kind === 'chrome' ? optionsOfChromium(wishes) : [],
        extraPrefsFirefox: preferencesOfFirefox(wishes),
        env: { ...process.env, ...wishes.environment },
    });

    if (kind === 'chrome' && wishes.downloads) {
        const session = await browser.target().createCDPSession();
        await session.send('Browser.setDownloadBehavior', { behavior: 'allow', downloadPath: wishes.downloads });
    }

    return browser;
}

/** A web server for the page alone, which writes down what it is asked for. */
export async function serve() {
    /** @type {string[]} */
    const requests = [];
    const server = createServer((request, response) => {
        requests.push(request.url ?? '');
        response.writeHead(200, { 'content-type': 'text/html' });
        response.end(readFileSync(pageFile));
    });
    await new Promise(resolve => {
        server.listen(0, '127.0.0.1', () => resolve(undefined));
    });
    const { port } = /** @type {import('node:net').AddressInfo} */ (server.address());
    return { port, requests, close: () => server.close() };
}

/**
 * A page that is open, with all that it asked anybody for.
 *
 * @typedef {{ page: import('puppeteer-core').Page, requests: string[], errors: string[] }} Open
 */

/**
 * Opens the page and waits until it is ready.
 *
 * @param {import('puppeteer-core').Browser} browser
 * @param {string} address
 * @param {() => void} [ahead] runs in the page ahead of its own script
 * @returns {Promise<Open>}
 */
export async function open(browser, address, ahead) {
    const page = await browser.newPage();
    /** @type {string[]} */
    const requests = [];
    /** @type {string[]} */
    const errors = [];
    page.on('request', request => requests.push(request.url()));
    page.on('pageerror', error => errors.push(String(error)));
    page.on('console', message => message.type() === 'error' && errors.push(message.text()));

    if (ahead) await page.evaluateOnNewDocument(ahead);

    await page.setViewport({ width: 1200, height: 900 });
    await page.goto(address);
    await waitUntil(page, () => !/2024 or later with/.test(document.querySelector('[role="status"]')?.textContent ?? ''));
    return { page, requests, errors };
}

/**
 * Asks the page again and again, each time anew: a browser that no longer answers is found out within a minute.
 *
 * @template Argument
 * @param {import('puppeteer-core').Page} page
 * @param {(argument: Argument) => unknown} isSo runs in the page
 * @param {Argument} [argument]
 * @param {number} [timeout] in ms
 */
export async function waitUntil(page, isSo, argument, timeout = 30000) {
    for (const start = performance.now(); performance.now() - start < timeout; await sleep(30))
        if (await page.evaluate(/** @type {(argument: unknown) => unknown} */ (isSo), argument)) return;

    throw new Error(`the page says "${await statusOf(page)}" after ${timeout / 1000} s, and not yet: ${isSo}`);
}

/** @param {Place} place @param {{ port: number }} server @returns {string} */
export function addressOf(place, server) {
    return place === 'disk' ? pathToFileURL(pageFile).href : `http://127.0.0.1:${server.port}/larkspire.html`;
}

/** @param {import('puppeteer-core').Page} page @returns {Promise<string>} what the page says, to screen readers too */
export function statusOf(page) {
    return page.$eval('[role="status"]', line => line.textContent ?? '');
}

/** @param {import('puppeteer-core').Page} page @param {RegExp} expected */
export async function waitForStatus(page, expected) {
    await waitUntil(
        page,
        pattern => new RegExp(pattern).test(document.querySelector('[role="status"]')?.textContent ?? ''),
        expected.source,
    ).catch(async () => {
        throw new Error(`the page says "${await statusOf(page)}" and not ${expected}`);
    });
}

/** @param {import('puppeteer-core').Page} page @param {string} file */
export async function choose(page, file) {
    const input = /** @type {import('puppeteer-core').ElementHandle<HTMLInputElement>} */ (await page.$('#file'));
    await input.uploadFile(file);
}

/**
 * Opens a recording and waits until it can be played.
 *
 * @param {import('puppeteer-core').Page} page
 * @param {string} file
 * @param {number} [timeout] in ms
 */
export async function openRecording(page, file, timeout) {
    await choose(page, file);
    await waitForStatus(page, new RegExp(`^${file.split('/').at(-1)?.replace(/[.()]/g, '\\$&')}: .* kHz`));
    await untilHeard(page, timeout);
}

/** @param {import('puppeteer-core').Page} page @param {number} [timeout] in ms */
export async function untilHeard(page, timeout = 30000) {
    await waitUntil(
        page,
        () => !(/** @type {HTMLFieldSetElement} */ (document.getElementById('listening')).disabled),
        undefined,
        timeout,
    );
}

/** @param {import('puppeteer-core').Page} page @returns {Promise<string>} what the keyboard is at */
export function focusOf(page) {
    return page.evaluate(() => document.activeElement?.id || document.activeElement?.textContent || '');
}

/** @param {import('puppeteer-core').Page} page @param {string} name */
export async function chooseMode(page, name) {
    for (const button of await page.$$('#modes button'))
        if ((await button.evaluate(element => element.textContent)) === name) await button.click();
}

/** Chooses a mode and waits until it can be heard. @param {import('puppeteer-core').Page} page @param {string} name */
export async function listenTo(page, name) {
    await chooseMode(page, name);
    await waitUntil(page, mode => document.getElementById('lane-mode')?.textContent === mode, name);
}

/**
 * Presses "Save as WAV".
 *
 * @param {import('puppeteer-core').Page} page
 * @param {string} downloads
 * @param {string} name of the file
 * @param {number} [timeout] in ms
 * @returns {Promise<string>} its path, once it is whole
 */
export async function save(page, downloads, name, timeout = 60000) {
    await page.click('#save');

    for (const start = performance.now(); performance.now() - start < timeout;) {
        const files = readdirSync(downloads);

        if (
            files.includes(name) &&
            !files.some(file => /\.(part|crdownload)$/.test(file)) &&
            statSync(join(downloads, name)).size > 0
        )
            return join(downloads, name);

        await sleep(20);
    }

    throw new Error(
        `${name} was not saved; there are ${readdirSync(downloads)}, and the page says "${await statusOf(page)}"`,
    );
}
