// What the arguments of all commands share.
#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "core/numbers.h"
#include "core/rooms.h"
#include "core/text.h"
#include "core/units.h"
#include "import/table_heading.h"

namespace corvinade::cli {

// The help tells choices once, beside the option's name, so the checks are silent there.
inline CLI::Validator OneOf(std::vector<std::string> choices) {
    CLI::IsMember check(std::move(choices));
    return check.description("");
}
// A unit of lengths, by any of its names.
inline CLI::Validator UnitOfTable() {
    return CLI::Validator(
        [](const std::string& text) {
            return import::TableUnitByWord(text) != nullptr
                       ? std::string()
                       : "\"" + Printable(text) + "\" is no unit of length: mm, cm, m, km, in, ft";
        },
        "");
}
inline std::vector<std::string> TableEncodings() {
    return {"utf-8", "utf-16le", "utf-16be", "windows-1252"};
}
inline CLI::Validator NameOf(const std::map<std::string, std::string>& names) {
    CLI::CheckedTransformer check(names);
    return check.description("");
}
inline CLI::Validator Between(std::int64_t least, std::int64_t most) {
    return CLI::Validator(
        [least, most](const std::string& text) {
            std::int64_t value = 0;
            const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
            const bool whole = error == std::errc() && end == text.data() + text.size();
            return whole && value >= least && value <= most
                       ? std::string()
                       : "\"" + Printable(text) + "\" is no whole number from " + std::to_string(least) +
                             " to " + std::to_string(most);
        },
        "");
}

// Numbers behind commas, each from `least` to `most`; false when the text is anything else.
inline bool TakeNumbers(const std::string& text, double least, double most, std::vector<double>& values) {
    values.clear();
    std::string_view rest = text;
    for (bool more = true; more;) {
        const std::size_t comma = rest.find(',');
        double value = 0;
        if (!TextToNumber(std::string(rest.substr(0, comma)), '.', value) ||
            !(value >= least && value <= most))
            return false;
        values.push_back(value);
        more = comma != std::string_view::npos;
        if (more) rest.remove_prefix(comma + 1);
    }
    return true;
}

// Choices as the help shows them: "a|b|c".
inline std::string Choices(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : "|") + name;
    return text;
}

// A unit by the names that a command line knows it by, and the choices that the help shows.
inline CLI::Validator UnitByName(std::span<const UnitRow> units) {
    std::map<std::string, std::string> names;
    for (const UnitRow& unit : units)
        for (const char* const name : unit.Given)
            if (name != nullptr) names[name] = unit.Name;
    return NameOf(names);
}
inline std::string UnitChoices(std::span<const UnitRow> units) {
    std::vector<std::string> names;
    for (const UnitRow& unit : units) names.emplace_back(unit.Given.front());
    return Choices(names);
}

// What stands between the fields of a point file, by name.
inline const std::map<std::string, std::string>& DelimiterNames() {
    static const std::map<std::string, std::string> kNames = {
        {"space", " "}, {"semicolon", ";"}, {"colon", ":"}, {"star", "*"},
        {"sharp", "#"}, {"tab", "\t"},      {"comma", ","}, {"pipe", "|"}};
    return kNames;
}

inline void AddDecimal(CLI::App& command, std::string& decimal, const char* group,
                       const char* usual = "a point, whatever the locale") {
    command
        .add_option("--decimal", decimal,
                    std::string("Decimal delimiter of files and output, a point or a comma;\n"
                                "default: ") +
                        usual)
        ->check(OneOf({".", ","}))
        ->type_name("'.'|','")
        ->group(group);
}

inline void AddStrict(CLI::App& command, bool& strict, const char* group) {
    command
        .add_flag("--strict", strict,
                  "End with status 3, before anything is written, where a warning\n"
                  "came up")
        ->group(group);
}

inline std::optional<char> DecimalOf(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional<char>(text.front());
}

}  // namespace corvinade::cli
