// SPDX-License-Identifier: AGPL-3.0-only
// What a host's project keeps of the built library, as the program's chunk and as the bank's.
#include "support/RawHost.h"
#include "support/StateBlock.h"

#include <gtest/gtest.h>

#include <regex>

namespace
{
using namespace state_block;

/** Every test is run for the bank's chunk and for the program's. */
class Chunk : public RawHost::Anchored<testing::TestWithParam<bool>>
{
protected:
    static std::string save (RawHost& from) { return from.chunk (GetParam()); }
    static void load (RawHost& into, const std::string& bytes) { into.setChunk (bytes, GetParam()); }

    RawHost host;
};

INSTANTIATE_TEST_SUITE_P (Of,
                          Chunk,
                          testing::Bool(),
                          [] (const auto& kind) { return kind.param ? "TheProgram" : "TheBank"; });

TEST_P (Chunk, OfAFreshInstanceIsOneLineOfXmlInAFrame)
{
    const auto text = textOf (save (host));
    EXPECT_TRUE (std::regex_match (
        text,
        std::regex ("<\\?xml version=\"1\\.0\" encoding=\"UTF-8\"\\?> <settings mode=\"0\\.2222\" "
                    "date_modified=\"\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ\" daw=\"[^\"\n]+\" "
                    "plugin=\"Quendal Larkspire\" pluginversion=\"242\" samplerate=\"0\" username=\"[^\"\n]+\"/>")))
        << text;
}

TEST_P (Chunk, ComesBackInAnotherInstance)
{
    load (host, blockWith ("mode=\"0.5\" zoom=\"2\" Engineer=\"J&#246;rg &lt;&amp;&gt;\""));
    host.setParameter (1.0f / 3.0f);
    const auto saved = save (host);
    EXPECT_EQ (timelessAttributesOf (host.chunk (! GetParam())), timelessAttributesOf (saved));

    RawHost other;
    load (other, saved);
    EXPECT_EQ (other.getParameter(), 0.3333f);
    EXPECT_EQ (timelessAttributesOf (save (other)), timelessAttributesOf (saved));
    EXPECT_EQ (valueOf (saved, "Engineer"), "J\u00f6rg <&>");
}

TEST_P (Chunk, ThatIsDamagedLeavesTheInstanceAsItWas)
{
    const auto good = blockWith ("mode=\"0.25\"");
    load (host, blockWith ("mode=\"0.625\" kept=\"entry\""));
    const auto before = timelessAttributesOf (save (host));

    for (const auto& bytes : { std::string ("V"),
                               good.substr (0, 8),
                               "VC1!" + good.substr (4),
                               textOf (good),
                               around (textOf (good), -1),
                               around ("<setting mode=\"0.25\"/>") })
    {
        load (host, bytes);
        EXPECT_EQ (host.getParameter(), 0.625f) << bytes;
        EXPECT_EQ (timelessAttributesOf (save (host)), before) << bytes;
    }
}

TEST_P (Chunk, IsNotSeenByAHostThatSeesEverythingElse)
{
    host.start (48000.0f);
    host.takeCalls();
    load (host, blockWith ("mode=\"0.25\""));
    save (host);
    EXPECT_TRUE (host.takeCalls().empty());

    std::vector<float> left (64);
    std::vector<float> right (64);
    host.process (left, right, 0, 64);
    EXPECT_FALSE (host.takeCalls().empty()) << "a block asks the host for its time";
}
} // namespace
