// What the parameters are called.
#include "core/parameter_names.h"

#include <vector>

namespace corvinade::core {

std::string NamesOf(const std::array<bool, kParameterEnd>& parameters) {
    std::vector<const char*> names;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (parameters[static_cast<std::size_t>(k)]) names.push_back(ParameterName(k));
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0) text += i + 1 == names.size() ? " and " : ", ";
        text += names[i];
    }
    return text;
}

const char* ParameterName(int parameter) {
    constexpr std::array<const char*, kParameterEnd> kNames = {
        "",        "Tra x",     "Tra y", "Tra z",   "Rot x",   "Rot y",  "Rot z",   "Scale x", "Scale y",
        "Scale z", "Scale xyz", "xy",    "Azimuth", "z to xy", "R Dist", "R vec x", "R vec y", "R vec z"};
    return kNames[static_cast<std::size_t>(parameter)];
}

}  // namespace corvinade::core
