// SPDX-License-Identifier: AGPL-3.0-only
// What an instance must remember for its host.
#include "torture/Mismatch.h"
#include "torture/ModelledInstance.h"

#include <cmath>

std::string ModelledInstance::save (Dice& dice)
{
    const bool ofProgram = dice.onceIn (2);
    const auto bytes = host.chunk (ofProgram);
    settings.requireSaved (bytes, parameter, rate);
    requireParameter();
    requireSilenceTowardsTheHost();
    lastSave = { bytes, parameter, settings };
    return ofProgram ? "save the program" : "save the bank";
}

std::string ModelledInstance::load (Dice& dice)
{
    const auto block = SettingsModel::someBlock (dice);
    host.setChunk (block.bytes, dice.onceIn (2));
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
    host.setChunk (block.bytes, dice.onceIn (2));
    settings.load (block);
    parameter = block.mode;
    sound.setParameter (parameter);
    sound.requestRefresh();
    requireParameter();
    requireSilenceTowardsTheHost();
    return "load the last save";
}

std::string ModelledInstance::usePrograms (Dice& dice)
{
    host.dispatch (Vst2::effSetProgram, 0, static_cast<Vst2::VstIntPtr> (dice.below (3)));
    require ("the program", host.dispatch (Vst2::effGetProgram), 0);
    char name[] = "A name";
    host.dispatch (Vst2::effSetProgramName, 0, 0, name);
    requireText (Vst2::effGetProgramName, 0, "");
    requireText (Vst2::effGetProgramNameIndexed, 0, "");
    requireParameter();
    return "use the programs";
}
