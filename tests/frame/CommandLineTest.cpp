#include "CommandLine.h"

#include <gtest/gtest.h>

using lx::SkipLeadingOptions;

TEST(SkipLeadingOptions, OptionsWithoutAPathLeaveNothing) {
    EXPECT_EQ(SkipLeadingOptions(L"-a /b"), L"");
    EXPECT_EQ(SkipLeadingOptions(L"/image"), L"");
    EXPECT_EQ(SkipLeadingOptions(L""), L"");
}

TEST(SkipLeadingOptions, KeepsThePathAfterBlanks) {
    EXPECT_EQ(SkipLeadingOptions(L"/x  \"C:\\My Pictures\\a.jpg\""), L"\"C:\\My Pictures\\a.jpg\"");
    EXPECT_EQ(SkipLeadingOptions(L"-s\t/t C:\\a b.jpg"), L"C:\\a b.jpg");
    EXPECT_EQ(SkipLeadingOptions(L"C:\\-x.jpg"), L"C:\\-x.jpg");
}

TEST(SkipLeadingOptions, CutsToAPathBuffer) {
    const std::wstring longPath(700, L'a');
    EXPECT_EQ(SkipLeadingOptions(L"/o " + longPath).size(), 519u);
}
