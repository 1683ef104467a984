// SPDX-License-Identifier: AGPL-3.0-only
// The instance, its parameter and what never changes. Its sound and its state have files of their own.
#include "torture/ModelledInstance.h"
#include "support/KnobPosition.h"

#include "reference/ScalarPolynomials.h"
#include "torture/Mismatch.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace
{
bool sameNumber (float a, float b)
{
    return a == b || (std::isnan (a) && std::isnan (b));
}

/** JUCE's notion of a value that is set already: equal, or within a relative epsilon. */
bool isTakenForEqual (float a, float b)
{
    if (! std::isfinite (a) || ! std::isfinite (b))
        return a == b;

    const float distance = std::abs (a - b);
    return distance <= std::numeric_limits<float>::min()
           || distance <= std::numeric_limits<float>::epsilon() * std::max (std::abs (a), std::abs (b));
}

constexpr std::array modeNames { "bypass", "Gentle", "Medium", "Powerful" };
constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();
} // namespace

ModelledInstance::ModelledInstance (const std::string& libraryPath)
    : host (libraryPath),
      // The C library's functions may differ in the last bit, and a gain that is compared with a threshold makes much
      // of that bit once in a long while. With the plug-in's own the model has every bit.
      sound (false, { scalar_polynomials::sine, scalar_polynomials::arcTangent })
{
    requireParameter();
}

void ModelledInstance::requireParameter()
{
    const float actual = host.getParameter();

    if (! sameNumber (actual, parameter))
        require ("the parameter", actual, parameter);
}

void ModelledInstance::requireSilenceTowardsTheHost()
{
    constexpr std::array<Vst2::VstInt32, 3> unwanted { Vst2::audioMasterAutomate,
                                                       Vst2::audioMasterBeginEdit,
                                                       Vst2::audioMasterEndEdit };

    for (const auto& call : host.takeCalls())
        if (std::ranges::find (unwanted, call.opcode) != unwanted.end())
            throw Mismatch ("the host was told of a change that it has made itself, opcode "
                            + std::to_string (call.opcode));
}

void ModelledInstance::requireText (Vst2::VstInt32 opcode, Vst2::VstInt32 index, const std::string& expected)
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

std::string ModelledInstance::expectedText() const
{
    const float position = 9.0f * parameter;
    return position >= -0.5f && position < 3.5f ? modeNames.at (static_cast<std::size_t> (std::lround (position))) : "";
}

void ModelledInstance::setModelParameter (float value)
{
    if (! isTakenForEqual (parameter, value))
        parameter = std::isnan (value) ? value : 0.0f + std::clamp (value, 0.0f, 1.0f); // without the sign of zero

    sound.setParameter (parameter);
}

std::string ModelledInstance::setParameter (Dice& dice)
{
    constexpr std::array special { -1.0f,       2.0f,       -0.0f,
                                   1.0e-30f,    noNumber,   std::numeric_limits<float>::infinity(),
                                   1.0f,        0.5f,       0.05555555f,
                                   0.05555556f, 0.3888889f, 3.4e38f };
    const float value = dice.onceIn (8)   ? dice.oneOf (special)
                        : dice.onceIn (3) ? dice.unit()
                        : dice.onceIn (5) ? parameter * (1.0f + 1.0e-7f * dice.bipolar())
                                          : knobPosition (static_cast<int> (dice.below (10)));
    host.setParameter (value);
    setModelParameter (value);
    requireParameter();
    requireSilenceTowardsTheHost();
    return "parameter " + std::to_string (value);
}

std::string ModelledInstance::setParameterByText (Dice& dice)
{
    struct Row
    {
        const char* text;
        float value;
    };

    constexpr std::array rows { Row { "0.25", 0.25f }, Row { "1", 1.0f },      Row { "-3", 0.0f },
                                Row { "", 0.0f },      Row { "Medium", 0.0f }, Row { "7.5 dB", 1.0f },
                                Row { "1e-3", 1e-3f }, Row { "nan", noNumber } };
    const auto& row = dice.oneOf (rows);
    std::array<char, 64> text {};
    std::strcpy (text.data(), row.text);
    require ("the answer to a text", host.dispatch (Vst2::effString2Parameter, 0, 0, text.data()), 1);
    setModelParameter (row.value);
    requireParameter();
    requireSilenceTowardsTheHost();
    return "text \"" + std::string (row.text) + "\"";
}

std::string ModelledInstance::readParameter (Dice&)
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

std::string ModelledInstance::askForConstants (Dice&)
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

std::string ModelledInstance::openEditor (Dice& dice)
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

std::string ModelledInstance::idleEditor (Dice& dice)
{
    if (editor != nullptr)
        editor->idle (std::chrono::milliseconds (dice.below (3)));
    else
        host.dispatch (Vst2::effEditIdle);

    requireParameter();
    requireSilenceTowardsTheHost();
    return "give the window time";
}

std::string ModelledInstance::closeEditor (Dice&)
{
    if (editor != nullptr)
        editor.reset();
    else
        host.dispatch (Vst2::effEditClose);

    requireParameter();
    return "close the window";
}
