#include <windows.h>

#include <algorithm>

#include "Jpeg2PdfTool.h"

namespace lx {

namespace {

class Win32FileSink : public ByteSink {
public:
    explicit Win32FileSink(HANDLE file) : file_(file) {}
    ~Win32FileSink() override { CloseHandle(file_); }
    Win32FileSink(const Win32FileSink&) = delete;
    Win32FileSink& operator=(const Win32FileSink&) = delete;

    bool Write(const void* data, size_t size) override {
        const char* p = static_cast<const char*>(data);
        while (size > 0) {
            const DWORD chunk = DWORD(std::min<size_t>(size, 0x40000000));
            DWORD written = 0;
            if (!WriteFile(file_, p, chunk, &written, nullptr) || written != chunk) return false;
            p += chunk;
            size -= chunk;
        }
        return true;
    }

private:
    HANDLE file_;
};

}  // namespace

std::unique_ptr<ByteSink> CreateWin32FileSink(const std::filesystem::path& path) {
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_ARCHIVE, nullptr);
    if (file == INVALID_HANDLE_VALUE) return nullptr;
    return std::make_unique<Win32FileSink>(file);
}

}  // namespace lx
