// SPDX-License-Identifier: AGPL-3.0-only
#include "window/EditorWindow.h"

#include "base/Failure.h"

namespace larkspire::window
{

EditorWindow::EditorWindow (const PluginInstance& hosted, int x, int y) : plugin (hosted)
{
    Vst2::ERect* bounds = nullptr;
    plugin.dispatch (Vst2::effEditGetRect, 0, 0, &bounds);

    if (bounds == nullptr)
        throw Failure ("the plug-in", "has no editor");

    show (x, y, bounds->right - bounds->left, bounds->bottom - bounds->top);
    plugin.dispatch (Vst2::effEditOpen, 0, 0, reinterpret_cast<void*> (handle())); // NOLINT(performance-no-int-to-ptr)
}

EditorWindow::~EditorWindow()
{
    plugin.dispatch (Vst2::effEditClose);
}

void EditorWindow::turn()
{
    plugin.dispatch (Vst2::effEditIdle);
}

} // namespace larkspire::window
