#include "FrameRunner.h"

#include <gtest/gtest.h>

using lx::UnquotedPath;
using lx::ViewerPathFromCommandLine;

TEST(ViewerCommandLine, ViewerSkipsOptionsAndBothLoseEnclosingQuotes) {
    EXPECT_EQ(ViewerPathFromCommandLine(L"-a /b"), L"");  // options without a path
    EXPECT_EQ(ViewerPathFromCommandLine(nullptr), L"");
    EXPECT_EQ(ViewerPathFromCommandLine(L"/image  \"C:\\My Pictures\\a.jpg\""), L"C:\\My Pictures\\a.jpg");
    EXPECT_EQ(ViewerPathFromCommandLine(L"C:\\b.jpg"), L"C:\\b.jpg");
    EXPECT_EQ(UnquotedPath(L"\"D:\\\u5199\u771f \u30d5\u30a9\u30eb\u30c0\""), L"D:\\\u5199\u771f \u30d5\u30a9\u30eb\u30c0");
    EXPECT_EQ(UnquotedPath(L"-x \"D:\\a\""), L"-x \"D:\\a\"");  // the slide show takes no options
    EXPECT_EQ(UnquotedPath(nullptr), L"");
}
