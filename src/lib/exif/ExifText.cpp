#include "ExifText.h"

#include <cstring>

namespace lx {

namespace {

void AppendUtf8(std::string& out, uint32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

constexpr uint32_t kReplacement = 0xFFFD;

std::string Trimmed(std::string text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\0'; };
    while (!text.empty() && blank(text.back())) text.pop_back();
    size_t start = 0;
    while (start < text.size() && blank(text[start])) ++start;
    return text.substr(start);
}

// Descriptions some cameras write into every picture; not a caption anyone chose.
bool IsStockDescription(const std::string& text) {
    static const char* const stock[] = {"OLYMPUS DIGITAL CAMERA", "SONY DSC", "DIGITAL CAMERA",
                                        "KONICA MINOLTA DIGITAL CAMERA", "MINOLTA DIGITAL CAMERA"};
    for (const char* s : stock)
        if (text == s) return true;
    return false;
}

}  // namespace

std::string Utf16ToUtf8(const uint8_t* bytes, size_t size, bool littleEndian) {
    std::string out;
    const auto unit = [&](size_t i) -> uint32_t {
        return littleEndian ? ReadLe16(bytes + 2 * i) : ReadBe16(bytes + 2 * i);
    };
    const size_t units = size / 2;
    for (size_t i = 0; i < units; ++i) {
        const uint32_t c = unit(i);
        if (c == 0) break;
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < units && unit(i + 1) >= 0xDC00 && unit(i + 1) < 0xE000) {
            AppendUtf8(out, 0x10000 + ((c - 0xD800) << 10) + (unit(i + 1) - 0xDC00));
            ++i;
        } else if (c >= 0xD800 && c < 0xE000) {
            AppendUtf8(out, kReplacement);
        } else {
            AppendUtf8(out, c);
        }
    }
    return out;
}

std::string ValidUtf8(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    const auto* s = reinterpret_cast<const uint8_t*>(text.data());
    const size_t n = text.size();
    for (size_t i = 0; i < n;) {
        const uint8_t lead = s[i];
        int length = lead < 0x80 ? 1 : (lead >> 5) == 6 ? 2 : (lead >> 4) == 14 ? 3 : (lead >> 3) == 30 ? 4 : 0;
        uint32_t c = length == 1 ? lead : length == 2 ? lead & 0x1F : length == 3 ? lead & 0x0F : lead & 0x07;
        bool valid = length > 0 && i + length <= n;
        for (int k = 1; valid && k < length; ++k) {
            valid = (s[i + k] & 0xC0) == 0x80;
            c = (c << 6) | (s[i + k] & 0x3F);
        }
        // Overlong forms, surrogates and values past U+10FFFF are not UTF-8 either.
        static const uint32_t minimum[] = {0, 0, 0x80, 0x800, 0x10000};
        valid = valid && c >= minimum[length] && c <= 0x10FFFF && !(c >= 0xD800 && c < 0xE000);
        if (valid) {
            out.append(text, i, length);
            i += length;
        } else {
            AppendUtf8(out, kReplacement);
            ++i;
        }
    }
    return out;
}

std::string FieldText(const ExifRecord& record, TagGroup group, uint16_t tag) {
    return ValidUtf8(Trimmed(record.text(group, tag)));
}

std::string XpText(const ExifRecord& record, uint16_t tag) {
    const TagValue* value = record.find(TagGroup::Image, tag);
    if (!value || (value->type != kTiffByte && value->type != kTiffUndefined)) return {};
    return Trimmed(Utf16ToUtf8(value->bytes.data(), value->bytes.size(), true));
}

std::string UserCommentText(const ExifRecord& record) {
    const TagValue* value = record.find(TagGroup::Exif, tag::kUserComment);
    if (!value || value->bytes.size() < 8) return {};
    const uint8_t* code = value->bytes.data();
    const uint8_t* text = code + 8;
    const size_t size = value->bytes.size() - 8;
    if (std::memcmp(code, "UNICODE\0", 8) == 0) {
        // A byte-order mark wins over the file's byte order, which most writers follow.
        bool little = value->order == ByteOrder::Little;
        if (size >= 2 && ((text[0] == 0xFF && text[1] == 0xFE) || (text[0] == 0xFE && text[1] == 0xFF))) {
            little = text[0] == 0xFF;
            return Trimmed(Utf16ToUtf8(text + 2, size - 2, little));
        }
        return Trimmed(Utf16ToUtf8(text, size, little));
    }
    if (std::memcmp(code, "ASCII\0\0\0", 8) == 0 || std::memcmp(code, "\0\0\0\0\0\0\0\0", 8) == 0) {
        std::string s(reinterpret_cast<const char*>(text), size);
        s.resize(s.find('\0') == std::string::npos ? s.size() : s.find('\0'));
        return ValidUtf8(Trimmed(s));
    }
    return {};
}

std::string DescriptionOf(const ExifRecord& record) {
    std::string text = FieldText(record, TagGroup::Image, tag::kImageDescription);
    if (!text.empty() && !IsStockDescription(text)) return text;
    text = XpText(record, tag::kXpTitle);
    if (!text.empty()) return text;
    return UserCommentText(record);
}

}  // namespace lx
