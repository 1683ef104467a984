// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

/** What is in a folder and all below it, hidden files too, as sorted paths relative to it. */
inline std::vector<std::string> contentsOf (const std::filesystem::path& folder)
{
    std::vector<std::string> names;

    for (const auto& entry : std::filesystem::recursive_directory_iterator (folder))
        names.push_back (entry.path().lexically_relative (folder).string());

    std::sort (names.begin(), names.end());
    return names;
}

/** A new empty folder of a test's own, gone with everything in it when the test ends. */
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        auto name = (std::filesystem::temp_directory_path() / "larkspire-tools-XXXXXX").string();

        if (mkdtemp (name.data()) == nullptr)
            throw std::runtime_error ("no temporary folder");

        folder = name;
    }

    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all (folder, error);
    }

    TemporaryFolder (const TemporaryFolder&) = delete;
    TemporaryFolder& operator= (const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return folder; }

    /** The path of something in the folder. */
    std::string operator/ (const std::string& name) const { return (folder / name).string(); }

    std::vector<std::string> contents() const { return contentsOf (folder); }

    /** Waits until a name that contains a text is in it; false if that takes more than 20 seconds. */
    bool showsSoon (const std::string& text) const
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds (20);

        while (std::chrono::steady_clock::now() < end)
        {
            for (const auto& name : contents())
                if (name.find (text) != std::string::npos)
                    return true;

            std::this_thread::sleep_for (std::chrono::milliseconds (2));
        }

        return false;
    }

private:
    std::filesystem::path folder;
};
