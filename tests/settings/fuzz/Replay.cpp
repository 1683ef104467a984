// SPDX-License-Identifier: AGPL-3.0-only
// In place of the fuzzer: gives each file of a folder to its target once.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerInitialize (int* argumentCount, char*** arguments);
extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size);

int main (int argumentCount, char** arguments)
{
    if (argumentCount != 2 || LLVMFuzzerInitialize (&argumentCount, &arguments) != 0)
        return 2;

    int count = 0;

    for (const auto& entry : std::filesystem::directory_iterator (arguments[1]))
    {
        std::ifstream file (entry.path(), std::ios::binary);
        const std::vector<char> bytes { std::istreambuf_iterator<char> (file), {} };
        std::printf ("%s\n", entry.path().filename().c_str());
        LLVMFuzzerTestOneInput (reinterpret_cast<const std::uint8_t*> (bytes.data()), bytes.size());
        ++count;
    }

    return count > 0 ? 0 : 2;
}
