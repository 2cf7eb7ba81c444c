// What the viewer's and the editor's frames do alike to come up: register their class (arrow
// cursor, button-face background) and the zoom view's, create the top-level window titled by
// their string-table entry, load the accelerators of the same id, and put the command bar's
// keys and those accelerators into the running message loop.
#pragma once

#include <windows.h>

#include "CommandBar.h"
#include "Window.h"

namespace lx {

// False when a class cannot be registered or the window cannot be made. The loop's filters
// refer to `bar` and `accelerators`, which live as long as the frame object.
bool CreateToolFrameWindow(Window& frame, const wchar_t* className, UINT resourceId, CommandBar& bar,
                           HACCEL& accelerators);

}  // namespace lx
