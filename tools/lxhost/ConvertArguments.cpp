#include "ConvertArguments.h"

#include <cwchar>

namespace lx {

namespace {

// A whole decimal number within [low, high].
bool ParseNumber(const std::wstring& text, int low, int high, int32_t& value) {
    if (text.empty() || text.size() > 10) return false;
    long long number = 0;
    size_t i = 0;
    const bool negative = text[0] == L'-';
    if (negative) i = 1;
    if (i == text.size()) return false;
    for (; i < text.size(); ++i) {
        if (text[i] < L'0' || text[i] > L'9') return false;
        number = number * 10 + (text[i] - L'0');
    }
    if (negative) number = -number;
    if (number < low || number > high) return false;
    value = static_cast<int32_t>(number);
    return true;
}

struct NumberOption {
    const wchar_t* name;
    int low;
    int high;
    int32_t ConvertOptions::*field;
};

const NumberOption kNumberOptions[] = {
    {L"--format", 1, 24, &ConvertOptions::saveType},
    {L"--mode", 0, 2, &ConvertOptions::resizeMode},
    {L"--size", 1, 1000000, &ConvertOptions::size},
    {L"--jpeg-quality", 1, 100, &ConvertOptions::jpegQuality},
    {L"--jpeg-form", 0, 2, &ConvertOptions::jpegForm},
    {L"--jpeg-smoothing", 0, 100, &ConvertOptions::jpegSmoothing},
    {L"--fpx-jpeg", 0, 1, &ConvertOptions::fpxUseJpeg},
    {L"--fpx-quality", 1, 100, &ConvertOptions::fpxQuality},
    {L"--jp2-ratio", 1, 100, &ConvertOptions::jp2Ratio},
};

const NumberOption* FindNumberOption(const std::wstring& name) {
    for (const auto& option : kNumberOptions)
        if (name == option.name) return &option;
    return nullptr;
}

}  // namespace

bool IsConvertSaveType(int type) {
    switch (type) {
    case 1: case 2: case 3: case 4: case 5: case 6: case 9: case 10: case 17: case 23: case 24:
        return true;
    default:
        return false;
    }
}

std::optional<ConvertRequest> ParseConvertArguments(const std::vector<std::wstring>& args, std::wstring& error) {
    ConvertRequest request{DefaultConvertOptions(), {}};
    request.options.resize = 0;
    bool haveFormat = false, haveMode = false, haveSize = false, haveOutput = false;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::wstring& arg = args[i];
        if (arg == L"--no-enlarge") {
            request.options.noEnlarge = 1;
        } else if (arg == L"--delete-source") {
            request.options.deleteSource = 1;
        } else if (arg == L"--output") {
            if (i + 1 >= args.size() || args[i + 1].empty()) {
                error = L"--output needs a folder";
                return std::nullopt;
            }
            if (args[i + 1].size() >= kConvertFolderChars) {
                error = L"--output: the folder name is too long";
                return std::nullopt;
            }
            SetOutputFolder(request.options, args[++i]);
            haveOutput = true;
        } else if (const NumberOption* option = FindNumberOption(arg)) {
            if (i + 1 >= args.size() ||
                !ParseNumber(args[i + 1], option->low, option->high, request.options.*(option->field))) {
                error = arg + L" needs a number from " + std::to_wstring(option->low) + L" to " +
                        std::to_wstring(option->high);
                return std::nullopt;
            }
            ++i;
            haveFormat |= option->field == &ConvertOptions::saveType;
            haveMode |= option->field == &ConvertOptions::resizeMode;
            haveSize |= option->field == &ConvertOptions::size;
        } else if (arg.size() > 2 && arg.compare(0, 2, L"--") == 0) {
            error = L"unknown option " + arg;
            return std::nullopt;
        } else if (arg.empty()) {
            // An empty name would make the output folder itself the destination.
            error = L"an empty file name";
            return std::nullopt;
        } else {
            request.files.push_back(arg);
        }
    }
    if (!haveFormat || !IsConvertSaveType(request.options.saveType)) {
        error = L"--format must be one of 1, 2, 3, 4, 5, 6, 9, 10, 17, 23, 24";
        return std::nullopt;
    }
    if (haveMode != haveSize) {
        error = L"--mode and --size go together";
        return std::nullopt;
    }
    if (!haveOutput) {
        error = L"--output is required";
        return std::nullopt;
    }
    if (request.files.empty()) {
        error = L"no files to convert";
        return std::nullopt;
    }
    request.options.resize = haveMode ? 1 : 0;
    return request;
}

}  // namespace lx
