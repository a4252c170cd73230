// What a command with --json or --quiet says at its end.
#include "cli/told.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string_view>
#include <system_error>

#include "core/notes.h"
#include "core/text.h"

namespace corvinade::cli {

using nlohmann::ordered_json;

namespace {

constexpr std::string_view kLine = ", line ";

// The number behind ", line " at `at`.
std::optional<int> LineAt(std::string_view text, std::size_t at) {
    if (!text.substr(std::min(at, text.size())).starts_with(kLine)) return std::nullopt;
    text.remove_prefix(at + kLine.size());
    int line = 0;
    const auto [end, wrong] = std::from_chars(text.data(), text.data() + text.size(), line);
    return wrong == std::errc() && line > 0 ? std::optional<int>(line) : std::nullopt;
}

// What stands in quotation marks that end right before `end`.
std::optional<std::string> QuotedBefore(std::string_view text, std::size_t end) {
    if (end < 2 || text[end - 1] != '"') return std::nullopt;
    const std::size_t begin = text.rfind('"', end - 2);
    if (begin == std::string_view::npos) return std::nullopt;
    return std::string(text.substr(begin + 1, end - begin - 2));
}

// The place of a name that nothing else of a name stands beside.
std::size_t PlaceOfName(std::string_view text, std::string_view name) {
    constexpr std::string_view kBeside = " \"'(),:;\n";
    const auto free = [&](std::size_t at) { return kBeside.find(text[at]) != std::string_view::npos; };
    for (std::size_t at = text.find(name); at != std::string_view::npos; at = text.find(name, at + 1)) {
        const std::size_t end = at + name.size();
        if ((at == 0 || free(at - 1)) && (end == text.size() || free(end))) return at;
    }
    return std::string_view::npos;
}

std::optional<std::string> QuotedBehind(std::string_view text, std::string_view words) {
    const std::size_t at = text.find(words);
    if (at == std::string_view::npos) return std::nullopt;
    const std::size_t begin = at + words.size(), end = text.find('"', begin);
    if (end == std::string_view::npos) return std::nullopt;
    return std::string(text.substr(begin, end - begin));
}

// What the commands say of themselves before each error.
std::string WithoutProgram(const std::string& said) {
    constexpr std::string_view kProgram = "corvinade-cli: ";
    std::string text;
    std::string_view rest = said, line;
    while (CutLine(rest, line)) {
        if (line.starts_with(kProgram)) line.remove_prefix(kProgram.size());
        text.append(text.empty() ? "" : "\n").append(line);
    }
    return text;
}

// Of an input that a message box has refused, which names no file: that of what was noted.
ErrorPlace PlaceInNotes() {
    const Note* found = nullptr;
    for (const Note& note : Notes.List)
        if (!note.File.empty() &&
            (found == nullptr || (note.Weight == Severity::Warning && found->Weight != Severity::Warning)))
            found = &note;
    if (found == nullptr) return {};
    return {found->File, found->Line > 0 ? std::optional<int>(found->Line) : std::nullopt};
}

template <class Value>
ordered_json OrNull(const std::optional<Value>& value) {
    return value ? ordered_json(*value) : ordered_json(nullptr);
}

}  // namespace

ErrorPlace PlaceInText(const std::string& text, const std::vector<std::string>& named) {
    for (std::size_t at = text.find(kLine); at != std::string::npos; at = text.find(kLine, at + 1)) {
        const auto line = LineAt(text, at);
        if (const auto file = QuotedBefore(text, at); file && line) return {file, line};
    }
    std::size_t place = std::string::npos, longest = 0;
    for (const std::string& name : named) {
        const std::size_t at = name.empty() ? std::string::npos : PlaceOfName(text, name);
        if (at == std::string::npos || name.size() <= longest) continue;
        place = at;
        longest = name.size();
    }
    if (longest > 0) return {text.substr(place, longest), LineAt(text, place + longest)};
    for (const char* const words : {"Cannot read \"", "Cannot write \""})
        if (const auto file = QuotedBehind(text, words)) return {file, std::nullopt};
    return {};
}

void WriteErrorJson(int status, const std::string& text, const std::vector<std::string>& named,
                    std::ostream& out) {
    const std::string plain = WithoutProgram(text);
    ErrorPlace place = PlaceInText(plain, named);
    if (!place.File && status == kUnreadable) place = PlaceInNotes();
    const ordered_json error = {
        {"status", status}, {"text", plain}, {"file", OrNull(place.File)}, {"line", OrNull(place.Line)}};
    const ordered_json root = {{"schema", "corvinade-error"}, {"error", error}};
    out << root.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << "\n";
}

void TellAtEnd(int status, bool json, bool quiet, const std::string& said,
               const std::vector<std::string>& named, bool hasResult, std::ostream& out, std::ostream& err) {
    Telling.NotesWait = false;
    if (!quiet && json) WriteNotes(err);
    if (status != kDone && json && !hasResult) {
        WriteErrorJson(status, said, named, out);
        if (out.flush()) return;
    }
    if (status != kDone || !quiet) err << said;
}

}  // namespace corvinade::cli
