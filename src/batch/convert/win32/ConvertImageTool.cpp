#include "ConvertImageTool.h"

#include <shlobj.h>

#include "ConvertDlg.h"
#include "ConvertDlgIds.h"
#include "ConvertOptions.h"
#include "FileOperations.h"
#include "ImageTypes.h"
#include "ModuleResources.h"
#include "ProgressSink.h"
#include "SettingsStore.h"

namespace lx {

namespace {

constexpr UINT kSectionConverter = 4406;
constexpr UINT kValueStatus = 4612;

ConvertOptions ReadConvertOptions(SettingsStore& settings) {
    ConvertOptions stored = DefaultConvertOptions();
    const int read = settings.ReadBlock(MAKEINTRESOURCEW(kSectionConverter), MAKEINTRESOURCEW(kValueStatus), &stored,
                                        sizeof stored);
    return ConvertOptionsFromBlock(&stored, static_cast<size_t>(read));
}

}  // namespace

ConvertTexts LoadConvertTexts() {
    return {LoadResString(IDS_CONVERT_TITLE), LoadResString(IDS_PROGRESS_LOADING),
            LoadResString(IDS_PROGRESS_CONVERTING), LoadResString(IDS_PROGRESS_SAVING)};
}

bool ConvertImageFiles(HWND owner, const std::vector<std::wstring>& files) {
    if (files.empty()) return false;
    SettingsStore settings;
    ConvertOptions options = ReadConvertOptions(settings);
    if (CConvertDlg(options, settings).DoModal(owner) != IDOK) return false;
    settings.WriteBlock(MAKEINTRESOURCEW(kSectionConverter), MAKEINTRESOURCEW(kValueStatus), &options, sizeof options);
    if (!EnsureOutputFolder(owner, OutputFolder(options).c_str())) return false;
    ProgressSink sink(owner, MAKEINTRESOURCEW(IDS_CONVERT_TITLE), PROGDLG_AUTOTIME | PROGDLG_NOMINIMIZE);
    RunConversion(options, files, LoadConvertTexts(), sink);
    return true;
}

}  // namespace lx
