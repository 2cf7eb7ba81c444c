// The command-line form of the batch conversion (lxhost convert --unattended):
//
//   --format TYPE [--mode 0|1|2 --size N] [--no-enlarge] [--delete-source] --output DIR
//   [--jpeg-quality Q --jpeg-form 0|1|2 --jpeg-smoothing S] [--fpx-jpeg 0|1 --fpx-quality Q]
//   [--jp2-ratio N] FILE...
//
// TYPE is a type the conversion writes (1, 2, 3, 4, 5, 6, 9, 10, 17, 23, 24). Without --mode
// nothing is scaled. Options not given keep the tool's defaults; no setting is read.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ConvertOptions.h"

namespace lx {

struct ConvertRequest {
    ConvertOptions options;
    std::vector<std::wstring> files;
};

// The request, or nullopt with a one-line reason in `error`.
std::optional<ConvertRequest> ParseConvertArguments(const std::vector<std::wstring>& args, std::wstring& error);

// True for the types the conversion has a writing rule for.
bool IsConvertSaveType(int type);

}  // namespace lx
