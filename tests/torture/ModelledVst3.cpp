// SPDX-License-Identifier: AGPL-3.0-only
#include "torture/ModelledVst3.h"

#include "torture/Mismatch.h"

#include <pluginterfaces/vst/ivstunits.h>
#include <pluginterfaces/vst/vstspeaker.h>

#include <array>
#include <cmath>

using namespace Steinberg;

ModelledVst3::ModelledVst3 (const std::string& bundlePath)
    : ModelledInstance (44100.0),
      module (bundlePath),
      instance (module)
{
    ModelledVst3::requireParameter();
}

std::string ModelledVst3::announceLayout (Dice& dice)
{
    using namespace Vst::SpeakerArr;
    constexpr std::array arrangements { kMono, kStereo, kMono, kStereo, kEmpty, k30Cine, k51 };
    const auto input = dice.oneOf (arrangements);
    const auto output = dice.onceIn (3) ? dice.oneOf (arrangements) : input;
    const bool isAccepted = ! instance.isRunning() && input == output && (input == kMono || input == kStereo);
    require ("the answer to a layout", instance.setLayout (input, output), isAccepted);

    // What is refused may come near to something that is not, and that is then in force.
    isMono = instance.channels() == 1;
    sound.setMono (isMono);
    return "layout " + std::to_string (input) + " to " + std::to_string (output);
}

std::string ModelledVst3::tellTheTime (Dice& dice)
{
    Vst::ProcessContext context {};
    context.state = dice.bits();
    context.sampleRate = dice.onceIn (4) ? 0.0 : 48000.0;
    context.projectTimeSamples = static_cast<Vst::TSamples> (dice.bits()) - 1000;
    context.tempo = static_cast<double> (dice.unit()) * 300.0;
    context.frameRate.framesPerSecond = static_cast<uint32> (dice.below (20));
    instance.setTime (context);
    return "another time";
}

std::string ModelledVst3::choosePrecision (Dice& dice)
{
    const auto size = dice.onceIn (2) ? Vst::kSample64 : Vst::kSample32;
    require ("the answer to a precision",
             instance.processor().canProcessSampleSize (size) == kResultTrue,
             size == Vst::kSample32);
    return "precision";
}

std::string ModelledVst3::readParameter (Dice&)
{
    requireParameter();
    const auto unused = 9.0f * parameter;
    const auto text = std::isfinite (unused) && unused >= 3.5f ? "unused " + std::to_string (std::lround (unused) + 1)
                                                               : expectedText();

    if (! std::isnan (parameter))
        require ("a text", instance.text (static_cast<double> (parameter)), text);

    require ("the answer to another parameter",
             instance.controller().setParamNormalized (instance.modeId() + 1, 0.7) == kResultTrue,
             false);
    requireParameter();
    return "read the parameter";
}

std::string ModelledVst3::usePrograms (Dice&)
{
    const auto units = queryFor<Vst::IUnitInfo> (instance.controller(), Vst::IUnitInfo_iid);
    require ("the number of program lists", units->getProgramListCount(), 0);
    requireParameter();
    return "use the programs";
}

std::string ModelledVst3::askForConstants (Dice&)
{
    require ("the parameters", instance.controller().getParameterCount(), 2);
    require ("the latency", instance.processor().getLatencySamples(), 0u);
    require ("the tail", instance.processor().getTailSamples(), Vst::kNoTail);

    for (const auto direction : { Vst::kInput, Vst::kOutput })
    {
        require ("the buses", instance.component().getBusCount (Vst::kAudio, direction), 1);
        require ("the buses of events", instance.component().getBusCount (Vst::kEvent, direction), 0);
    }

    return "ask for constants";
}

