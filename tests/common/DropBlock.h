// A shell drop block as the host writes it into a request: the 20-byte DROPFILES header
// (names at offset 20, wide), each name in UTF-16 with its NUL, then the closing NUL.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lxtest {

inline std::vector<uint8_t> WideDropBlock(const std::vector<std::wstring>& names) {
    std::vector<uint8_t> block = {20, 0, 0, 0,   // pFiles: the names follow the header
                                  0,  0, 0, 0,   // pt.x
                                  0,  0, 0, 0,   // pt.y
                                  0,  0, 0, 0,   // fNC
                                  1,  0, 0, 0};  // fWide
    auto add = [&](wchar_t c) {
        block.push_back(static_cast<uint8_t>(c & 0xff));
        block.push_back(static_cast<uint8_t>((c >> 8) & 0xff));
    };
    for (const std::wstring& name : names) {
        for (wchar_t c : name) add(c);
        add(0);
    }
    add(0);
    return block;
}

}  // namespace lxtest
