// Small questions about texts, lines and files that the readers of point files and robot programs ask.
#include <algorithm>
#include <string_view>

#include "core/text.h"
#include "import/point_file_checks.h"

namespace corvinade::import {

void AnzSpalten(const std::string& line, std::int32_t& count, const std::string& delimiter) {
    count = 0;
    const char sign = DelimiterCharacter(delimiter);
    std::string scratch;
    for (std::string_view rest = line; !rest.empty(); ++count) CutField(rest, sign, scratch);
}

void wieOftStringinFile(const std::string& path, const std::string& text, std::int64_t& count) {
    wieOftStringinFile(LoadPointText(path), text, count);
}

void wieOftStringinFile(const PointText& file, const std::string& text, std::int64_t& count) {
    count = 0;
    std::string whole;
    whole.reserve(file.Text.size());
    LineWalk lines(file);
    std::string_view line;
    std::string scratch;
    while (lines.Next(line)) whole += DecodedLine(file, line, scratch);
    if (text.empty()) return;
    for (std::size_t at = whole.find(text); at != std::string::npos; at = whole.find(text, at + 1)) ++count;
}

namespace {

bool IsOneOf(std::string_view text, std::span<const std::string> texts) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

bool Continues(char c) {  // a byte inside a UTF-8 character
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
}

}  // namespace

void LinksIstString(const std::string& text, std::span<const std::string> texts, Flag& result) {
    std::size_t length = text.empty() ? 0 : 1;
    while (length < text.size() && Continues(text[length])) ++length;
    result = ToFlag(length > 0 && IsOneOf(std::string_view(text).substr(0, length), texts));
}

void RechtsIstString(const std::string& text, std::span<const std::string> texts, Flag& result) {
    if (text.empty()) {
        result = kFalse;
        return;
    }
    std::size_t place = text.size() - 1;
    while (place > 0 && Continues(text[place])) --place;
    result = ToFlag(IsOneOf(std::string_view(text).substr(place), texts));
}

void StringGleichFeld(const std::string& text, std::span<const std::string> texts, Flag& result) {
    result = ToFlag(!texts.empty() && IsOneOf(text, texts.subspan(1)));
}

}  // namespace corvinade::import
