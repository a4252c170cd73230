// The graphics windows in the automation: "Screen#1", "Screen#1.ScreenPixel", "Screen#1.BildFaktor".
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "core/rooms.h"

namespace corvinade::cli {

// Inner sizes that a graphics window takes, pixels.
inline constexpr int kLargestScreenSide = 16384;
inline constexpr std::int64_t kLargestScreenArea = std::int64_t{1} << 26U;
// "" or why a picture cannot be so large.
std::string CheckScreenSize(std::int64_t width, std::int64_t height);

// Sets up what new windows stand on: their size and their surface. Nothing is held down any more.
void StartScreens(int width, int height);

// Does "at" name a graphics window, open or not?
bool IsScreenPlace(std::string_view at);

// What the requests do to a graphics window. Each throws RequestError where that cannot be.
nlohmann::json GetScreen(const nlohmann::json& request);
nlohmann::json CloseScreen(const nlohmann::json& request);
nlohmann::json ScreenKey(const nlohmann::json& request);
nlohmann::json ScreenMouseEvent(const nlohmann::json& request);
nlohmann::json ScreenPicture(const nlohmann::json& request);
nlohmann::json ResizeScreen(const nlohmann::json& request);
// A click on a cell of a flag, with the mouse on the cell's middle; every other part of a graphics window
// refuses it.
nlohmann::json FlagClick(const nlohmann::json& request, bool twice);
// For "set" and "select", which no part of a graphics window takes.
[[noreturn]] void RefuseOnScreen(const nlohmann::json& request);

// An analyse mode ends when the user ends it. One that no request is coming for would run for ever: the first
// one that runs is ended here.
void EndForgottenAnalyseMode();

// The names of the open ones: "Screen#1", "Screen#2", ...
nlohmann::json OpenScreenNames();

}  // namespace corvinade::cli
