// SPDX-License-Identifier: AGPL-3.0-only
// A plug-in that stands in for the real one: it writes down what the host does with it, and it halves and inverts the
// sound, so that nobody takes its result for another's. The environment says what is wrong with it.
//
// LARKSPIRE_STAND_IN_LOG    the file that it appends its lines to
// LARKSPIRE_STAND_IN_FAULT  "nothing": gives no instance; "magic", "identity": a wrong number; "channels": refuses
//                           every arrangement
#include "Vst2.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>

namespace
{
std::string environmentValue (const char* name)
{
    const char* value = std::getenv (name);
    return value != nullptr ? value : "";
}

void note (const std::string& line)
{
    const auto path = environmentValue ("LARKSPIRE_STAND_IN_LOG");

    if (std::FILE* file = path.empty() ? nullptr : std::fopen (path.c_str(), "a"))
    {
        std::fprintf (file, "%s\n", line.c_str());
        std::fclose (file);
    }
}

struct Instance
{
    Vst2::AEffect record {};
    Vst2::audioMasterCallback host = nullptr;
};

std::string arrangementText (const void* address)
{
    const auto& arrangement = *static_cast<const Vst2::VstSpeakerArrangement*> (address);
    return "type " + std::to_string (arrangement.type) + " channels " + std::to_string (arrangement.numChannels);
}

std::string askForText (Instance& instance, Vst2::VstInt32 opcode)
{
    std::array<char, Vst2::kVstMaxVendorStrLen> text {};
    instance.host (&instance.record, opcode, 0, 0, text.data(), 0.0f);
    return text.data();
}

void questionHost (Instance& instance)
{
    const auto ask = [&instance] (Vst2::VstInt32 opcode)
    { return std::to_string (instance.host (&instance.record, opcode, 0, 0, nullptr, 0.0f)); };

    note ("host version " + ask (Vst2::audioMasterVersion));
    note ("host rate " + ask (Vst2::audioMasterGetSampleRate));
    note ("host block " + ask (Vst2::audioMasterGetBlockSize));
    note ("host level " + ask (Vst2::audioMasterGetCurrentProcessLevel));
    note ("host vendor " + askForText (instance, Vst2::audioMasterGetVendorString));
    note ("host product " + askForText (instance, Vst2::audioMasterGetProductString));
}

Vst2::VstIntPtr
dispatch (Vst2::AEffect* effect, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr value, void* data, float option)
{
    auto* instance = static_cast<Instance*> (effect->object);

    switch (opcode)
    {
    case Vst2::effOpen:
        note ("open");
        break;
    case Vst2::effSetSpeakerArrangement:
        // The interface carries this address as a number.
        note ("arrangement in " + arrangementText (reinterpret_cast<const void*> (value)) // NOLINT
              + ", out " + arrangementText (data));
        return environmentValue ("LARKSPIRE_STAND_IN_FAULT") == "channels" ? 0 : 1;
    case Vst2::effSetSampleRate:
        note ("rate " + std::to_string (std::lround (option)));
        break;
    case Vst2::effSetBlockSize:
        note ("block " + std::to_string (value));
        break;
    case Vst2::effMainsChanged:
        note ("mains " + std::to_string (value));
        questionHost (*instance);
        break;
    case Vst2::effStartProcess:
        note ("start");
        break;
    case Vst2::effStopProcess:
        note ("stop");
        break;
    case Vst2::effClose:
        note ("close");
        delete instance;
        break;
    default:
        note ("opcode " + std::to_string (opcode));
        break;
    }

    return 0;
}

void setParameter (Vst2::AEffect*, Vst2::VstInt32 index, float value)
{
    note ("parameter " + std::to_string (index) + " " + std::to_string (value));
}

float getParameter (Vst2::AEffect*, Vst2::VstInt32)
{
    return 0.0f;
}

void process (Vst2::AEffect*, float** inputs, float** outputs, Vst2::VstInt32 frames)
{
    const std::set<float*> buffers { inputs[0], inputs[1], outputs[0], outputs[1] };
    note ("process " + std::to_string (frames) + " with " + std::to_string (buffers.size()) + " buffers");

    for (int channel = 0; channel < 2; ++channel)
        std::transform (
            inputs[channel], inputs[channel] + frames, outputs[channel], [] (float x) { return -0.5f * x; });
}
} // namespace

extern "C" __attribute__ ((visibility ("default"))) Vst2::AEffect* VSTPluginMain (Vst2::audioMasterCallback host);

Vst2::AEffect* VSTPluginMain (Vst2::audioMasterCallback host)
{
    const auto fault = environmentValue ("LARKSPIRE_STAND_IN_FAULT");

    if (fault == "nothing")
        return nullptr;

    static Vst2::AEffect withoutMagic {};

    if (fault == "magic")
        return &withoutMagic;

    auto* instance = new Instance;
    instance->host = host;
    auto& record = instance->record;
    record.magic = Vst2::kEffectMagic;
    record.uniqueID = fault == "identity" ? 0x4f746872 : 0x546d7771;
    record.numInputs = 2;
    record.numOutputs = 2;
    record.numParams = 1;
    record.flags = Vst2::effFlagsCanReplacing;
    record.object = instance;
    record.dispatcher = dispatch;
    record.setParameter = setParameter;
    record.getParameter = getParameter;
    record.processReplacing = process;
    note ("new");
    return &record;
}
