// Mappings of tables, as text.
#include "import/table_mapping.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>
#include <vector>

#include "core/files.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "import/table_heading.h"

namespace corvinade::import {

namespace {

constexpr DelimiterWord kDelimiterWords[] = {
    {"semicolon", ';'}, {"comma", ','}, {"tab", '\t'}, {"space", ' '},
    {"colon", ':'},     {"pipe", '|'},  {"star", '*'}, {"sharp", '#'},
};

// The word that begins the text, which is cut off with the blank behind it.
std::string_view TakeWord(std::string_view& text) {
    const std::size_t blank = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, blank);
    text.remove_prefix(std::min(blank + 1, text.size()));
    return word;
}

bool TakeDelimiter(std::string_view word, char& delimiter) {
    for (const DelimiterWord& row : kDelimiterWords)
        if (word == row.Name) delimiter = row.Delimiter;
    return delimiter != '\0';
}

bool TakeSkip(std::string_view word, std::int64_t& skip) {
    const auto [end, wrong] = std::from_chars(word.data(), word.data() + word.size(), skip);
    return wrong == std::errc() && end == word.data() + word.size() && skip >= 0;
}

// The value of one option. False where it is none.
bool TakeOption(std::string_view name, std::string_view& rest, TableOptions& options) {
    if (name == "--skip-bad") {
        options.SkipBad = true;
        return true;
    }
    if (name == "--comment") {  // the last one, for its characters may be blanks
        options.Comment = std::string(std::exchange(rest, {}));
        return true;
    }
    const std::string_view word = TakeWord(rest);
    if (name == "--format") return word == "table";
    if (name == "--columns") return TakeTableColumns(word, options.Columns).empty();
    if (name == "--delimiter") return TakeDelimiter(word, options.Delimiter);
    if (name == "--skip") return TakeSkip(word, options.Skip);
    if (name == "--decimal") {
        options.Decimal = word.empty() ? '\0' : word.front();
        return word == "." || word == ",";
    }
    if (name == "--unit") {
        const TableUnit* unit = TableUnitByWord(word);
        if (unit != nullptr) options.Unit = unit->Name;
        return unit != nullptr;
    }
    TableEncoding encoding{};
    if (name != "--encoding" || !TableEncodingByName(word, encoding)) return false;
    options.Encoding = encoding;
    return true;
}

}  // namespace

std::span<const DelimiterWord> TableDelimiterWords() {
    return kDelimiterWords;
}

const char* TableDelimiterWord(char delimiter) {
    for (const DelimiterWord& row : kDelimiterWords)
        if (row.Delimiter == delimiter) return row.Name;
    return "";
}

std::string MappingText(const TableOptions& options) {
    std::string text = "--format table";
    const auto add = [&text](const char* name, const std::string& value) {
        text += " " + std::string(name) + (value.empty() ? "" : " " + value);
    };
    if (!options.Columns.empty()) add("--columns", TableColumnsText(options.Columns));
    if (options.Delimiter != '\0') add("--delimiter", TableDelimiterWord(options.Delimiter));
    if (options.Decimal != '\0') add("--decimal", std::string(1, options.Decimal));
    if (options.Encoding) add("--encoding", TableEncodingName(*options.Encoding));
    if (!options.Unit.empty()) add("--unit", options.Unit);
    if (options.Skip > 0) add("--skip", std::to_string(options.Skip));
    if (options.SkipBad) add("--skip-bad", "");
    if (options.Comment) {
        add("--comment", "");
        text += " " + *options.Comment;
    }
    return text;
}

std::optional<TableOptions> MappingFromText(std::string_view text) {
    TableOptions options;
    if (!text.starts_with("--format ")) return std::nullopt;
    while (!text.empty()) {
        const std::string_view name = TakeWord(text);
        if (!TakeOption(name, text, options)) return std::nullopt;
    }
    return options;
}

// --- By file, in the settings -----------------------------------------------------------------------------

