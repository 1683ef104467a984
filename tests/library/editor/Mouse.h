// SPDX-License-Identifier: AGPL-3.0-only
#pragma once

#include "window/HostWindow.h"

/** The user's hand on the mouse and the keyboard, over one editor. Places are pixels from the window's corner. The X
    server itself makes the events; after each the editor gets time to answer. */
class Mouse
{
public:
    explicit Mouse (larkspire::window::HostWindow& editor) : window (editor) {}

    /** Lets every key and button go that is still down. */
    ~Mouse();

    Mouse (const Mouse&) = delete;
    Mouse& operator= (const Mouse&) = delete;

    enum class Key
    {
        alt,
        control
    };

    void moveTo (int x, int y);
    void press();
    void release();
    void click();
    void doubleClick();
    void turnWheel (int notches); // away from the user is positive
    void hold (Key key);
    void letGo (Key key);

    /** Moves by a distance in steps of at most ten pixels, as a hand does. Downwards is positive. */
    void moveVertically (int distance);

private:
    void button (unsigned int number, bool down);
    void key (Key key, bool down);
    void settle();

    larkspire::window::HostWindow& window;
    int mouseX = 0;
    int mouseY = 0;
    bool buttonIsDown = false;
    bool altIsDown = false;
    bool controlIsDown = false;
};
