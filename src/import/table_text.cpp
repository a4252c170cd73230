// Encodings and lines of tables.
#include "import/table_text.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "core/text.h"

namespace corvinade::import {

namespace {

constexpr std::array<const char*, 4> kNames = {"utf-8", "utf-16le", "utf-16be", "windows-1252"};

void AppendUtf8(std::string& out, std::uint32_t code) {
    const auto tail = [&](unsigned shift) { out += static_cast<char>(0x80U | ((code >> shift) & 0x3FU)); };
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0U | (code >> 6U));
        tail(0);
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0U | (code >> 12U));
        tail(6);
        tail(0);
    } else {
        out += static_cast<char>(0xF0U | (code >> 18U));
        tail(12);
        tail(6);
        tail(0);
    }
}

constexpr std::uint32_t kReplacement = 0xFFFD;

// A lone half of a pair becomes the replacement character.
std::string FromUtf16(std::string_view bytes, bool bigEndian) {
    std::string text;
    text.reserve(bytes.size() / 2 + 16);
    const auto unit = [&](std::size_t at) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        return static_cast<std::uint32_t>(bigEndian ? first << 8 | second : second << 8 | first);
    };
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        std::uint32_t code = unit(at);
        if (code >= 0xD800 && code < 0xDC00 && at + 3 < bytes.size()) {
            const std::uint32_t low = unit(at + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                code = 0x10000 + ((code - 0xD800) << 10U) + (low - 0xDC00);
                at += 2;
            }
        }
        AppendUtf8(text, code >= 0xD800 && code < 0xE000 ? kReplacement : code);
    }
    return text;
}

// The characters of a text of single bytes, though they may look like UTF-8.
std::string FromSingleBytes(std::string_view bytes) {
    constexpr std::string_view kNoUtf8 = "\xFF";  // the letter y with two dots, two bytes in UTF-8
    std::string text = DecodeText(std::string(bytes) + std::string(kNoUtf8));
    text.resize(text.size() - 2);
    return text;
}

}  // namespace

const char* TableEncodingName(TableEncoding encoding) {
    return kNames[static_cast<std::size_t>(encoding)];
}

bool TableEncodingByName(std::string_view name, TableEncoding& encoding) {
    for (std::size_t i = 0; i < kNames.size(); ++i)
        if (name == kNames[i]) {
            encoding = static_cast<TableEncoding>(i);
            return true;
        }
    return false;
}

std::string TakeTableText(std::string_view bytes, const TableEncoding* wanted, TableText& text) {
    const bool little = bytes.starts_with("\xFF\xFE"), big = bytes.starts_with("\xFE\xFF");
    const bool mark8 = bytes.starts_with("\xEF\xBB\xBF");
    const auto is = [&](TableEncoding encoding) { return wanted != nullptr && *wanted == encoding; };
    const bool wide = is(TableEncoding::Utf16Le) || is(TableEncoding::Utf16Be);
    if (wide || (wanted == nullptr && (little || big))) {
        const bool bigEndian = wide ? is(TableEncoding::Utf16Be) : big;
        if (bytes.size() % 2 != 0)
            return "it has an odd number of bytes, so it is no 16-bit text (--encoding)";
        text.Encoding = bigEndian ? TableEncoding::Utf16Be : TableEncoding::Utf16Le;
        text.Decoded = FromUtf16(bytes.substr(little || big ? 2 : 0), bigEndian);
        text.Text = text.Decoded;
    } else {
        text.Text = bytes.substr(mark8 ? 3 : 0);
    }
    // Block by block, so that both questions read the memory once.
    constexpr std::size_t kBlock = 1 << 14;
    bool zero = false;
    text.Ascii = true;
    for (std::size_t at = 0; at < text.Text.size(); at += kBlock) {
        const std::string_view block = text.Text.substr(at, kBlock);
        zero = zero || std::memchr(block.data(), '\0', block.size()) != nullptr;
        text.Ascii = text.Ascii && IsAscii(block);
    }
    if (zero)
        return wide ? "it is no text in this encoding, it holds characters of code 0 (--encoding)"
                    : "it is no text, it holds characters of code 0; a 16-bit text without a mark is named "
                      "with --encoding utf-16le";
    if (!text.Decoded.empty() || text.Ascii) {
        if (wanted != nullptr) text.Encoding = *wanted;
        return "";
    }
    const bool utf8 = IsValidUtf8(text.Text);
    if (is(TableEncoding::Utf8) && !utf8)
        return "it is no UTF-8 (--encoding windows-1252, or utf-16le, utf-16be)";
    text.ByLine = wanted == nullptr;
    text.Encoding = wanted != nullptr ? *wanted : utf8 ? TableEncoding::Utf8 : TableEncoding::Windows1252;
    return "";
}

std::string DecodedCell(const TableText& text, std::string_view line, std::string_view cell) {
    if (text.Encoding != TableEncoding::Windows1252 || IsAscii(cell)) return std::string(cell);
    return text.ByLine && IsValidUtf8(line) ? std::string(cell) : FromSingleBytes(cell);
}

bool NextTableLine(std::string_view text, std::size_t& at, std::string_view& line) {
    std::string_view rest = text.substr(std::min(at, text.size()));
    if (!CutLine(rest, line)) return false;
    at = text.size() - rest.size();
    return true;
}

}  // namespace corvinade::import
