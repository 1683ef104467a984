// SPDX-License-Identifier: AGPL-3.0-only
// The tests' own list of calls must not lose any.
#include "host/CallLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <utility>

namespace
{
TEST (CallLog, GivesWhatWasAppendedInOrderAndOnce)
{
    CallLog<int, 4> log;
    EXPECT_TRUE (log.takeAll().empty());

    for (int round = 0; round < 10; ++round)
    {
        for (int i = 0; i < 3; ++i)
            log.append (10 * round + i);

        EXPECT_EQ (log.takeAll(), (std::vector { 10 * round, 10 * round + 1, 10 * round + 2 }));
        EXPECT_TRUE (log.takeAll().empty());
    }

    EXPECT_EQ (log.dropped(), 0u);
}

TEST (CallLog, CountsWhatItCannotHold)
{
    CallLog<int, 4> log;

    for (int i = 0; i < 6; ++i)
        log.append (i);

    EXPECT_EQ (log.dropped(), 2u);
    EXPECT_EQ (log.takeAll(), (std::vector { 0, 1, 2, 3 }));
    log.append (6);
    EXPECT_EQ (log.takeAll(), (std::vector { 6 }));
}

TEST (CallLog, LosesNothingOfThreadsThatAppendWhileItIsTaken)
{
    constexpr int threadCount = 3;
    constexpr int perThread = 100000;
    using Entry = std::pair<int, int>; // which thread, which of its entries

    CallLog<Entry, 64> log;
    std::atomic<int> running { threadCount };
    std::vector<std::thread> threads;
    threads.reserve (threadCount);

    for (int thread = 0; thread < threadCount; ++thread)
        threads.emplace_back (
            [&, thread]
            {
                for (int i = 0; i < perThread; ++i)
                    log.append ({ thread, i });

                --running;
            });

    std::vector<Entry> entries;

    for (bool last = false; ! last;)
    {
        last = running == 0;
        const auto some = log.takeAll();
        entries.insert (entries.end(), some.begin(), some.end());
    }

    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ (entries.size() + log.dropped(), static_cast<std::size_t> (threadCount * perThread));

    for (int thread = 0; thread < threadCount; ++thread)
    {
        std::vector<int> numbers;

        for (const auto& [from, number] : entries)
            if (from == thread)
                numbers.push_back (number);

        EXPECT_TRUE (std::is_sorted (numbers.begin(), numbers.end()));
        EXPECT_EQ (std::adjacent_find (numbers.begin(), numbers.end()), numbers.end());
    }
}
} // namespace
