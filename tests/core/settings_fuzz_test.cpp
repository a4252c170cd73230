// Settings files of any content: no crash, nothing lost, and what was written is read back.
#include <random>

#include "core/files.h"
#include "core/job.h"
#include "core/platform.h"
#include "core/settings.h"
#include "core/text.h"
#include "support/fixture.h"

using namespace corvinade;

using SettingsFuzz = Program;

namespace {

using Lines = std::vector<std::string>;

Lines SplitLines(const std::string& text) {
    Lines lines;
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool crLf = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (text[i] != '\r' && text[i] != '\n') {
            line += text[i];
            continue;
        }
        lines.push_back(line);
        line.clear();
        if (crLf) ++i;
    }
    if (!line.empty()) lines.push_back(line);
    return lines;
}

bool Skipped(const std::string& line) {
    return line.empty() || line[0] == '[' || line[0] == '\'' || line.substr(0, 3) == "REM";
}

// All values of a key in file order; with a section, those that stand in it.
Lines ValuesOf(const std::string& text, const std::string& key, const std::string* section) {
    Lines values;
    bool inSection = section == nullptr;
    for (const std::string& line : SplitLines(text)) {
        if (section != nullptr && line.starts_with("["))
            inSection = line.size() >= 2 && DecodeText(line.substr(1, line.size() - 2)) == *section;
        if (!inSection || Skipped(line)) continue;
        const std::string decoded = DecodeText(line);
        const std::size_t place = decoded.find('=');
        if (place != std::string::npos && decoded.substr(0, place) == key)
            values.push_back(decoded.substr(place + 1));
    }
    return values;
}

// What no write may lose: all lines but empty ones, end marks and those of the key.
Lines Kept(const std::string& text, const std::string& key) {
    Lines lines;
    for (std::string line : SplitLines(text)) {
        line.resize(line.find_last_not_of(' ') + 1);
        if (line.empty() || line == "[LastEntry]" || DecodeText(line).starts_with(key + "=")) continue;
        lines.push_back(line);
    }
    return lines;
}

// The end mark inside a longer line is cut out of it.
bool HasOddMark(const std::string& text) {
    for (const std::string& line : SplitLines(text))
        if (line != "[LastEntry]" && line.find("[LastEntry]") != std::string::npos) return true;
    return false;
}

struct Random {
    std::mt19937 Engine;
    std::size_t Below(std::size_t n) { return Engine() % n; }

    std::string Bytes(std::size_t length) {
        std::string text;
        while (text.size() < length) text += static_cast<char>(Below(256));
        return text;
    }
    std::string AnyFile() {
        static const Lines kPieces = {
            "[A]",   "[B]",     "[LastEntry]", "k=",       "=",   "\r\n", "\r\n", "\n",
            "\r",    "REM",     "'",           "NameMCS=", "ä",   "\xE4", " ",    "[",
            "[A]\n", "[B]\r\n", "k=1\r\n",     "\r\n\r\n", "x=y", "]",    "rem",  "\t"};
        std::string text;
        for (std::size_t n = Below(30); n > 0; --n) text += kPieces[Below(kPieces.size())];
        return text;
    }
    std::string Mutated(std::string text) {
        for (std::size_t n = 1 + Below(8); n > 0 && !text.empty(); --n) {
            const std::size_t place = Below(text.size());
            switch (Below(4)) {
                case 0:
                    text[place] = static_cast<char>(Below(256));
                    break;
                case 1:
                    text.erase(place, 1 + Below(20));
                    break;
                case 2:
                    text.insert(place, Bytes(1 + Below(4)));
                    break;
                default:
                    text.insert(place, text.substr(Below(text.size()), Below(40)));
                    break;
            }
        }
        return text;
    }
    std::string Value() {
        static const Lines kValues = {"",  "1",   "True", "a=b", "x y",   "ä",  "Ã¤", "Ω", "[A]",
                                      "'", "k=1", "REM",  "=",   "1E-09", "-1", "\t", "þ", "€100"};
        return kValues[Below(kValues.size())];
    }
};

void CheckWriting(const std::string& text, const IniLine& wanted) {
    const std::string result = WithIniValue(text, wanted);
    if (HasOddMark(text)) return;  // what stands behind it may begin a line now
    const Lines written = ValuesOf(result, wanted.Key, &wanted.Section);
    ASSERT_FALSE(written.empty()) << testing::PrintToString(text);
    for (const std::string& value : written) ASSERT_EQ(value, wanted.Value) << testing::PrintToString(text);
    const auto keptOf = [&wanted](const std::string& of) {
        Lines kept = Kept(of, wanted.Key);
        std::erase(kept, "[" + wanted.Section + "]");
        return kept;
    };
    ASSERT_EQ(keptOf(result), keptOf(text));
    // A second write of the same changes nothing but the blanks at the end.
    const std::string again = WithIniValue(result, wanted);
    ASSERT_EQ(WithIniValue(again, wanted), again);
}

}  // namespace

TEST_F(SettingsFuzz, WritingIntoAnyFileKeepsItsLinesAndHoldsTheValue) {
    Random random{std::mt19937(1)};
    const std::string good = DefaultSettingsText();
    for (int round = 0; round < 3000; ++round) {
        const std::string text = round % 3 == 0   ? random.Bytes(random.Below(200))
                                 : round % 3 == 1 ? random.AnyFile()
                                                  : random.Mutated(good);
        const IniLine wanted = {round % 2 == 0 ? "A" : "Window", random.Below(2) == 0 ? "k" : "NameMCS",
                                random.Value()};
        ASSERT_NO_FATAL_FAILURE(CheckWriting(text, wanted));
    }
}

TEST_F(SettingsFuzz, OneValueIsTheFirstAndAllAreTheLastOfAnyFile) {
    Random random{std::mt19937(2)};
    Run.SettingsFilePath = PathOf("Corvinade.ini");
    for (int round = 0; round < 500; ++round) {
        const std::string text = WithIniValue(random.AnyFile(), {"B", "NameMCS", random.Value()});
        Write("Corvinade.ini", text);
        const Lines values = ValuesOf(text, "NameMCS", nullptr);
        ASSERT_EQ(IniWertLesen("NameMCS"), values.empty() ? "1000" : values.front());
        Job.NameMCS = "";
        IniLesen();
        ASSERT_EQ(Job.NameMCS, values.empty() ? "" : values.back()) << testing::PrintToString(text);
    }
}

TEST_F(SettingsFuzz, ReadingAnyFileEndsWithSettingsOrWithAnError) {
    Random random{std::mt19937(3)};
    const std::string good =
        DefaultSettingsText() +
        "\r\nsigmaX=0.5\r\nShowPointNumber=True\r\nName=Arial\r\nSize=8.25\r\nEditor=x\r\n"
        "Vec_Ma\xDFstab=2\r\nADis=100\r\nLastFile1=/a\r\n";
    int errors = 0;
    for (int round = 0; round < 2000; ++round) {
        const std::string text = round % 2 == 0 ? random.Mutated(good) : random.Bytes(random.Below(300));
        try {
            ReadSettingsText(text, "a.ini");
        } catch (const PlatformError& error) {
            ++errors;
            ASSERT_TRUE(error.What.starts_with("\"a.ini\", line ")) << error.What;
        }
        ASSERT_TRUE(Settings.ClipboardValue >= 0 && Settings.ClipboardValue <= 5);
    }
    EXPECT_GT(errors, 0);
}
