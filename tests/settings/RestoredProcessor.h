// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "settings/ProcessorState.h"
#include "support/OpenProcessor.h"

/** A processor that restores blocks, each from the same state, in which every touch shows. */
class RestoredProcessor : public OpenProcessor
{
public:
    static constexpr float formerMode = 0.625f;

    RestoredProcessor() = default;
    explicit RestoredProcessor (std::string_view block) { takeIn (block); }

    /** Takes up the former state. */
    void settle()
    {
        setMode (formerMode);
        settings = { { "kept", "entry" }, { "mode", "stale" } };
        settingsDue = false;
        samplesSinceChange = 77;
        stateTouched = false;
    }

    /** Restores a block from the former state. */
    void takeIn (std::string_view block)
    {
        settle();
        state_block::restore (*this, block);
    }

    float mode() const { return modeParameter->get(); }
    state_block::Store store() const { return state_block::plain (settings); }
    bool hasFormerStore() const { return store() == state_block::Store { { "kept", "entry" }, { "mode", "stale" } }; }
    bool isUntouched() const { return mode() == formerMode && hasFormerStore(); }
    bool hasAskedForAnUpdate() const { return settingsDue && samplesSinceChange == 0 && stateTouched; }
};
