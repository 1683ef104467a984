// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/PluginUnderTest.h"
#include "torture/Dice.h"
#include "torture/ModelledInstance.h"

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

/** Does to a few instances of a library, in any order, what hosts do. */
class Torture
{
public:
    /** The library's file or bundle, and the seed that all follows from. With windows there has to be a display. */
    Torture (Format format, std::string libraryPath, std::uint64_t seed, bool withWindows);

    /** One operation on one of the instances. Throws a Mismatch where the library is not what the model is. */
    void doOne();

    std::uint64_t operations() const { return operationCount; }

    /** How often each operation was done. */
    const std::map<std::string, std::uint64_t>& counts() const { return countOf; }

    /** What was done last, the oldest first. */
    const std::deque<std::string>& history() const { return lastOperations; }

private:
    struct Operation
    {
        const char* name;
        std::size_t weight;
        std::string (ModelledInstance::*act) (Dice&);
    };

    const Operation& someOperation();
    bool addOrRemoveInstances();
    std::unique_ptr<ModelledInstance> openInstance() const;
    void note (const std::string& text);

    static const std::vector<Operation>& allOperations();

    Format interface;
    std::string path;
    Dice dice;
    bool windows;
    std::vector<std::unique_ptr<ModelledInstance>> instances;
    std::uint64_t operationCount = 0;
    std::map<std::string, std::uint64_t> countOf;
    std::deque<std::string> lastOperations;
};
