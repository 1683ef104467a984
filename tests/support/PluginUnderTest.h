// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/KnobPosition.h"
#include "support/Signals.h"
#include "window/HostWindow.h"

#include <array>
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

/** The interfaces by which hosts load the plug-in. */
enum class Format
{
    vst2,
    vst3,
    lv2
};

inline constexpr std::array allFormats { Format::vst2, Format::vst3, Format::lv2 };

/** Those in which the plug-in has a state, a bypass of the host's, a window and ten positions. LV2 has none of that and
    the four positions that have a name. */
inline constexpr std::array vstFormats { Format::vst2, Format::vst3 };

constexpr const char* nameOf (Format format)
{
    return format == Format::vst2 ? "Vst2" : format == Format::vst3 ? "Vst3" : "Lv2";
}

inline std::ostream& operator<< (std::ostream& stream, Format format)
{
    return stream << nameOf (format);
}

/** An instance of the built plug-in in a host of the tests' own, by whatever interface. What a format has not does
    nothing. The library is loaded for it, and nothing happens by itself. */
class PluginUnderTest
{
public:
    PluginUnderTest() = default;
    virtual ~PluginUnderTest() = default;
    PluginUnderTest (const PluginUnderTest&) = delete;
    PluginUnderTest& operator= (const PluginUnderTest&) = delete;

    /** The knob's parameter, 0 to 1. A new value is in force from the next block on. */
    virtual void setParameter (float value) = 0;
    virtual float getParameter() = 0;

    /** The host's bypass, in force from the next block on. */
    virtual void setBypass (bool isBypassed) = 0;

    /** Asks for mono (1) or stereo (2) on both sides; whether the plug-in accepts it. Not while it runs. */
    virtual bool setChannels (int channels) = 0;

    /** Sets the sample rate in Hz and the most frames of a block. Not while it runs. */
    virtual void prepare (float sampleRate, int blockSize) = 0;

    virtual void resume() = 0;
    virtual void suspend() = 0;

    /** Processes frames; two channels each way, which may be the same. On a mono layout the second is the host's. */
    virtual void process (float* const* inputs, float* const* outputs, std::size_t frames) = 0;

    /** The state as the host gets it, and back. */
    virtual std::string save() = 0;
    virtual void load (const std::string& state) = 0;

    /** Opens the editor in a window at a place of the screen. The window must go before this does. */
    virtual std::unique_ptr<larkspire::window::HostWindow> openEditor (int x = 0, int y = 0) = 0;

    /** What the plug-in tells its host of the user's hand. */
    struct Edit
    {
        enum Kind
        {
            begin,
            change,
            end
        };

        Kind kind;
        bool isOfKnob;
        float value; // of a change

        bool operator== (const Edit&) const = default;
    };

    /** All that it has told since the last call of this, and before resume(): what the audio thread asks of a host is
        not written down. */
    virtual std::vector<Edit> takeEdits() = 0;

    /** Sets layout, rate in Hz and block size, and resumes. Throws std::runtime_error if the layout is refused. */
    void start (float rate, int blockSize = 4096, bool mono = false);

    /** Processes frames of both channels in place, from the given frame on. */
    void process (Signal& signal, std::size_t from, std::size_t frames);
};

/** What has been built for a format: a library of VST 2, a bundle of the others. */
std::string pluginPath (Format format);

/** Loads the built plug-in by a format, or another one of that format, and makes an instance. */
std::unique_ptr<PluginUnderTest> openPlugin (Format format);
std::unique_ptr<PluginUnderTest> openPlugin (Format format, const std::string& path);

/** The file that a format's host loads. */
std::string libraryPath (Format format);