namespace {

struct Remembered {
    std::string Path, Mapping;
};

constexpr std::string_view kKey = "ImportTable";

std::string KeyOf(int number) {
    return std::string(kKey) + std::to_string(number);
}

bool CanBeKept(const std::string& path) {
    return !path.empty() && path.find_first_of("\t\r\n") == std::string::npos;
}

// In the order of their keys, whatever lines stand between them; a key that nothing is kept under has an
// empty path.
std::vector<Remembered> AllRemembered() {
    std::vector<Remembered> all(kMappingsKept);
    if (!File_Exist(Run.SettingsFilePath)) return all;
    const FileBytes bytes = ReadFile(Run.SettingsFilePath);
    std::string_view text = bytes.View(), line;
    std::string key, value;
    while (CutLine(text, line)) {
        if (!line.starts_with(kKey)) continue;
        IniZeileTeilen(line, key, value);
        const std::size_t tab = value.find('\t');
        for (int number = 1; tab != std::string::npos && number <= kMappingsKept; ++number)
            if (key == KeyOf(number))
                all[static_cast<std::size_t>(number) - 1] = {value.substr(0, tab), value.substr(tab + 1)};
    }
    return all;
}

}  // namespace

void RememberMapping(const std::string& path, const std::string& mapping) {
    if (!CanBeKept(path) || mapping.find_first_of("\r\n") != std::string::npos) return;
    const std::vector<Remembered> before = AllRemembered();
    std::vector<Remembered> all = before;
    std::erase_if(all, [&path](const Remembered& one) { return one.Path == path; });
    if (!mapping.empty()) all.insert(all.begin(), {path, mapping});
    all.resize(kMappingsKept);
    std::vector<IniLine> lines;
    for (std::size_t i = 0; i < all.size(); ++i)
        if (all[i].Path != before[i].Path || all[i].Mapping != before[i].Mapping)
            lines.push_back(
                {"ImportTables", KeyOf(static_cast<int>(i) + 1), all[i].Path + "\t" + all[i].Mapping});
    if (!lines.empty()) IniWerteSchreiben(lines);
}

std::string RememberedMapping(const std::string& path) {
    if (!CanBeKept(path)) return "";
    for (const Remembered& one : AllRemembered())
        if (one.Path == path) return one.Mapping;
    return "";
}

// --- With the job -----------------------------------------------------------------------------------------

namespace {

// A text as a JSON value. What is below a blank has no place in a mapping but for a tab that begins comments.
std::string JsonText(std::string_view text) {
    constexpr const char* kHex = "0123456789abcdef";
    std::string json = "\"";
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (code < 0x20) {
            json += std::string("\\u00") + kHex[code / 16] + kHex[code % 16];
        } else {
            json += c;
        }
    }
    return json + "\"";
}

// A text of ASCII escapes alone, as JsonText writes it; nothing for any other value.
std::optional<std::string> TextOfJson(std::string_view json) {
    if (json.size() < 2 || json.front() != '"' || json.back() != '"') return std::nullopt;
    json = json.substr(1, json.size() - 2);
    std::string text;
    for (std::size_t at = 0; at < json.size(); ++at) {
        if (json[at] != '\\') {
            text += json[at];
            continue;
        }
        const char escape = at + 1 < json.size() ? json[at + 1] : '\0';
        ++at;
        if (escape != 'u') {
            const std::size_t known = std::string_view("\"\\/bfnrt").find(escape);
            if (known == std::string_view::npos) return std::nullopt;
            text += "\"\\/\b\f\n\r\t"[known];
            continue;
        }
        unsigned code = 0;
        const char* const digits = json.data() + at + 1;
        if (json.size() - at < 5) return std::nullopt;
        const auto [end, wrong] = std::from_chars(digits, digits + 4, code, 16);
        if (wrong != std::errc() || end != digits + 4 || code > 0x7F) return std::nullopt;
        text += static_cast<char>(code);
        at += 4;
    }
    return text;
}

}  // namespace

std::string MappingOfJob(const JobRecord& job, std::string_view member) {
    for (const auto& [name, value] : job.OtherMembers)
        if (name == member) return TextOfJson(value).value_or("");
    return "";
}

void PutMappingOfJob(JobRecord& job, std::string_view member, const std::string& mapping) {
    std::erase_if(job.OtherMembers, [member](const auto& other) { return other.first == member; });
    if (!mapping.empty()) job.OtherMembers.emplace_back(member, JsonText(mapping));
}

}  // namespace corvinade::import
