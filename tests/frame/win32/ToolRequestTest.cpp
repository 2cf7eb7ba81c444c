// The request hand-over against Wine's real registry.
#include "ToolRequest.h"

#include <gtest/gtest.h>

#include <vector>

#include "DropBlock.h"
#include "DropListPaths.h"
#include "RegistryTestKey.h"

using lx::ReadToolRequest;
using lx::ScopedToolRequest;
using lxtest::RegistryTestKey;

TEST(ReadToolRequest, ReadsAllThreeValuesAndConsumesTheKey) {
    RegistryTestKey key(L"request");
    const std::vector<std::wstring> names = {L"C:\\a.jpg", L"C:\\\u5199\u771f\\b.jpg"};
    const auto drop = lxtest::WideDropBlock(names);
    key.Set(L"drop", REG_BINARY, drop.data(), static_cast<DWORD>(drop.size()));
    key.SetText(L"path", L"C:\\out");
    const DWORD effect = 5;
    key.Set(L"effect", REG_DWORD, &effect, sizeof effect);
    key.Close();

    ScopedToolRequest scoped;
    ASSERT_EQ(ReadToolRequest(scoped.request, key.name().c_str()), 1);
    EXPECT_EQ(scoped.request.path, L"C:\\out");
    EXPECT_EQ(scoped.request.effect, 5u);
    ASSERT_NE(scoped.request.drop, nullptr);
    EXPECT_EQ(GlobalSize(scoped.request.drop), drop.size());
    EXPECT_EQ(GlobalFlags(scoped.request.drop) & GMEM_DISCARDABLE, 0u);
    EXPECT_EQ(lx::DropListPaths(scoped.request.drop), names);
    EXPECT_FALSE(key.Exists());
    // A request is consumed exactly once.
    ScopedToolRequest again;
    EXPECT_EQ(ReadToolRequest(again.request, key.name().c_str()), 0);
}

TEST(ReadToolRequest, PathMustBeATerminatedStringShorterThan1040Bytes) {
    struct Case {
        DWORD type;
        std::vector<wchar_t> chars;  // stored as given, no terminator added
        size_t extraByte;            // 1: one odd byte more
        std::wstring expected;
    };
    std::vector<wchar_t> longest(519, L'x');
    longest.push_back(0);  // 1040 bytes: too long for the buffer
    std::vector<wchar_t> fits(518, L'y');
    fits.push_back(0);  // 1038 bytes
    const Case cases[] = {
        {REG_SZ, {L'C', L':', 0}, 0, L"C:"},
        {REG_EXPAND_SZ, {L'%', L'T', L'%', 0}, 0, L"%T%"},  // taken as it stands
        {REG_SZ, {L'C', L':'}, 0, L""},                    // not terminated
        {REG_SZ, {L'C', 0}, 1, L""},                       // odd length
        {REG_SZ, {L'a', 0, L'b', 0}, 0, L"a"},             // up to the first NUL
        {REG_BINARY, {L'C', 0}, 0, L""},
        {REG_SZ, {}, 0, L""},
        {REG_SZ, longest, 0, L""},
        {REG_SZ, fits, 0, std::wstring(518, L'y')},
    };
    for (const Case& c : cases) {
        RegistryTestKey key(L"path");
        std::vector<BYTE> bytes(reinterpret_cast<const BYTE*>(c.chars.data()),
                                reinterpret_cast<const BYTE*>(c.chars.data() + c.chars.size()));
        if (c.extraByte) bytes.push_back(0);
        // The registry, like Windows, counts a NUL that happens to follow the data as the
        // terminator the writer forgot; a non-NUL after the data keeps it unterminated.
        const DWORD count = static_cast<DWORD>(bytes.size());
        bytes.insert(bytes.end(), {'Z', 'Z', 'Z', 'Z'});
        key.Set(L"path", c.type, bytes.data(), count);
        key.Close();
        ScopedToolRequest scoped;
        ASSERT_EQ(ReadToolRequest(scoped.request, key.name().c_str()), 1);
        EXPECT_EQ(scoped.request.path, c.expected) << count;
    }
}

TEST(ReadToolRequest, ValuesOfEveryTypeAndOddSizeNeverBreakIt) {
    const DWORD types[] = {REG_NONE, REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_DWORD, REG_MULTI_SZ, REG_QWORD};
    const DWORD sizes[] = {0, 1, 2, 3, 4, 7, 8, 1039, 1040, 1041, 5000};
    std::vector<BYTE> junk(5000);
    for (size_t i = 0; i < junk.size(); ++i) junk[i] = static_cast<BYTE>(i * 37 + 11);
    for (DWORD type : types) {
        for (DWORD size : sizes) {
            RegistryTestKey key(L"odd");
            for (const wchar_t* value : {L"drop", L"path", L"effect"}) key.Set(value, type, junk.data(), size);
            key.Close();
            ScopedToolRequest scoped;
            ASSERT_EQ(ReadToolRequest(scoped.request, key.name().c_str()), 1);
            EXPECT_LT(scoped.request.path.size(), 520u);
            EXPECT_EQ(scoped.request.effect != 0, type == REG_DWORD && size > 0 && size <= 4) << type << " " << size;
            EXPECT_EQ(scoped.request.drop != nullptr, type == REG_BINARY && size > 0);
            if (scoped.request.drop) {
                EXPECT_EQ(GlobalSize(scoped.request.drop), size);
            }
            EXPECT_EQ(lx::DropListPaths(scoped.request.drop), std::vector<std::wstring>{});
            EXPECT_FALSE(key.Exists());
        }
    }
}

// A name that leads to some other key (a sub-key, or a value the host never writes) must not
// consume it: reading a request deletes the key with everything under it.
TEST(ReadToolRequest, AKeyThatIsNoRequestIsLeftWhole) {
    const auto drop = lxtest::WideDropBlock({L"C:\\a.jpg"});
    for (int variant = 0; variant < 2; ++variant) {
        RegistryTestKey key(L"foreign");
        key.Set(L"drop", REG_BINARY, drop.data(), static_cast<DWORD>(drop.size()));
        if (variant == 0) {
            key.SetText(L"Theme", L"dark");
        } else {
            HKEY child = nullptr;
            RegCreateKeyExW(HKEY_CURRENT_USER, (key.name() + L"\\Child").c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                            nullptr, &child, nullptr);
            RegCloseKey(child);
        }
        key.Close();
        ScopedToolRequest scoped;
        EXPECT_EQ(ReadToolRequest(scoped.request, key.name().c_str()), 0) << variant;
        EXPECT_EQ(scoped.request.drop, nullptr) << variant;
        EXPECT_TRUE(key.Exists()) << variant;
    }
}
