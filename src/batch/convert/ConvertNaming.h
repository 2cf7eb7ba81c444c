// Names of the batch conversion: where a converted file goes, and the "%s.~%02d" name a
// source is set aside under while its replacement is written.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ImageTypes.h"

namespace lx {

// The output folder joined with the source's file name, its extension forced to the one
// that saving as `saveType` writes (a.png as JPEG gives a.jpg; a.jpeg keeps .jpeg).
std::wstring ConvertDestination(const std::wstring& folder, const std::wstring& source, ImageType saveType);

// The destination of each source of a run, in list order, or an empty name for a source that
// must be left alone because its destination belongs to another source: a name that is itself
// a source of the list belongs to that source, any other to the first source that maps to it.
// So no result is written twice, and no result overwrites a source still to be converted.
std::vector<std::wstring> PlanDestinations(const std::wstring& folder, const std::vector<std::wstring>& sources,
                                           ImageType saveType);

// source + ".~NN", NN the two-digit `number`.
std::wstring SetAsideName(const std::wstring& source, int number);

// The last number tried for a set-aside name; it is taken even when a file of that name exists.
constexpr int kLastSetAsideNumber = 98;

// The first set-aside name, counting from 0, for which `exists` is false; the name for
// kLastSetAsideNumber when all before it exist.
std::wstring FindSetAsideName(const std::wstring& source, const std::function<bool(const std::wstring&)>& exists);

// The name a set-aside file was made from ("a.jpg" for "a.jpg.~07"); empty for any other name.
std::wstring SetAsideOriginal(const std::wstring& name);

}  // namespace lx
