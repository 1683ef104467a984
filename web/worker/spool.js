// SPDX-License-Identifier: AGPL-3.0-only

import { Fault } from '../common/fault.js';
import { secondsToSave } from '../common/limits.js';

const namePrefix = 'larkspire-';
const storeName = 'parts';
// Firefox has all of a file in memory for a moment while it saves it. Until then it has thrown away what this thread no
// longer needs, if that thread rests for as long.
const secondsToTidyUp = 5;

const partBytes = 16 << 20; // what is written to disk at once; a file of many small parts is slow to read

/** @template Result @param {IDBRequest<Result>} request @returns {Promise<Result>} */
function done(request) {
    return new Promise((resolve, reject) => {
        request.onsuccess = () => resolve(request.result);
        request.onerror = () => reject(request.error);
    });
}

/** Deletes what earlier pages left behind because they were closed. What a page uses that is still open stays. */
export async function sweepSpools() {
    const databases = (await globalThis.indexedDB?.databases?.().catch(() => [])) ?? [];

    for (const { name } of databases) if (name?.startsWith(namePrefix)) indexedDB.deleteDatabase(name);
}

/**
 * A large file that grows on disk instead of in memory, where the browser has a place for that; in memory elsewhere.
 */
export class Spool {
    /** @type {IDBDatabase | undefined} */
    #database;
    /** @type {Blob[]} */
    #parts = [];
    /** What is not yet among the parts. @type {BlobPart[]} */
    #pending = [];
    #pendingBytes = 0;
    #name = '';

    /** @param {boolean} isLarge whether it is worth a place on disk */
    async open(isLarge) {
        if (!isLarge) return;

        try {
            this.#name = `${namePrefix}${crypto.getRandomValues(new Uint32Array(2)).join('-')}`;
            const request = indexedDB.open(this.#name);
            request.onupgradeneeded = () => request.result.createObjectStore(storeName);
            this.#database = await done(request);
        } catch {
            this.#database = undefined; // as in a window that keeps nothing
        }
    }

    /** @param {Uint8Array<ArrayBuffer>} bytes @throws {Fault} noSpace */
    async add(bytes) {
        this.#pending.push(bytes);
        this.#pendingBytes += bytes.length;

        if (this.#pendingBytes >= partBytes) await this.#flush();
    }

    /** @param {string} type @returns {Promise<Blob>} all of it @throws {Fault} noSpace */
    async file(type) {
        await this.#flush();

        const file = new Blob(this.#parts, { type });

        if (this.#database) {
            setTimeout(() => this.close(), 1000 * secondsToSave);
            await new Promise(resolve => {
                setTimeout(resolve, 1000 * secondsToTidyUp);
            });
        }

        return file;
    }

    /** Gives the place up. A file that is being saved stays until it is saved. */
    close() {
        this.#parts = [];

        if (this.#database) {
            this.#database.close();
            indexedDB.deleteDatabase(this.#name);
        }

        this.#database = undefined;
    }

    async #flush() {
        const part = new Blob(this.#pending);
        this.#pending = [];
        this.#pendingBytes = 0;
        this.#parts.push(this.#database ? await this.#onDisk(this.#database, part) : part);
    }

    /**
     * @param {IDBDatabase} database
     * @param {Blob} part
     * @returns {Promise<Blob>} the same, read from disk when it is wanted
     */
    async #onDisk(database, part) {
        try {
            const key = this.#parts.length;
            await done(database.transaction(storeName, 'readwrite').objectStore(storeName).put(part, key));
            return await done(database.transaction(storeName).objectStore(storeName).get(key));
        } catch {
            throw new Fault('noSpace');
        }
    }
}
