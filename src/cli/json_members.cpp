// Members and lists of an object that is written piece by piece.
#include "cli/json_members.h"

namespace corvinade::cli {

using nlohmann::ordered_json;

std::string Indented(const ordered_json& value, std::size_t depth) {
    const std::string text = value.dump(2, ' ', false, ordered_json::error_handler_t::replace);
    std::string indented;
    for (const char c : text) {
        indented += c;
        if (c == '\n') indented.append(depth, ' ');
    }
    return indented;
}

void BeginMember(JsonObject& object, const std::string& name) {
    object.Out << (object.First ? "\n" : ",\n") << std::string(object.Depth, ' ') << '"' << name << "\": ";
    object.First = false;
}

void WriteMember(JsonObject& object, const std::string& name, const ordered_json& value) {
    BeginMember(object, name);
    object.Out << Indented(value, object.Depth);
}

}  // namespace corvinade::cli
