// Options of the command line as controls of the desktop.
#include "import/table_words.h"

#include <cctype>
#include <string_view>

namespace corvinade::import {

namespace {

struct Words {
    std::string_view Option, Control;
};

// The longer ones first, for the shorter ones stand in them.
constexpr Words kWords[] = {
    {"--columns x,y,z says", "the roles x, y, z above the columns say"},
    {"--columns name,x,y,z", "the roles name, x, y, z above the columns"},
    {"--columns says", "the roles above the columns say"},
    {"--columns", "the roles above the columns"},
    {"--match coordinate or --match distance pairs them", "\"by coordinate\" and \"by distance\" pair them"},
    {"--skip-bad passes it over", "without \"Strict\" it is passed over"},
    {"--skip", "\"Skip lines\""},
    {"--delimiter", "\"Delimiter\""},
    {"--decimal", "\"Decimal\""},
    {"--encoding", "\"Encoding\""},
    {"--comment", "\"Comments begin with\""},
    {"--unit", "\"Unit\""},
};

}  // namespace

std::string InWordsOfDesktop(std::string text) {
    for (const Words& words : kWords)
        for (std::size_t at = text.find(words.Option); at != std::string::npos;
             at = text.find(words.Option, at + words.Control.size()))
            text.replace(at, words.Option.size(), words.Control);
    return text;
}

std::string RefusalOfDesktop(const std::string& text, const std::string& path) {
    const std::string begin = "Cannot read \"" + path + "\"";
    if (!text.starts_with(begin)) return InWordsOfDesktop(text);
    std::string rest = text.substr(begin.size());
    rest.erase(0, rest.find_first_not_of(",: "));
    if (!rest.empty())
        rest.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(rest.front())));
    return InWordsOfDesktop(rest);
}

}  // namespace corvinade::import
