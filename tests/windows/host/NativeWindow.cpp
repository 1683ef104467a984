// SPDX-License-Identifier: AGPL-3.0-only
#include "windows/host/NativeWindow.h"

#include <windows.h>

#include <cstdlib>
#include <fstream>
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

NativeWindow::NativeWindow (const larkspire::PluginInstance& hosted) : plugin (hosted)
{
    Vst2::ERect* bounds = nullptr;
    plugin.dispatch (Vst2::effEditGetRect, 0, 0, &bounds);

    if (bounds == nullptr)
        throw std::runtime_error ("there is no editor");

    editorWidth = bounds->right - bounds->left;
    editorHeight = bounds->bottom - bounds->top;
    registerClass();
    RECT frame { 0, 0, editorWidth, editorHeight };
    AdjustWindowRect (&frame, WS_OVERLAPPEDWINDOW, FALSE);
    auto* host = CreateWindowA (className,
                                "host",
                                WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_CLIPCHILDREN,
                                20,
                                300,
                                frame.right - frame.left,
                                frame.bottom - frame.top,
                                nullptr,
                                nullptr,
                                GetModuleHandleA (nullptr),
                                nullptr);
    window = host;
    pump (100);
    plugin.dispatch (Vst2::effEditOpen, 0, 0, host);
    HWND first = nullptr;
    EnumChildWindows (host, keepFirst, reinterpret_cast<LPARAM> (&first));
    child = first;

    if (child == nullptr)
        throw std::runtime_error ("the editor has not opened a window of its own");
}

NativeWindow::~NativeWindow()
{
    plugin.dispatch (Vst2::effEditClose);
    pump (50);
    DestroyWindow (static_cast<HWND> (window));
    pump (50);
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
            plugin.dispatch (Vst2::effEditIdle);
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

void NativeWindow::photograph (const std::string& path)
{
    POINT corner { 0, 0 };
    ClientToScreen (static_cast<HWND> (window), &corner);

    auto* screen = GetDC (nullptr);
    auto* memory = CreateCompatibleDC (screen);
    auto* bitmap = CreateCompatibleBitmap (screen, editorWidth, editorHeight);
    SelectObject (memory, bitmap);
    BitBlt (memory, 0, 0, editorWidth, editorHeight, screen, corner.x, corner.y, SRCCOPY);

    BITMAPINFO format {};
    format.bmiHeader = { sizeof (BITMAPINFOHEADER), editorWidth, -editorHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0 };
    std::vector<unsigned char> pixels (static_cast<std::size_t> (editorWidth * editorHeight * 4));
    GetDIBits (memory, bitmap, 0, static_cast<UINT> (editorHeight), pixels.data(), &format, DIB_RGB_COLORS);
    DeleteObject (bitmap);
    DeleteDC (memory);
    ReleaseDC (nullptr, screen);

    std::ofstream file (path, std::ios::binary);
    file << "P6\n" << editorWidth << " " << editorHeight << "\n255\n";

    for (std::size_t i = 0; i < pixels.size(); i += 4)
        file << static_cast<char> (pixels[i + 2]) << static_cast<char> (pixels[i + 1]) << static_cast<char> (pixels[i]);
}
