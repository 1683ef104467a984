// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <string>
#include <vector>

/** Channels of equal length, linear with full scale 1.0. */
using Channels = std::vector<std::vector<float>>;

/** Writes a WAV file of 32-bit floats at a rate in Hz. Throws std::runtime_error if that fails. */
void writeFloatWav (const std::string& path, const Channels& channels, int sampleRate);

/** Reads one. Throws std::runtime_error if it is no WAV file of 32-bit floats at that rate. */
Channels readFloatWav (const std::string& path, int sampleRate);
