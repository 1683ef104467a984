// SPDX-License-Identifier: AGPL-3.0-only
// How a path is cut, and what stays of the host's.
#include "frame/AudioProcessorQuendal.h"

#include <gtest/gtest.h>

namespace
{
using juce::AudioProcessorQuendal;

std::string tailOf (const char* path)
{
    return AudioProcessorQuendal::hostTail (juce::String::fromUTF8 (path)).toStdString();
}

struct TailRow
{
    const char* path;
    const char* tail;
};

class HostTail : public testing::TestWithParam<TailRow>
{
};

TEST_P (HostTail, IsTheSecondHalfWithoutTheFirstElement)
{
    EXPECT_EQ (tailOf (GetParam().path), GetParam().tail);
}

INSTANTIATE_TEST_SUITE_P (ByLength,
                          HostTail,
                          testing::Values (TailRow { "", "" },
                                           TailRow { "host.exe", "" },
                                           TailRow { "C:/host.exe", "host.exe" },
                                           TailRow { "C:/b/host.exe", "b/host.exe" },
                                           TailRow { "C:/a/b/host.exe", "b/host.exe" },
                                           TailRow { "C:/a/b/c/host.exe", "b/c/host.exe" },
                                           TailRow { "C:/a/b/c/d/host.exe", "c/d/host.exe" },
                                           TailRow { "C:/a/b/c/d/e/host.exe", "c/d/e/host.exe" },
                                           TailRow { "C:/a/b/c/d/e/f/host.exe", "d/e/f/host.exe" }));

INSTANTIATE_TEST_SUITE_P (ByBackslashes,
                          HostTail,
                          testing::Values (TailRow { "host", "" },
                                           TailRow { "C:\\host.exe", "host.exe" },
                                           TailRow { "C:\\b\\host.exe", "b/host.exe" },
                                           TailRow { "C:\\a\\b\\host.exe", "b/host.exe" },
                                           TailRow { "C:\\a/b\\c/host.exe", "b/c/host.exe" },
                                           TailRow { "\\\\server\\share\\host.exe", "server/share/host.exe" }));

INSTANTIATE_TEST_SUITE_P (FromTheRoot,
                          HostTail,
                          testing::Values (TailRow { "/", "" },
                                           TailRow { "/host", "host" },
                                           TailRow { "/bin/host", "bin/host" },
                                           TailRow { "/usr/bin/host", "bin/host" },
                                           TailRow { "/usr/local/bin/host", "local/bin/host" }));

INSTANTIATE_TEST_SUITE_P (WithEmptyElements,
                          HostTail,
                          testing::Values (TailRow { "//", "" },
                                           TailRow { "//host", "/host" },
                                           TailRow { "a//b", "/b" },
                                           TailRow { "a/b//c", "/c" },
                                           TailRow { "a/b/c/", "b/c" },
                                           TailRow { "C:/host.exe/", "host.exe" }));

INSTANTIATE_TEST_SUITE_P (WithUnusualCharacters,
                          HostTail,
                          testing::Values (TailRow { "C:\\Program Files\\Voice Studio 7\\bin\\ host .exe ",
                                                     "Voice Studio 7/bin/ host .exe " },
                                           TailRow { "C:\\a\\R&D <\"beta\">\\host.exe", "R&D <\"beta\">/host.exe" },
                                           TailRow { "/opt/B\u00fccher/\u97f3\u58f0/\U0001F399 h\u00f6st",
                                                     "B\u00fccher/\u97f3\u58f0/\U0001F399 h\u00f6st" },
                                           TailRow { "C:/\u00e9/\u00e8", "\u00e9/\u00e8" }));

TEST (HostTail, KeepsAsManyElementsAsTheLengthSays)
{
    const std::size_t kept[] = { 0, 0, 1, 2, 2, 3, 3, 4, 4 };
    std::string path;

    for (std::size_t n = 0; n < std::size (kept); ++n)
    {
        EXPECT_EQ (AudioProcessorQuendal::splitPath (path).size(), n);

        const auto tail = tailOf (path.c_str());
        EXPECT_EQ (AudioProcessorQuendal::splitPath (tail).size(), kept[n]) << path;
        EXPECT_TRUE (path.ends_with (tail)) << tail;
        path += (n > 0 ? "/e" : "e") + std::to_string (n);
    }
}

struct SplitRow
{
    const char* text;
    std::vector<std::string> elements;
};

class SplitPath : public testing::TestWithParam<SplitRow>
{
};

TEST_P (SplitPath, CutsAtEverySlash)
{
    EXPECT_EQ (AudioProcessorQuendal::splitPath (GetParam().text), GetParam().elements);
}

INSTANTIATE_TEST_SUITE_P (Texts,
                          SplitPath,
                          testing::Values (SplitRow { "", {} },
                                           SplitRow { "a", { "a" } },
                                           SplitRow { "/", { "" } },
                                           SplitRow { "//", { "", "" } },
                                           SplitRow { "/a", { "", "a" } },
                                           SplitRow { "a/", { "a" } },
                                           SplitRow { "a//", { "a", "" } },
                                           SplitRow { "a//b", { "a", "", "b" } },
                                           SplitRow { "a b/ c", { "a b", " c" } },
                                           SplitRow { "a\\b/c", { "a\\b", "c" } },
                                           SplitRow { "a\nb/\u00e4", { "a\nb", "\u00e4" } }));
} // namespace
