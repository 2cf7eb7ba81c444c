#include "RenameArguments.h"

#include <gtest/gtest.h>

namespace lx {
namespace {

std::optional<RenameArguments> Parse(const std::vector<std::wstring>& args) {
    std::wstring error;
    auto parsed = ParseRenameArguments(args, error);
    EXPECT_EQ(parsed.has_value(), error.empty()) << std::string(error.begin(), error.end());
    return parsed;
}

TEST(RenameArguments, ReadsItemsRuleAndFiles) {
    const auto parsed = Parse({L"--items", L"1,0,11", L"--reset", L"2", L"a.jpg", L"--b.jpg"});
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->choices, (RenameChoices{1, 0, 11, 2}));
    // Once the files start, a leading "--" is part of a name.
    EXPECT_EQ(parsed->files, (std::vector<std::wstring>{L"a.jpg", L"--b.jpg"}));
}

TEST(RenameArguments, RuleDefaultsToNeverAndOrderIsFree) {
    const auto parsed = Parse({L"--reset", L"3", L"--items", L"7,8,9", L"x"});
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->choices, (RenameChoices{7, 8, 9, 3}));
    EXPECT_EQ(Parse({L"--items", L"1,2,3", L"x"})->choices.resetRule, kResetNever);
}

TEST(RenameArguments, RejectsWhatDoesNotFit) {
    for (const auto& args : std::vector<std::vector<std::wstring>>{
             {L"a.jpg"},                                      // no items
             {L"--items", L"1,2,3"},                          // no files
             {L"--items", L"1,2", L"a"},                      // two items
             {L"--items", L"1,2,3,4", L"a"},                  // four items
             {L"--items", L"1,12,3", L"a"},                   // item out of range
             {L"--items", L"1,,3", L"a"},                     // empty item
             {L"--items", L"-1,2,3", L"a"},                   // sign
             {L"--items", L"1,2,3", L"--reset", L"4", L"a"},  // rule out of range
             {L"--items", L"1,2,3", L"--reset"},              // missing value
             {L"--items", L"1,2,3", L"--force", L"1", L"a"},  // unknown option
         }) {
        std::wstring error;
        EXPECT_FALSE(ParseRenameArguments(args, error)) << args.size();
        EXPECT_FALSE(error.empty());
    }
}

}  // namespace
}  // namespace lx
