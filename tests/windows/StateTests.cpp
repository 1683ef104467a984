// SPDX-License-Identifier: AGPL-3.0-only
// States of the Windows libraries under Wine, and of the Linux libraries in them.
#include "support/FirstMatch.h"
#include "support/Recording.h"
#include "support/TemporaryFolder.h"
#include "support/VstW.h"
#include "windows/WineHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <pwd.h>
#include <unistd.h>

namespace
{
/** The value of an attribute in a state block. */
std::string attribute (const std::string& state, const std::string& name)
{
    return found (state, " " + name + "=\"([^\"]*)\"");
}

std::string savedOnLinux (Format format, int position)
{
    const auto plugin = openPlugin (format);
    plugin->setParameter (knobPosition (position));
    return plugin->save();
}

struct Saved
{
    int position;
    std::string state;
};

/** Restores states on Windows, each in an instance of its own that saves it again, and expects that they arrive. */
void expectRestored (Format format, const std::vector<Saved>& all)
{
    const TemporaryFolder folder;
    std::vector<std::string> files;

    for (std::size_t i = 0; i < all.size(); ++i)
    {
        files.push_back (folder / std::to_string (i));
        writeBytes (files.back(), all[i].state);
        files.push_back (folder / (std::to_string (i) + " again"));
    }

    const auto parameters = WineHost::run ("restore", files, format).all ("parameter");
    ASSERT_EQ (parameters.size(), all.size());

    for (std::size_t i = 0; i < all.size(); ++i)
    {
        const auto again = bytesOf (files[2 * i + 1]);
        EXPECT_NEAR (std::stof (parameters[i]), knobPosition (all[i].position), 5e-5f)
            << "state " << i << " of position " << all[i].position;
        EXPECT_EQ (attribute (again, "mode"), attribute (all[i].state, "mode"))
            << "state " << i << " of position " << all[i].position;
    }
}

class WindowsState : public testing::TestWithParam<Format>
{
};

INSTANTIATE_TEST_SUITE_P (Of, WindowsState, testing::ValuesIn (vstFormats), testing::PrintToStringParamName());

TEST_P (WindowsState, SavedOnWindowsIsRestoredOnLinux)
{
    for (int position = 0; position < 4; ++position)
    {
        const TemporaryFolder folder;
        WineHost::run ("save", { std::to_string (position), folder / "state" }, GetParam());

        for (const auto restoring : vstFormats)
        {
            const auto plugin = openPlugin (restoring);
            plugin->setParameter (1.0f);
            plugin->load (bytesOf (folder / "state"));
            EXPECT_NEAR (plugin->getParameter(), knobPosition (position), 5e-5f) << restoring;
        }
    }
}

TEST_P (WindowsState, SavedOnLinuxIsRestoredOnWindows)
{
    std::vector<Saved> all;

    for (int position = 0; position < 4; ++position)
        for (const auto saving : vstFormats)
            all.push_back ({ position, savedOnLinux (saving, position) });

    expectRestored (GetParam(), all);
}

TEST (WindowsWrappings, OfVst2StatesAreOpenedByVst3)
{
    std::vector<Saved> all;

    for (int position = 0; position < 4; ++position)
        for (const auto chunk = savedOnLinux (Format::vst2, position);
             const auto& state : { wrapped::bank (chunk), wrapped::vstW (chunk, false), wrapped::vstW (chunk, true) })
            all.push_back ({ position, state });

    expectRestored (Format::vst3, all);
}

TEST_P (WindowsState, NamesTheUserAndTheSecondHalfOfTheHostsPath)
{
    const TemporaryFolder folder;
    WineHost::run ("save", { "2", folder / "state" }, GetParam());
    const auto state = bytesOf (folder / "state");
    EXPECT_EQ (state.substr (0, 4), "VC2!");
    EXPECT_EQ (attribute (state, "username"), getpwuid (geteuid())->pw_name); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ (attribute (state, "plugin"), "Quendal Larkspire");
    EXPECT_EQ (attribute (state, "pluginversion"), "242");
    EXPECT_THAT (attribute (state, "date_modified"), testing::MatchesRegex ("....-..-..T..:..:..Z"));

    // Wine shows the root as a drive, so that the path has one element more than its folders and its name: the drive.
    std::vector<std::string> elements { "Z:" };

    for (const auto& part : std::filesystem::path (WineHost::programPath()).relative_path())
        elements.push_back (part.string());

    std::string tail;

    for (std::size_t i = elements.size() / 2; i < elements.size(); ++i)
        tail += (tail.empty() ? "" : "/") + elements[i];

    EXPECT_EQ (attribute (state, "daw"), tail);
}
} // namespace
