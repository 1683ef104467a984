// SPDX-License-Identifier: AGPL-3.0-only
#include "support/Paths.h"

namespace paths
{

std::string plugin()
{
    return LARKSPIRE_PLUGIN_PATH;
}

std::string vst3()
{
    return LARKSPIRE_VST3_PATH;
}

std::string lv2()
{
    return LARKSPIRE_LV2_PATH;
}

std::string latencyPlugin()
{
    return LARKSPIRE_LATENCY_PLUGIN_PATH;
}

std::string standIn()
{
    return LARKSPIRE_STAND_IN_PATH;
}

std::string otherLibrary()
{
    return LARKSPIRE_OTHER_LIBRARY_PATH;
}

std::string brokenFolder()
{
    return LARKSPIRE_BROKEN_FOLDER_PATH;
}

std::string renderer()
{
    return LARKSPIRE_RENDERER_PATH;
}

std::string measure()
{
    return LARKSPIRE_MEASURE_PATH;
}

std::string microphone()
{
    return LARKSPIRE_MICROPHONE_PATH;
}

std::string screenshot()
{
    return LARKSPIRE_SCREENSHOT_PATH;
}

std::string torture()
{
    return LARKSPIRE_TORTURE_PATH;
}

std::string cmake()
{
    return LARKSPIRE_CMAKE_PATH;
}

std::string juce()
{
    return LARKSPIRE_JUCE_PATH;
}

std::string source (const std::string& name)
{
    return name.empty() ? LARKSPIRE_SOURCE_PATH : LARKSPIRE_SOURCE_PATH "/" + name;
}

} // namespace paths
