// Test doubles for the rename run: shooting times, a folder held in memory and a sink that
// records what it was told and answers questions with a fixed button.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "RecordingSink.h"
#include "RenameRun.h"

namespace lxtest {

inline lx::ShootingTime ShotAt(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
                               int milliseconds = 0) {
    lx::ShootingTime t;
    t.year = static_cast<uint16_t>(year);
    t.month = static_cast<uint16_t>(month);
    t.day = static_cast<uint16_t>(day);
    t.hour = static_cast<uint16_t>(hour);
    t.minute = static_cast<uint16_t>(minute);
    t.second = static_cast<uint16_t>(second);
    t.milliseconds = static_cast<uint16_t>(milliseconds);
    return t;
}

class MemoryFolder {
public:
    std::set<std::wstring> files;
    std::set<std::wstring> locked;  // files that refuse to move
    int moves = 0;

    lx::RenameFileSystem FileSystem() {
        lx::RenameFileSystem fs;
        fs.exists = [this](const std::wstring& path) { return files.count(path) != 0; };
        fs.move = [this](const std::wstring& from, const std::wstring& to) {
            if (!files.count(from) || files.count(to) || locked.count(from)) return false;
            files.erase(from);
            files.insert(to);
            ++moves;
            return true;
        };
        return fs;
    }
};

}  // namespace lxtest
