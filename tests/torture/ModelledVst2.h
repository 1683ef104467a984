// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/RawHost.h"
#include "torture/ModelledInstance.h"
#include "window/EditorWindow.h"

#include <memory>
#include <string>

/** An instance of the VST 2 library. A host keeps to some rules, and so does this:
    - after a suspension it resumes before it processes (JUCE's wrapper has no buffers then);
    - once it has given two channels one buffer, or a channel none, its blocks are no longer than twice the block size
      that was announced then, until it resumes anew (the wrapper makes a buffer of that length, once);
    - it closes the window before the instance.
*/
class ModelledVst2 : public ModelledInstance
{
public:
    explicit ModelledVst2 (const std::string& libraryPath);

    std::string announceLayout (Dice& dice) override;
    std::string tellTheTime (Dice& dice) override;
    std::string choosePrecision (Dice& dice) override;
    std::string readParameter (Dice& dice) override;
    std::string usePrograms (Dice& dice) override;
    std::string openEditor (Dice& dice) override;
    std::string idleEditor (Dice& dice) override;
    std::string closeEditor (Dice& dice) override;
    bool hasEditor() const override { return editor != nullptr; }
    std::string askForConstants (Dice& dice) override;

protected:
    void tellRate (float newRate) override { host.dispatch (Vst2::effSetSampleRate, 0, 0, nullptr, newRate); }
    void tellBlockSize (std::size_t newSize) override;
    void tellSuspend() override { host.suspend(); }
    void tellResume() override { host.resume(); }
    void tellBypass (bool isOn) override;
    void tellParameter (float value) override { host.setParameter (value); }
    void tellText (const std::string& text) override;
    void processBlock (float* const* inputs, float* const* outputs, std::size_t frames) override;
    std::string saved (bool ofProgram) override { return host.chunk (ofProgram); }
    void restore (const std::string& bytes, bool ofProgram) override { host.setChunk (bytes, ofProgram); }

    void requireParameter() override;
    void requireSilenceTowardsTheHost() override;
    Typed someText (Dice& dice) const override;
    bool takesOddOutputs() const override { return true; }
    bool savesTheBypass() const override { return false; }
    std::string blockWithin (const std::string& whole) const override { return whole; }

private:
    void requireText (Vst2::VstInt32 opcode, Vst2::VstInt32 index, const std::string& expected);

    RawHost host;
    std::unique_ptr<larkspire::window::EditorWindow> editor;
    Vst2::VstTimeInfo time {};
};
