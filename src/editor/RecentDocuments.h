// The editor's list of recently opened documents: at most kMaxEntries paths, newest first,
// each of at most kMaxPathChars characters. The File menu shows them as "&1 path" ... with
// command ids counting down from kFirstCommand for the newest.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace lx {

class RecentDocuments {
public:
    static constexpr size_t kMaxEntries = 4;
    static constexpr size_t kMaxPathChars = 259;
    static constexpr unsigned kFirstCommand = 57616;

    // Puts `path` at the top (once, whatever its letter case); the oldest beyond the limit
    // goes. An empty or over-long path is not kept.
    void Add(const std::wstring& path);
    void Remove(size_t index);
    // Entries as stored, newest first.
    void Assign(const std::vector<std::wstring>& paths);
    const std::vector<std::wstring>& Paths() const { return paths_; }

    static unsigned CommandOf(size_t index) { return kFirstCommand - static_cast<unsigned>(index); }
    // The entry a command stands for, when it is one of the list's.
    std::optional<size_t> IndexOfCommand(unsigned command) const;
    // "&1 C:\photo.jpg" for the newest.
    static std::wstring MenuText(size_t index, const std::wstring& path);

private:
    std::vector<std::wstring> paths_;
};

}  // namespace lx
