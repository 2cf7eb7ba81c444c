// DescribeExifFile: a plain-text report of what the Exif reader finds in one file, as
// the test host prints it: the shooting time, the embedded images, the descriptive text
// and the information list. UTF-8, lines ending in "\n".
#pragma once

#include <filesystem>
#include <string>

namespace lx {

std::string DescribeExifFile(const std::filesystem::path& path);

}  // namespace lx
