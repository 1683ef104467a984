// SPDX-License-Identifier: AGPL-3.0-only
// What happens when memory runs out while a processor is being built. The operators here count all that this program
// allocates with new, and can refuse one size.
#include "support/OpenProcessor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{
std::atomic<std::size_t> refusedSize { 0 }; // none
std::atomic<int> allowedBeforeRefusal { 0 };
std::atomic<long> liveAllocations { 0 };

void* allocate (std::size_t size)
{
    if (size > 0 && size == refusedSize && allowedBeforeRefusal-- == 0)
        throw std::bad_alloc();

    if (void* memory = std::malloc (size > 0 ? size : 1))
    {
        ++liveAllocations;
        return memory;
    }

    throw std::bad_alloc();
}

void release (void* memory) noexcept
{
    if (memory != nullptr)
        --liveAllocations;

    std::free (memory);
}
} // namespace

void* operator new (std::size_t size)
{
    return allocate (size);
}

void* operator new[] (std::size_t size)
{
    return allocate (size);
}

// A sanitizer's own of this kind would not go with the operators delete below.
void* operator new (std::size_t size, const std::nothrow_t&) noexcept
{
    try
    {
        return allocate (size);
    }
    catch (const std::bad_alloc&)
    {
        return nullptr;
    }
}

void operator delete (void* memory) noexcept
{
    release (memory);
}

void operator delete[] (void* memory) noexcept
{
    release (memory);
}

void operator delete (void* memory, std::size_t) noexcept
{
    release (memory);
}

void operator delete[] (void* memory, std::size_t) noexcept
{
    release (memory);
}

namespace
{
struct Refusal
{
    const char* what;
    std::size_t size;
    int allowedBefore;
};

class ConstructionFailure : public testing::TestWithParam<Refusal>
{
};

/** Has JUCE make its lasting tables ahead of the count. */
void warmUp()
{
    const OpenProcessor processor;
}

TEST_P (ConstructionFailure, LeavesAsAnExceptionAndLeaksNothing)
{
    warmUp();
    const long before = liveAllocations;
    allowedBeforeRefusal = GetParam().allowedBefore;
    refusedSize = GetParam().size;
    EXPECT_THROW (const OpenProcessor processor, std::bad_alloc);
    refusedSize = 0;
    EXPECT_EQ (liveAllocations, before);
}

constexpr auto riderSize = sizeof (larkspire::LevelRider);
constexpr auto filterSize = sizeof (larkspire::PeakingFilter);
constexpr auto reserveSize = sizeof (float) * juce::AudioProcessorQuendal::maxBlockSamples;

INSTANTIATE_TEST_SUITE_P (OfEveryRecord,
                          ConstructionFailure,
                          testing::Values (Refusal { "first reserve buffer", reserveSize, 0 },
                                           Refusal { "second reserve buffer", reserveSize, 1 },
                                           Refusal { "first filter", filterSize, 0 },
                                           Refusal { "third filter", filterSize, 2 },
                                           Refusal { "parameter", sizeof (juce::AudioParameterFloatQuendal), 0 }),
                          [] (const auto& test)
                          {
                              std::string name = test.param.what;
                              std::erase (name, ' ');
                              return name;
                          });

TEST (ConstructionFailure, OfARiderLeavesAsAnExceptionToo)
{
    // JUCE's texts have the riders' size as well: refuse each such allocation in turn until none is left.
    int refusals = 0;
    warmUp();

    for (int allowed = 0; allowed < 1000; ++allowed)
    {
        const long before = liveAllocations;
        allowedBeforeRefusal = allowed;
        refusedSize = riderSize;
        bool refused = false;

        try
        {
            const OpenProcessor processor;
        }
        catch (const std::bad_alloc&)
        {
            refused = true;
        }

        refusedSize = 0;
        EXPECT_EQ (liveAllocations, before) << "after " << allowed;

        if (! refused)
            break;

        ++refusals;
    }

    EXPECT_GE (refusals, 2) << "leveller and expander";
}
} // namespace
