// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "chain/ChannelPair.h"

// The library's own, which the compiler takes from where they are and not by way of a table of addresses.
#if defined(__ELF__)
    #pragma GCC visibility push(hidden)
#endif

/** The chain's constants as they stand in a register, once per lane.

    They are defined in a source of their own on purpose. What GCC knows to be one number four times it keeps as a
    single float and spreads with an instruction at every use; what it does not know it takes from memory as an operand
    of the arithmetic itself. That was a tenth of the chain's instructions.
*/
namespace larkspire::lanes
{

extern const ChannelPair one;
extern const ChannelPair minusOne;
extern const ChannelPair half;
extern const ChannelPair halfPi;
extern const ChannelPair minusHalfPi;
extern const ChannelPair highPassSnap;
extern const ChannelPair expanderDecay;
extern const ChannelPair expanderFloor;
extern const ChannelPair foldScale;
extern const ChannelPair airDrive;
extern const ChannelPair airLevel;
extern const ChannelPair clipCeiling;
extern const ChannelPair sine[4];

} // namespace larkspire::lanes

#if defined(__ELF__)
    #pragma GCC visibility pop
#endif
