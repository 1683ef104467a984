// SPDX-License-Identifier: AGPL-3.0-only
// What the host's locale does to a document. Locales with a decimal comma are rarely installed where programs are
// built, so the tests make one.
#include "settings/ProcessorState.h"
#include "support/EnvironmentVariable.h"
#include "support/OpenProcessor.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <iomanip>

namespace
{
using namespace state_block;

/** A locale in a category of this process, until the end of the scope. */
class HostLocale
{
public:
    HostLocale (int localeCategory, const char* name)
        : category (localeCategory),
          former (std::setlocale (localeCategory, nullptr)),
          isInForce (std::setlocale (localeCategory, name) != nullptr)
    {
    }

    ~HostLocale() { std::setlocale (category, former.c_str()); }

    HostLocale (const HostLocale&) = delete;
    HostLocale& operator= (const HostLocale&) = delete;

private:
    int category;
    std::string former;

public:
    const bool isInForce;
};

/** Makes a locale "comma", which differs from the plain one in the decimal point alone, in a folder of its own, and
    points the C library there. The tool for it is part of the C library; no description of languages is needed. */
class DecimalComma : public testing::Test
{
protected:
    DecimalComma()
    {
        std::ofstream (folder / "numbers") << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \"\"\ngrouping -1\n"
                                              "END LC_NUMERIC\n";

        std::ofstream letters (folder / "letters");
        letters << "<code_set_name> ASCII\n<mb_cur_max> 1\nCHARMAP\n"
                << std::hex << std::uppercase << std::setfill ('0');

        for (int code = 0; code < 128; ++code)
            letters << "<U" << std::setw (4) << code << "> /x" << std::setw (2) << code << " letter\n";

        letters << "END CHARMAP\n";
        letters.close();

        // Its result says nothing: it warns of the categories that are missing here. What counts is the file.
        const auto command = "cd '" + folder.path().string()
                             + "' && localedef --no-archive -c -i ./numbers -f ./letters ./comma"
                             + " > log 2>&1; test -f comma/LC_NUMERIC";
        EXPECT_EQ (std::system (command.c_str()), 0) << "localedef is needed";
    }

    TemporaryFolder folder;
    const EnvironmentVariable path { "LOCPATH", folder.path().string() };
    OpenProcessor processor;
};

TEST_F (DecimalComma, GoesIntoTheDocumentAsLongAsTheLocaleIsInForce)
{
    processor.giveRate (1234567.0);
    processor.setMode (1.0f / 3.0f);

    {
        const HostLocale comma (LC_NUMERIC, "comma");
        ASSERT_TRUE (comma.isInForce);
        ASSERT_STREQ (std::localeconv()->decimal_point, ",");
        const auto block = save (processor);
        EXPECT_EQ (valueOf (block, "mode"), "0,3333");
        EXPECT_EQ (valueOf (block, "samplerate"), "1234567") << "whole numbers have neither point nor comma";
    }

    EXPECT_EQ (valueOf (save (processor), "mode"), "0.3333");
}

TEST_F (DecimalComma, EndsANumberThatIsReadWhereAPointDoesNot)
{
    const HostLocale comma (LC_NUMERIC, "comma");
    ASSERT_TRUE (comma.isInForce);

    for (const auto& [value, readBack] : { std::pair { 0.0f, 0.0f }, { 0.9999f, 0.0f }, { 1.0f, 1.0f } })
    {
        processor.setMode (value);
        const auto block = save (processor);
        processor.setMode (0.5f);
        restore (processor, block);
        EXPECT_EQ (processor.modeParameter->get(), readBack) << value;
    }

    restore (processor, blockWith ("mode=\"0.7500\""));
    EXPECT_EQ (processor.modeParameter->get(), 0.75f);
}

TEST (LettersOfTheLocale, MayStandInAttributeNames)
{
    const auto block = blockWith ("gr\u00f6\u00dfe=\"x\" \u97f3=\"y\"");
    const Store store { { "gr\u00f6\u00dfe", "x" }, { "\u97f3", "y" } };

    OpenProcessor processor;

    {
        const HostLocale plainLetters (LC_CTYPE, "C");
        ASSERT_TRUE (plainLetters.isInForce);
        restore (processor, block);
        EXPECT_TRUE (processor.settings.empty()) << "the parser takes them for an error";
    }

    const HostLocale allLetters (LC_CTYPE, "C.UTF-8");
    ASSERT_TRUE (allLetters.isInForce);
    restore (processor, block);
    EXPECT_EQ (plain (processor.settings), store);

    const auto saved = save (processor);
    EXPECT_EQ (valueOf (saved, "gr\u00f6\u00dfe"), "x");
    EXPECT_EQ (valueOf (saved, "\u97f3"), "y");
}
} // namespace
