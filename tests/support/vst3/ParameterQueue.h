// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/vst3/HostObject.h"

#include <pluginterfaces/vst/ivstparameterchanges.h>

#include <array>
#include <cstddef>

/** The changes of one parameter within a block, at most four. Allocates nothing. */
class ParameterQueue : public HostObject<Steinberg::Vst::IParamValueQueue>
{
public:
    ParameterQueue() : HostObject (Steinberg::Vst::IParamValueQueue_iid) {}

    void start (Steinberg::Vst::ParamID parameter)
    {
        id = parameter;
        count = 0;
    }

    Steinberg::Vst::ParamID PLUGIN_API getParameterId() override { return id; }
    Steinberg::int32 PLUGIN_API getPointCount() override { return count; }

    Steinberg::tresult PLUGIN_API getPoint (Steinberg::int32 index,
                                            Steinberg::int32& sampleOffset,
                                            Steinberg::Vst::ParamValue& value) override
    {
        if (index < 0 || index >= count)
            return Steinberg::kResultFalse;

        sampleOffset = points[static_cast<std::size_t> (index)].offset;
        value = points[static_cast<std::size_t> (index)].value;
        return Steinberg::kResultOk;
    }

    Steinberg::tresult PLUGIN_API addPoint (Steinberg::int32 sampleOffset,
                                            Steinberg::Vst::ParamValue value,
                                            Steinberg::int32& index) override
    {
        if (count == static_cast<Steinberg::int32> (points.size()))
            return Steinberg::kResultFalse;

        index = count++;
        points[static_cast<std::size_t> (index)] = { sampleOffset, value };
        return Steinberg::kResultOk;
    }

private:
    struct Point
    {
        Steinberg::int32 offset;
        Steinberg::Vst::ParamValue value;
    };

    Steinberg::Vst::ParamID id = 0;
    Steinberg::int32 count = 0;
    std::array<Point, 4> points {};
};

/** The changes of a block: of at most four parameters. Allocates nothing. */
class ParameterQueues : public HostObject<Steinberg::Vst::IParameterChanges>
{
public:
    ParameterQueues() : HostObject (Steinberg::Vst::IParameterChanges_iid) {}

    void clear() { count = 0; }
    bool isEmpty() const { return count == 0; }

    /** Adds a change at a frame of the block. */
    void add (Steinberg::Vst::ParamID parameter, Steinberg::Vst::ParamValue value, Steinberg::int32 frame = 0)
    {
        Steinberg::int32 index = 0;

        if (auto* queue = addParameterData (parameter, index))
            queue->addPoint (frame, value, index);
    }

    Steinberg::int32 PLUGIN_API getParameterCount() override { return count; }

    Steinberg::Vst::IParamValueQueue* PLUGIN_API getParameterData (Steinberg::int32 index) override
    {
        return index >= 0 && index < count ? &queues[static_cast<std::size_t> (index)] : nullptr;
    }

    Steinberg::Vst::IParamValueQueue* PLUGIN_API addParameterData (const Steinberg::Vst::ParamID& parameter,
                                                                   Steinberg::int32& index) override
    {
        for (index = 0; index < count; ++index)
            if (getParameterData (index)->getParameterId() == parameter)
                return getParameterData (index);

        if (count == static_cast<Steinberg::int32> (queues.size()))
            return nullptr;

        queues[static_cast<std::size_t> (count)].start (parameter);
        return &queues[static_cast<std::size_t> (count++)];
    }

private:
    Steinberg::int32 count = 0;
    std::array<ParameterQueue, 4> queues;
};
