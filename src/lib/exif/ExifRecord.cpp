#include "ExifRecord.h"

namespace lx {

void ExifRecord::set(TagGroup group, uint16_t tag, TagValue value) {
    tags_.emplace(std::make_pair(group, tag), std::move(value));
}

void ExifRecord::setText(TagGroup group, uint16_t tag, const std::string& text) {
    TagValue value;
    value.type = kTiffAscii;
    value.bytes.assign(text.begin(), text.end());
    value.bytes.push_back(0);
    value.count = static_cast<uint32_t>(value.bytes.size());
    set(group, tag, std::move(value));
}

const TagValue* ExifRecord::find(TagGroup group, uint16_t tag) const {
    auto it = tags_.find({group, tag});
    return it == tags_.end() ? nullptr : &it->second;
}

void ExifRecord::mergeMissing(const ExifRecord& other) {
    for (const auto& [key, value] : other.tags_) tags_.emplace(key, value);
    hasExifIfd = hasExifIfd || other.hasExifIfd;
}

std::string ExifRecord::text(TagGroup group, uint16_t tag) const {
    const TagValue* value = find(group, tag);
    if (!value || (value->type != kTiffAscii && value->type != kTiffByte && value->type != kTiffUndefined))
        return {};
    std::string s(value->bytes.begin(), value->bytes.end());
    s.resize(s.find('\0') == std::string::npos ? s.size() : s.find('\0'));
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n')) s.pop_back();
    return s;
}

std::optional<int64_t> ExifRecord::integer(TagGroup group, uint16_t tag, uint32_t index) const {
    const TagValue* value = find(group, tag);
    const uint32_t size = value ? TiffTypeSize(value->type) : 0;
    if (!value || index >= value->count || size == 0 || size > 4 ||
        value->bytes.size() < static_cast<size_t>(index + 1) * size)
        return std::nullopt;
    return DecodeTiffInteger(value->type, value->order, value->bytes.data() + size_t(index) * size);
}

std::optional<std::pair<int64_t, int64_t>> ExifRecord::rational(TagGroup group, uint16_t tag, uint32_t index) const {
    const TagValue* value = find(group, tag);
    const uint32_t size = value ? TiffTypeSize(value->type) : 0;
    if (!value || index >= value->count || size == 0 || value->bytes.size() < static_cast<size_t>(index + 1) * size)
        return std::nullopt;
    return DecodeTiffRational(value->type, value->order, value->bytes.data() + size_t(index) * size);
}

std::optional<double> ExifRecord::real(TagGroup group, uint16_t tag, uint32_t index) const {
    auto r = rational(group, tag, index);
    if (!r || r->second == 0) return std::nullopt;
    return static_cast<double>(r->first) / static_cast<double>(r->second);
}

}  // namespace lx
