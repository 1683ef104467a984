// SPDX-License-Identifier: AGPL-3.0-only
// Properties of saving and restoring together, tried on thousands of random documents. A failure prints how to try the
// same numbers again.
#include "settings/ProcessorState.h"
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cmath>

namespace
{
using namespace state_block;

/** One run of a property tries this many documents: a hundred runs make thousands. */
constexpr int documentsPerRun = 20;

rc::Gen<std::string> anyName()
{
    const std::string start = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
    const auto rest = rc::gen::container<std::string> (rc::gen::elementOf (start + "0123456789.-:"));
    return rc::gen::map (rc::gen::pair (rc::gen::elementOf (start), rest),
                         [] (const auto& parts) { return parts.first + parts.second; });
}

/** Any code point that XML knows, those that need care in a document more often than by chance. */
rc::Gen<std::string> anyCharacter()
{
    const auto map = [] (rc::Gen<std::uint32_t> codes) { return rc::gen::map (std::move (codes), utf8); };

    return rc::gen::weightedOneOf<std::string> (
        { { 4,
            rc::gen::elementOf (
                std::vector<std::string> { "\"", "'", "<", ">", "&", ";", "#", " ", "  ", "/>", "&amp;" }) },
          { 4, map (rc::gen::inRange<std::uint32_t> (0x20, 0x7f)) },
          { 1, rc::gen::elementOf (std::vector<std::string> { "\t", "\n", "\r", "\x01", "\x1f", "\x7f" }) },
          { 1, map (rc::gen::inRange<std::uint32_t> (0x80, 0x800)) },
          { 1, map (rc::gen::inRange<std::uint32_t> (0x800, 0xd800)) },
          { 1, map (rc::gen::inRange<std::uint32_t> (0xe000, 0x10000)) },
          { 1, map (rc::gen::inRange<std::uint32_t> (0x10000, 0x110000)) } });
}

rc::Gen<std::string> anyValue()
{
    return rc::gen::map (rc::gen::nonEmpty (rc::gen::container<std::vector<std::string>> (anyCharacter())),
                         [] (const auto& characters)
                         {
                             std::string value;

                             for (const auto& character : characters)
                                 value += character;

                             return value;
                         });
}

/** Attributes that are neither the parameter's nor the circumstances of a save. */
rc::Gen<Store> anyUnknownAttributes()
{
    return rc::gen::map (rc::gen::container<Store> (anyName(), anyValue()),
                         [] (Store store)
                         {
                             for (const auto& known : freshNames())
                                 store.erase (known);

                             return store;
                         });
}

rc::Gen<float> anyMode()
{
    return rc::gen::map (rc::gen::inRange (0, 1 << 24), [] (int n) { return static_cast<float> (n) / 16777215.0f; });
}

struct AnyDocument
{
    Store unknown;
    float mode;
    int rate;
};

void showValue (const AnyDocument& document, std::ostream& out)
{
    out << "mode " << document.mode << ", rate " << document.rate << ", ";
    rc::show (document.unknown, out);
}

std::vector<AnyDocument> anyDocuments()
{
    const auto one = rc::gen::build<AnyDocument> (rc::gen::set (&AnyDocument::unknown, anyUnknownAttributes()),
                                                  rc::gen::set (&AnyDocument::mode, anyMode()),
                                                  rc::gen::set (&AnyDocument::rate, rc::gen::inRange (0, 400000)));
    return *rc::gen::container<std::vector<AnyDocument>> (documentsPerRun, one);
}

std::string blockOf (const AnyDocument& document)
{
    std::string attributes = "mode=\"" + std::to_string (document.mode) + "\"";

    for (const auto& [name, value] : document.unknown)
        attributes += " " + name + "=\"" + escaped (value) + "\"";

    return blockWith (attributes);
}

/** The attributes of a saved block that are not of the plug-in's own making. */
Store unknownAttributesOf (const std::string& block)
{
    const auto all = attributesOf (block);
    Store unknown (all.begin(), all.end());

    for (const auto& known : freshNames())
        RC_ASSERT (unknown.erase (known) == 1u);

    return unknown;
}

RC_GTEST_PROP (RoundTrip, CarriesEveryUnknownAttributeAndNothingOfTheDocumentBefore, ())
{
    OpenProcessor processor;

    for (const auto& document : anyDocuments())
    {
        restore (processor, blockOf (document));

        const auto mode = std::to_string (document.mode);
        auto expected = document.unknown;
        expected["mode"] = mode;
        RC_ASSERT (processor.modeParameter->get() == std::stof (mode));
        RC_ASSERT (plain (processor.settings) == expected);
        RC_ASSERT (unknownAttributesOf (save (processor)) == document.unknown);
    }
}

RC_GTEST_PROP (RoundTrip, SavesASecondTimeWhatItSavedFirst, ())
{
    OpenProcessor first;
    OpenProcessor second;

    for (const auto& document : anyDocuments())
    {
        first.setMode (document.mode);
        first.giveRate (document.rate);
        second.giveRate (document.rate);
        first.settings.clear();

        for (const auto& [name, value] : document.unknown)
            first.setSetting (juce::String::fromUTF8 (name.c_str()), juce::String::fromUTF8 (value.c_str()));

        const auto block = save (first);
        restore (second, block);
        RC_ASSERT (std::abs (second.modeParameter->get() - document.mode) <= 0.00005001f);

        const auto again = save (second);
        RC_ASSERT (again.size() == block.size());
        RC_ASSERT (timelessAttributesOf (again) == timelessAttributesOf (block));
        RC_ASSERT (plain (first.settings).size() == plain (second.settings).size());
    }
}
} // namespace
