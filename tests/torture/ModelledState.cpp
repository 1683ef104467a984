// SPDX-License-Identifier: AGPL-3.0-only
// What an instance must remember for its host.
#include "torture/Mismatch.h"
#include "torture/ModelledInstance.h"

#include <cmath>

std::string ModelledInstance::save (Dice& dice)
{
    const bool ofProgram = dice.onceIn (2);
    const auto bytes = saved (ofProgram);
    settings.requireSaved (blockWithin (bytes), parameter, rate);
    requireParameter();
    requireSilenceTowardsTheHost();
    lastSave = { bytes, parameter, settings, isBypassed };
    return ofProgram ? "save the program" : "save the bank";
}

std::string ModelledInstance::load (Dice& dice)
{
    const auto block = SettingsModel::someBlock (dice);
    restore (block.bytes, dice.onceIn (2));
    settings.load (block);

    if (block.hasMode)
        parameter = block.mode;
    else if (block.isDocument && std::isnan (parameter))
        parameter = 0.0f; // the clamp of a restored value

    sound.setParameter (parameter);
    sound.requestRefresh();
    requireParameter();
    requireSilenceTowardsTheHost();
    return block.isDocument ? "load a document" : "load something else";
}

std::string ModelledInstance::loadOwnSave (Dice& dice)
{
    if (! lastSave)
        return "have no save yet";

    const auto block = SettingsModel::blockOf (lastSave->bytes, lastSave->parameter, lastSave->settings);
    restore (block.bytes, dice.onceIn (2));
    settings.load (block);
    parameter = block.mode;

    if (savesTheBypass())
        isBypassed = lastSave->isBypassed;

    sound.setParameter (parameter);
    sound.requestRefresh();
    requireParameter();
    requireSilenceTowardsTheHost();
    return "load the last save";
}
