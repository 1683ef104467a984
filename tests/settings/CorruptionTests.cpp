// SPDX-License-Identifier: AGPL-3.0-only
// Blocks that storage or other programs have damaged: all cuts and all flips of a single bit.
#include "settings/StateBlock.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace
{
using namespace state_block;

constexpr float formerMode = 0.625f;
const Store formerStore { { "kept", "entry" }, { "mode", "stale" } };
const std::string validText = documentWith ("mode=\"0.2500\" date_modified=\"2024-10-27T09:05:31Z\" daw=\"bin/host\" "
                                            "note=\"&lt;caf&#233;&#8364; &amp; \u00e4\u97f3\U0001F399\" "
                                            "plugin=\"Quendal Larkspire\" pluginversion=\"242\"");
const std::string validBlock = around (validText);

/** A processor that is given one damaged block after the other, each time from the same state. */
class Victim
{
public:
    /** False where the block was no document; then nothing but the request may have been touched. */
    bool takes (const std::string& block)
    {
        processor.setMode (formerMode);
        processor.settings.clear();

        for (const auto& [key, value] : formerStore)
            processor.setSetting (key, value);

        processor.settingsDue = false;
        processor.samplesSinceChange = 77;
        processor.stateTouched = false;

        restore (processor, block);

        EXPECT_TRUE (processor.settingsDue);
        EXPECT_EQ (processor.samplesSinceChange, 0);
        EXPECT_TRUE (processor.stateTouched);
        EXPECT_GE (mode(), 0.0f);
        EXPECT_LE (mode(), 1.0f);

        const bool replaced = store() != formerStore;
        EXPECT_TRUE (replaced || mode() == formerMode) << "a block that is no document has set the parameter";

        for (const auto& [key, value] : store())
            EXPECT_FALSE (key.empty() || value.empty()) << key;

        return replaced;
    }

    float mode() { return processor.modeParameter->get(); }
    Store store() const { return plain (processor.settings); }
    std::string saved() { return save (processor); }

private:
    OpenProcessor processor;
};

/** The attributes that stand complete in a text, by the one form in which validText has them. */
Store completeAttributes (std::string_view text)
{
    const auto attributes = attributesOf (validBlock);
    std::size_t from = 0;
    Store complete;

    for (const auto& [name, value] : attributes)
    {
        const auto start = validText.find (" " + name + "=\"", from) + name.size() + 3;
        const auto end = validText.find ('"', start);
        from = end;

        if (end < text.size())
            complete.emplace (name, value);
    }

    return complete;
}

/** Whether a cut leaves behind what no parser may take for a document: half a name, or a value that has begun and not
    ended. The framework's parser lets a few other cuts pass, one inside an entity among them. */
bool endsInsideANameOrAValue (std::string_view text)
{
    const auto element = validText.find ("<settings") + 9;

    if (text.size() < element)
        return true;

    if (text.size() == element || text == validText)
        return false;

    const auto quotes = std::count (text.begin() + static_cast<std::ptrdiff_t> (element), text.end(), '"');
    const auto rest = text.substr (text.find_last_of ("\" ") + 1);

    if (quotes % 2 == 0)
        return ! rest.empty() && rest.back() != '=';

    const auto value = text.substr (text.rfind ('"') + 1);
    const auto reference = value.rfind ('&');
    const bool isInsideAReference =
        reference != std::string_view::npos && value.find (';', reference) == std::string_view::npos;
    return ! value.empty() && ! isInsideAReference;
}

TEST (Corruption, HasAValidBlockToStartFrom)
{
    Victim victim;
    ASSERT_TRUE (victim.takes (validBlock));
    EXPECT_EQ (victim.mode(), 0.25f);
    EXPECT_EQ (victim.store(), completeAttributes (validText));
    EXPECT_EQ (victim.store().size(), 6u);
}

TEST (Corruption, OfTheLengthLeavesNothingOrWhatStandsAheadOfTheCut)
{
    Victim victim;
    int refused = 0;

    for (std::size_t size = 0; size < validBlock.size(); ++size)
    {
        SCOPED_TRACE (size);
        const auto block = validBlock.substr (0, size);
        const auto text = std::string_view (block).substr (std::min<std::size_t> (size, 8));
        const bool taken = victim.takes (block);
        EXPECT_FALSE (taken && endsInsideANameOrAValue (text));

        if (! taken)
        {
            ++refused;
            continue;
        }

        auto store = victim.store();

        for (const auto& [name, value] : completeAttributes (text))
        {
            EXPECT_EQ (store[name], value);
            store.erase (name);
        }

        EXPECT_LE (store.size(), 1u) << "the attribute that the cut went through, at most";

        const bool hasMode = text.size() > validText.find ("mode=\"") + 6;
        EXPECT_EQ (victim.mode(), hasMode ? 0.25f : text.ends_with ("mode=\"") ? 0.0f : formerMode);
    }

    EXPECT_GT (refused, static_cast<int> (validBlock.size()) * 3 / 4);
}

TEST (Corruption, OfABitIsMetWithoutHarm)
{
    Victim victim;
    const auto textStart = std::size_t { 8 };
    const auto firstQuote = textStart + validText.find ("mode=\"") + 5;
    int taken = 0;

    for (std::size_t position = 0; position < validBlock.size(); ++position)
        for (unsigned bit = 0; bit < 8; ++bit)
        {
            SCOPED_TRACE (testing::Message() << "bit " << bit << " of byte " << position);
            auto block = validBlock;
            block[position] = static_cast<char> (static_cast<unsigned char> (block[position]) ^ 1u << bit);
            const bool wasTaken = victim.takes (block);
            taken += wasTaken ? 1 : 0;

            EXPECT_FALSE (wasTaken && position < 4) << "another magic number";
            EXPECT_FALSE (wasTaken && position == 7 && bit == 7) << "a negative length";
            EXPECT_TRUE (wasTaken || position != validBlock.size() - 1) << "the zero is not needed";

            // Whatever has happened, what is saved next is in order.
            const auto attributes = attributesOf (victim.saved());
            EXPECT_GE (attributes.size(), 7u);
        }

    EXPECT_GT (taken, static_cast<int> (validBlock.size() - firstQuote)) << "most damage is inside a value";
}

TEST (Corruption, OfALetterInAValueIsTheValueOfThatAttributeAlone)
{
    Victim victim;
    const auto start = validText.find ("Quendal");

    for (std::size_t position = start; position < start + std::strlen ("Quendal Larkspire"); ++position)
        for (unsigned bit = 0; bit < 7; ++bit)
        {
            auto text = validText;
            text[position] = static_cast<char> (static_cast<unsigned char> (text[position]) ^ 1u << bit);

            if (text[position] == '\0' || text[position] == '"' || text[position] == '&')
                continue;

            auto expected = completeAttributes (validText);
            expected["plugin"] = text.substr (start, std::strlen ("Quendal Larkspire"));
            EXPECT_TRUE (victim.takes (around (text)));
            EXPECT_EQ (victim.store(), expected);
            EXPECT_EQ (victim.mode(), 0.25f);
        }
}
} // namespace
