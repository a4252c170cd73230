// The platform without a screen. It is complete: it records every message, text and file handed out,
// answers dialogs from queues, and reports a question that nobody expected.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/rooms.h"

namespace corvinade::cli {

struct DialogShown {
    std::string Kind;  // "message", "input", "open", "save", "folder", "colour", "font", "form"
    std::string Title, Text;
    std::vector<std::string> Buttons;
    std::string Default, Filter;
    std::optional<std::string> Answer;  // nothing = cancelled
    std::string Replies;                // of a window that was waited for: what its requests gave, JSON
};

// The last picture on the clipboard; a text replaces it, and it a text.
struct ClipboardImage {
    int Width = 0, Height = 0;
    std::vector<std::uint32_t> Pixels;  // 0xffRRGGBB, row by row without a gap
};

struct HandedOver {
    std::string Verb, Path;
};

struct HeadlessRecord {
    std::vector<DialogShown> Dialogs;
    std::vector<HandedOver> Shell;
    std::size_t NotesTold = 0;  // of the list, by the command line on standard error
    bool Unanswered = false;    // a question came that nothing was queued for
    std::map<std::string, std::deque<std::optional<std::string>>> Answers;  // by kind, first in first out

    // Asked when nothing is queued; gives the answer, or nothing to leave the question unanswered.
    std::function<std::optional<std::string>(const DialogShown&)> OnQuestion;

    // Does what the user does in a window that is waited for. A window that is open afterwards is closed.
    std::function<void(const std::string& window)> OnForm;
    std::vector<std::string> WaitedFor;  // the windows that block all others, the innermost last

    std::string Clipboard;
    ClipboardImage ClipboardPicture;
    bool ClipboardRefuses = false;
    std::uint64_t Yields = 0;
    std::function<void()> OnYield;  // runs at every yield, after it has been counted
    double Clock = 0;               // seconds that waits have let pass

    std::optional<char> Decimal;                        // without it that of the locale
    std::optional<std::string> SettingsDir;             // stands in for the folder that "appdata" names
    std::string SystemName = "Windows Vista or LATER";  // a system with a settings folder for each user
    std::string ProgramDir;
};
inline HeadlessRecord Headless;

}  // namespace corvinade::cli
