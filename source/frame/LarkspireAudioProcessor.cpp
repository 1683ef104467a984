// SPDX-License-Identifier: AGPL-3.0-only
#include "frame/LarkspireAudioProcessor.h"

#include "chain/VoiceChain.h"
#include "frame/HighPassAccess.h"

using namespace larkspire;

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

    auto left = HighPassAccess::copyOf (highPassLeft);
    auto right = HighPassAccess::copyOf (highPassRight);
    chainOn (left, right).adopt (modeForIndex (modeIndex), rate);
    highPassLeft.setCoefficients (HighPassAccess::coefficientsOf (left));
    highPassRight.setCoefficients (HighPassAccess::coefficientsOf (right));
}

std::pair<float, float> LarkspireAudioProcessor::processStereoSample (std::pair<float, float> input)
{
    LarkspireAudioProcessor::processRun (std::span (&input, 1));
    return input;
}

std::size_t LarkspireAudioProcessor::processRun (std::span<std::pair<float, float>> run)
{
    if (modeParameter->hasChanged()) [[unlikely]]
        requestUpdate();

    // The sample that finds a change is still processed on the old settings, alone.
    if (settingsDue.load (std::memory_order_relaxed)) [[unlikely]]
        run = run.first (1);

    countSamples (static_cast<int> (run.size()) - 1);

    if (modeIndex != 0)
    {
        auto left = HighPassAccess::copyOf (highPassLeft);
        auto right = HighPassAccess::copyOf (highPassRight);
        chainOn (left, right).process (run);
        HighPassAccess::keepMemory (left, highPassLeft);
        HighPassAccess::keepMemory (right, highPassRight);
    }

    return run.size();
}

VoiceChain LarkspireAudioProcessor::chainOn (HighPassFilter& left, HighPassFilter& right) const
{
    return { left, right, *expander, *airFilter, *bodyFilter, *leveller };
}
