// SPDX-License-Identifier: AGPL-3.0-only
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

export const project = join(dirname(fileURLToPath(import.meta.url)), '../../..');

/** The page as it is built. */
export const pageFile = join(project, 'dist/web/larkspire.html');

export const renderer = join(project, 'dist/linux/larkspire-render');

/** @param {import('node:test').TestContext} test @returns {string} a folder that goes with the test */
export function temporaryFolder(test) {
    const folder = mkdtempSync(join(tmpdir(), 'larkspire-page-'));
    test.after(() => rmSync(folder, { recursive: true, force: true }));
    return folder;
}
