#include "CommandLine.h"

#include <gtest/gtest.h>

#include <string>

using lx::IsRequestKeyName;
using lx::SkipLeadingOptions;

TEST(SkipLeadingOptions, KeepsWhatFollowsTheOptionsCutToAPathBuffer) {
    const struct {
        std::wstring line, rest;
    } cases[] = {
        {L"-a /b", L""},  // options without a path leave nothing
        {L"/image", L""},
        {L"", L""},
        {L"/x  \"C:\\My Pictures\\a.jpg\"", L"\"C:\\My Pictures\\a.jpg\""},
        {L"-s\t/t C:\\a b.jpg", L"C:\\a b.jpg"},
        {L"C:\\-x.jpg", L"C:\\-x.jpg"},
        {L"/o " + std::wstring(700, L'a'), std::wstring(519, L'a')},
    };
    for (const auto& c : cases) EXPECT_EQ(SkipLeadingOptions(c.line), c.rest) << testing::PrintToString(c.line);
}

TEST(IsRequestKeyName, TakesPlainRelativeNamesOnly) {
    const struct {
        std::wstring name;
        bool taken;
    } cases[] = {
        {L"Software\\Quarry7\\Request", true},
        {L"request 1", true},
        {L"a\\b.c\\...x", true},
        {std::wstring(255, L'k'), true},
        {L"", false},  // opens HKEY_CURRENT_USER itself
        {L"\u3000 ", false},
        {L"\\Software", false},
        {L"Software\\", false},
        {L"Software\\\\x", false},
        {L"Software\\ \\x", false},
        {L"Software\\..\\x", false},
        {std::wstring(L"Soft\0ware", 9), false},
        {L"a\nb", false},
        {std::wstring(256, L'k'), false},
    };
    for (const auto& c : cases) EXPECT_EQ(IsRequestKeyName(c.name), c.taken) << testing::PrintToString(c.name);
}
