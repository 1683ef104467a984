// SPDX-License-Identifier: AGPL-3.0-only
#include "frame/LarkspireAudioProcessor.h"

#include "chain/AirTerm.h"
#include "chain/Expander.h"
#include "chain/HighPass.h"
#include "chain/Leveller.h"
#include "chain/ModeTable.h"
#include "chain/SideBySide.h"
#include "chain/SoftClip.h"
#include "chain/StereoFold.h"
#include "editor/LarkspireAudioProcessorEditor.h"
#include "editor/WineRendering.h"

using namespace larkspire;

namespace
{
/** A rate that filters can be designed for, in Hz; false for what is no number. */
bool isUsableRate (double rate)
{
    return rate > 999.0 && ! (rate >= 10000000001.0);
}
} // namespace

LarkspireAudioProcessor::LarkspireAudioProcessor (WithoutRecords)
    : AudioProcessorQuendal (BusesProperties()
                                 .withInput ("Input", juce::AudioChannelSet::stereo(), true)
                                 .withOutput ("Output", juce::AudioChannelSet::stereo(), true))
{
}

LarkspireAudioProcessor::LarkspireAudioProcessor() : LarkspireAudioProcessor (WithoutRecords {})
{
    leveller = new LevelRider;
    expander = new LevelRider;

    for (auto* filter : { &airFilter, &bodyFilter, &spareFilter })
        *filter = new PeakingFilter;

    const std::vector<std::string> modes { "bypass", "Gentle", "Medium", "Powerful" };
    modeParameter = new juce::AudioParameterFloatQuendal ("mode", "Mode", DisplayMode::Choices, 2.0f / 9.0f, 10, modes);
    addParameter (modeParameter);
}

LarkspireAudioProcessor::~LarkspireAudioProcessor()
{
    delete leveller;
    delete expander;

    for (auto* filter : { &airFilter, &bodyFilter, &spareFilter })
        delete *filter;
}

juce::AudioProcessorEditor* LarkspireAudioProcessor::createEditor()
{
    auto editor = std::make_unique<LarkspireAudioProcessorEditor> (this);
    drawInSoftwareUnderWine (*editor);
    return editor.release();
}

bool LarkspireAudioProcessor::isBusesLayoutSupported (const BusesLayout& layouts) const
{
    const auto output = layouts.getMainOutputChannelSet();

    if (output != juce::AudioChannelSet::mono() && output != juce::AudioChannelSet::stereo())
        return false;

    return layouts.getMainInputChannelSet() == output;
}

void LarkspireAudioProcessor::updateSettings()
{
    if (isUsableRate (getSampleRate()))
        sampleRate = getSampleRate();

    const auto rate = static_cast<double> (oversamplingFactor) * sampleRate;
    modeIndex = modeParameter->getChoiceIndex();
    const auto& mode = modeForIndex (modeIndex);

    applySettings (*leveller, mode.leveller);
    applySettings (*expander, mode.expander);
    designPeaking (*airFilter, static_cast<float> (rate), mode.air.gainDb, mode.air.frequency, mode.air.bandwidth);
    designPeaking (*bodyFilter, static_cast<float> (rate), mode.body.gainDb, mode.body.frequency, mode.body.bandwidth);
    designHighPass (highPassLeft, highPassRight, rate, mode.highPass);
}

std::pair<float, float> LarkspireAudioProcessor::processStereoSample (std::pair<float, float> input)
{
    const auto pair = pairOf (input);

    if (modeParameter->hasChanged()) [[unlikely]]
        requestUpdate();

    if (modeIndex == 0)
        return sampleOf (pair);

    const auto voice = highPass (highPassLeft, highPassRight, pair);
    const auto expanded = expand (*expander, voice);
    const auto folded = foldTowardsMiddle (expanded);
    const auto filtered = filterSideBySide (*airFilter, *bodyFilter, folded);
    const auto coloured = addSaturatedAir (upperHalf (filtered), lowerHalf (filtered), folded);
    const auto levelled = level (*leveller, coloured);
    return sampleOf (softClip (levelled));
}
