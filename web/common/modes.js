// SPDX-License-Identifier: AGPL-3.0-only

/** The knob's positions by name; the index is the position. The names are the plug-in's in every language. */
export const modeNames = Object.freeze(['bypass', 'Gentle', 'Medium', 'Powerful']);

export const defaultMode = 2;

export const lastMode = modeNames.length - 1;
