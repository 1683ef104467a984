// SPDX-License-Identifier: AGPL-3.0-only
import { spawn } from 'node:child_process';
import { existsSync, mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { setTimeout as sleep } from 'node:timers/promises';

/**
 * A sound card that nobody hears: Firefox plays nothing where there is none, and time stands still in it.
 *
 * @returns {Promise<{ environment: Record<string, string>, close: () => void }>}
 */
export async function startSoundServer() {
    const folder = mkdtempSync(join(tmpdir(), 'larkspire-sound-'));
    const socket = join(folder, 'socket');
    const server = spawn(
        'pulseaudio',
        [
            '-n',
            '--daemonize=no',
            '--use-pid-file=no',
            '--disable-shm=yes',
            '--exit-idle-time=-1',
            '-L',
            'module-null-sink',
            '-L',
            `module-native-protocol-unix socket=${socket} auth-anonymous=1`,
        ],
        { env: { ...process.env, HOME: folder, XDG_RUNTIME_DIR: folder }, stdio: 'ignore' },
    );

    for (let tries = 0; !existsSync(socket); ++tries) {
        if (tries === 500 || server.exitCode !== null) throw new Error('pulseaudio does not start');

        await sleep(20);
    }

    return {
        environment: { PULSE_SERVER: `unix:${socket}` },
        close: () => {
            server.kill();
            rmSync(folder, { recursive: true, force: true });
        },
    };
}
