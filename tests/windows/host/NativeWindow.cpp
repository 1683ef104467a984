// SPDX-License-Identifier: AGPL-3.0-only
#include "windows/host/NativeWindow.h"

#include <windows.h>

#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace
{
constexpr const char* className = "larkspire-windows-host";

void registerClass()
{
    WNDCLASSA windowClass {};
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.lpszClassName = className;
    windowClass.hInstance = GetModuleHandleA (nullptr);
    RegisterClassA (&windowClass);
}

BOOL CALLBACK keepFirst (HWND window, LPARAM first)
{
    auto& found = *reinterpret_cast<HWND*> (first); // NOLINT(performance-no-int-to-ptr)

    if (found == nullptr)
        found = window;

    return TRUE;
}
} // namespace

NativeWindow::NativeWindow (HostedPlugin& hosted) : plugin (hosted)
{
    registerClass();
    auto* host = CreateWindowA (className,
                                "host",
                                WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_CLIPCHILDREN,
                                20,
                                200,
                                100,
                                100,
                                nullptr,
                                nullptr,
                                GetModuleHandleA (nullptr),
                                nullptr);
    window = host;
    resize (plugin.size());
    plugin.resized = [this] (HostedPlugin::Size wanted) { resize (wanted); };
    pump (100);
    plugin.open (host);
    HWND first = nullptr;
    EnumChildWindows (host, keepFirst, reinterpret_cast<LPARAM> (&first));
    child = first;

    if (child == nullptr)
        throw std::runtime_error ("the editor has not opened a window of its own");
}

NativeWindow::~NativeWindow()
{
    plugin.close();
    plugin.resized = nullptr;
    pump (50);
    DestroyWindow (static_cast<HWND> (window));
    pump (50);
}

void NativeWindow::resize (HostedPlugin::Size wanted)
{
    editorSize = wanted;
    RECT frame { 0, 0, wanted.width, wanted.height };
    AdjustWindowRect (&frame, WS_OVERLAPPEDWINDOW, FALSE);
    SetWindowPos (static_cast<HWND> (window),
                  nullptr,
                  0,
                  0,
                  frame.right - frame.left,
                  frame.bottom - frame.top,
                  SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void NativeWindow::pump (unsigned int milliseconds)
{
    const auto start = GetTickCount64();

    // There may always be one more message to come: only the clock ends this.
    while (GetTickCount64() - start < milliseconds)
    {
        MSG message {};

        if (PeekMessageA (&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        {
            TranslateMessage (&message);
            DispatchMessageA (&message);
        }
        else
        {
            plugin.idle();
            Sleep (5);
        }
    }
}

void NativeWindow::drag (int x, int y, int distance)
{
    auto* target = static_cast<HWND> (child);
    SendMessageA (target, WM_MOUSEMOVE, 0, MAKELPARAM (x, y));
    pump (30);
    SendMessageA (target, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM (x, y));
    pump (10);

    for (int moved = 0; moved <= std::abs (distance); moved += 10)
    {
        SendMessageA (target, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM (x, y + (distance < 0 ? -moved : moved)));
        pump (10);
    }

    SendMessageA (target, WM_LBUTTONUP, 0, MAKELPARAM (x, y + distance));
    pump (30);
}

larkspire::window::Picture NativeWindow::picture() const
{
    const auto [width, height] = editorSize;
    POINT corner { 0, 0 };
    ClientToScreen (static_cast<HWND> (window), &corner);

    auto* screen = GetDC (nullptr);
    auto* memory = CreateCompatibleDC (screen);
    auto* bitmap = CreateCompatibleBitmap (screen, width, height);
    SelectObject (memory, bitmap);
    BitBlt (memory, 0, 0, width, height, screen, corner.x, corner.y, SRCCOPY);

    BITMAPINFO format {};
    format.bmiHeader = { sizeof (BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0 };
    std::vector<unsigned char> pixels (static_cast<std::size_t> (width * height * 4));
    GetDIBits (memory, bitmap, 0, static_cast<UINT> (height), pixels.data(), &format, DIB_RGB_COLORS);
    DeleteObject (bitmap);
    DeleteDC (memory);
    ReleaseDC (nullptr, screen);

    larkspire::window::Picture picture { width, height, {} };

    for (std::size_t i = 0; i < pixels.size(); i += 4)
        picture.pixels.push_back ({ pixels[i + 2], pixels[i + 1], pixels[i] });

    return picture;
}
