// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "reference/ReferencePlugin.h"
#include "support/KnobPosition.h"
#include "torture/Dice.h"
#include "torture/GuardedBuffer.h"
#include "torture/SettingsModel.h"

#include <cstdint>
#include <optional>
#include <string>

/** An instance of the built library, and what it must be after all that was done to it.

    Each operation does one thing that a host does, checks what comes back against the model, and throws a Mismatch
    where the two differ. It returns a few words on what it did. What both interfaces have is here; by which one it is
    done, and what only one of them has, is in ModelledVst2 and ModelledVst3.
*/
class ModelledInstance
{
public:
    virtual ~ModelledInstance() = default;
    ModelledInstance (const ModelledInstance&) = delete;
    ModelledInstance& operator= (const ModelledInstance&) = delete;

    // The sound.
    std::string announceRate (Dice& dice);
    std::string announceBlockSize (Dice& dice);
    virtual std::string announceLayout (Dice& dice) = 0;
    std::string suspend (Dice& dice);
    std::string resume (Dice& dice);
    std::string process (Dice& dice);
    std::string bypass (Dice& dice);
    virtual std::string tellTheTime (Dice& dice) = 0;
    virtual std::string choosePrecision (Dice& dice) = 0;

    // The parameter.
    std::string setParameter (Dice& dice);
    std::string setParameterByText (Dice& dice);
    virtual std::string readParameter (Dice& dice) = 0;

    // The state.
    std::string save (Dice& dice);
    std::string load (Dice& dice);
    std::string loadOwnSave (Dice& dice);
    virtual std::string usePrograms (Dice& dice) = 0;

    // The window.
    virtual std::string openEditor (Dice& dice) = 0;
    virtual std::string idleEditor (Dice& dice) = 0;
    virtual std::string closeEditor (Dice& dice) = 0;
    virtual bool hasEditor() const = 0;

    /** What never changes. */
    virtual std::string askForConstants (Dice& dice) = 0;

    /** Frames processed by all instances. */
    static std::uint64_t processedFrames() { return frameCount; }

    /** A number that all sound of all instances so far goes into. */
    static std::uint64_t soundHash() { return hash; }

protected:
    /** An instance that nothing was done to, with the rate in Hz that it has before a host has named one. */
    explicit ModelledInstance (double firstRate);

    /** A text that may be typed, and the value that it stands for: none where it changes nothing. */
    struct Typed
    {
        std::string text;
        std::optional<float> value;
    };

    // The calls to the instance, by its interface.
    virtual void tellRate (float newRate) = 0;
    virtual void tellBlockSize (std::size_t newSize) = 0;
    virtual void tellSuspend() = 0;
    virtual void tellResume() = 0;
    virtual void tellBypass (bool isOn) = 0;
    virtual void tellParameter (float value) = 0;
    virtual void tellText (const std::string& text) = 0;
    virtual void processBlock (float* const* inputs, float* const* outputs, std::size_t frames) = 0;
    virtual std::string saved (bool ofProgram) = 0;
    virtual void restore (const std::string& bytes, bool ofProgram) = 0;

    // What differs between the interfaces.
    virtual void requireParameter() = 0;
    virtual void requireSilenceTowardsTheHost() = 0;
    virtual Typed someText (Dice& dice) const = 0;

    /** Whether a host may give both output channels one buffer, or none to the right. */
    virtual bool takesOddOutputs() const = 0;

    /** Whether a saved state holds the host's bypass. */
    virtual bool savesTheBypass() const = 0;

    /** The state block at the start of what was saved. */
    virtual std::string blockWithin (const std::string& whole) const = 0;

    std::string expectedText() const;
    static bool isSameNumber (float a, float b);

    /** JUCE's notion of a value that is set already: equal, or within a relative epsilon. */
    static bool isTakenForEqual (float a, float b);

    float parameter = knobPosition (2);
    ReferencePlugin sound;
    float announcedRate = 44100.0f;
    std::size_t announcedBlockSize = 1024;
    bool isMono = false;
    bool isResumed = false;

private:
    struct Buffers;
    static Buffers& buffers();

    std::size_t someBlockLength (Dice& dice) const;
    void noteResume();
    void expectedBlock (GuardedBuffer& left, GuardedBuffer& right);
    void setModelParameter (float value);

    SettingsModel settings;
    double rate; // as the last resume has left it
    bool isBypassed = false;
    bool resumesItself = true;               // at its first block, where the host has not
    std::optional<std::size_t> longestBlock; // while the VST 2 wrapper has a buffer of its own

    struct Saved
    {
        std::string bytes;
        float parameter;
        SettingsModel settings;
        bool isBypassed;
    };

    std::optional<Saved> lastSave;

    static inline std::uint64_t frameCount = 0;
    static inline std::uint64_t hash = 14695981039346656037u;
};
