// SPDX-License-Identifier: AGPL-3.0-only
#include "library/editor/Mouse.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <algorithm>
#include <cstdlib>

Mouse::~Mouse()
{
    if (buttonIsDown)
        release();

    if (altIsDown)
        letGo (Key::alt);

    if (controlIsDown)
        letGo (Key::control);
}

void Mouse::settle()
{
    XSync (window.connection(), False);
    window.idle (std::chrono::milliseconds (15));
}

void Mouse::moveTo (int x, int y)
{
    int rootX = 0;
    int rootY = 0;
    Window child = 0;
    XTranslateCoordinates (
        window.connection(), window.handle(), DefaultRootWindow (window.connection()), x, y, &rootX, &rootY, &child);
    XTestFakeMotionEvent (window.connection(), -1, rootX, rootY, CurrentTime);
    mouseX = x;
    mouseY = y;
    settle();
}

void Mouse::moveVertically (int distance)
{
    const int step = distance < 0 ? -10 : 10;

    while (distance != 0)
    {
        const int part = std::abs (distance) < 10 ? distance : step;
        moveTo (mouseX, mouseY + part);
        distance -= part;
    }
}

void Mouse::button (unsigned int number, bool down)
{
    XTestFakeButtonEvent (window.connection(), number, down ? True : False, CurrentTime);
    settle();
}

void Mouse::press()
{
    buttonIsDown = true;
    button (1, true);
}

void Mouse::release()
{
    buttonIsDown = false;
    button (1, false);
}

void Mouse::click()
{
    press();
    release();
}

void Mouse::doubleClick()
{
    click();
    click();
}

void Mouse::turnWheel (int notches)
{
    const unsigned int number = notches > 0 ? 4 : 5;

    for (int i = 0; i < std::abs (notches); ++i)
    {
        button (number, true);
        button (number, false);
    }
}

void Mouse::key (Key key, bool down)
{
    const KeySym symbol = key == Key::alt ? XK_Alt_L : XK_Control_L;
    (key == Key::alt ? altIsDown : controlIsDown) = down;
    XTestFakeKeyEvent (
        window.connection(), XKeysymToKeycode (window.connection(), symbol), down ? True : False, CurrentTime);
    settle();
}

void Mouse::hold (Key held)
{
    key (held, true);
}

void Mouse::letGo (Key held)
{
    key (held, false);
}
