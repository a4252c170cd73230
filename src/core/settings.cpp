// Reading and writing of the settings file.
#include "core/settings.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/file_state.h"
#include "core/file_writer.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/system_files.h"
#include "core/text.h"
#include "fit/require.h"

namespace corvinade::core {

namespace {

constexpr std::string_view kLastEntry = "[LastEntry]";
constexpr std::int32_t kMissingIniWert = 1000;

bool IsSkippedOnReading(std::string_view line) {
    return line.empty() || line.front() == '[' || line.front() == '\'' || line.starts_with("REM");
}

struct FromText {
    const std::string& Text;

    bool operator()(FlagPlace flag) const {
        if (Text != "True" && Text != "False") return false;
        *flag.Place = ToFlag(Text == "True");
        return true;
    }
    bool operator()(std::string* text) const {
        *text = Text;
        return true;
    }
    template <class Number>
    bool operator()(Number* number) const {
        double value = 0;
        if (!TextToNumber(Text, value)) return false;
        if constexpr (std::is_same_v<Number, std::int16_t>) {
            *number = ToInt16(value, "the value");
        } else if constexpr (std::is_same_v<Number, std::int32_t>) {
            *number = ToInt32(value, "the value");
        } else {
            if (std::fabs(value) > static_cast<double>(std::numeric_limits<Number>::max())) return false;
            *number = static_cast<Number>(value);
        }
        return true;
    }
};

// Stores one value. "ClipboardValue" takes anything and is repaired; the rest must be what it claims.
void StoreSetting(const SettingEntry& entry, const std::string& value, bool& repaired) {
    if (std::string_view(entry.Section) == "FahnenProp") {
        if (std::string_view(entry.Key) == "ShowPointNumber") {
            Settings.FlagDefined = true;
            Settings.FlagDefault = FlagRecord{};
        } else if (!Settings.FlagDefined) {
            return;  // there is no element yet that could take it
        }
    }
    if (std::string_view(entry.Key) == "ClipboardValue") {
        double number = 0;
        const bool good = TextToNumber(value, number) && number >= 1 && number <= 5 && number == Int(number);
        repaired = !good;  // the last occurrence decides, as for every key
        Settings.ClipboardValue = good ? static_cast<std::int16_t>(number) : std::int16_t{2};
        return;
    }
    bool stored = false;
    try {
        stored = std::visit(FromText{value}, entry.Place);
    } catch (const PlatformError&) {  // a whole number beyond its type: told below, with its place
    }
    if (!stored)
        throw PlatformError{"\"" + Printable(value) + "\" is no value for \"" + std::string(entry.Key) +
                            "\""};
}

// A value with a line break (a file may be named so) would be read as further lines.
std::string OnOneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    return text;
}

// An editor may have stored the file as 16-bit text, in which no line would be found; and lines that are
// added to it would spoil it.
void RequireSettingsText(std::string_view text) {
    if (text.find('\0') != std::string_view::npos)
        throw PlatformError{"\"" + Run.SettingsFilePath +
                            "\" is no text of single bytes or UTF-8; store it as such, or delete it"};
}

// Adds a line to the text of a settings file.
void AddLine(std::string& text, std::string_view line) {
    text += line;
    text += kLineEnd;
}

}  // namespace

void IniZeileTeilen(std::string_view line, std::string& key, std::string& value) {
    // The line is decoded as it was encoded, in one piece: a part of it may read as UTF-8 by chance.
    const std::string text = DecodeText(line);
    const std::size_t place = text.find('=');
    key = place == std::string::npos ? "" : text.substr(0, place);
    value = place == std::string::npos ? "" : text.substr(place + 1);
}

void IniDateiAnlegen() {
    Settings.DevVecDirection = kTrue;
    WritePrivateFile(Run.SettingsFilePath, DefaultSettingsText());
}

void IniLesen() {
    const FileBytes bytes = ReadFile(Run.SettingsFilePath);
    RequireSettingsText(bytes.View());
    ReadSettingsText(bytes.View(), Run.SettingsFilePath);
}

void ReadSettingsText(std::string_view text, const std::string& path) {
    bool repaired = false;
    std::string_view line;
    std::string key;
    std::string value;
    for (int number = 1; CutLine(text, line); ++number) {
        if (IsSkippedOnReading(line)) continue;
        IniZeileTeilen(line, key, value);
        if (value == "Wahr") value = "True";
        if (value == "Falsch") value = "False";
        try {
            for (const SettingEntry& entry : AllSettings())
                if (key == entry.Key) StoreSetting(entry, value, repaired);
        } catch (const PlatformError& error) {
            throw PlatformError{"\"" + path + "\", line " + std::to_string(number) + ": " + error.What};
        }
    }
    if (repaired) IniWertSchreiben("Settings", "ClipboardValue", "2");
}

std::optional<std::string> FindIniWert(std::string_view key) {
    if (FileIsThere(Run.SettingsFilePath)) {
        const FileBytes bytes = ReadFile(Run.SettingsFilePath);
        std::string_view text = bytes.View();
        std::string_view line;
        std::string found;
        std::string value;
        while (CutLine(text, line)) {
            if (IsSkippedOnReading(line)) continue;
            IniZeileTeilen(line, found, value);
            if (found == key) return value;
        }
    }
    return std::nullopt;
}

