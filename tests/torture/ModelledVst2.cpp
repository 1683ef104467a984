// SPDX-License-Identifier: AGPL-3.0-only
#include "torture/ModelledVst2.h"

#include "torture/Mismatch.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

ModelledVst2::ModelledVst2 (const std::string& libraryPath) : ModelledInstance (0.0), host (libraryPath)
{
    ModelledVst2::requireParameter();
}

void ModelledVst2::tellBlockSize (std::size_t newSize)
{
    host.dispatch (Vst2::effSetBlockSize, 0, static_cast<Vst2::VstIntPtr> (newSize));
}

void ModelledVst2::tellBypass (bool isOn)
{
    require ("the answer to bypass", host.dispatch (Vst2::effSetBypass, 0, isOn ? 1 : 0), 1);
}

void ModelledVst2::tellText (const std::string& text)
{
    std::string copy = text;
    require ("the answer to a text", host.dispatch (Vst2::effString2Parameter, 0, 0, copy.data()), 1);
}

void ModelledVst2::processBlock (float* const* inputs, float* const* outputs, std::size_t frames)
{
    host.process (inputs, outputs, frames);
}

void ModelledVst2::requireParameter()
{
    const float actual = host.getParameter();

    if (! isSameNumber (actual, parameter))
        require ("the parameter", actual, parameter);
}

void ModelledVst2::requireSilenceTowardsTheHost()
{
    constexpr std::array<Vst2::VstInt32, 3> unwanted { Vst2::audioMasterAutomate,
                                                       Vst2::audioMasterBeginEdit,
                                                       Vst2::audioMasterEndEdit };

    for (const auto& call : host.takeCalls())
        if (std::ranges::find (unwanted, call.opcode) != unwanted.end())
            throw Mismatch ("the host was told of a change that it has made itself, opcode "
                            + std::to_string (call.opcode));
}

void ModelledVst2::requireText (Vst2::VstInt32 opcode, Vst2::VstInt32 index, const std::string& expected)
{
    constexpr std::size_t longest = 65;
    std::array<char, 512> buffer {};
    buffer.fill ('#');
    host.dispatch (opcode, index, 0, buffer.data());

    if (! std::all_of (buffer.begin() + longest, buffer.end(), [] (char c) { return c == '#'; }))
        throw Mismatch ("a text was written beyond its room");

    const auto end = std::find (buffer.begin(), buffer.begin() + longest, '\0');
    require ("a text", std::string (buffer.begin(), end), expected);
}

ModelledInstance::Typed ModelledVst2::someText (Dice& dice) const
{
    static const std::array texts {
        Typed { "0.25", 0.25f },  Typed { "1", 1.0f },
        Typed { "-3", 0.0f },     Typed { "", 0.0f },
        Typed { "Medium", 0.0f }, Typed { "7.5 dB", 1.0f },
        Typed { "1e-3", 1e-3f },  Typed { "nan", std::numeric_limits<float>::quiet_NaN() }
    };
    return dice.oneOf (texts);
}

std::string ModelledVst2::announceLayout (Dice& dice)
{
    struct Arrangement
    {
        Vst2::VstInt32 type;
        Vst2::VstInt32 channels;
    };

    constexpr std::array arrangements {
        Arrangement { Vst2::kSpeakerArrMono, 1 },   Arrangement { Vst2::kSpeakerArrStereo, 2 },
        Arrangement { Vst2::kSpeakerArrMono, 1 },   Arrangement { Vst2::kSpeakerArrStereo, 2 },
        Arrangement { Vst2::kSpeakerArrMono, 2 },   Arrangement { Vst2::kSpeakerArrEmpty, 0 },
        Arrangement { Vst2::kSpeakerArr30Cine, 3 }, Arrangement { Vst2::kSpeakerArr51, 6 }
    };
    const auto& input = dice.oneOf (arrangements);
    const auto& output = dice.onceIn (3) ? dice.oneOf (arrangements) : input;
    const bool accepted =
        input.type == output.type && input.channels == output.channels
        && ((input.type == Vst2::kSpeakerArrMono && input.channels == 1) || input.type == Vst2::kSpeakerArrStereo);
    require (
        "the answer to a layout", host.setLayout (input.type, input.channels, output.type, output.channels), accepted);

    if (accepted)
    {
        isMono = input.type == Vst2::kSpeakerArrMono;
        sound.setMono (isMono);
    }

    return "layout " + std::to_string (input.type) + " to " + std::to_string (output.type);
}

