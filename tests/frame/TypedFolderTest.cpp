#include <gtest/gtest.h>

#include "TypedFolder.h"

TEST(TypedFolder, DrivesAloneAndUncParts) {
    struct Row {
        const wchar_t* text;
        bool driveAlone;
        const wchar_t* uncRoot;
        bool serverAlone;
    };
    const Row rows[] = {
        {L"C", true, L"", false},
        {L"d:", true, L"", false},
        {L"C:\\", false, L"", false},
        {L"1:", false, L"", false},
        {L"", false, L"", false},
        {L"\\\\server\\share\\photos\\2024", false, L"\\\\server\\share", false},
        {L"\\\\server\\share", false, L"\\\\server\\share", false},
        {L"//server/share/x", false, L"//server/share", false},
        {L"\\\\server", false, L"\\\\server", true},
        {L"\\\\server\\", false, L"\\\\server\\", true},
        {L"\\\\\\x", false, L"", false},
        {L"\\x", false, L"", false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(lx::IsDriveAlone(row.text), row.driveAlone) << row.text;
        EXPECT_EQ(lx::UncRootOf(row.text), row.uncRoot) << row.text;
        EXPECT_EQ(lx::IsUncServerAlone(row.text), row.serverAlone) << row.text;
    }
}
