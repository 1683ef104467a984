// SPDX-License-Identifier: AGPL-3.0-only
// The VST 2 interface in a namespace, as our own hosts (the renderer, the tests) see it.
#pragma once

#include <cstddef>

namespace Vst2
{
#include "pluginterfaces/vst2.x/aeffect.h"
#include "pluginterfaces/vst2.x/aeffectx.h"
} // namespace Vst2
