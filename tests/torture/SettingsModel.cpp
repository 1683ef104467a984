// SPDX-License-Identifier: AGPL-3.0-only
#include "torture/SettingsModel.h"

#include "support/StateBlock.h"
#include "torture/Mismatch.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace
{
using state_block::around;
using state_block::header;

/** A value as a host may write it, and as the plug-in writes it. */
struct Spelling
{
    const char* given;
    const char* saved;
};

constexpr std::array spellings { Spelling { "", "" },
                                 Spelling { "1", "1" },
                                 Spelling { "a longer text, with blanks; and marks!",
                                            "a longer text, with blanks; and marks!" },
                                 Spelling { "&lt;&gt;&amp;&quot;", "&lt;&gt;&amp;&quot;" },
                                 Spelling { "it's", "it's" },
                                 Spelling { "it&apos;s", "it's" },
                                 Spelling { "\xc3\xa9t\xc3\xa9", "&#233;t&#233;" },
                                 Spelling { "&#x20AC;", "&#8364;" },
                                 Spelling { "/home/somebody/", "/home/somebody/" } };

constexpr std::array names { "zoom",   "Mode",          "MODE",       "a",        "date",          "daw",
                             "plugin", "pluginversion", "samplerate", "username", "date_modified", "z9",
                             "_x",     "with-dash",     "mode2" };

/** A text of the parameter's attribute, and the value that it stands for. */
struct ModeText
{
    const char* text;
    float value;
};

constexpr std::array modeTexts { ModeText { "0.0000", 0.0f },    ModeText { "0.1111", 0.1111f },
                                 ModeText { "0.2222", 0.2222f }, ModeText { "0.3333", 0.3333f },
                                 ModeText { "0.5", 0.5f },       ModeText { "1.0000", 1.0f },
                                 ModeText { "-1", 0.0f },        ModeText { "7", 1.0f },
                                 ModeText { "nan", 0.0f },       ModeText { "inf", 1.0f },
                                 ModeText { "-inf", 0.0f },      ModeText { "Medium", 0.0f },
                                 ModeText { "", 0.0f },          ModeText { " 0.25", 0.25f },
                                 ModeText { "0.25xyz", 0.25f },  ModeText { "2.5e-1", 0.25f } };

/** Damage that makes a block no document. */
std::string damaged (const std::string& text, Dice& dice)
{
    switch (dice.below (8))
    {
    case 0:
        return text; // without a frame

    case 1:
        return around (text, 0);

    case 2:
        return around (text, -5);

    case 3:
        return around (text, 5); // ends within the first name

    case 4:
        return around ("<other mode=\"1\"/>");

    case 5:
        return around (text).substr (0, 1 + dice.below (8));

    case 6:
    {
        auto bytes = around (text);
        bytes[dice.below (4)] ^= 0x20;
        return bytes;
    }

    default:
    {
        std::string rubbish;

        for (std::size_t count = 1 + dice.below (300); count > 0; --count)
            rubbish += static_cast<char> (dice.bits() & 0xffu);

        return rubbish;
    }
    }
}

/** The second half of the host program's path. */
std::string hostTail()
{
    std::array<char, 4096> buffer {};
    const auto length = readlink ("/proc/self/exe", buffer.data(), buffer.size());
    std::vector<std::string> elements { "" };

    for (const char c : std::string (buffer.data(), static_cast<std::size_t> (length)))
        if (c == '/')
            elements.emplace_back();
        else
            elements.back() += c;

    std::string tail;

    for (std::size_t i = std::max<std::size_t> (elements.size() / 2, 1); i < elements.size(); ++i)
        tail += (tail.empty() ? "" : "/") + elements[i];

    return tail;
}

std::string loginName()
{
    const auto* record = getpwuid (geteuid());
    return record != nullptr ? record->pw_name : "";
}

/** Whether a text is a time such as 2024-10-27T09:05:31Z. */
bool isTime (const std::string& text)
{
    constexpr std::string_view form = "dddd-dd-ddTdd:dd:ddZ";

    if (text.size() != form.size())
        return false;

    for (std::size_t i = 0; i < form.size(); ++i)
        if (form[i] == 'd' ? text[i] < '0' || text[i] > '9' : text[i] != form[i])
            return false;

    return true;
}

std::string attribute (const std::string& name, const std::string& value)
{
    return name + "=\"" + value + "\"";
}
} // namespace

SettingsModel::Block SettingsModel::someBlock (Dice& dice)
{
    Block block;
    std::string text (dice.onceIn (3) ? "" : header);
    text += dice.onceIn (8) ? "<SETTINGS" : "<settings";

    for (std::size_t count = dice.below (6); count > 0; --count)
    {
        const std::string name = dice.oneOf (names);
        const auto& spelling = dice.oneOf (spellings);
        text += " " + attribute (name, spelling.given);

        if (*spelling.saved != 0)
            block.attributes[name] = spelling.saved;
    }

    if (! dice.onceIn (4))
    {
        const auto& mode = dice.oneOf (modeTexts);
        text += " " + attribute ("mode", mode.text);
        block.hasMode = true;
        block.mode = mode.value;
    }

    text += dice.onceIn (6) ? "><child mode=\"1\"/> text </settings>" : "/>";

    if (text.find ("<SETTINGS") != std::string::npos && text.ends_with ("</settings>"))
        text.replace (text.size() - 11, 11, "</SETTINGS>");

    if (dice.onceIn (3))
        return { damaged (text, dice), false, false, 0.0f, {} };

    block.bytes = dice.onceIn (5) ? around (text, 1000000) : around (text);
    block.isDocument = true;
    return block;
}

SettingsModel::Block SettingsModel::blockOf (const std::string& saved, float mode, const SettingsModel& whenSaved)
{
    std::array<char, 32> text {};
    std::snprintf (text.data(), text.size(), "%.4f", static_cast<double> (mode));
    const float meant = std::isnan (mode) ? 0.0f : std::strtof (text.data(), nullptr);
    auto kept = whenSaved.attributes;
    std::erase_if (kept, [] (const auto& entry) { return entry.second.empty(); });
    return { saved, true, true, meant, kept };
}

void SettingsModel::requireSaved (const std::string& bytes, float mode, double rate)
{
    static const std::string tail = hostTail();
    const std::string marker = " date_modified=\"";
    const auto date = bytes.find (marker);

    if (date == std::string::npos || ! isTime (bytes.substr (date + marker.size(), 20)))
        throw Mismatch ("a saved document has no date: " + bytes);

    attributes["date_modified"] = bytes.substr (date + marker.size(), 20);
    attributes["daw"] = tail;
    attributes["plugin"] = "Quendal Larkspire";
    attributes["pluginversion"] = "242";
    attributes["samplerate"] = std::to_string (static_cast<int> (rate));
    attributes["username"] = loginName();

    std::array<char, 32> value {};
    std::snprintf (value.data(), value.size(), "%.4f", static_cast<double> (mode));
    std::string text (header);
    text += "<settings " + attribute ("mode", value.data());

    for (const auto& [name, spelling] : attributes)
        text += " " + attribute (name, spelling);

    text += "/>";
    require ("the saved document", bytes.substr (8, bytes.size() - 9), text);
    require ("the frame around a saved document", bytes == around (text), true);
}
