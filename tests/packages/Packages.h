// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/Child.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <vector>

/** The packages that the tests judge, in dist/packages; each the one of this release. */
namespace packages
{
std::filesystem::path debian();
std::filesystem::path linuxArchive();
std::filesystem::path windowsArchive();
std::filesystem::path sources();

// The one folder in each archive.
inline const std::string linuxFolder = "quendal-larkspire-" LARKSPIRE_RELEASE "-linux-x86_64";
inline const std::string windowsFolder = "quendal-larkspire-" LARKSPIRE_RELEASE "-windows-x86_64";
inline const std::string sourcesFolder = "quendal-larkspire-" LARKSPIRE_RELEASE;
} // namespace packages

/** The texts, pictures and figures of docs/ that packages hold, as sorted paths in the project. */
std::vector<std::string> documents();

/** The contents without the folders. */
std::vector<std::string> filesIn (const TemporaryFolder& folder, const std::string& below = "");

/** A file or folder as a package lists it. */
struct Entry
{
    std::string mode;  // as ls writes it
    std::string owner; // numbers of user and group
    std::string time;  // to the minute, in UTC
    std::string path;  // a folder's ends with a slash

    bool operator== (const Entry&) const = default;
};

/** What a tar archive, compressed or not, lists. Throws std::runtime_error if it cannot be read. */
std::vector<Entry> entriesOf (const std::filesystem::path& tar);

/** Calls a program that is found in PATH, in English and UTC, and gives what it wrote. Throws std::runtime_error as
    outputOf (Call) does. */
std::string outputOf (const std::string& program, const std::vector<std::string>& arguments);

/** Calls such a program, however it ends. */
Outcome outcomeOf (const std::string& program, const std::vector<std::string>& arguments);

/** What cmake --install puts below a prefix out of this build, in a folder of the test's own. */
class InstalledBuild
{
public:
    InstalledBuild();

    std::string operator/ (const std::string& name) const { return folder / name; }
    std::vector<std::string> files() const { return filesIn (folder); }

private:
    TemporaryFolder folder;
};

/** A package's files, unpacked into a folder of the test's own. */
class Unpacked
{
public:
    explicit Unpacked (const std::filesystem::path& package);

    std::string operator/ (const std::string& name) const { return folder / name; }
    std::vector<std::string> contents() const { return folder.contents(); }

    std::vector<std::string> files() const { return filesIn (folder); }

private:
    TemporaryFolder folder;
};
