// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "support/vst3/Vst3Instance.h"
#include "support/vst3/Vst3Window.h"
#include "torture/ModelledInstance.h"

#include <memory>
#include <string>

/** An instance of the VST 3 bundle. A host keeps to some rules, and so does this:
    - it announces rate, block size and layout while the instance is not active;
    - what it sets while it does not process, it hands over by a block without samples.
*/
class ModelledVst3 : public ModelledInstance
{
public:
    explicit ModelledVst3 (const std::string& bundlePath);

    std::string announceLayout (Dice& dice) override;
    std::string tellTheTime (Dice& dice) override;
    std::string choosePrecision (Dice& dice) override;
    std::string readParameter (Dice& dice) override;
    std::string usePrograms (Dice& dice) override;
    std::string openEditor (Dice& dice) override;
    std::string idleEditor (Dice& dice) override;
    std::string closeEditor (Dice& dice) override;
    bool hasEditor() const override { return window != nullptr; }
    std::string askForConstants (Dice& dice) override;

protected:
    // Taken by the instance when it is resumed.
    void tellRate (float) override {}
    void tellBlockSize (std::size_t) override {}

    void tellSuspend() override;
    void tellResume() override;
    void tellBypass (bool isOn) override;
    void tellParameter (float value) override;
    void tellText (const std::string& text) override;
    void processBlock (float* const* inputs, float* const* outputs, std::size_t frames) override;
    std::string saved (bool ofProgram) override;
    void restore (const std::string& bytes, bool ofProgram) override;

    void requireParameter() override;
    void requireSilenceTowardsTheHost() override;
    Typed someText (Dice& dice) const override;
    bool takesOddOutputs() const override { return false; }
    bool savesTheBypass() const override { return true; }
    std::string blockWithin (const std::string& whole) const override;

private:
    Vst3Module module;
    Vst3Instance instance;
    std::unique_ptr<Vst3Window> window;
    float lastScale = 1.0f;
};