std::string ModelledVst3::openEditor (Dice& dice)
{
    if (window != nullptr)
        return "leave the window open";

    constexpr std::array scales { 0.0f, 1.0f, 1.5f, 2.0f };
    const auto scale = dice.oneOf (scales);
    window = std::make_unique<Vst3Window> (
        instance, Vst3Window::Host { .x = static_cast<int> (dice.below (700)), .scale = scale });

    // The wrapper keeps the last scale for the next window, and takes a 1 for no news before that is shown.
    if (scale > 1.0f)
        lastScale = scale;

    const auto side = static_cast<int> (250.0f * lastScale);
    require ("the window's width", window->width(), side);
    require ("the window's height", window->height(), side);
    requireParameter();
    requireSilenceTowardsTheHost();
    return "open the window";
}

std::string ModelledVst3::idleEditor (Dice& dice)
{
    if (window != nullptr)
        window->idle (std::chrono::milliseconds (dice.below (3)));

    requireParameter();
    requireSilenceTowardsTheHost();
    return "give the window time";
}

std::string ModelledVst3::closeEditor (Dice&)
{
    window.reset();
    requireParameter();
    return "close the window";
}

void ModelledVst3::tellSuspend()
{
    if (instance.isRunning())
        instance.deactivate();
}

void ModelledVst3::tellResume()
{
    tellSuspend();
    require ("the answer to a set-up",
             instance.setUp (static_cast<double> (announcedRate), static_cast<int> (announcedBlockSize)),
             true);
    instance.activate();
}

void ModelledVst3::tellBypass (bool isOn)
{
    instance.setParameter (instance.bypassId(), isOn ? 1.0 : 0.0);
    instance.flush();
}

void ModelledVst3::tellParameter (float value)
{
    instance.setParameter (instance.modeId(), static_cast<double> (value));
    instance.flush();
}

void ModelledVst3::tellText (const std::string& text)
{
    const auto value = instance.valueOf (text);
    require ("a value that was typed is a number", std::isfinite (value) || std::isnan (parameter), true);
    instance.setParameter (instance.modeId(), value);
    instance.flush();
}

void ModelledVst3::processBlock (float* const* inputs, float* const* outputs, std::size_t frames)
{
    if (! instance.isRunning())
        tellResume();

    require ("the answer to a block", instance.process (inputs, outputs, frames), kResultOk);
}

std::string ModelledVst3::saved (bool)
{
    return instance.save();
}

void ModelledVst3::restore (const std::string& bytes, bool)
{
    instance.load (bytes);
}

void ModelledVst3::requireParameter()
{
    const auto actual = static_cast<float> (instance.getParameter (instance.modeId()));

    // The controller keeps a value that the processor takes for the one it has.
    if (! isSameNumber (actual, parameter) && ! isTakenForEqual (actual, parameter))
        require ("the parameter", actual, parameter);
}

void ModelledVst3::requireSilenceTowardsTheHost()
{
    if (! instance.log.edits.empty())
        throw Mismatch ("the host was told of a change that it has made itself");
}

ModelledInstance::Typed ModelledVst3::someText (Dice& dice) const
{
    static const std::array texts { Typed { "0.25", 0.25f },
                                    Typed { "1", 1.0f },
                                    Typed { "-3", 0.0f },
                                    Typed { "", std::nullopt },
                                    Typed { "Medium", 2.0f / 9.0f },
                                    Typed { "7.5 dB", 1.0f },
                                    Typed { "1e-3", 1e-3f },
                                    Typed { "nan", std::nullopt },
                                    Typed { "unused 6", 5.0f / 9.0f },
                                    Typed { " POWERFUL ", 3.0f / 9.0f } };
    return dice.oneOf (texts);
}

std::string ModelledVst3::blockWithin (const std::string& whole) const
{
    // A block says how long its text is; what JUCE's wrapper adds behind it is its own.
    constexpr std::size_t frame = 9;

    if (whole.size() < frame)
        throw Mismatch ("a saved state is shorter than its frame");

    std::size_t length = 0;

    for (std::size_t i = 0; i < 4; ++i)
        length |= static_cast<std::size_t> (static_cast<unsigned char> (whole[4 + i])) << (8 * i);

    return whole.substr (0, length + frame);
}
