// A JSON object that is written member by member: of a million points the whole object takes gigabytes.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "core/rooms.h"

namespace corvinade::cli {

// A value as it stands in an object, its lines indented by `depth` blanks; bytes that are no text are
// replaced.
std::string Indented(const nlohmann::ordered_json& value, std::size_t depth);

// The object that is being written: `BeginObject` puts its brace, each member its own line.
struct JsonObject {
    std::ostream& Out;
    std::size_t Depth;  // blanks in front of a member
    bool First = true;
};

// The name of the next member; its value is to be written behind it.
void BeginMember(JsonObject& object, const std::string& name);
void WriteMember(JsonObject& object, const std::string& name, const nlohmann::ordered_json& value);

// A list whose elements `element` gives by their numbers, from `begin` to `end` - 1.
template <class Element>
void WriteList(JsonObject& object, const char* name, std::size_t begin, std::size_t end, Element element) {
    BeginMember(object, name);
    const std::string line = "\n" + std::string(object.Depth + 2, ' ');
    object.Out << "[";
    for (std::size_t i = begin; i < end; ++i)
        object.Out << (i == begin ? line : "," + line) << Indented(element(i), object.Depth + 2);
    object.Out << (begin < end ? "\n" + std::string(object.Depth, ' ') + "]" : "]");
}

}  // namespace corvinade::cli
