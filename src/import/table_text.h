// The text of a table: its encoding, and its lines.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::import {

enum class TableEncoding : std::uint8_t { Utf8, Utf16Le, Utf16Be, Windows1252 };
const char* TableEncodingName(TableEncoding encoding);  // "utf-8", "utf-16le", "utf-16be", "windows-1252"
// False for another name.
bool TableEncodingByName(std::string_view name, TableEncoding& encoding);

// The bytes without a mark of byte order; of 16-bit texts what they say in UTF-8. A text of single bytes
// stays as it is, and its cells are decoded one by one.
struct TableText {
    TableEncoding Encoding = TableEncoding::Utf8;
    std::string_view Text;
    std::string Decoded;  // what Text points into, where it is not the bytes
    bool Ascii = false;
    bool ByLine = true;  // lines of single bytes that are UTF-8 are taken as such

    TableText() = default;
    TableText(const TableText&) = delete;
    TableText& operator=(const TableText&) = delete;
};

// Finds the encoding, or takes that which `wanted` names, where it is not null. "", or why the bytes are no
// text in it, with the option that may help.
std::string TakeTableText(std::string_view bytes, const TableEncoding* wanted, TableText& text);

// A cell as UTF-8. `line` is all of its line: where the encoding was found, one that is UTF-8 is taken as
// such whatever the rest of the file is.
std::string DecodedCell(const TableText& text, std::string_view line, std::string_view cell);

// The line that begins at `at`, without its end (CR LF, LF or CR); `at` is moved behind that. False at the
// end of the text.
bool NextTableLine(std::string_view text, std::size_t& at, std::string_view& line);

}  // namespace corvinade::import
