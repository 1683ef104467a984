// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Signals.h"

#include <cstddef>

/** What separates two signals of equal length. */
struct Difference
{
    double worst = 0.0;      // largest distance of two samples, full scale 1.0; infinite where only one is a number
    std::size_t where = 0;   // the frame of it
    bool sameBits = true;    // not a bit differs
    double worstAtEnd = 0.0; // the largest distance within the last tenth
};

Difference compare (const Signal& actual, const Signal& expected);

/** Flush-to-zero and denormals-are-zero for as long as this lives, as the plug-in has them for a block. */
class ScopedFlushToZero
{
public:
    ScopedFlushToZero();
    ~ScopedFlushToZero();
    ScopedFlushToZero (const ScopedFlushToZero&) = delete;
    ScopedFlushToZero& operator= (const ScopedFlushToZero&) = delete;

private:
    unsigned int before;
};
