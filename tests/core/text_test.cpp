// Text of files and text in memory, lines, fields.
#include "core/text.h"

#include <random>

#include "support/fixture.h"

using namespace corvinade;

using Text = Program;

namespace {

// The places of Windows-1252 from 0x80 to 0x9F, from the code page's published table; 0 = unused.
constexpr char32_t kPublishedUpper[32] = {U'€', 0,    U'‚', U'ƒ', U'„', U'…', U'†', U'‡', U'ˆ', U'‰', U'Š',
                                          U'‹', U'Œ', 0,    U'Ž', 0,    0,    U'‘', U'’', U'“', U'”', U'•',
                                          U'–', U'—', U'˜', U'™', U'š', U'›', U'œ', 0,    U'ž', U'Ÿ'};

std::string Utf8(char32_t code) {
    std::string out;
    if (code < 0x80) return std::string(1, static_cast<char>(code));
    if (code < 0x800) {
        out = {static_cast<char>(0xC0 + code / 64), static_cast<char>(0x80 + code % 64)};
    } else if (code < 0x10000) {
        out = {static_cast<char>(0xE0 + code / 4096), static_cast<char>(0x80 + code / 64 % 64),
               static_cast<char>(0x80 + code % 64)};
    } else {
        out = {static_cast<char>(0xF0 + code / 262144), static_cast<char>(0x80 + code / 4096 % 64),
               static_cast<char>(0x80 + code / 64 % 64), static_cast<char>(0x80 + code % 64)};
    }
    return out;
}

std::u32string CodePoints(const std::string& text) {
    std::u32string out;
    for (std::size_t i = 0; i < text.size();) {
        const auto at = [&](std::size_t k) {
            return static_cast<char32_t>(static_cast<unsigned char>(text[i + k]));
        };
        if (at(0) < 0x80) {
            out += at(0);
            i += 1;
        } else if (at(0) < 0xE0) {
            out += (at(0) - 0xC0) * 64 + at(1) - 0x80;
            i += 2;
        } else if (at(0) < 0xF0) {
            out += (at(0) - 0xE0) * 4096 + (at(1) - 0x80) * 64 + at(2) - 0x80;
            i += 3;
        } else {
            out += (at(0) - 0xF0) * 262144 + (at(1) - 0x80) * 4096 + (at(2) - 0x80) * 64 + at(3) - 0x80;
            i += 4;
        }
    }
    return out;
}

std::string ToUtf8(const std::u32string& text) {
    std::string out;
    for (const char32_t c : text) out += Utf8(c);
    return out;
}

// The cutting of a field, character by character, with every step as a statement of its own.
std::u32string CutSlowly(std::u32string& line, char32_t delimiter) {
    std::u32string field;
    while (!line.empty() && line.front() == delimiter) line.erase(0, 1);
    while (!line.empty() && (line.front() == U' ' || line.front() == U'\t')) line.erase(0, 1);
    const auto ended = [&] {
        return !field.empty() && (field.back() == delimiter || field.back() == U' ' || field.back() == U'\t');
    };
    while (!ended()) {
        if (line.empty()) return field;
        const char32_t first = line.front();
        if (first != 254 && first != 255) field += first;
        line.erase(0, 1);
    }
    field.pop_back();
    return field;
}

std::vector<std::string> LinesOf(std::string_view text) {
    std::vector<std::string> lines;
    std::string_view line;
    while (CutLine(text, line)) lines.emplace_back(line);
    return lines;
}

using Fields = std::vector<std::string>;
Fields AllFields(std::string line, char delimiter) {
    Fields fields;
    while (!line.empty()) fields.push_back(Zerpflück(line, delimiter));
    return fields;
}

}  // namespace

TEST_F(Text, EverySingleByteReadsAsItsPlaceInTheCodePage) {
    for (int byte = 0; byte < 256; ++byte) {
        const auto upper = byte >= 0x80 && byte < 0xA0 ? kPublishedUpper[byte - 0x80] : 0;
        const auto code = static_cast<char32_t>(upper != 0 ? upper : static_cast<char32_t>(byte));
        const std::string bytes(1, static_cast<char>(byte));
        EXPECT_EQ(DecodeText(bytes), Utf8(code)) << byte;
        EXPECT_EQ(EncodeText(Utf8(code)), bytes) << byte;
    }
}

