// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "reference/ReferencePlugin.h"
#include "support/RawHost.h"
#include "torture/Dice.h"
#include "torture/GuardedBuffer.h"
#include "torture/SettingsModel.h"
#include "window/EditorWindow.h"

#include <array>
#include <memory>
#include <optional>
#include <string>

/** An instance of the built library, and what it must be after all that was done to it.

    Each operation does one thing that a host does, checks what comes back against the model, and throws a Mismatch
   where the two differ. It returns a few words on what it did. A host keeps to some rules, and so does this:
    - after a suspension it resumes before it processes (JUCE's wrapper has no buffers then);
    - once it has given two channels one buffer, or a channel none, its blocks are no longer than twice the block size
      that was announced then, until it resumes anew (the wrapper makes a buffer of that length, once);
    - it closes the window before the instance.
*/
class ModelledInstance
{
public:
    explicit ModelledInstance (const std::string& libraryPath);

    // The sound.
    std::string announceRate (Dice& dice);
    std::string announceBlockSize (Dice& dice);
    std::string announceLayout (Dice& dice);
    std::string suspend (Dice& dice);
    std::string resume (Dice& dice);
    std::string process (Dice& dice);
    std::string bypass (Dice& dice);
    std::string tellTheTime (Dice& dice);
    std::string choosePrecision (Dice& dice);

    // The parameter.
    std::string setParameter (Dice& dice);
    std::string setParameterByText (Dice& dice);
    std::string readParameter (Dice& dice);

    // The state.
    std::string save (Dice& dice);
    std::string load (Dice& dice);
    std::string loadOwnSave (Dice& dice);
    std::string usePrograms (Dice& dice);

    // The window.
    std::string openEditor (Dice& dice);
    std::string idleEditor (Dice& dice);
    std::string closeEditor (Dice& dice);

    /** What never changes. */
    std::string askForConstants (Dice& dice);

    bool hasEditor() const { return editor != nullptr; }

    /** Frames processed by all instances. */
    static std::uint64_t processedFrames() { return frameCount; }

    /** A number that all sound of all instances so far goes into. */
    static std::uint64_t soundHash() { return hash; }

private:
    struct Buffers;
    static Buffers& buffers();

    std::size_t someBlockLength (Dice& dice) const;
    void noteResume();
    void requireParameter();
    void requireSilenceTowardsTheHost();
    void requireText (Vst2::VstInt32 opcode, Vst2::VstInt32 index, const std::string& expected);
    void expectedBlock (GuardedBuffer& left, GuardedBuffer& right);
    std::string expectedText() const;
    void setModelParameter (float value);

    RawHost host;
    std::unique_ptr<larkspire::window::EditorWindow> editor;
    Vst2::VstTimeInfo time {};

    float parameter = knobPosition (2);
    SettingsModel settings;
    ReferencePlugin sound;
    float announcedRate = 44100.0f;
    std::size_t announcedBlockSize = 1024;
    double rate = 0.0; // as the last resume has left it
    bool isMono = false;
    bool isBypassed = false;
    bool isResumed = false;
    bool resumesItself = true;               // at its first block, where the host has not
    std::optional<std::size_t> longestBlock; // while the wrapper has a buffer of its own

    struct Saved
    {
        std::string bytes;
        float parameter;
        SettingsModel settings;
    };

    std::optional<Saved> lastSave;

    static inline std::uint64_t frameCount = 0;
    static inline std::uint64_t hash = 14695981039346656037u;
};
