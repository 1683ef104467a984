// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <utility>

namespace larkspire
{

/** One sample of both channels, linear with full scale 1.0: first is left, second is right. */
using StereoSample = std::pair<float, float>;

} // namespace larkspire
