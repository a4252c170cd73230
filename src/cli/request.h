// The members of a request of the automation, and its refusal.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "cli/headless.h"
#include "core/rooms.h"

namespace corvinade::cli {

// A request that cannot be carried out; it has changed nothing.
struct RequestError {
    std::string What;
};

[[noreturn]] inline void Refuse(const std::string& what) {
    throw RequestError{what};
}

// A window that is waited for blocks all others. `window` is what the user would reach for.
inline void RefuseWhileAnotherIsWaitedFor(const std::string& window) {
    if (!Headless.WaitedFor.empty() && Headless.WaitedFor.back() != window)
        Refuse(Headless.WaitedFor.back() + " waits for its answer");
}

inline const nlohmann::json& Member(const nlohmann::json& request, const char* name) {
    const auto found = request.find(name);
    if (found == request.end()) Refuse(std::string("the member \"") + name + "\" is missing");
    return *found;
}

inline std::string TextMember(const nlohmann::json& request, const char* name) {
    const nlohmann::json& value = Member(request, name);
    if (!value.is_string()) Refuse(std::string("the member \"") + name + "\" must be a text");
    return value.get<std::string>();
}

// A whole number within bounds that are told where it is not.
inline int WholeMember(const nlohmann::json& request, const char* name, int least, int most) {
    const nlohmann::json& value = Member(request, name);
    if (!value.is_number_integer()) Refuse(std::string("the member \"") + name + "\" must be a whole number");
    const bool tooLarge =
        value.is_number_unsigned() && value.get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX);
    const std::int64_t number = tooLarge ? INT64_MAX : value.get<std::int64_t>();
    if (number < least || number > most)
        Refuse(std::string("\"") + name + "\" goes from " + std::to_string(least) + " to " +
               std::to_string(most));
    return static_cast<int>(number);
}

// False where it is missing.
inline bool FlagMember(const nlohmann::json& request, const char* name) {
    const auto value = request.find(name);
    if (value == request.end()) return false;
    if (!value->is_boolean()) Refuse(std::string("\"") + name + "\" is true or false");
    return value->get<bool>();
}

}  // namespace corvinade::cli
