// The hand-over of a batch or publishing tool request.
//
// The host writes a short-lived key under HKEY_CURRENT_USER holding the selected files as one
// shell drop block ("drop"), a folder ("path") and a number ("effect"), and passes the key's
// name as the command line. ReadToolRequest reads the key once and deletes it, so a request
// is consumed exactly once. The caller owns `drop` and frees it with GlobalFree.
#pragma once

#include <windows.h>

#include <string>

namespace lx {

struct ToolRequest {
    std::wstring path;       // "path"; empty when absent or unusable
    HGLOBAL drop = nullptr;  // copy of "drop"; null when absent or unusable
    DWORD effect = 0;        // "effect"; 0 when absent or not a REG_DWORD
};

// Non-zero when the key named `keyName` could be opened (and has then been deleted). A name
// that IsRequestKeyName refuses opens and deletes nothing; a key with sub-keys or values other
// than "drop", "path" and "effect" is not a request and is left untouched.
int ReadToolRequest(ToolRequest& request, const wchar_t* keyName);

// Owns a request's drop block for the span of one entry-point call.
class ScopedToolRequest {
public:
    ScopedToolRequest() = default;
    ScopedToolRequest(const ScopedToolRequest&) = delete;
    ScopedToolRequest& operator=(const ScopedToolRequest&) = delete;
    ~ScopedToolRequest() {
        if (request.drop) GlobalFree(request.drop);
    }
    ToolRequest request;
};

}  // namespace lx
