// SPDX-License-Identifier: AGPL-3.0-only
#include "chain/LaneConstants.h"

#include "chain/AirTerm.h"
#include "chain/Expander.h"
#include "chain/HighPass.h"
#include "chain/OddPolynomials.h"
#include "chain/SoftClip.h"
#include "chain/StereoFold.h"

namespace larkspire::lanes
{

constinit const ChannelPair one = everywhere (1.0f);
constinit const ChannelPair minusOne = everywhere (-1.0f);
constinit const ChannelPair half = everywhere (0.5f);
constinit const ChannelPair halfPi = everywhere (larkspire::halfPi);
constinit const ChannelPair minusHalfPi = everywhere (-larkspire::halfPi);
constinit const ChannelPair highPassSnap = everywhere (larkspire::highPassSnap);
constinit const ChannelPair expanderDecay = everywhere (larkspire::expanderDecay);
constinit const ChannelPair expanderFloor = everywhere (larkspire::expanderFloor);
constinit const ChannelPair foldScale = everywhere (larkspire::foldScale);
constinit const ChannelPair airDrive = everywhere (larkspire::airDrive);
constinit const ChannelPair airLevel = everywhere (larkspire::airLevel);
constinit const ChannelPair clipCeiling = everywhere (larkspire::clipCeiling);
constinit const ChannelPair sine[4] = { everywhere (sineCoefficients[0]),
                                        everywhere (sineCoefficients[1]),
                                        everywhere (sineCoefficients[2]),
                                        everywhere (sineCoefficients[3]) };

} // namespace larkspire::lanes
