// SPDX-License-Identifier: AGPL-3.0-only
// The picture of the page in the documents: node picture.mjs RESULT.
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { setTimeout as sleep } from 'node:timers/promises';

import { addressOf, open, openRecording, start } from './support/browsers.mjs';
import { realVoice } from './support/sounds.mjs';

const folder = mkdtempSync(join(tmpdir(), 'larkspire-page-'));
const browser = await start('chrome');

try {
    writeFileSync(join(folder, 'voice.wav'), realVoice());
    const { page } = await open(browser, addressOf('disk', { port: 0 }));
    await page.setViewport({ width: 1000, height: 600 });
    await openRecording(page, join(folder, 'voice.wav'));
    await page.$eval('#position', input => {
        /** @type {HTMLInputElement} */ (input).value = '5.3';
        input.dispatchEvent(new Event('input'));
    });
    await sleep(500);
    await page.screenshot({ path: /** @type {`${string}.png`} */ (process.argv[2]), fullPage: true });
} finally {
    await browser.close();
    rmSync(folder, { recursive: true, force: true });
}
