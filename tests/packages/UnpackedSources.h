// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "packages/Packages.h"

/** The archive of the sources, unpacked as somebody does who wants to build it, with the tree of JUCE in its place. */
class UnpackedSources
{
public:
    UnpackedSources();

    std::string operator/ (const std::string& name) const { return folder / (packages::sourcesFolder + "/" + name); }

    /** Configures and builds, and gives the files that are installed, without the folders. There is no git here, and
        nothing that fetches from a network. Throws std::runtime_error if it fails. */
    std::vector<std::string> installedFiles();

    /** Where installedFiles has put a file. */
    std::string installed (const std::string& file) const { return folder / ("installed/" + file); }

private:
    TemporaryFolder folder;
};

/** A tar archive of JUCE's sources in a folder of this name, as its maker publishes them. */
void writeJuceArchive (const std::string& file, const std::string& name);
