// SPDX-License-Identifier: AGPL-3.0-only
// Debian's package of JUCE leaves out a plug-in format together with this header, but the window code for
// Windows derives from the two interfaces that it declares, whatever the format. Nothing of ours calls them.
#pragma once

namespace juce
{

struct ModifierKeyProvider
{
    virtual ~ModifierKeyProvider() = default;
    virtual int getWin32Modifiers() const = 0;
};

struct ModifierKeyReceiver
{
    virtual ~ModifierKeyReceiver() = default;
    virtual void setModifierKeyProvider (ModifierKeyProvider*) = 0;
    virtual void removeModifierKeyProvider() = 0;
};

} // namespace juce
