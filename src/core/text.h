// Text in memory is UTF-8; files of the system are single-byte text. This is the only place that knows.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::core {

inline constexpr const char* kLineEnd = "\r\n";

bool IsAscii(std::string_view bytes);
bool IsValidUtf8(std::string_view bytes);

// Length of the UTF-8 character at the start of `bytes`, which are not empty, and its code point; 0 when
// there is no valid one.
std::size_t Utf8Character(std::string_view bytes, std::uint32_t& code);

// Text of a file to text in memory: bytes that form valid UTF-8 are taken as UTF-8, anything else as
// Windows-1252, whose five unused codes pass through as the control characters of the same number.
std::string DecodeText(std::string_view bytes);

// Text in memory to text of a file: Windows-1252 where every character has a place there and the result
// would not read as UTF-8, otherwise UTF-8. DecodeText gives back every valid UTF-8 text unchanged.
std::string EncodeText(std::string_view text);

// Number of characters (code points) of a UTF-8 text.
int CharacterCount(std::string_view text);

// A text of unknown content made fit for a message: control characters and bytes that are no UTF-8
// become "?", and it is cut after `most` characters.
std::string Printable(std::string_view text, int most = 60);

// ASCII letters alone; the words compared so are our own keys.
std::string UpperAscii(std::string_view text);

// Are two texts the same but for the case of letters? Of the letters beyond ASCII those of Latin-1, Greek and
// Cyrillic are known.
bool EqualIgnoringCase(std::string_view a, std::string_view b);

// Cuts the next line off `rest`: up to CR LF, LF or CR, which is removed. False at the end of the text.
// A line end at the very end of a file begins no further line.
bool CutLine(std::string_view& rest, std::string_view& line);

// Cuts the first field off a line. Leading delimiters, then leading blanks and tabs are dropped; the
// field ends at a delimiter, blank or tab, which is dropped too, or at the end of the line. The
// characters 254 and 255, a 16-bit text's byte order mark, vanish from the field.
//   delimiter   one character; 0 = blanks and tabs alone
std::string Zerpflück(std::string& line, char delimiter);

// The same without copies: `line` is shortened, the result points into it, or into `scratch` where a
// character had to vanish.
std::string_view CutField(std::string_view& line, char delimiter, std::string& scratch);

}  // namespace corvinade::core
