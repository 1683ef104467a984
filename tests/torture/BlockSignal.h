// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "torture/Dice.h"

#include <span>

/** Fills a channel with a signal of a kind that the dice choose: silence, noise or a tone at any level, far too much,
    denormals, or any of these with NaN, infinities and the largest numbers among them. Full scale is 1.0. */
void fillWithSomeSignal (std::span<float> channel, Dice& dice);
