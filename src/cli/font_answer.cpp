// The answer to the font dialog.
#include "cli/font_answer.h"

#include <nlohmann/json.hpp>

using nlohmann::json;

namespace {

template <class Value>
bool Take(const json& object, const char* name, bool (json::*is)() const noexcept, Value& value) {
    const auto member = object.find(name);
    if (member == object.end()) return true;
    if (!((*member).*is)()) return false;
    value = member->get<Value>();
    return true;
}

}  // namespace

bool FontFromText(const std::string& text, FontChoice& font) {
    const json answer = json::parse(text, nullptr, false);
    if (!answer.is_object()) return false;
    FontChoice chosen = font;
    const bool taken = Take(answer, "name", &json::is_string, chosen.Name) &&
                       Take(answer, "size", &json::is_number, chosen.Size) &&
                       Take(answer, "bold", &json::is_boolean, chosen.Bold) &&
                       Take(answer, "italic", &json::is_boolean, chosen.Italic) &&
                       Take(answer, "underline", &json::is_boolean, chosen.Underline) &&
                       Take(answer, "strikethrough", &json::is_boolean, chosen.Strikethrough) &&
                       Take(answer, "color", &json::is_number_integer, chosen.Colour);
    constexpr double kLargest = 1000;  // points
    if (!taken || !(chosen.Size > 0 && chosen.Size <= kLargest)) return false;
    chosen.Colour &= 0xffffff;
    font = chosen;
    return true;
}
