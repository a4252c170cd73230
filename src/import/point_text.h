// A text point file in memory, and a walk over its lines. All checks and the reader work on the same
// bytes, so a file is read from the disk once.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/files.h"
#include "core/rooms.h"

namespace corvinade::import {

// What the lines of a text hold of two characters.
struct LineCensus {
    char Delimiter = '\0', Mark = '\0';  // what is counted
    bool Taken = false;
    std::int64_t FewestDelimiters = 10000, MostDelimiters = -10000;  // of lines that hold anything
    std::int64_t FirstOther = 0;  // first such line whose number differs from those before, from 1; 0 = none
    std::int64_t MostMarks = 0;   // of any line
};

struct PointText {
    std::string Path;
    FileBytes Bytes;           // the file as read
    std::string Changed;       // its content after a change in place; empty before
    std::string_view Text;     // what is valid of the two, without a UTF-8 byte order mark
    bool HasMark = false;      // a byte order mark stands before Text
    bool Ascii = false;        // Text needs no decoding
    bool LoneReturns = false;  // some line ends at a CR without LF
    LineCensus Census;         // the last one
};

// Reads a file. Throws PlatformError as ReadFile does, and where the bytes are no single-byte text or UTF-8:
// a 16-bit text or something that is no text at all.
PointText LoadPointText(const std::string& path);

// Puts other content in the place of Text, in memory only; the mark stays.
void ReplacePointText(PointText& file, std::string content);

// Walks over the lines; CR LF, LF and CR end a line. A line end at the very end begins no further line.
struct LineWalk {
    std::string_view Rest;
    bool LoneReturns = false;
    std::int64_t Row = 0;  // number of the line last given, from 1

    explicit LineWalk(const PointText& file) : Rest(file.Text), LoneReturns(file.LoneReturns) {}
    bool Next(std::string_view& line);  // false at the end
};

// The text of a line of the file: the line itself where it is ASCII, else decoded into `scratch`.
std::string_view DecodedLine(const PointText& file, std::string_view line, std::string& scratch);

// The one character that a delimiter text stands for; 0 for the empty text.
inline char DelimiterCharacter(const std::string& delimiter) {
    return delimiter.empty() ? '\0' : delimiter.front();
}

// How often a byte occurs.
std::int64_t CountByte(std::string_view text, char byte);

// Goes through all lines at once, or gives what it did for the same characters before. Require: there are no
// lone returns.
const LineCensus& CensusOf(PointText& file, char delimiter, char mark);

// Number of lines that hold at least one character.
std::int64_t CountFilledLines(std::string_view text);

}  // namespace corvinade::import
