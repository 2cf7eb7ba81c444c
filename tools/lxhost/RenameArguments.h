// RenameArguments: the command-line form of the rename choices, for unattended runs:
//   --items A,B,C [--reset R] FILE...
// A, B and C are name items (0-11, see NameItem), R the counter reset rule (0-3, default 0).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "RenameChoices.h"

namespace lx {

struct RenameArguments {
    RenameChoices choices;
    std::vector<std::wstring> files;
};

// nullopt, with a one-line reason in `error`, when the arguments do not fit the form.
std::optional<RenameArguments> ParseRenameArguments(const std::vector<std::wstring>& args, std::wstring& error);

}  // namespace lx