TEST_F(Text, AllBytesTogetherAreNoUtf8AndComeBackUnchanged) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    EXPECT_EQ(EncodeText(DecodeText(bytes)), bytes);
    EXPECT_EQ(CharacterCount(DecodeText(bytes)), 256);
}

TEST_F(Text, BytesThatFormUtf8AreTakenAsUtf8) {
    EXPECT_EQ(DecodeText("Rückgängig"), "Rückgängig");
    EXPECT_EQ(DecodeText("R\xFC"
                         "ckg\xE4ngig"),
              "Rückgängig");
    EXPECT_EQ(DecodeText("\xE2\x82\xAC"), "€");
    EXPECT_EQ(DecodeText("\xF0\x9F\x98\x80"), "😀");
}

TEST_F(Text, WhatOnlyLooksLikeUtf8IsTakenByteByByte) {
    const std::vector<std::pair<std::string, int>> cases = {
        {"\xC0\x80", 2},          // longer than needed
        {"\xE0\x80\x80", 3},      // longer than needed
        {"\xF0\x80\x80\x80", 4},  // longer than needed
        {"\xED\xA0\x80", 3},      // half of a surrogate pair
        {"\xF4\x90\x80\x80", 4},  // beyond the last code point
        {"\xC3", 1},              // cut off
        {"\xE2\x82", 2},          // cut off
        {"\x80", 1},              // begins in the middle
        {"\xFE\xFF", 2},
    };
    for (const auto& [bytes, characters] : cases) {
        EXPECT_FALSE(IsValidUtf8(bytes));
        EXPECT_EQ(CharacterCount(DecodeText(bytes)), characters);
        EXPECT_EQ(EncodeText(DecodeText(bytes)), bytes);
    }
}

TEST_F(Text, TextThatWouldReadAsUtf8IsWrittenAsUtf8) {
    // "Ã¤" as single bytes is C3 A4, which reads as "ä".
    EXPECT_EQ(EncodeText("Ã¤"), "Ã¤");
    EXPECT_EQ(DecodeText(EncodeText("Ã¤")), "Ã¤");
    EXPECT_EQ(EncodeText("ä"), "\xE4");
    EXPECT_EQ(EncodeText("ä Ω"), "ä Ω");            // no place for the omega
    EXPECT_EQ(EncodeText(Utf8(0x80)), Utf8(0x80));  // the place of 0x80 belongs to the euro
}

TEST_F(Text, EveryTextSurvivesARoundThroughAFile) {
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        std::u32string text;
        const unsigned kind = random() % 3;
        for (unsigned n = random() % 12; n > 0; --n) {
            char32_t code = static_cast<char32_t>(random() % (kind == 0   ? 0x100
                                                              : kind == 1 ? 0x2200
                                                                          : 0x110000));
            if (code >= 0xD800 && code < 0xE000) code = U'Ã';
            text += code;
        }
        ASSERT_EQ(CodePoints(DecodeText(EncodeText(ToUtf8(text)))), text);
    }
}

TEST_F(Text, LinesEndAtCrLfAtLfAndAtCr) {
    using L = std::vector<std::string>;
    EXPECT_EQ(LinesOf(""), L{});
    EXPECT_EQ(LinesOf("a"), L{"a"});
    EXPECT_EQ(LinesOf("a\n"), L{"a"});
    EXPECT_EQ(LinesOf("a\r"), L{"a"});
    EXPECT_EQ(LinesOf("a\r\n"), L{"a"});
    EXPECT_EQ(LinesOf("\n"), L{""});
    EXPECT_EQ(LinesOf("\n\r"), (L{"", ""}));
    EXPECT_EQ(LinesOf("a\r\r\nb"), (L{"a", "", "b"}));
    EXPECT_EQ(LinesOf("a\rb\nc\r\nd\n\ne"), (L{"a", "b", "c", "d", "", "e"}));
}

TEST_F(Text, LinesOfAnyLengthAreFoundInAnyMix) {
    std::mt19937 random(11);
    for (int round = 0; round < 2000; ++round) {
        std::vector<std::string> lines;
        std::string text;
        for (unsigned n = 1 + random() % 6; n > 0; --n) {
            lines.emplace_back(random() % 3 == 0 ? random() % 600 : 250 + random() % 12, 'x');
            const unsigned kind = random() % 3;
            // An empty line behind CR that ends in LF would be one line end.
            const bool afterCr = !text.empty() && text.back() == '\r' && lines.back().empty();
            text += lines.back() + (kind == 0 || afterCr ? "\r\n" : kind == 1 ? "\n" : "\r");
        }
        if (random() % 2 == 0) {
            lines.emplace_back("end");
            text += "end";
        }
        ASSERT_EQ(LinesOf(text), lines);
    }
}

