// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "torture/Dice.h"

#include <map>
#include <string>

/** What the plug-in has to remember of the documents that it was given, in its own words, and a source of documents. */
class SettingsModel
{
public:
    /** A state block as a host may hold it, and what it does to the parameter. */
    struct Block
    {
        std::string bytes;
        bool isDocument = false;
        bool hasMode = false;
        float mode = 0.0f; // what the document's text means, clamped, where it has one
        std::map<std::string, std::string> attributes;
    };

    /** A good document or something damaged. */
    static Block someBlock (Dice& dice);

    /** A block that was saved once, read by hand. */
    static Block blockOf (const std::string& saved, float mode, const SettingsModel& whenSaved);

    /** What a load leaves behind. */
    void load (const Block& block)
    {
        if (block.isDocument)
            attributes = block.attributes;
    }

    /** What a save writes, and what it leaves behind. The rate is in Hz; the date is taken from the block, where it
       must stand in the right form. Throws a Mismatch if the block is another. */
    void requireSaved (const std::string& bytes, float mode, double rate);

private:
    std::map<std::string, std::string> attributes; // their values as they stand in a saved document
};
