// SPDX-License-Identifier: AGPL-3.0-only
#include "vst3/StateGuard.h"

#include "vst3/HostState.h"

#include <pluginterfaces/base/ibstream.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>

using namespace Steinberg;

namespace larkspire
{

namespace
{
constexpr std::size_t longestState = 16 << 20; // many times what the processor takes in

/** All that a host has in a stream, or none where that is nothing or has no end. */
std::optional<std::string> contentOf (IBStream& stream)
{
    if (stream.seek (0, IBStream::kIBSeekSet, nullptr) != kResultTrue)
        return {};

    std::string content;
    std::array<char, 4096> piece {};

    while (content.size() <= longestState)
    {
        int32 size = 0;
        stream.read (piece.data(), static_cast<int32> (piece.size()), &size); // some hosts report errors at the end

        if (size <= 0)
            return content.empty() ? std::nullopt : std::optional (content);

        content.append (piece.data(), std::min (static_cast<std::size_t> (size), piece.size()));
    }

    return {};
}

/** A state for the wrapper to read, for the time of one call. */
class StateStream : public IBStream
{
public:
    virtual ~StateStream() = default;

    explicit StateStream (std::string state) : bytes (std::move (state)) {}

    tresult PLUGIN_API read (void* buffer, int32 size, int32* done) override
    {
        const auto count =
            bytes.copy (static_cast<char*> (buffer), static_cast<std::size_t> (std::max (size, 0)), place);
        place += count;

        if (done != nullptr)
            *done = static_cast<int32> (count);

        return kResultTrue;
    }

    tresult PLUGIN_API write (void*, int32, int32*) override { return kNotImplemented; }

    tresult PLUGIN_API seek (int64 offset, int32 mode, int64* result) override
    {
        const auto end = static_cast<int64> (bytes.size());
        const auto origin = mode == kIBSeekCur ? static_cast<int64> (place) : mode == kIBSeekEnd ? end : 0;
        place = static_cast<std::size_t> (std::clamp<int64> (origin + offset, 0, end));
        return result != nullptr ? tell (result) : kResultTrue;
    }

    tresult PLUGIN_API tell (int64* result) override
    {
        *result = static_cast<int64> (place);
        return kResultTrue;
    }

    tresult PLUGIN_API queryInterface (const TUID id, void** object) override
    {
        const bool isThis =
            FUnknownPrivate::iidEqual (id, IBStream_iid) || FUnknownPrivate::iidEqual (id, FUnknown_iid);
        *object = isThis ? static_cast<IBStream*> (this) : nullptr;
        return isThis ? kResultTrue : kNoInterface;
    }

    uint32 PLUGIN_API addRef() override { return 1; }
    uint32 PLUGIN_API release() override { return 1; }

private:
    const std::string bytes;
    std::size_t place = 0;
};
} // namespace

tresult PLUGIN_API StateGuard::setState (IBStream* stream)
{
    if (stream == nullptr)
        return kInvalidArgument;

    const auto content = contentOf (*stream);
    const auto state = content ? HostState::read (*content) : std::nullopt;

    if (! state)
        return kResultFalse;

    StateStream whole (state->withTrailer());
    return inner->setState (&whole);
}

tresult PLUGIN_API StateGuard::queryInterface (const TUID id, void** object)
{
    return inner->queryInterface (id, object);
}

tresult PLUGIN_API StateGuard::getControllerClassId (TUID id)
{
    return inner->getControllerClassId (id);
}

int32 PLUGIN_API StateGuard::getBusCount (Vst::MediaType type, Vst::BusDirection direction)
{
    return inner->getBusCount (type, direction);
}

tresult PLUGIN_API StateGuard::getBusInfo (Vst::MediaType type,
                                           Vst::BusDirection direction,
                                           int32 index,
                                           Vst::BusInfo& info)
{
    return inner->getBusInfo (type, direction, index, info);
}

tresult PLUGIN_API StateGuard::getRoutingInfo (Vst::RoutingInfo& input, Vst::RoutingInfo& output)
{
    return inner->getRoutingInfo (input, output);
}

tresult PLUGIN_API StateGuard::activateBus (Vst::MediaType type, Vst::BusDirection direction, int32 index, TBool state)
{
    return inner->activateBus (type, direction, index, state);
}

} // namespace larkspire
