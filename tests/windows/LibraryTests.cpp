// SPDX-License-Identifier: AGPL-3.0-only
// The Windows library at work under Wine, beside the Linux library.
#include "support/FirstMatch.h"
#include "support/RawHost.h"
#include "support/Recording.h"
#include "support/Signals.h"
#include "support/TemporaryFolder.h"
#include "windows/WineHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

TEST (WindowsLibrary, ShowsTheSameIdentity)
{
    const auto report = WineHost::run ("identity");
    EXPECT_EQ (report["id"], "546d7771");
    EXPECT_EQ (report["version"], "65536");
    EXPECT_EQ (report["flags"], "561");
    EXPECT_EQ (report["programs"], "1");
    EXPECT_EQ (report["parameters"], "1");
    EXPECT_EQ (report["inputs"], "2");
    EXPECT_EQ (report["outputs"], "2");
    EXPECT_EQ (report["delay"], "0");
    EXPECT_EQ (report["effect name"], "Quendal Larkspire");
    EXPECT_EQ (report["product"], "Quendal Larkspire");
    EXPECT_EQ (report["vendor"], "Quendal");
    EXPECT_EQ (report["vendor version"], "65536");
    EXPECT_EQ (report["category"], "1");
    EXPECT_EQ (report["parameter"], "Mode");

    const char* texts[] = { "bypass", "Gentle", "Medium", "Powerful", "" };

    for (int i = 0; i < 5; ++i)
        EXPECT_EQ (report["position " + std::to_string (i)], texts[i]) << i;
}

class WindowsSound : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P (AtPosition, WindowsSound, testing::Values (0, 1, 2, 3, 4, 9));

TEST_P (WindowsSound, IsThatOfTheLinuxLibrary)
{
    constexpr std::size_t frames = 480000; // ten seconds
    auto sound = voice (frames);

    std::string interleaved (frames * 2 * sizeof (float), '\0');
    auto* samples = reinterpret_cast<float*> (interleaved.data());

    for (std::size_t i = 0; i < frames; ++i)
    {
        samples[2 * i] = sound.left[i];
        samples[2 * i + 1] = sound.right[i];
    }

    const TemporaryFolder folder;
    writeBytes (folder / "in", interleaved);
    WineHost::run ("render", { std::to_string (GetParam()), "48000", folder / "in", folder / "out" });
    const auto rendered = bytesOf (folder / "out");
    ASSERT_EQ (rendered.size(), interleaved.size());
    const auto* windows = reinterpret_cast<const float*> (rendered.data());

    RawHost linux;
    linux.setParameter (knobPosition (GetParam()));
    linux.start (48000.0f, 512);

    for (std::size_t from = 0; from < frames; from += 512)
        linux.process (sound.left, sound.right, from, std::min<std::size_t> (512, frames - from));

    float largest = 0.0f;

    for (std::size_t i = 0; i < frames; ++i)
    {
        largest = std::max (largest, std::abs (windows[2 * i] - sound.left[i]));
        largest = std::max (largest, std::abs (windows[2 * i + 1] - sound.right[i]));
    }

    std::printf ("largest difference %g of full scale\n", static_cast<double> (largest));

    if (GetParam() == 0)
        EXPECT_EQ (largest, 0.0f);
    else
        EXPECT_LE (largest, 2e-5f);
}

class WindowsState : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P (AtPosition, WindowsState, testing::Range (0, 4));

TEST_P (WindowsState, SavedOnWindowsIsRestoredOnLinux)
{
    const TemporaryFolder folder;
    WineHost::run ("save", { std::to_string (GetParam()), folder / "state" });

    RawHost linux;
    linux.setParameter (1.0f);
    linux.setChunk (bytesOf (folder / "state"));
    EXPECT_NEAR (linux.getParameter(), knobPosition (GetParam()), 5e-5f);
}

TEST_P (WindowsState, SavedOnLinuxIsRestoredOnWindows)
{
    RawHost linux;
    linux.setParameter (knobPosition (GetParam()));
    const auto saved = linux.chunk();

    const TemporaryFolder folder;
    writeBytes (folder / "state", saved);
    const auto report = WineHost::run ("restore", { folder / "state", folder / "again" });
    EXPECT_NEAR (std::stof (report["parameter"]), knobPosition (GetParam()), 5e-5f);
    EXPECT_EQ (attribute (bytesOf (folder / "again"), "mode"), attribute (saved, "mode"));
}

TEST (WindowsState, NamesTheUserAndTheSecondHalfOfTheHostsPath)
{
    const TemporaryFolder folder;
    WineHost::run ("save", { "2", folder / "state" });
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
