// The end of a command that has been asked for --json or --quiet: what of it stands on standard error then.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "cli/messages.h"
#include "core/rooms.h"

namespace corvinade::cli {

// Which file a text of an error is about, and which line of it; nothing where it names none.
struct ErrorPlace {
    std::optional<std::string> File;
    std::optional<int> Line;
};

// Looks for `"FILE", line N`, for one of the names that the command line has, and for what cannot be read or
// written, in this order.
ErrorPlace PlaceInText(const std::string& text, const std::vector<std::string>& named);

// With --json the error of a command that has ended with another status than 0, as one object, with the
// notes; `text` is all that it has said.
void WriteErrorJson(int status, const std::string& text, const std::vector<std::string>& named,
                    std::ostream& err);

// What a command with --json or --quiet has said, at its end: its notes unless it is to be quiet, and behind
// them of an error the object, or what was said. Without an error what was said, of a quiet one nothing.
void TellAtEnd(int status, bool json, bool quiet, const std::string& said,
               const std::vector<std::string>& named, std::ostream& err);

}  // namespace corvinade::cli
