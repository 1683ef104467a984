// SPDX-License-Identifier: AGPL-3.0-only
// Offsets and layouts are those of Microsoft's PE/COFF format, version resource included.
#include "windows/PortableExecutable.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace
{
/** The bytes of a file, with the addresses that they have once they are loaded. */
class Image
{
public:
    explicit Image (std::string content) : bytes (std::move (content))
    {
        const auto header = number (0x3c, 4);

        if (bytes.compare (0, 2, "MZ") != 0 || bytes.compare (header, 4, std::string ("PE\0\0", 4)) != 0
            || number (header + 4, 2) != 0x8664 || number (header + 24, 2) != 0x20b)
            throw std::runtime_error ("no 64-bit Windows library");

        directories = header + 24 + 112;
        const auto sectionCount = number (header + 6, 2);
        const auto firstSection = header + 24 + number (header + 20, 2);

        for (std::size_t i = 0; i < sectionCount; ++i)
        {
            const auto at = firstSection + 40 * i;
            sections.push_back ({ number (at + 12, 4), number (at + 8, 4), number (at + 20, 4) });
        }
    }

    std::size_t number (std::size_t offset, std::size_t size) const
    {
        std::size_t value = 0;

        for (std::size_t i = size; i-- > 0;)
            value = value << 8 | static_cast<std::uint8_t> (bytes.at (offset + i));

        return value;
    }

    /** Where in the file an address is. */
    std::size_t offsetOf (std::size_t address) const
    {
        for (const auto& section : sections)
            if (address >= section.address && address < section.address + section.size)
                return address - section.address + section.offset;

        throw std::runtime_error ("an address outside all sections");
    }

    std::string textAt (std::size_t address) const { return bytes.c_str() + offsetOf (address); }

    /** The address of a table of the optional header: 0 exports, 1 imports, 2 resources. Zero if there is none. */
    std::size_t directory (std::size_t index) const { return number (directories + 8 * index, 4); }

    std::string part (std::size_t offset, std::size_t size) const { return bytes.substr (offset, size); }

private:
    struct Section
    {
        std::size_t address;
        std::size_t size;
        std::size_t offset;
    };

    std::string bytes;
    std::size_t directories = 0;
    std::vector<Section> sections;
};

std::vector<std::string> exportsOf (const Image& image)
{
    std::vector<std::string> names;

    if (image.directory (0) == 0)
        return names;

    const auto table = image.offsetOf (image.directory (0));
    const auto list = image.offsetOf (image.number (table + 32, 4));

    for (std::size_t i = 0; i < image.number (table + 24, 4); ++i)
        names.push_back (image.textAt (image.number (list + 4 * i, 4)));

    return names;
}

std::vector<std::string> importsOf (const Image& image)
{
    std::vector<std::string> names;

    for (auto entry = image.offsetOf (image.directory (1)); image.number (entry + 12, 4) != 0; entry += 20)
    {
        auto name = image.textAt (image.number (entry + 12, 4));
        std::ranges::transform (
            name, name.begin(), [] (unsigned char c) { return static_cast<char> (std::tolower (c)); });
        names.push_back (name);
    }

    return names;
}

/** The bytes of the first resource of type 16, the version. The tree has three levels: type, name, language. */
std::string versionResource (const Image& image)
{
    const auto root = image.offsetOf (image.directory (2));
    const auto firstOf = [&] (std::size_t table, bool onlyVersions)
    {
        const auto count = image.number (table + 12, 2) + image.number (table + 14, 2);

        for (std::size_t i = 0; i < count; ++i)
            if (const auto entry = table + 16 + 8 * i; ! onlyVersions || image.number (entry, 4) == 16)
                return root + (image.number (entry + 4, 4) & 0x7fffffff);

        throw std::runtime_error ("no version resource");
    };

    const auto data = firstOf (firstOf (firstOf (root, true), false), false);
    return image.part (image.offsetOf (image.number (data, 4)), image.number (data + 4, 4));
}

/** The letters of a UTF-16 text up to its zero; what is not ASCII becomes a question mark. */
std::string narrowed (const std::string& bytes, std::size_t from)
{
    std::string text;

    for (std::size_t i = from; i + 1 < bytes.size() && (bytes[i] != 0 || bytes[i + 1] != 0); i += 2)
        text += bytes[i + 1] == 0 ? bytes[i] : '?';

    return text;
}

std::string fourPartVersion (const std::string& resource, std::size_t at)
{
    const auto word = [&] (std::size_t offset)
    {
        return std::to_string (static_cast<std::uint8_t> (resource.at (offset))
                               + 256 * static_cast<std::uint8_t> (resource.at (offset + 1)));
    };

    return word (at + 2) + "." + word (at) + "." + word (at + 6) + "." + word (at + 4);
}
} // namespace

PortableExecutable::PortableExecutable (const std::string& path)
{
    std::ifstream file (path, std::ios::binary);

    if (! file)
        throw std::runtime_error (path + " cannot be read");

    const Image image ({ std::istreambuf_iterator<char> (file), {} });
    exports = exportsOf (image);
    imports = importsOf (image);

    const auto resource = versionResource (image);
    const auto fixed = resource.find (std::string ("\xbd\x04\xef\xfe", 4));

    if (fixed == std::string::npos)
        throw std::runtime_error ("no fixed file version");

    fileVersion = fourPartVersion (resource, fixed + 8);
    productVersion = fourPartVersion (resource, fixed + 16);

    // A text's record: its length, its value's length, its kind, then the name and, at a multiple of four, the value.
    for (const std::string key : { "CompanyName", "FileDescription", "FileVersion", "ProductName", "ProductVersion" })
        for (std::size_t at = 0; at + 6 < resource.size(); at += 2)
            if (narrowed (resource, at) == key)
            {
                versions[key] = narrowed (resource, (at + 2 * (key.size() + 1) + 3) / 4 * 4);
                break;
            }
}
