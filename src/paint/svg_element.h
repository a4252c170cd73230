// The elements of SVG, written one behind the other: names, attributes, numbers, and what must be escaped.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/escaped_text.h"
#include "core/rooms.h"

namespace corvinade::paint {

// A coordinate to a hundredth of a pixel, without zeros behind it and with a decimal point in every locale.
std::string SvgNumber(double value);
// The same with both digits behind the point, always.
std::string SvgFixed(double value);

// "#rrggbb" of the low 24 bits 0xRRGGBB.
std::string SvgColour(std::uint32_t pixel);

// An element on its way onto the end of a text: its attributes in the order of the calls, then one of the
// ends.
//     SvgElement(svg, "line").Number("x1", 3).Number("x2", 8).Word("class", "grid").Empty();
class SvgElement {
public:
    SvgElement(std::string& svg, const char* name);
    SvgElement& Number(const char* name, double value);            // as SvgNumber
    SvgElement& Fixed(const char* name, double value);             // as SvgFixed
    SvgElement& Word(const char* name, std::string_view value);    // as it is: a word of ours
    SvgElement& Text(const char* name, const std::string& value);  // escaped: a word of the user's
    // `behind` follows the element.
    void Empty(std::string_view behind = "");
    void Holds(const std::string& text, std::string_view behind = "");        // escaped
    void HoldsTitle(const std::string& words, std::string_view behind = "");  // told under the mouse; escaped
    void Opens(std::string_view behind = "");  // what it holds is the caller's to write, and its end
    void BeginsPath();  // its last attribute "d", which the caller writes up to EndPath

private:
    std::string& svg_;
    const char* name_;
};

// Ends the path that an element has begun, and its line.
void EndPath(std::string& svg);

// The beginning of a picture that says of itself what it is, up to its first element.
//   title    what readers without eyes are told
//   inPage   for a place inside a page, which needs no name space
void BeginSvg(std::string& svg, int width, int height, const std::string& title, bool inPage = false);

}  // namespace corvinade::paint
