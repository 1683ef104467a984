// SPDX-License-Identifier: AGPL-3.0-only
#include "support/PluginUnderTest.h"

#include "support/Lv2Instance.h"
#include "support/Paths.h"
#include "support/RawHost.h"
#include "support/vst3/Vst3Window.h"
#include "window/EditorWindow.h"

#include <cmath>
#include <optional>
#include <stdexcept>
#include <utility>

namespace
{
using larkspire::window::HostWindow;

class ByVst2 : public PluginUnderTest
{
public:
    explicit ByVst2 (const std::string& path) : host (path) {}

    void setParameter (float value) override { host.setParameter (value); }
    float getParameter() override { return host.getParameter(); }
    void setBypass (bool isBypassed) override { host.dispatch (Vst2::effSetBypass, 0, isBypassed ? 1 : 0); }
    bool setChannels (int channels) override { return host.setChannels (channels); }
    void prepare (float sampleRate, int blockSize) override { host.prepare (sampleRate, blockSize); }
    void suspend() override { host.suspend(); }
    std::string save() override { return host.chunk(); }
    void load (const std::string& state) override { host.setChunk (state); }

    void resume() override
    {
        host.stopLogging();
        host.resume();
    }

    void process (float* const* inputs, float* const* outputs, std::size_t frames) override
    {
        host.process (inputs, outputs, frames);
    }

    std::unique_ptr<HostWindow> openEditor (int x, int y) override
    {
        return std::make_unique<larkspire::window::EditorWindow> (host, x, y);
    }

    std::vector<Edit> takeEdits() override
    {
        std::vector<Edit> edits;

        for (const auto& [opcode, index, value] : host.takeCalls())
            if (opcode == Vst2::audioMasterAutomate)
                edits.push_back ({ Edit::change, index == 0, value });
            else if (opcode == Vst2::audioMasterBeginEdit || opcode == Vst2::audioMasterEndEdit)
                edits.push_back ({ opcode == Vst2::audioMasterBeginEdit ? Edit::begin : Edit::end, index == 0, 0.0f });

        return edits;
    }

private:
    RawHost host;
};

class ByVst3 : public PluginUnderTest
{
public:
    explicit ByVst3 (const std::string& path) : module (path) {}

    void setParameter (float value) override { instance.setParameter (instance.modeId(), static_cast<double> (value)); }
    float getParameter() override { return static_cast<float> (instance.getParameter (instance.modeId())); }
    void setBypass (bool isBypassed) override { instance.setParameter (instance.bypassId(), isBypassed ? 1.0 : 0.0); }
    bool setChannels (int channels) override { return instance.setChannels (channels); }
    void resume() override { instance.activate(); }
    void suspend() override { instance.deactivate(); }
    std::string save() override { return instance.save(); }
    void load (const std::string& state) override { instance.load (state); }

    void prepare (float sampleRate, int blockSize) override
    {
        if (! instance.setUp (static_cast<double> (sampleRate), blockSize))
            throw std::runtime_error ("the plug-in refused its set-up");
    }

    void process (float* const* inputs, float* const* outputs, std::size_t frames) override
    {
        instance.process (inputs, outputs, frames);
    }

    std::unique_ptr<HostWindow> openEditor (int x, int y) override
    {
        return std::make_unique<Vst3Window> (instance, Vst3Window::Host { .x = x, .y = y });
    }

    std::vector<Edit> takeEdits() override
    {
        std::vector<Edit> edits;

        for (const auto& [kind, parameter, value] : std::exchange (instance.log.edits, {}))
            edits.push_back (
                { static_cast<Edit::Kind> (kind), parameter == instance.modeId(), static_cast<float> (value) });

        return edits;
    }

private:
    Vst3Module module;
    Vst3Instance instance { module };
};

class ByLv2 : public PluginUnderTest
{
public:
    explicit ByLv2 (const std::string& path) : library (path) {}

    void setParameter (float value) override { mode = std::round (value * 9.0f); }
    float getParameter() override { return knobPosition (static_cast<int> (mode)); }
    void setBypass (bool) override {}
    void resume() override {}
    void suspend() override {}
    std::string save() override { return {}; }
    void load (const std::string&) override {}
    std::unique_ptr<HostWindow> openEditor (int, int) override { return nullptr; }
    std::vector<Edit> takeEdits() override { return {}; }

    bool setChannels (int channels) override
    {
        channelCount = static_cast<std::size_t> (channels);
        return true;
    }

    /** A rate is for life in this format, so this is another instance. */
    void prepare (float sampleRate, int) override
    {
        instance.emplace (library, static_cast<double> (sampleRate), channelCount);
        instance->connectMode (&mode);
    }

    void process (float* const* inputs, float* const* outputs, std::size_t frames) override
    {
        instance->connectInputs (inputs);
        instance->connectOutputs (outputs);
        instance->run (frames);
    }

private:
    Lv2Library library;
    float mode = 2.0f;
    std::size_t channelCount = 2;
    std::optional<Lv2Instance> instance;
};
} // namespace

void PluginUnderTest::start (float rate, int blockSize, bool mono)
{
    if (! setChannels (mono ? 1 : 2))
        throw std::runtime_error ("the plug-in refused its layout");

    prepare (rate, blockSize);
    resume();
}

void PluginUnderTest::process (Signal& signal, std::size_t from, std::size_t frames)
{
    float* const channels[] = { signal.left.data() + from, signal.right.data() + from };
    process (channels, channels, frames);
}

std::string pluginPath (Format format)
{
    switch (format)
    {
    case Format::vst2:
        return paths::plugin();
    case Format::vst3:
        return paths::vst3();
    case Format::lv2:
        return paths::lv2();
    }

    return {};
}

std::unique_ptr<PluginUnderTest> openPlugin (Format format)
{
    return openPlugin (format, pluginPath (format));
}

std::unique_ptr<PluginUnderTest> openPlugin (Format format, const std::string& path)
{
    switch (format)
    {
    case Format::vst2:
        return std::make_unique<ByVst2> (path);
    case Format::vst3:
        return std::make_unique<ByVst3> (path);
    case Format::lv2:
        return std::make_unique<ByLv2> (path);
    }

    return nullptr;
}

std::string libraryPath (Format format)
{
    auto plugin = pluginPath (format);

    switch (format)
    {
    case Format::vst2:
        return plugin;
    case Format::vst3:
        return Vst3Module::libraryOf (plugin).string();
    case Format::lv2:
        return Lv2Library::fileOf (plugin);
    }

    return {};
}
