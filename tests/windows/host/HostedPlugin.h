// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

/** An instance of a plug-in that is loaded for it, by whatever interface. */
class HostedPlugin
{
public:
    struct Size
    {
        int width = 0;
        int height = 0;
    };

    HostedPlugin() = default;
    virtual ~HostedPlugin() = default;
    HostedPlugin (const HostedPlugin&) = delete;
    HostedPlugin& operator= (const HostedPlugin&) = delete;

    /** The knob's parameter. A new position is in force from the next block on. */
    virtual void setPosition (int position) = 0;
    virtual float getParameter() = 0;

    virtual std::string save() = 0;
    virtual void load (const std::string& state) = 0;

    /** Sets layout, rate in Hz and block size, and resumes. */
    virtual void start (float rate, int blockSize, bool isMono) = 0;

    /** Processes frames of two channels in place; on a mono layout the second is the host's. */
    virtual void process (float* const* channels, std::size_t frames) = 0;

    /** What the plug-in has told of edits since the last call: a word for each, "begin", "value" or "end". */
    virtual std::string takeEdits() = 0;

    /** Asks for so many of the screen's pixels in place of one. */
    virtual void setScale (float factor) = 0;

    /** The editor's size. */
    virtual Size size() = 0;

    /** Opens the editor within a window of the system's. */
    virtual void open (void* window) = 0;
    virtual void close() = 0;

    /** What the host owes the open editor many times a second. */
    virtual void idle() {}

    /** Called where the editor asks for another size. */
    std::function<void (Size)> resized;
};

/** Whether a library is a bundle of VST 3. */
inline bool isVst3 (const std::string& path)
{
    return path.ends_with (".vst3");
}

/** Loads a VST 2 library or a VST 3 bundle and makes an instance. Throws std::exception if that fails. */
std::unique_ptr<HostedPlugin> openPlugin (const std::string& path);
