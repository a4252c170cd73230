// The answer to the choice of a font.
#include "cli/font_answer.h"

#include "cli/request.h"
#include "core/text_font.h"

namespace corvinade::cli {

void RefuseNoFont(const nlohmann::json& value) {
    if (!value.is_object()) Refuse("a font is an object with name, size, bold and italic");
    for (const auto& [name, member] : value.items()) {
        const bool switches =
            name == "bold" || name == "italic" || name == "underline" || name == "strikethrough";
        if (!switches && name != "name" && name != "size" && name != "color")
            Refuse("a font has no \"" + name + "\"");
        if (switches && !member.is_boolean()) Refuse("\"" + name + "\" of a font is true or false");
        if (name == "name" && !member.is_string()) Refuse("the name of a font is a text");
        if (name == "color" && !(member.is_number_unsigned() && member.get<std::uint64_t>() <= 0xffffff))
            Refuse("the color of a font is a number from 0 to 16777215");
        if (name != "size") continue;
        const bool fits = member.is_number() && member.get<double>() >= kLeastFontSize &&
                          member.get<double>() <= kLargestFontSize;
        if (!fits) Refuse("the size of a font is a number from 1 to 200");
    }
}

}  // namespace corvinade::cli
