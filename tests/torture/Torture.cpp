// SPDX-License-Identifier: AGPL-3.0-only
#include "torture/Torture.h"

#include "torture/ModelledVst2.h"
#include "torture/ModelledVst3.h"

#include <algorithm>
#include <numeric>

namespace
{
constexpr std::size_t mostInstances = 5;
constexpr std::size_t mostWindows = 2;
} // namespace

Torture::Torture (Format format, std::string libraryPath, std::uint64_t seed, bool withWindows)
    : interface (format),
      path (std::move (libraryPath)),
      dice (seed),
      windows (withWindows)
{
}

const std::vector<Torture::Operation>& Torture::allOperations()
{
    using Instance = ModelledInstance;

    // A window takes as long to open as ten thousand blocks of a few samples.
    static const std::vector<Operation> all { { "process", 4000, &Instance::process },
                                              { "set the parameter", 1200, &Instance::setParameter },
                                              { "set the parameter by a text", 200, &Instance::setParameterByText },
                                              { "read the parameter", 300, &Instance::readParameter },
                                              { "save", 300, &Instance::save },
                                              { "load", 500, &Instance::load },
                                              { "load what was saved", 100, &Instance::loadOwnSave },
                                              { "use the programs", 100, &Instance::usePrograms },
                                              { "announce a rate", 300, &Instance::announceRate },
                                              { "announce a block size", 300, &Instance::announceBlockSize },
                                              { "announce a layout", 300, &Instance::announceLayout },
                                              { "suspend", 300, &Instance::suspend },
                                              { "resume", 600, &Instance::resume },
                                              { "bypass", 200, &Instance::bypass },
                                              { "tell the time", 200, &Instance::tellTheTime },
                                              { "choose a precision", 50, &Instance::choosePrecision },
                                              { "ask for constants", 100, &Instance::askForConstants },
                                              { "open the window", 4, &Instance::openEditor },
                                              { "give the window time", 20, &Instance::idleEditor },
                                              { "close the window", 8, &Instance::closeEditor } };
    return all;
}

const Torture::Operation& Torture::someOperation()
{
    const auto& all = allOperations();
    static const std::size_t sum = std::accumulate (
        all.begin(), all.end(), std::size_t { 0 }, [] (auto s, const auto& o) { return s + o.weight; });
    std::size_t position = dice.below (sum);

    for (const auto& operation : all)
    {
        if (position < operation.weight)
            return operation;

        position -= operation.weight;
    }

    return all.front();
}

bool Torture::addOrRemoveInstances()
{
    // Sometimes the last one goes, and the library with it.
    if (dice.onceIn (5000))
    {
        instances.clear();
        note ("close all instances");
        ++countOf["close all instances"];
    }

    if (instances.empty() || (instances.size() < mostInstances && dice.onceIn (400)))
    {
        instances.push_back (openInstance());
        note ("open instance " + std::to_string (instances.size() - 1));
        ++countOf["open an instance"];
        return true;
    }

    if (instances.size() > 1 && dice.onceIn (400))
    {
        const auto index = dice.below (instances.size());
        instances.erase (instances.begin() + static_cast<std::ptrdiff_t> (index));
        note ("close instance " + std::to_string (index));
        ++countOf["close an instance"];
        return true;
    }

    return false;
}

std::unique_ptr<ModelledInstance> Torture::openInstance() const
{
    if (interface == Format::vst2)
        return std::make_unique<ModelledVst2> (path);

    return std::make_unique<ModelledVst3> (path);
}

void Torture::note (const std::string& text)
{
    constexpr std::size_t longest = 40;
    lastOperations.push_back (std::to_string (operationCount) + ": " + text);

    if (lastOperations.size() > longest)
        lastOperations.pop_front();
}

void Torture::doOne()
{
    if (! addOrRemoveInstances())
    {
        const auto index = dice.below (instances.size());
        const auto& operation = someOperation();
        auto& instance = *instances[index];
        const auto shown =
            std::count_if (instances.begin(), instances.end(), [] (const auto& other) { return other->hasEditor(); });
        const bool opens = operation.act == &ModelledInstance::openEditor;

        if (! opens || (windows && static_cast<std::size_t> (shown) < mostWindows))
        {
            note ("instance " + std::to_string (index) + ", " + operation.name);
            lastOperations.back() += ": " + (instance.*operation.act) (dice);
            ++countOf[operation.name];
        }
    }

    ++operationCount;
}
