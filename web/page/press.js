// SPDX-License-Identifier: AGPL-3.0-only

/**
 * Lets a button do one thing at a time. Meanwhile it is not disabled, which would take the focus from the keyboard.
 *
 * @param {HTMLButtonElement} button
 * @param {() => Promise<void> | void} action which throws nothing
 */
export function onPress(button, action) {
    button.addEventListener('click', async () => {
        if (button.getAttribute('aria-disabled') === 'true') return;

        button.setAttribute('aria-disabled', 'true');
        await action();
        button.setAttribute('aria-disabled', 'false');
    });
}
