// What is looked at before a point file is read: its field delimiter, its columns, its decimal
// delimiter. A check that fails shows its message and sets Run.ImportFailed; the file is read whole by
// each procedure that takes a path, which throws PlatformError when that cannot be done.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "core/arrays.h"
#include "core/rooms.h"
#include "import/point_text.h"
#include "import/reading.h"

namespace corvinade::import {

// All checks on one file, in order, up to the first that fails.
//   hasName    out: lines begin with a name, which is so unless the file has 3 columns
//   delimiter  in: that of the previous file, which stays where this file shows none; out: the one found
// hasName is set before the decimal delimiter is checked: the readers of robot coordinates hand in
// Run.RobotFileHasId, which that check reads.
void ASCII_FileCheck(const std::string& path, Flag& hasName, std::string& delimiter);
void ASCII_FileCheck(PointText& file, Flag& hasName, std::string& delimiter, const Reading& how = {});

// What is said of a file without names.
std::string OnlyThreeColumns(const std::string& path);

// What the rows of a file hold: a point, with or without its name in front, or a point of a profile, which is
// two numbers.
enum class FileRows : std::uint8_t { Points, Shape };

// The checks up to the number of columns, which is given. False, with the message, when one fails.
bool CheckColumns(PointText& file, FileRows rows, std::string& delimiter, std::int64_t& columns,
                  const Reading& how);

// Finds the field delimiter among blank ; : * # tab and comma. The comma is none where it is the
// decimal delimiter, nor where the file without it is a table of numbers with decimal comma.
void FindTrennzeichen(const std::string& path, std::string& delimiter);
void FindTrennzeichen(const PointText& file, std::string& delimiter, FileRows rows = FileRows::Points,
                      const Reading& how = {});

// Counts the columns of every line by its single delimiter characters.
//   columns      out: highest number of them; below 0 when no line holds anything
//   firstBadRow  out: first line whose number differs from those before; 0 = none
void Diverse_Checks(const std::string& path, std::int64_t& columns, const std::string& delimiter,
                    std::int64_t& firstBadRow);
void Diverse_Checks(PointText& file, std::int64_t& columns, const std::string& delimiter,
                    std::int64_t& firstBadRow);

// Compares the decimal delimiter of the first three fields (of those behind the first one with
// Run.RobotFileHasId) with that of the reading. Where they differ the user is asked whether the file shall be
// changed; on Yes the file on disk is rewritten, and `file` holds the new content.
void Check_DecimalDelimiter(const std::string& path, const std::string& delimiter);
void Check_DecimalDelimiter(PointText& file, const std::string& delimiter, const Reading& how = {});

// Is the system's decimal delimiter the comma?
void DezTrennzeichenIstKomma(Flag& isComma);

// Number of lines that are not empty.
void AnzZeilen(const std::string& path, std::int64_t& count);
void AnzZeilen(const PointText& file, std::int64_t& count);

// Number of fields of a line.
void AnzSpalten(const std::string& line, std::int32_t& count, const std::string& delimiter);

// How often a text occurs in a file read without its line ends, so also across them. The search goes on
// one character behind the start of what it found.
void wieOftStringinFile(const std::string& path, const std::string& text, std::int64_t& count);
void wieOftStringinFile(const PointText& file, const std::string& text, std::int64_t& count);

// Does the first or the last character of a text equal one of the texts? An empty text has neither.
void LinksIstString(const std::string& text, std::span<const std::string> texts, Flag& result);
void RechtsIstString(const std::string& text, std::span<const std::string> texts, Flag& result);

// Does a text equal one of the texts, element 0 left aside?
void StringGleichFeld(const std::string& text, std::span<const std::string> texts, Flag& result);

}  // namespace corvinade::import
