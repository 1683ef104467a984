// SPDX-License-Identifier: AGPL-3.0-only
// How much the page takes. Each limit is told to whoever meets it.

/** A WAV file is read from its place in pieces, so that this is a matter of patience, not of memory. */
export const longestFileSeconds = 90 * 60;

/** What the browser decodes has to be in memory as a whole; at more than 48 kHz it is as much less long. */
export const longestDecodedSeconds = 30 * 60;
export const mostDecodedFrames = longestDecodedSeconds * 48000;

export const longestTakeSeconds = 60;

/** The rates that every browser plays, and the chain runs at, in Hz. */
export const lowestRate = 8000;
export const highestRate = 192000;

export const mostChannels = 2;

/** Frames that travel at once: 2.7 s at 48 kHz. Each piece but the last has as many. */
export const pieceFrames = 1 << 17;

/** How long a browser may take to save a result: some ask where to, and read it only then. */
export const secondsToSave = 600;

/** Larger results are kept on disk while they grow. */
export const largestInMemory = 64 << 20;