TEST_F(Text, AMillionLinesOfCrAloneAreAMillionLines) {
    std::string text;
    for (int i = 0; i < 1000000; ++i) text += "1 2 3\r";
    EXPECT_EQ(LinesOf(text).size(), 1000000U);
}

TEST_F(Text, FieldsEndAtTheDelimiterAtBlanksAndAtTabs) {
    EXPECT_EQ(AllFields("P1;1.5;2;3", ';'), (Fields{"P1", "1.5", "2", "3"}));
    EXPECT_EQ(AllFields("P1 1.5\t2", ';'), (Fields{"P1", "1.5", "2"}));
    EXPECT_EQ(AllFields("  P1   1.5  ", ' '), (Fields{"P1", "1.5", ""}));
    EXPECT_EQ(AllFields("\tP1\t\t2", '\t'), (Fields{"P1", "2"}));
    EXPECT_EQ(AllFields("a  b", '\0'), (Fields{"a", "b"}));
}

TEST_F(Text, ADelimiterBehindABlankEndsAnEmptyField) {
    EXPECT_EQ(AllFields("a ; b", ';'), (Fields{"a", "b"}));
    EXPECT_EQ(AllFields(" ; b", ';'), (Fields{"", "b"}));
    EXPECT_EQ(AllFields("a;;;b", ';'), (Fields{"a", "b"}));
}

TEST_F(Text, ByteOrderMarkCharactersVanishFromAField) {
    EXPECT_EQ(AllFields("ÿþP1;2", ';'), (Fields{"P1", "2"}));
    EXPECT_EQ(AllFields("ÿþ", ';'), (Fields{""}));
    EXPECT_EQ(AllFields("ÿ;a", ';'), (Fields{"", "a"}));
    EXPECT_EQ(AllFields("Ã¾ä;a", ';'), (Fields{"Ã¾ä", "a"}));
}

TEST_F(Text, CuttingAFieldAgreesWithTheStepsWrittenOut) {
    std::mt19937 random(3);
    const std::u32string alphabet = U"ab1.-;, \t\u00FE\u00FFäÃ€,";
    for (const char delimiter : {';', ',', ' ', '\t'})
        for (int round = 0; round < 20000; ++round) {
            std::u32string line;
            for (unsigned n = random() % 16; n > 0; --n) line += alphabet[random() % alphabet.size()];
            std::string fast = ToUtf8(line);
            std::u32string slow = line;
            for (int cuts = 0; cuts < 20; ++cuts) {
                const std::u32string expected = CutSlowly(slow, static_cast<char32_t>(delimiter));
                ASSERT_EQ(CodePoints(Zerpflück(fast, delimiter)), expected) << ToUtf8(line);
                ASSERT_EQ(CodePoints(fast), slow) << ToUtf8(line);
            }
        }
}

TEST_F(Text, UnknownTextIsMadeFitForAMessage) {
    EXPECT_EQ(Printable("a\tb\n\x7F"
                        "c"),
              "a?b??c");
    EXPECT_EQ(Printable("a\xFF"
                        "b"),
              "a?b");
    EXPECT_EQ(Printable(Utf8(0x9B)), "?");
    EXPECT_EQ(Printable("äöü", 3), "äöü");
    EXPECT_EQ(Printable("äöüß", 3), "äöü...");
}

TEST_F(Text, OnlyAsciiLettersAreRaised) {
    EXPECT_EQ(UpperAscii("Rem ä z{"), "REM ä Z{");
}

TEST_F(Text, AsciiIsRecognisedAtEveryPlace) {
    for (std::size_t size = 0; size < 20; ++size) {
        std::string text(size, 'a');
        EXPECT_TRUE(IsAscii(text));
        for (std::size_t place = 0; place < size; ++place) {
            std::string broken = text;
            broken[place] = '\x80';
            EXPECT_FALSE(IsAscii(broken)) << size << " " << place;
        }
    }
}
