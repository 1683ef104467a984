// SPDX-License-Identifier: AGPL-3.0-only
// The page as a file, and the modules that it is made of.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync, readdirSync, writeFileSync } from 'node:fs';
import { join, relative } from 'node:path';
import test from 'node:test';

import { pageFile, project, temporaryFolder } from './support/paths.mjs';

const page = readFileSync(pageFile, 'utf8');
const [, release] = /LARKSPIRE_RELEASE "(.*)"/.exec(readFileSync(join(project, 'cmake/Version.cmake'), 'utf8')) ?? [];

test('the modules and the tests are typed, and the compiler agrees', () => {
    const compiler = join(project, 'tests/web/node_modules/typescript/bin/tsc');
    execFileSync(process.execPath, [compiler, '--project', join(project, 'tests/web')], { encoding: 'utf8' });
});

test('the same parts give the same bytes', t => {
    const folder = temporaryFolder(t);
    writeFileSync(join(folder, 'licences'), 'None.');
    const pages = ['one', 'two'].map(name => {
        execFileSync(process.execPath, [
            join(project, 'web/build.mjs'),
            join(folder, 'licences'),
            join(folder, 'licences'),
            '1',
            '',
            join(folder, name, 'larkspire.html'),
        ]);
        return readFileSync(join(folder, name, 'larkspire.html'), 'utf8');
    });
    assert.equal(pages[0], pages[1]);
    assert.ok(!pages[0].includes(folder));
});

test('it names no place but, if that was asked for, where its source is', t => {
    assert.deepEqual(page.match(/\b(https?|wss?):\/\/[^\s'"<]*/g) ?? [], []);
    assert.doesNotMatch(page, new RegExp(project.replaceAll('/', '\\/')));

    const folder = temporaryFolder(t);
    const file = join(folder, 'larkspire.html');
    writeFileSync(join(folder, 'empty'), '');
    execFileSync(process.execPath, [
        join(project, 'web/build.mjs'),
        join(folder, 'empty'),
        join(folder, 'empty'),
        '1',
        'https://example.invalid/?a&b"',
        file,
    ]);
    assert.match(
        readFileSync(file, 'utf8'),
        /<a href="https:\/\/example\.invalid\/\?a&#38;b&#34;" data-text="source">/,
    );
});

test('it says what it is, and whose the mathematics is', () => {
    assert.match(page, new RegExp(`Quendal Larkspire ${release}`));
    assert.match(page, /GNU AGPL, version 3/);
    assert.match(page, /Rich Felker/);
    assert.match(page, /Permission is hereby granted, free of charge/);
    assert.match(page, /Developed at SunPro/);
});

test('its policy lets nothing in or out but what it has inside', () => {
    const [, policy] = /Content-Security-Policy" content="([^"]*)"/.exec(page) ?? [];
    assert.match(
        policy,
        /^default-src 'none'; script-src 'sha256-[^ ]*' 'wasm-unsafe-eval' data:; worker-src blob:; style-src 'sha256-[^ ]*'; /,
    );
    assert.doesNotMatch(policy, /unsafe-inline|'unsafe-eval'|\*|connect-src/);
});

test('every module is in the list of the build', () => {
    const list = readFileSync(join(project, 'web/CMakeLists.txt'), 'utf8');

    for (const folder of ['common', 'page', 'worker', 'worklet'])
        for (const file of readdirSync(join(project, 'web', folder)))
            assert.match(list, new RegExp(`^    ${folder}/${file.replace('.', '\\.')}\\b`, 'm'));
});

test('a module that the build cannot bundle is refused', async t => {
    const { bundle } = await import('../../web/build.mjs');
    const folder = temporaryFolder(t);
    writeFileSync(join(folder, 'odd.js'), 'export default 1;\n');
    assert.throws(() => bundle(relative(join(project, 'web'), join(folder, 'odd.js'))), /imports or exports in a way/);
});