std::string IniWertLesen(std::string_view key) {
    return FindIniWert(key).value_or(std::to_string(kMissingIniWert));
}

std::string WithIniValue(std::string_view text, const IniLine& wanted) {
    const std::string newLine = EncodeText(OnOneLine(wanted.Key + "=" + wanted.Value));
    std::string result;
    bool found = false;
    bool inSection = false;
    bool sectionSeen = false;
    std::string key;
    std::string value;
    std::string_view line;
    while (CutLine(text, line)) {
        if (line.starts_with('[')) {
            if (inSection && !found) {
                // The blank line before the head moves behind the new value.
                const std::string blankLine = std::string(kLineEnd) + kLineEnd;
                if (result.ends_with(blankLine)) result.resize(result.size() - 2);
                AddLine(result, newLine);
                result += kLineEnd;
                found = true;
            }
            const std::string_view name =
                line.size() < 2 ? std::string_view{} : line.substr(1, line.size() - 2);
            inSection = DecodeText(name) == wanted.Section;
            if (inSection) sectionSeen = true;
            AddLine(result, line);
        } else if (line.empty() || UpperAscii(line.substr(0, 3)) == "REM") {
            AddLine(result, line);
        } else {
            IniZeileTeilen(line, key, value);
            const bool replaced = inSection && key == wanted.Key;
            AddLine(result, replaced ? std::string_view(newLine) : line);
            if (replaced) found = true;
        }
    }
    result.resize(result.find_last_not_of("\r\n ") + 1);
    if (sectionSeen) {
        // The wanted section is the last one of a file without an end mark: its new key goes to the end.
        if (!found) result += kLineEnd + newLine + kLineEnd;
        return result;
    }
    const std::size_t mark = result.find(kLastEntry);
    if (mark != std::string::npos) result.erase(mark, kLastEntry.size());
    if (!result.empty()) result += kLineEnd;
    AddLine(result, EncodeText("[" + wanted.Section + "]"));
    AddLine(result, newLine);
    AddLine(result, kLastEntry);
    return result;
}

void IniWertSchreiben(const std::string& section, const std::string& key, const std::string& value) {
    IniWerteSchreiben({{section, key, value}});
}

void IniWerteSchreiben(const std::vector<IniLine>& lines) {
    if (Run.SettingsFilePath.empty()) return;
    try {
        // Between reading and writing no other program may write, whose values would be lost.
        const FolderLock lock(Pfad(Run.SettingsFilePath));
        std::string text;
        if (FileIsThere(Run.SettingsFilePath)) text = ReadFile(Run.SettingsFilePath).View();
        RequireSettingsText(text);
        for (const IniLine& line : lines) text = WithIniValue(text, line);
        WritePrivateFile(Run.SettingsFilePath, text);
        Settings.RefusalTold = false;
    } catch (const PlatformError& error) {
        // Once is enough: every window that closes writes its place.
        if (Settings.RefusalTold) return;
        Settings.RefusalTold = true;
        ShowMessage("The settings could not be stored.\r\n\r\n" + error.What);
    }
}

void SettingsSchreiben(std::initializer_list<std::string_view> keys) {
    std::vector<IniLine> lines;
    for (const std::string_view key : keys)
        for (const SettingEntry& entry : AllSettings())
            if (key == entry.Key) lines.push_back({entry.Section, entry.Key, SettingText(key)});
    Require(lines.size() == keys.size());
    IniWerteSchreiben(lines);
}

std::string ReadWindowPlace(WindowPlace& place, const std::string& name) {
    std::string wrong;
    const auto read = [&](const char* key) {
        const std::string what = "\"" + Run.SettingsFilePath + "\", key \"" + name + key + "\"";
        try {
            return ToInt32(NumberFromText(IniWertLesen(name + key), what), what);
        } catch (const PlatformError& error) {
            if (wrong.empty()) wrong = error.What;
            return kMissingIniWert;
        }
    };
    place.Height = read("Height");
    place.Top = read("Top");
    place.Width = read("Width");
    place.Left = read("Left");
    return wrong;
}

void LoadWindowPlace(WindowPlace& place, const std::string& name) {
    const std::string wrong = ReadWindowPlace(place, name);
    if (!wrong.empty()) ShowMessage(wrong + ".\r\n\r\nThe window opens at its usual place.");
}

void SaveWindowPlace(const WindowPlace& place, const std::string& name) {
    IniWerteSchreiben({{"Window", name + "Height", PlainText(place.Height)},
                       {"Window", name + "Top", PlainText(place.Top)},
                       {"Window", name + "Width", PlainText(place.Width)},
                       {"Window", name + "Left", PlainText(place.Left)}});
}

int LoadColWidth(std::initializer_list<std::string> keys, int otherwise) {
    constexpr double kMost = 100000;
    double width = kMissingColWidth;
    for (const std::string& key : keys)
        if (const auto value = FindIniWert(key)) {
            width = Val(*value);
            break;
        }
    return width >= 1 && width <= kMost ? static_cast<int>(width) : otherwise;
}

}  // namespace corvinade::core
