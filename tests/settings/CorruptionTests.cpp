// SPDX-License-Identifier: AGPL-3.0-only
// Blocks that storage or other programs have damaged: all cuts and all flips of a single bit.
#include "settings/RestoredProcessor.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
using namespace state_block;

const std::string validText = documentWith ("mode=\"0.2500\" date_modified=\"2024-10-27T09:05:31Z\" daw=\"bin/host\" "
                                            "note=\"&lt;caf&#233;&#8364; &amp; \u00e4\u97f3\U0001F399\" "
                                            "plugin=\"Quendal Larkspire\" pluginversion=\"242\"");
const std::string validBlock = around (validText);

/** Restores a block. False where it was no document; then nothing but the request may have been touched. */
bool takes (RestoredProcessor& processor, const std::string& block)
{
    processor.takeIn (block);
    EXPECT_TRUE (processor.hasAskedForAnUpdate());
    EXPECT_GE (processor.mode(), 0.0f);
    EXPECT_LE (processor.mode(), 1.0f);

    for (const auto& [key, value] : processor.store())
        EXPECT_FALSE (key.empty() || value.empty()) << key;

    const bool taken = ! processor.hasFormerStore();
    EXPECT_TRUE (taken || processor.isUntouched()) << "a block that is no document has set the parameter";
    return taken;
}

/** The attributes that stand complete in the front part of the valid text. */
Store completeAttributes (std::string_view front)
{
    const auto attributes = attributesOf (validBlock);
    const auto quotes = std::ranges::count (front.substr (std::min (header.size(), front.size())), '"');
    return { attributes.begin(), attributes.begin() + quotes / 2 };
}

TEST (Corruption, HasAValidBlockToStartFrom)
{
    RestoredProcessor processor;
    ASSERT_TRUE (takes (processor, validBlock));
    EXPECT_EQ (processor.mode(), 0.25f);
    EXPECT_EQ (processor.store(), completeAttributes (validText));
    EXPECT_EQ (processor.store().size(), 6u);
}

TEST (Corruption, OfTheLengthLeavesNothingOrWhatStandsAheadOfTheCut)
{
    RestoredProcessor processor;
    int refused = 0;

    for (std::size_t size = 0; size < validBlock.size(); ++size)
    {
        SCOPED_TRACE (size);

        if (! takes (processor, validBlock.substr (0, size)))
        {
            ++refused;
            continue;
        }

        ASSERT_GE (size, 8u);
        const auto text = std::string_view (validText).substr (0, size - 8);
        const auto complete = completeAttributes (text);
        auto store = processor.store();

        for (const auto& [name, value] : complete)
        {
            EXPECT_EQ (store[name], value);
            store.erase (name);
        }

        EXPECT_LE (store.size(), 1u) << "the attribute that the cut went through, at most";

        const float cutMode = text.ends_with ("mode=\"") ? 0.0f : RestoredProcessor::formerMode;
        EXPECT_EQ (processor.mode(), complete.contains ("mode") ? 0.25f : cutMode);
    }

    EXPECT_GT (refused, static_cast<int> (validBlock.size()) * 3 / 4);
}

TEST (Corruption, OfTheLengthInsideANameOrAValueLeavesNothing)
{
    RestoredProcessor processor;

    for (const std::string_view whole :
         { "settings", "mode", "0.2500", "date_modified", "2024-10-27T09:05:31Z", "bin/host", "Quendal Larkspire" })
        for (std::size_t left = 1; left < whole.size(); ++left)
            EXPECT_FALSE (takes (processor, validBlock.substr (0, validBlock.find (whole) + left)))
                << whole.substr (0, left);
}

TEST (Corruption, OfABitIsMetWithoutHarm)
{
    RestoredProcessor processor;
    const auto firstQuote = validBlock.find ("mode=\"") + 5;
    int taken = 0;

    for (std::size_t position = 0; position < validBlock.size(); ++position)
        for (unsigned bit = 0; bit < 8; ++bit)
        {
            SCOPED_TRACE (testing::Message() << "bit " << bit << " of byte " << position);
            auto block = validBlock;
            block[position] = static_cast<char> (static_cast<unsigned char> (block[position]) ^ 1u << bit);
            const bool wasTaken = takes (processor, block);
            taken += wasTaken ? 1 : 0;

            EXPECT_FALSE (wasTaken && position < 4) << "another magic number";
            EXPECT_FALSE (wasTaken && position == 7 && bit == 7) << "a negative length";
            EXPECT_TRUE (wasTaken || position != validBlock.size() - 1) << "the zero is not needed";

            // Whatever has happened, what is saved next is in order.
            EXPECT_GE (attributesOf (save (processor)).size(), 7u);
        }

    EXPECT_GT (taken, static_cast<int> (validBlock.size() - firstQuote)) << "most damage is inside a value";
}

TEST (Corruption, OfALetterInAValueIsTheValueOfThatAttributeAlone)
{
    RestoredProcessor processor;
    constexpr std::string_view name = "Quendal Larkspire";
    const auto start = validText.find (name);

    for (std::size_t position = start; position < start + name.size(); ++position)
        for (unsigned bit = 0; bit < 7; ++bit)
        {
            auto text = validText;
            text[position] = static_cast<char> (static_cast<unsigned char> (text[position]) ^ 1u << bit);

            if (text[position] == '\0' || text[position] == '"' || text[position] == '&')
                continue;

            auto expected = completeAttributes (validText);
            expected["plugin"] = text.substr (start, name.size());
            EXPECT_TRUE (takes (processor, around (text)));
            EXPECT_EQ (processor.store(), expected);
            EXPECT_EQ (processor.mode(), 0.25f);
        }
}
} // namespace
