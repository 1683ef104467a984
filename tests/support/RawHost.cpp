// SPDX-License-Identifier: AGPL-3.0-only
#include "support/RawHost.h"

#include <stdexcept>
#include <utility>

RawHost::RawHost (const std::string& pluginPath)
    : PluginLibrary (pluginPath),
      PluginInstance (static_cast<const PluginLibrary&> (*this), *this)
{
}

void RawHost::start (float rate, int blockSize, bool mono) const
{
    if (! setChannels (mono ? 1 : 2))
        throw std::runtime_error ("the plug-in refused its layout");

    prepare (rate, blockSize);
    resume();
}

void RawHost::process (std::vector<float>& left, std::vector<float>& right, std::size_t from, std::size_t frames) const
{
    float* const channels[] = { left.data() + from, right.data() + from };
    process (channels, channels, frames);
}

std::vector<CallLog::Call> CallLog::takeCalls()
{
    const std::lock_guard lock (mutex);
    return std::exchange (calls, {});
}

Vst2::VstIntPtr
CallLog::answer (Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr value, void* data, float option)
{
    if (logging)
    {
        const std::lock_guard lock (mutex);
        calls.push_back ({ opcode, index, option });
    }

    if (opcode == Vst2::audioMasterGetTime)
        return reinterpret_cast<Vst2::VstIntPtr> (time);

    return PluginHost::answer (opcode, index, value, data, option);
}
