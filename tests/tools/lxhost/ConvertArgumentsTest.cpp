#include <gtest/gtest.h>

#include "ConvertArguments.h"

namespace lx {
namespace {

std::optional<ConvertRequest> Parse(std::vector<std::wstring> args, std::wstring* error = nullptr) {
    std::wstring message;
    auto request = ParseConvertArguments(args, message);
    if (error) *error = message;
    return request;
}

TEST(ConvertArgumentsTest, EveryOptionLandsInItsField) {
    const auto r = Parse({L"--format", L"2", L"--mode", L"0", L"--size", L"1600", L"--no-enlarge",
                          L"--delete-source", L"--output", L"out dir", L"--jpeg-quality", L"85", L"--jpeg-form",
                          L"2", L"--jpeg-smoothing", L"10", L"--fpx-jpeg", L"0", L"--fpx-quality", L"50",
                          L"--jp2-ratio", L"20", L"a.bmp", L"b c.png"});
    ASSERT_TRUE(r);
    const ConvertOptions& o = r->options;
    EXPECT_EQ(o.saveType, 2);
    EXPECT_EQ(o.resize, 1);
    EXPECT_EQ(o.resizeMode, 0);
    EXPECT_EQ(o.size, 1600);
    EXPECT_EQ(o.noEnlarge, 1);
    EXPECT_EQ(o.deleteSource, 1);
    EXPECT_EQ(OutputFolder(o), L"out dir");
    EXPECT_EQ(o.jpegQuality, 85);
    EXPECT_EQ(o.jpegForm, 2);
    EXPECT_EQ(o.jpegSmoothing, 10);
    EXPECT_EQ(o.fpxUseJpeg, 0);
    EXPECT_EQ(o.fpxQuality, 50);
    EXPECT_EQ(o.jp2Ratio, 20);
    EXPECT_EQ(r->files, (std::vector<std::wstring>{L"a.bmp", L"b c.png"}));
}

TEST(ConvertArgumentsTest, WithoutModeNothingIsScaledAndDefaultsStay) {
    const auto r = Parse({L"--format", L"10", L"--output", L"o", L"x.bmp"});
    ASSERT_TRUE(r);
    EXPECT_EQ(r->options.resize, 0);
    EXPECT_EQ(r->options.deleteSource, 0);
    EXPECT_EQ(r->options.jpegQuality, 94);
    EXPECT_EQ(r->options.jp2Ratio, 8);
}

TEST(ConvertArgumentsTest, EveryWritableTypeIsAcceptedAndNoOther) {
    for (int type = -1; type <= 40; ++type) {
        const bool writable = type == 1 || type == 2 || type == 3 || type == 4 || type == 5 || type == 6 ||
                              type == 9 || type == 10 || type == 17 || type == 23 || type == 24;
        EXPECT_EQ(IsConvertSaveType(type), writable) << type;
        EXPECT_EQ(Parse({L"--format", std::to_wstring(type), L"--output", L"o", L"f"}).has_value(), writable)
            << type;
    }
}

TEST(ConvertArgumentsTest, MistakesAreRefusedWithAReason) {
    const std::vector<std::vector<std::wstring>> bad = {
        {L"--output", L"o", L"f"},                                            // no format
        {L"--format", L"2", L"f"},                                            // no output
        {L"--format", L"2", L"--output", L"o"},                               // no files
        {L"--format", L"2", L"--output"},                                     // output without folder
        {L"--format", L"2", L"--output", L"o", L"--mode", L"1", L"f"},        // mode without size
        {L"--format", L"2", L"--output", L"o", L"--size", L"10", L"f"},       // size without mode
        {L"--format", L"2", L"--output", L"o", L"--mode", L"3", L"--size", L"10", L"f"},
        {L"--format", L"2", L"--output", L"o", L"--mode", L"0", L"--size", L"0", L"f"},
        {L"--format", L"2", L"--output", L"o", L"--jpeg-quality", L"101", L"f"},
        {L"--format", L"2", L"--output", L"o", L"--jpeg-quality", L"9x", L"f"},
        {L"--format", L"2", L"--output", L"o", L"--jpeg-quality", L"-", L"f"},
        {L"--format", L"2", L"--output", L"o", L"--jpeg-form"},
        {L"--format", L"2", L"--output", L"o", L"--colour", L"f"},
        {L"--format", L"99999999999", L"--output", L"o", L"f"},
        {L"--format", L"2", L"--output", std::wstring(520, L'o'), L"f"},
        {L"--format", L"2", L"--output", L"o", L"", L"f"},                     // empty file name
    };
    for (const auto& args : bad) {
        std::wstring error;
        EXPECT_FALSE(Parse(args, &error)) << args.size();
        EXPECT_FALSE(error.empty());
    }
}

}  // namespace
}  // namespace lx
