// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <vector>

/** A parameter that keeps whatever number it is given, in its range or not, and writes down what it was given. Base is
    JUCE's class with an id or the one without. */
template <typename Base>
class RecordingParameter : public Base
{
public:
    template <typename... BaseArguments>
    explicit RecordingParameter (float startValue, BaseArguments&&... arguments)
        : Base (std::forward<BaseArguments> (arguments)...),
          current (startValue)
    {
    }

    float getValue() const override { return current; }

    void setValue (float value) override
    {
        current = value;
        given.push_back (value);
    }

    float getDefaultValue() const override { return 0.5f; }
    float getValueForText (const juce::String&) const override { return 0.0f; }
    juce::String getName (int) const override { return "Recording"; }
    juce::String getLabel() const override { return {}; }

    float current;
    std::vector<float> given;
};

/** Has an id, as settings documents need it. */
struct KnownParameter : RecordingParameter<juce::AudioProcessorParameterWithID>
{
    KnownParameter (const juce::String& id, float startValue)
        : RecordingParameter (startValue, juce::ParameterID (id, 1), id)
    {
    }
};

/** Has none. */
struct NamelessParameter : RecordingParameter<juce::AudioProcessorParameter>
{
    explicit NamelessParameter (float startValue) : RecordingParameter (startValue) {}
};
