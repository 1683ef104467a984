// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

inline std::string readFile (const std::string& path)
{
    std::ifstream file (path, std::ios::binary);

    if (! file)
        throw std::runtime_error (path + " cannot be read");

    return { std::istreambuf_iterator<char> (file), {} };
}

inline void writeFile (const std::string& path, const std::string& bytes)
{
    std::ofstream file (path, std::ios::binary);
    file.write (bytes.data(), static_cast<std::streamsize> (bytes.size()));

    if (! file.flush())
        throw std::runtime_error (path + " cannot be written");
}
