// How a file is read: what has been decided beforehand, and whom the rest is asked.
#pragma once

#include <functional>
#include <string>

#include "core/platform.h"
#include "core/rooms.h"

namespace corvinade::import {

struct Reading {
    // In the numbers of text files. Whether a file with the other one shall be changed is asked.
    char Decimal = SystemDecimal();
    // A question with the buttons Yes and No, by its text and its title; true is Yes.
    std::function<bool(const std::string& text, const std::string& title)> YesNo =
        [](const std::string& text, const std::string& title) { return AskYesNo(text, title); };
};

}  // namespace corvinade::import
