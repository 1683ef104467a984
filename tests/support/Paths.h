// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <string>

/** Where the tests find what this build has made, and the sources. In one place, so that the compiler cache of one
    checkout serves another. */
namespace paths
{

std::string plugin(); // the built VST 2 library
std::string vst3();   // the built VST 3 bundle, a folder
std::string lv2();    // the built LV2 bundle, a folder
std::string latencyPlugin();
std::string standIn();      // what the renderer can be given in place of the plug-in
std::string otherLibrary(); // a library that is no plug-in

std::string brokenFolder(); // a library that makes folders break
std::string renderer();
std::string measure();
std::string microphone();
std::string screenshot();
std::string torture();
std::string cmake();
std::string juce(); // the tree of JUCE that this build is made of

/** A file or folder of the sources, by its path in the project. */
std::string source (const std::string& name = "");

} // namespace paths
