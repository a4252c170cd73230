// Emphasis in the tables that people read at a terminal.
#pragma once

#include <string>

#include "core/rooms.h"

namespace corvinade::cli {

struct Style {
    bool Colour;
    std::string Heading(const std::string& text) const {
        return Colour ? "\x1b[1m" + text + "\x1b[0m" : text;
    }
    std::string Alarm(const std::string& text) const { return Colour ? "\x1b[31m" + text + "\x1b[0m" : text; }
    std::string Quiet(const std::string& text) const { return Colour ? "\x1b[2m" + text + "\x1b[0m" : text; }
};

}  // namespace corvinade::cli
