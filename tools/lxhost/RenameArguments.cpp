#include "RenameArguments.h"

namespace lx {

namespace {

// A whole decimal number from `lowest` to `highest`, nothing else.
std::optional<int> SmallNumber(const std::wstring& text, int lowest, int highest) {
    if (text.empty() || text.size() > 3) return std::nullopt;
    int value = 0;
    for (wchar_t c : text) {
        if (c < L'0' || c > L'9') return std::nullopt;
        value = value * 10 + (c - L'0');
    }
    if (value < lowest || value > highest) return std::nullopt;
    return value;
}

bool ParseItems(const std::wstring& text, RenameChoices& choices) {
    int* items[] = {&choices.item1, &choices.item2, &choices.item3};
    size_t start = 0;
    for (int i = 0; i < 3; ++i) {
        const size_t comma = text.find(L',', start);
        if ((comma == std::wstring::npos) != (i == 2)) return false;
        const size_t end = i == 2 ? text.size() : comma;
        const std::optional<int> item = SmallNumber(text.substr(start, end - start), 0, kNameItemCount - 1);
        if (!item) return false;
        *items[i] = *item;
        start = end + 1;
    }
    return true;
}

}  // namespace

std::optional<RenameArguments> ParseRenameArguments(const std::vector<std::wstring>& args, std::wstring& error) {
    RenameArguments parsed;
    bool haveItems = false;
    size_t i = 0;
    for (; i < args.size() && args[i].rfind(L"--", 0) == 0; i += 2) {
        if (i + 1 >= args.size()) {
            error = args[i] + L" needs a value";
            return std::nullopt;
        }
        if (args[i] == L"--items") {
            if (!ParseItems(args[i + 1], parsed.choices)) {
                error = L"--items takes three name items 0-11 separated by commas";
                return std::nullopt;
            }
            haveItems = true;
        } else if (args[i] == L"--reset") {
            const std::optional<int> rule = SmallNumber(args[i + 1], 0, kResetRuleCount - 1);
            if (!rule) {
                error = L"--reset takes a rule 0-3";
                return std::nullopt;
            }
            parsed.choices.resetRule = *rule;
        } else {
            error = L"unknown option " + args[i];
            return std::nullopt;
        }
    }
    if (!haveItems) {
        error = L"--items A,B,C is required";
        return std::nullopt;
    }
    parsed.files.assign(args.begin() + static_cast<std::ptrdiff_t>(i), args.end());
    if (parsed.files.empty()) {
        error = L"no files given";
        return std::nullopt;
    }
    return parsed;
}

}  // namespace lx
