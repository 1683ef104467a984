// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/FloatWav.h"

/** Expects that the samples of both are the same to the bit; says of each channel where the first other one is. */
void expectSameBits (const Channels& actual, const Channels& expected);
