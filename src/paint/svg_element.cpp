// Elements of SVG as text.
#include "paint/svg_element.h"

#include <algorithm>
#include <cstdio>

#include "core/text.h"

namespace corvinade::paint {

// The page is no place for the decimal delimiter of the locale.
std::string SvgFixed(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", value);
    for (char& c : text)
        if (c == ',') c = '.';
    return text;
}

std::string SvgNumber(double value) {
    std::string number = SvgFixed(value);
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.') number.pop_back();
    return number == "-0" ? "0" : number;
}

std::string SvgColour(std::uint32_t pixel) {
    char text[16];
    std::snprintf(text, sizeof text, "#%06x", pixel & 0xffffffU);
    return text;
}

SvgElement::SvgElement(std::string& svg, const char* name) : svg_(svg), name_(name) {
    svg_ += '<';
    svg_ += name;
}

SvgElement& SvgElement::Word(const char* name, std::string_view value) {
    svg_ += ' ';
    svg_ += name;
    svg_ += "=\"";
    svg_ += value;
    svg_ += '"';
    return *this;
}

SvgElement& SvgElement::Number(const char* name, double value) {
    return Word(name, SvgNumber(value));
}

SvgElement& SvgElement::Fixed(const char* name, double value) {
    return Word(name, SvgFixed(value));
}

SvgElement& SvgElement::Text(const char* name, const std::string& value) {
    return Word(name, EscapeMarkup(value));
}

void SvgElement::Empty(std::string_view behind) {
    svg_ += "/>";
    svg_ += behind;
}

void SvgElement::Opens(std::string_view behind) {
    svg_ += '>';
    svg_ += behind;
}

void SvgElement::BeginsPath() {
    svg_ += " d=\"";
}

void EndPath(std::string& svg) {
    svg += "\"/>\n";
}

void SvgElement::Holds(const std::string& text, std::string_view behind) {
    svg_ += '>';
    svg_ += EscapeMarkup(text);
    svg_ += "</";
    svg_ += name_;
    Opens(behind);
}

void SvgElement::HoldsTitle(const std::string& words, std::string_view behind) {
    svg_ += '>';
    SvgElement(svg_, "title").Holds(words);
    svg_ += "</";
    svg_ += name_;
    Opens(behind);
}

void BeginSvg(std::string& svg, int width, int height, const std::string& title, bool inPage) {
    SvgElement root(svg, "svg");
    if (!inPage) root.Word("xmlns", "http://www.w3.org/2000/svg");
    root.Number("width", width)
        .Number("height", height)
        .Word("viewBox", "0 0 " + std::to_string(width) + " " + std::to_string(height))
        .Word("role", "img")
        .Text("aria-label", title)
        .Opens("\n");
    SvgElement(svg, "title").Holds(title, "\n");
}

}  // namespace corvinade::paint