std::string ModelledVst2::tellTheTime (Dice& dice)
{
    time.samplePos = dice.unit() * 1.0e9;
    time.sampleRate = dice.onceIn (4) ? 0.0 : 48000.0;
    time.tempo = dice.unit() * 300.0;
    time.flags = static_cast<Vst2::VstInt32> (dice.below (1u << 16));
    time.smpteFrameRate = static_cast<Vst2::VstInt32> (dice.below (20));
    host.setTime (dice.onceIn (3) ? nullptr : &time);
    return "another time";
}

std::string ModelledVst2::choosePrecision (Dice& dice)
{
    require ("the answer to a precision",
             host.dispatch (Vst2::effSetProcessPrecision, 0, dice.onceIn (2) ? 1 : 0),
             isResumed ? 0 : 1);
    return "precision";
}

std::string ModelledVst2::readParameter (Dice&)
{
    requireParameter();
    requireText (Vst2::effGetParamName, 0, "Mode");
    requireText (Vst2::effGetParamLabel, 0, "");
    requireText (Vst2::effGetParamDisplay, 0, expectedText());
    require ("what another parameter holds", host.effect().getParameter (&host.effect(), 1), 0.0f);
    host.effect().setParameter (&host.effect(), 1, 0.7f);
    host.effect().setParameter (&host.effect(), -1, 0.7f);
    requireParameter();
    return "read the parameter";
}

std::string ModelledVst2::askForConstants (Dice&)
{
    requireText (Vst2::effGetEffectName, 0, "Quendal Larkspire");
    requireText (Vst2::effGetProductString, 0, "Quendal Larkspire");
    requireText (Vst2::effGetVendorString, 0, "Quendal");
    require ("the vendor's version", host.dispatch (Vst2::effGetVendorVersion), 65536);
    require ("the interface's version", host.dispatch (Vst2::effGetVstVersion), 2400);
    require ("the category", host.dispatch (Vst2::effGetPlugCategory), 1);
    require ("the tail", host.dispatch (Vst2::effGetTailSize), 0);
    require ("the latency", host.effect().initialDelay, 0);
    require ("the inputs", host.effect().numInputs, 2);
    require ("the outputs", host.effect().numOutputs, 2);
    require ("an opcode that nobody knows", host.dispatch (static_cast<Vst2::VstInt32> (4711)), 0);

    Vst2::VstPinProperties pin {};
    require ("the pins", host.dispatch (Vst2::effGetInputProperties, isMono ? 1 : 2, 0, &pin), 0);
    require ("the pins", host.dispatch (Vst2::effGetOutputProperties, isMono ? 0 : 1, 0, &pin), 1);
    return "ask for constants";
}

std::string ModelledVst2::usePrograms (Dice& dice)
{
    host.dispatch (Vst2::effSetProgram, 0, static_cast<Vst2::VstIntPtr> (dice.below (3)));
    require ("the program", host.dispatch (Vst2::effGetProgram), 0);
    char name[] = "A name";
    host.dispatch (Vst2::effSetProgramName, 0, 0, name);
    requireText (Vst2::effGetProgramName, 0, "");
    requireText (Vst2::effGetProgramNameIndexed, 0, "");
    requireParameter();
    return "use the programs";
}

std::string ModelledVst2::openEditor (Dice& dice)
{
    if (editor != nullptr)
        return "leave the window open";

    editor = std::make_unique<larkspire::window::EditorWindow> (host, static_cast<int> (dice.below (700)));
    require ("the window's width", editor->width(), 250);
    require ("the window's height", editor->height(), 250);
    requireParameter();
    requireSilenceTowardsTheHost();
    return "open the window";
}

std::string ModelledVst2::idleEditor (Dice& dice)
{
    if (editor != nullptr)
        editor->idle (std::chrono::milliseconds (dice.below (3)));
    else
        host.dispatch (Vst2::effEditIdle);

    requireParameter();
    requireSilenceTowardsTheHost();
    return "give the window time";
}

std::string ModelledVst2::closeEditor (Dice&)
{
    if (editor != nullptr)
        editor.reset();
    else
        host.dispatch (Vst2::effEditClose);

    requireParameter();
    return "close the window";
}
