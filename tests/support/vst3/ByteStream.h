// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/vst3/HostObject.h"

#include <pluginterfaces/base/ibstream.h>

#include <algorithm>
#include <string>

/** Bytes that a plug-in writes its state into or reads it from. */
class ByteStream : public HostObject<Steinberg::IBStream>
{
public:
    explicit ByteStream (std::string content = {}) : HostObject (Steinberg::IBStream_iid), bytes (std::move (content))
    {
    }

    const std::string& content() const { return bytes; }

    Steinberg::tresult PLUGIN_API read (void* buffer, Steinberg::int32 count, Steinberg::int32* done) override
    {
        const auto size = std::min (static_cast<std::size_t> (std::max (count, 0)), bytes.size() - position);
        std::copy_n (bytes.data() + position, size, static_cast<char*> (buffer));
        return moveBy (size, done);
    }

    Steinberg::tresult PLUGIN_API write (void* buffer, Steinberg::int32 count, Steinberg::int32* done) override
    {
        const auto size = static_cast<std::size_t> (std::max (count, 0));
        bytes.replace (position, std::min (size, bytes.size() - position), static_cast<const char*> (buffer), size);
        return moveBy (size, done);
    }

    Steinberg::tresult PLUGIN_API seek (Steinberg::int64 offset,
                                        Steinberg::int32 mode,
                                        Steinberg::int64* result) override
    {
        const auto size = static_cast<Steinberg::int64> (bytes.size());
        const auto from = mode == kIBSeekCur ? static_cast<Steinberg::int64> (position) : mode == kIBSeekEnd ? size : 0;
        position = static_cast<std::size_t> (std::clamp<Steinberg::int64> (from + offset, 0, size));
        return result != nullptr ? tell (result) : Steinberg::kResultOk;
    }

    Steinberg::tresult PLUGIN_API tell (Steinberg::int64* result) override
    {
        *result = static_cast<Steinberg::int64> (position);
        return Steinberg::kResultOk;
    }

private:
    Steinberg::tresult moveBy (std::size_t size, Steinberg::int32* done)
    {
        position += size;

        if (done != nullptr)
            *done = static_cast<Steinberg::int32> (size);

        return Steinberg::kResultOk;
    }

    std::string bytes;
    std::size_t position = 0;
};
