// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "base/PartialFile.h"

#include <bit>
#include <cstdint>

namespace larkspire
{

/** A number that is made of all samples, 32-bit FNV-1a (Fowler, Noll, Vo) over their bits, word by word. */
class SoundHash
{
public:
    void add (float sample) { hash = (hash ^ std::bit_cast<std::uint32_t> (sample)) * 16777619U; }
    std::uint32_t value() const { return hash; }

private:
    std::uint32_t hash = 2166136261U;
};

/** Writes another serial number into all pages of an Ogg file with one stream. libsndfile draws it by chance, and a
    result shall depend on nothing but its input; streams that are put behind each other need different ones, so it may
    not be the same for all. An error of the file is kept in it. */
void giveSerialNumber (PartialFile& file, std::uint32_t number);

} // namespace larkspire
