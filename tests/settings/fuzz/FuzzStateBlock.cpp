// SPDX-License-Identifier: AGPL-3.0-only
// Restores whatever bytes the fuzzer makes up as a state block. A block may be refused or taken in, but the processor
// must stay in order, and what it saves afterwards must restore to the same settings.
#include "settings/ProcessorState.h"
#include "support/OpenProcessor.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <pwd.h>

/** Answers ahead of the system's list of users, whose reading would take most of the time. */
extern "C" int getpwuid_r (uid_t, passwd* record, char* buffer, std::size_t size, passwd** result)
{
    std::snprintf (buffer, size, "fuzzer");
    record->pw_name = buffer;
    *result = record;
    return 0;
}

namespace
{
using state_block::restore;
using state_block::save;
using state_block::Store;

void require (bool condition, const char* what)
{
    if (condition)
        return;

    std::fprintf (stderr, "not so: %s\n", what);
    std::abort();
}

/** Makes a call that takes a second of processor time a harmful one: on a quiet machine and without sanitizers a
    megabyte takes a twentieth. */
template <typename Call>
auto quickly (const Call& call)
{
    struct Watch
    {
        ~Watch() { require (std::clock() - start < CLOCKS_PER_SEC, "a call takes less than a second"); }
        const std::clock_t start = std::clock();
    };

    const Watch watch;
    return call();
}

/** The attributes of a block of our own that survive a restore, without the time of saving. */
Store attributesOf (const std::string& block)
{
    Store attributes;

    for (const auto& [name, value] : state_block::timelessAttributesOf (block))
        if (! value.empty())
            require (attributes.emplace (name, value).second, "no attribute stands twice");

    return attributes;
}
} // namespace

extern "C" int LLVMFuzzerInitialize (int*, char***)
{
    // JUCE writes its assertions here: thousands a second, and they say no more than that a block is damaged.
    std::cerr.setstate (std::ios_base::badbit);

    // As in hosts: the parser's idea of a letter comes from here.
    return std::setlocale (LC_CTYPE, "C.UTF-8") != nullptr ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    static OpenProcessor processor;
    const juce::String former ("no name"); // no document can hold it

    processor.setMode (0.25f);
    processor.settings = { { former, "entry" } };
    processor.settingsDue = false;
    processor.samplesSinceChange = 77;
    processor.stateTouched = false;

    quickly ([&] { restore (processor, { reinterpret_cast<const char*> (data), size }); });

    require (processor.settingsDue && processor.samplesSinceChange == 0 && processor.stateTouched,
             "every block asks for a re-initialisation");

    const float mode = processor.modeParameter->get();
    require (mode >= 0.0f && mode <= 1.0f, "the parameter stays in its range");

    if (processor.settings.contains (former))
    {
        require (mode == 0.25f && processor.settings.size() == 1, "what is no document changes nothing");
        processor.settings.clear();
    }

    for (const auto& [name, value] : processor.settings)
        require (name.isNotEmpty() && value.isNotEmpty(), "the store holds nothing empty");

    const auto first = quickly ([&] { return save (processor); });
    processor.settings = { { former, "entry" } };
    quickly ([&] { restore (processor, first); });
    require (! processor.settings.contains (former), "what was saved is a document");
    const auto second = save (processor);
    require (attributesOf (first) == attributesOf (second), "what was saved restores to the same settings");
    return 0;
}
