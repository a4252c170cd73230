// Conversion between the text of files and text in memory, lines and fields.
#include "core/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace corvinade::core {

namespace {

// Code points of the bytes 0x80 to 0x9F in Windows-1252; its five unused codes map to themselves.
constexpr std::array<std::uint16_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AppendUtf8(std::string& out, std::uint32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// The Windows-1252 byte of a code point, or -1.
int SingleByte(std::uint32_t code) {
    if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<int>(code);
    for (std::size_t i = 0; i < kUpperControls.size(); ++i)
        if (kUpperControls[i] == code) return static_cast<int>(0x80 + i);
    return -1;
}

}  // namespace

std::size_t Utf8Character(std::string_view bytes, std::uint32_t& code) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned first = at(0);
    if (first < 0x80) {
        code = first;
        return 1;
    }
    const std::size_t length = first >= 0xF0 && first <= 0xF4   ? 4
                               : first >= 0xE0 && first <= 0xEF ? 3
                               : first >= 0xC2 && first <= 0xDF ? 2
                                                                : 0;
    if (length == 0 || bytes.size() < length) return 0;
    code = first & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0U) != 0x80) return 0;
        code = (code << 6) | (at(i) & 0x3FU);
    }
    const bool tooLong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool outside = code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF);
    return tooLong || outside ? 0 : length;
}

bool IsAscii(std::string_view bytes) {
    std::size_t i = 0;
    for (; i + 8 <= bytes.size(); i += 8) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, bytes.data() + i, 8);
        if ((eight & 0x8080808080808080U) != 0) return false;
    }
    for (; i < bytes.size(); ++i)
        if ((static_cast<unsigned char>(bytes[i]) & 0x80U) != 0) return false;
    return true;
}

bool IsValidUtf8(std::string_view bytes) {
    std::uint32_t code = 0;
    while (!bytes.empty()) {
        const std::size_t length = Utf8Character(bytes, code);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string DecodeText(std::string_view bytes) {
    if (IsAscii(bytes) || IsValidUtf8(bytes)) return std::string(bytes);
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        AppendUtf8(text, byte >= 0x80 && byte < 0xA0 ? kUpperControls[byte - 0x80U] : byte);
    }
    return text;
}

std::string EncodeText(std::string_view text) {
    if (IsAscii(text)) return std::string(text);
    std::string bytes;
    bytes.reserve(text.size());
    std::uint32_t code = 0;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = Utf8Character(rest, code);
        const int byte = length == 0 ? -1 : SingleByte(code);
        if (byte < 0) return std::string(text);
        bytes += static_cast<char>(byte);
        rest.remove_prefix(length);
    }
    return IsValidUtf8(bytes) ? std::string(text) : bytes;
}

int CharacterCount(std::string_view text) {
    int count = 0;
    for (const char c : text)
        if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80) ++count;
    return count;
}

std::string Printable(std::string_view text, int most) {
    const bool plain = std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
    if (plain && most > 0 && text.size() <= static_cast<std::size_t>(most)) return std::string(text);
    std::string out;
    std::uint32_t code = 0;
    while (!text.empty()) {
        if (most-- <= 0) return out + "...";
        const std::size_t length = Utf8Character(text, code);
        const bool control = length == 0 || code < 0x20 || (code >= 0x7F && code < 0xA0);
        out += control ? std::string("?") : std::string(text.substr(0, length));
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return out;
}

std::string UpperAscii(std::string_view text) {
    std::string upper(text);
    for (char& c : upper)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return upper;
}

namespace {

// The first character of a text in lower case; it is cut off. Bytes that are no UTF-8 stand for themselves.
std::uint32_t CutLowerCase(std::string_view& text) {
    std::uint32_t code = 0;
    std::size_t length = Utf8Character(text, code);
    if (length == 0) {
        code = 0x80000000U | static_cast<unsigned char>(text.front());
        length = 1;
    }
    text.remove_prefix(length);
    const auto between = [&code](std::uint32_t first, std::uint32_t last) {
        return code >= first && code <= last;
    };
    if (between('A', 'Z') || (between(0xC0, 0xDE) && code != 0xD7)) return code + 0x20;
    if (between(0x391, 0x3A9) || between(0x410, 0x42F)) return code + 0x20;
    if (between(0x400, 0x40F)) return code + 0x50;
    return code;
}

}  // namespace

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty())
        if (CutLowerCase(a) != CutLowerCase(b)) return false;
    return a.empty() && b.empty();
}

bool CutLine(std::string_view& rest, std::string_view& line) {
    if (rest.empty()) return false;
    // Window by window: a file of CR alone has no LF to be found, and looking for one as far as the end
    // of the file would take that long for every line.
    constexpr std::size_t kWindow = 256;
    std::size_t end = rest.size();
    for (std::size_t at = 0; at < rest.size() && end == rest.size(); at += kWindow) {
        std::size_t length = std::min(kWindow, rest.size() - at);
        const char* const window = rest.data() + at;
        for (const char lineEnd : {'\n', '\r'}) {
            const auto* found = static_cast<const char*>(std::memchr(window, lineEnd, length));
            if (found == nullptr) continue;
            length = static_cast<std::size_t>(found - window);
            end = at + length;
        }
    }
    std::size_t next = std::min(end + 1, rest.size());
    if (next < rest.size() && rest[end] == '\r' && rest[next] == '\n') ++next;
    line = rest.substr(0, end);
    rest.remove_prefix(next);
    return true;
}

std::string_view CutField(std::string_view& line, char delimiter, std::string& scratch) {
    const auto isDelimiter = [delimiter](char c) { return c == delimiter && delimiter != '\0'; };
    const char* at = line.data();
    const char* const end = at + line.size();
    while (at != end && isDelimiter(*at)) ++at;
    while (at != end && (*at == ' ' || *at == '\t')) ++at;
    const char* const begin = at;
    bool vanishing = false;
    for (; at != end; ++at) {
        const char c = *at;
        if (isDelimiter(c) || c == ' ' || c == '\t') break;
        if (c == '\xC3') vanishing = true;  // first byte of the characters 254 and 255, among others
    }
    std::string_view field(begin, static_cast<std::size_t>(at - begin));
    line = at == end ? std::string_view{} : std::string_view(at + 1, static_cast<std::size_t>(end - at - 1));
    if (!vanishing) return field;
    scratch.clear();
    for (std::size_t i = 0; i < field.size(); ++i) {
        const bool pair = field[i] == '\xC3' && i + 1 < field.size();
        if (pair && (field[i + 1] == '\xBE' || field[i + 1] == '\xBF')) {
            ++i;
        } else {
            scratch += field[i];
        }
    }
    return scratch;
}

std::string Zerpflück(std::string& line, char delimiter) {
    std::string scratch;
    std::string_view rest = line;
    std::string field(CutField(rest, delimiter, scratch));
    line.erase(0, line.size() - rest.size());
    return field;
}

}  // namespace corvinade::core
