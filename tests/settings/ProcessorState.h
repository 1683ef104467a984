// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/StateBlock.h"

#include <juce_audio_processors/juce_audio_processors.h>

namespace state_block
{

/** What a processor saves. */
inline std::string save (juce::AudioProcessor& processor)
{
    juce::MemoryBlock block;
    processor.getStateInformation (block);
    return { static_cast<const char*> (block.getData()), block.getSize() };
}

/** Restores a copy of the block that ends where the block ends, so that memory checkers see a read behind it. */
inline void restore (juce::AudioProcessor& processor, std::string_view block)
{
    const std::vector<char> bytes (block.begin(), block.end());
    processor.setStateInformation (bytes.data(), static_cast<int> (bytes.size()));
}

/** A processor's store in plain texts. */
inline Store plain (const std::map<juce::String, juce::String>& settings)
{
    Store store;

    for (const auto& [key, value] : settings)
        store.emplace (key.toStdString(), value.toStdString());

    return store;
}

} // namespace state_block
