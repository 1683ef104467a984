// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <map>
#include <string>
#include <vector>

/** What a 64-bit Windows library says of itself, read from the file: the parts of the Portable Executable format that
   the tests ask for. */
struct PortableExecutable
{
    /** Reads a file. Throws std::runtime_error if it is no 64-bit library of that format. */
    explicit PortableExecutable (const std::string& path);

    std::vector<std::string> exports;
    std::vector<std::string> imports;            // libraries, in lower case
    std::map<std::string, std::string> versions; // the texts of the version resource
    std::string fileVersion;                     // the fixed ones, such as "1.2.3.4"
    std::string productVersion;
};
