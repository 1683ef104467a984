// SPDX-License-Identifier: AGPL-3.0-only
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe } from 'node:test';

import { serve, start } from './browsers.mjs';
import { startSoundServer } from './sound-server.mjs';

/**
 * What a suite in a browser has.
 *
 * @typedef {{ browser: import('puppeteer-core').Browser, server: Awaited<ReturnType<typeof serve>>, folder: string }}
 *     Stage
 */

/**
 * Tests with a browser, a web server and a folder that they share.
 *
 * @param {import('./browsers.mjs').Kind} kind
 * @param {import('./browsers.mjs').Wishes & { isHeard?: boolean }} wishes also whether there is a sound card
 * @param {(stage: Stage) => void} tests
 */
export function inBrowser(kind, wishes, tests) {
    describe(`${kind} ${wishes.language ?? ''}`.trim(), { timeout: 900000 }, () => {
        const stage = /** @type {Stage} */ ({ folder: mkdtempSync(join(tmpdir(), 'larkspire-page-')) });

        /** @type {Awaited<ReturnType<typeof startSoundServer>> | undefined} */
        let sound;

        before(async () => {
            sound = wishes.isHeard ? await startSoundServer() : undefined;
            stage.server = await serve();
            stage.browser = await start(kind, { downloads: stage.folder, environment: sound?.environment, ...wishes });
        });
        after(async () => {
            await stage.browser?.close();
            stage.server?.close();
            sound?.close();
            rmSync(stage.folder, { recursive: true, force: true });
        });
        tests(stage);
    });
}
