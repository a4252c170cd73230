// What came up while a request of the automation ran: dialogs, files handed over, errors, and the replies of
// requests that ran inside its work.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/headless.h"
#include "core/rooms.h"

namespace corvinade::cli {

struct Happenings {
    std::vector<DialogShown> Dialogs;
    std::vector<HandedOver> Shell;
    bool Unanswered = false;
    std::string PlatformError;
    nlohmann::json During = nlohmann::json::array();
};

// The replies of requests that ran at a yield, for the request whose work yielded.
inline nlohmann::json DuringReplies = nlohmann::json::array();

// Adds what came up since the last reply, and forgets it.
void AddHappenings(nlohmann::json& reply);

// A request inside the work of another one has happenings of its own: what the outer one has brought up so
// far is laid aside, and put back behind it.
Happenings LayAside();
void PutBack(Happenings kept);

}  // namespace corvinade::cli
