// SPDX-License-Identifier: AGPL-3.0-only

/**
 * @template {Element} Type
 * @param {string} id
 * @param {new () => Type} type
 * @returns {Type} the page's element of that id
 */
export function element(id, type) {
    const found = document.getElementById(id);

    if (!(found instanceof type)) throw new TypeError(`there is no ${type.name} '${id}' on the page`);

    return found;
}

/**
 * The text of a part of this file that the build put in: a script for another thread, the compiled chain.
 *
 * @param {string} id
 */
export function partOfThisFile(id) {
    return (element(id, HTMLScriptElement).textContent ?? '').trim();
}
